/// velhost: plays the spooler and the application around a printer interface module.

#include <windows.h>
#include <shellapi.h>

#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"

#include <exception>
#include <memory>
#include <string>
#include <vector>

namespace
{

/// @return the process's arguments in UTF-8, without the program's name.
std::vector<std::string> CommandLineUtf8()
{
    int iCount = 0;
    const std::unique_ptr<LPWSTR, decltype(&LocalFree)> pArguments(CommandLineToArgvW(GetCommandLineW(), &iCount),
                                                                   &LocalFree);
    std::vector<std::string> arguments;
    for (int i = 1; pArguments && i < iCount; ++i)
    {
        arguments.push_back(VelHost::ToUtf8(pArguments.get()[i]));
    }
    return arguments;
}

/// @return the message on one line.
std::string OneLine(std::string strText)
{
    for (char& ch : strText)
    {
        ch = ch == '\n' || ch == '\r' ? ' ' : ch;
    }
    return strText;
}

/// Takes another key for HKEY_LOCAL_MACHINE where the environment names one below HKEY_CURRENT_USER: so a test shows
/// this program an installation of its own, and the programs that it starts.
void TakeRegistryView()
{
    wchar_t szKey[MAX_PATH] = {};
    const DWORD cchKey = GetEnvironmentVariableW(L"VELHOST_MACHINE_KEY", szKey, MAX_PATH);
    HKEY hKey = nullptr;
    if (cchKey == 0 || cchKey >= MAX_PATH)
    {
        return;
    }
    if (RegOpenKeyExW(HKEY_CURRENT_USER, szKey, 0, KEY_ALL_ACCESS, &hKey) != ERROR_SUCCESS)
    {
        throw VelHost::CommandError("VELHOST_MACHINE_KEY names no key below HKEY_CURRENT_USER");
    }
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, hKey);
    RegCloseKey(hKey);
}

int Run(const std::vector<std::string>& arguments)
{
    int iExitCode = VelHost::kExitGood;
    VelHost::ProgramSyntax program(
        "Installs a printer whose interface module is VelUI, and calls the module as the spooler and\n"
        "applications do.");
    program.NeedCommand();
    VelHost::AddCommands(program, iExitCode);
    try
    {
        if (!program.Run(arguments))
        {
            VelHost::Print(program.Help());
        }
    }
    catch (const VelHost::UsageError& error)
    {
        VelHost::PrintError(OneLine(error.what()) + " (velhost --help tells more)");
        return VelHost::kExitUsage;
    }
    return iExitCode;
}

} // namespace

int main()
{
    VelHost::PrepareOutput();
    try
    {
        TakeRegistryView();
        return Run(CommandLineUtf8());
    }
    catch (const std::exception& error)
    {
        VelHost::PrintError(OneLine(error.what()));
        return VelHost::kExitFailed;
    }
}
