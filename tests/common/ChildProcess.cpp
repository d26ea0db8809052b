#include "tests/common/ChildProcess.h"

#include <catch2/catch.hpp>

#include <cstdio>

ChildProcess::ChildProcess(const std::wstring& strProgram, const std::vector<std::wstring>& arguments)
{
    std::wstring strLine = L"\"" + strProgram + L"\"";
    for (const std::wstring& strArgument : arguments)
    {
        strLine += L" \"" + strArgument + L"\"";
    }
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    const auto start = [&] {
        return CreateProcessW(strProgram.c_str(), strLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                              &startup, &m_process) != FALSE;
    };
    bool bStarted = start();
    if (!bStarted)
    {
        // Once in some thousands of starts under load Wine itself fails.
        std::printf("a child could not be started, error %lu; once more\n", GetLastError());
        bStarted = start();
    }
    INFO("CreateProcessW, last error " << GetLastError());
    REQUIRE(bStarted);
}

ChildProcess::~ChildProcess()
{
    Terminate();
    CloseHandle(m_process.hThread);
    CloseHandle(m_process.hProcess);
}

DWORD ChildProcess::Wait(DWORD dwMilliseconds)
{
    DWORD dwCode = STILL_ACTIVE;
    WaitForSingleObject(m_process.hProcess, dwMilliseconds);
    GetExitCodeProcess(m_process.hProcess, &dwCode);
    return dwCode;
}

void ChildProcess::Terminate()
{
    if (Wait(0) == STILL_ACTIVE)
    {
        TerminateProcess(m_process.hProcess, 99);
        WaitForSingleObject(m_process.hProcess, 20000);
    }
}
