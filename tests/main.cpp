// The test program's main. By itself it is Catch2's. With --worker it runs the cases whose names it reads, one a line,
// from its standard input, and says after each how it ended: so tools/testrun.py spreads the cases over a handful of
// processes and knows at any moment which one a process is in. With --selftest it does that itself, one case after the
// other (tests/SelfTest.h).
#include "diag/Log.h"
#include "support/module/ModuleTexts.h"
#include "tests/SelfTest.h"

#include <catch2/catch_session.hpp>

#include <windows.h>

#include <clocale>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

namespace
{

/// The name as a filter of cases that means this one and no other.
std::string Escaped(const std::string& strName)
{
    std::string strSpec;
    for (const char c : strName)
    {
        if (std::strchr("\\,[]\"*~", c) != nullptr)
        {
            strSpec += '\\';
        }
        strSpec += c;
    }
    return strSpec;
}

/// What one case could leave behind for the next in the same process.
struct ProcessState
{
    ProcessState()
    {
        wchar_t szText[MAX_PATH] = {};
        GetCurrentDirectoryW(MAX_PATH, szText);
        strFolder = szText;
        szText[0] = L'\0';
        GetEnvironmentVariableW(L"WINEUSERNAME", szText, MAX_PATH);
        strUser = szText;
        HKEY hKey = nullptr;
        bMachineKey = RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"System\\CurrentControlSet\\Control\\Print", 0, KEY_READ,
                                    &hKey) == ERROR_SUCCESS;
        RegCloseKey(hKey);
    }
    std::wstring strFolder;
    std::wstring strUser;
    bool bMachineKey; ///< whether HKEY_LOCAL_MACHINE is the machine's and no test's
};

/// @return what a case has changed, or an empty text.
std::string LeftBehind(const ProcessState& before, const ProcessState& after)
{
    std::string strLeft;
    strLeft += after.strFolder != before.strFolder ? " another current folder" : "";
    strLeft += after.strUser != before.strUser ? " another user" : "";
    strLeft += after.bMachineKey != before.bMachineKey ? " a registry view" : "";
    strLeft += !loggingDisabled ? " logging that is on" : "";
    strLeft += g_hModule != nullptr ? " a module for its texts" : "";
    return strLeft;
}

/// Runs cases until the input ends.
int Work(Catch::Session& session)
{
    std::printf("\x01ready\n");
    std::string strName;
    while (std::getline(std::cin, strName))
    {
        Catch::ConfigData config;
        config.testsOrTags = {Escaped(strName)};
        session.useConfigData(config);
        const ProcessState before;
        int iResult = session.run();
        std::cout << std::flush;
        const std::string strLeft = LeftBehind(before, ProcessState());
        if (!strLeft.empty())
        {
            std::printf("the case left behind:%s\n", strLeft.c_str());
            iResult = iResult != 0 ? iResult : 1;
        }
        // The module itself sets this one, for the whole process, when it reads a list of papers.
        std::setlocale(LC_ALL, "C");
        // A line of its own, whatever the case wrote.
        std::printf("\n\x01%d\n", iResult);
        std::fflush(stdout);
    }
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    // A fault must end the process, never open a dialog.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    Catch::Session session;
    if (argc == 2 && std::strcmp(argv[1], "--worker") == 0)
    {
        return Work(session);
    }
    if (argc >= 2 && std::strcmp(argv[1], "--selftest") == 0)
    {
        return RunSelfTest({argv + 2, argv + argc});
    }
    return session.run(argc, argv);
}
