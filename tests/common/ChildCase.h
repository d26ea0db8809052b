#pragma once

#include "tests/common/BuiltModule.h"
#include "tests/common/ChildProcess.h"

/// Runs a case tagged [.child] in a process of its own.
/// @param strCase its name, without a comma.
/// @return the exit code: 0 when all its checks held; the exception's code when it faulted.
inline DWORD ExitCodeOfCase(const std::wstring& strCase)
{
    ChildProcess child(BesideTests(L"veltests.exe"), {strCase});
    return child.Wait(60000);
}

/// Whether a process ended by a fault: an access violation, or the trap that the compiler puts in the place of a use of
/// a null pointer that it sees.
inline bool IsFault(DWORD dwExitCode)
{
    return dwExitCode == static_cast<DWORD>(EXCEPTION_ACCESS_VIOLATION) ||
           dwExitCode == static_cast<DWORD>(EXCEPTION_ILLEGAL_INSTRUCTION) ||
           dwExitCode == static_cast<DWORD>(EXCEPTION_BREAKPOINT);
}
