#pragma once
/// Another program of the tests.

#include <windows.h>

#include <string>
#include <vector>

/// Starts a program and owns its process; a process that still runs at the end is ended.
class ChildProcess
{
public:
    /// @param strProgram full path.
    /// @param arguments  each is put between double quotes; none may hold one or end in a backslash.
    ChildProcess(const std::wstring& strProgram, const std::vector<std::wstring>& arguments);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The process, borrowed, and its number.
    HANDLE Get() const { return m_process.hProcess; }
    DWORD Id() const { return m_process.dwProcessId; }
    /// Waits for the end. @return the exit code, or STILL_ACTIVE after the time-out.
    DWORD Wait(DWORD dwMilliseconds);
    /// Ends the process at once.
    void Terminate();

private:
    PROCESS_INFORMATION m_process = {};
};
