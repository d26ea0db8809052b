#pragma once
/// Another program, run for what it prints.

#include <windows.h>

#include <string>

namespace VelHost
{

/// How a program ended.
struct ProgramRun
{
    bool bEnded = false;   ///< by itself, in time
    DWORD dwExitCode = 0;  ///< of one that ended
    std::string strOutput; ///< what it had written to its standard output
    std::string strErrors; ///< and to its standard error
};

/// Runs a program without a window, with nothing to read, and waits for its end; one that takes too long is ended.
/// Throws CommandError when it can't be started.
/// @param strCommandLine the program's full path in quotation marks, and its arguments.
ProgramRun RunProgram(const std::wstring& strCommandLine, DWORD dwMilliseconds);

} // namespace VelHost
