#include "tests/common/ChildProcess.h"

#include <catch2/catch.hpp>

ChildProcess::ChildProcess(const std::wstring& strProgram, const std::vector<std::wstring>& arguments)
{
    std::wstring strLine = L"\"" + strProgram + L"\"";
    for (const std::wstring& strArgument : arguments)
    {
        strLine += L" \"" + strArgument + L"\"";
    }
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    REQUIRE(CreateProcessW(strProgram.c_str(), strLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                           &m_process));
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
