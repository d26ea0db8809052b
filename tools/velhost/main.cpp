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
#include <utility>
#include <vector>

namespace
{

/// @return the process's arguments in UTF-8, the program's name first.
std::vector<std::string> CommandLineUtf8()
{
    int iCount = 0;
    const std::unique_ptr<LPWSTR, decltype(&LocalFree)> pArguments(CommandLineToArgvW(GetCommandLineW(), &iCount),
                                                                   &LocalFree);
    std::vector<std::string> arguments;
    for (int i = 0; pArguments && i < iCount; ++i)
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

int Run(std::vector<std::string> arguments)
{
    int iExitCode = VelHost::kExitGood;
    CLI::App program("Installs a printer whose interface module is VelUI, and calls the module as the spooler and\n"
                     "applications do.",
                     "velhost");
    program.require_subcommand(1);
    // A path may begin with '/'.
    program.allow_windows_style_options(false);
    VelHost::AddCommands(program, iExitCode);

    std::vector<char*> argv;
    for (std::string& strArgument : arguments)
    {
        argv.push_back(strArgument.data());
    }
    try
    {
        program.parse(static_cast<int>(argv.size()), argv.data());
    }
    catch (const CLI::ParseError& error)
    {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
        {
            VelHost::Print(program.help());
            return VelHost::kExitGood;
        }
        const bool bUnknown = program.get_subcommands().empty() && arguments.size() > 1 && arguments[1][0] != '-';
        const std::string strWhat = bUnknown ? "there is no command \"" + arguments[1] + "\"" : OneLine(error.what());
        VelHost::PrintError(strWhat + " (velhost --help tells more)");
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
