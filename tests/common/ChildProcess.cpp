#include "tests/common/ChildProcess.h"

#include <catch2/catch_test_macros.hpp>

#include <cstdio>

namespace
{

/// Writes down that a program's start was lost, where the whole run's are counted: tools/testrun.py shows them and lets
/// the run fail when there are more than a few.
void CountLostStart(const std::wstring& strProgram, DWORD dwError)
{
    std::printf("%ls could not be started, error %lu; once more\n", strProgram.c_str(), dwError);
    const wchar_t* const pszFile = _wgetenv(L"VELUI_REPEATS");
    if (FILE* const pFile = pszFile != nullptr ? _wfopen(pszFile, L"a") : nullptr)
    {
        std::fprintf(pFile, "%ls, error %lu\n", strProgram.c_str(), dwError);
        std::fclose(pFile);
    }
}

} // namespace

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
        CountLostStart(strProgram, GetLastError());
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
