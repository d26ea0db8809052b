#include "tools/velhost/commands/Commands.h"

namespace VelHost
{

void AddCommands(CLI::App& program, int& iExitCode)
{
    AddInstallCommand(program, iExitCode);
    AddUninstallCommand(program, iExitCode);
    AddCapsCommand(program, iExitCode);
    AddSplCapsCommand(program, iExitCode);
    AddConvertCommand(program, iExitCode);
    AddSnapshotCommand(program, iExitCode);
    AddEventCommand(program, iExitCode);
    AddClientCommand(program, iExitCode);
    AddMachineCommand(program, iExitCode);
    AddSettingsCommand(program, iExitCode);
    AddSetCommand(program, iExitCode);
    AddDevmodeCommand(program, iExitCode);
    AddSheetCommand(program, iExitCode);
    AddPrintCommand(program, iExitCode);
    AddLogCommand(program, iExitCode);
    AddDoctorCommand(program, iExitCode);
}

CLI::Option* AddModuleOption(CLI::App& command, std::string& strModule)
{
    return command.add_option("--module", strModule, "The module; VelUI.dll beside this program by default")
        ->type_name("PATH");
}

CLI::Option* AddPrinterOption(CLI::App& command, std::string& strPrinter)
{
    return command.add_option("--printer", strPrinter, "The printer")->type_name("NAME")->capture_default_str();
}

CLI::Option* AddUserOption(CLI::App& command, std::string& strUser)
{
    return command.add_option("--user", strUser, "Whose message files; the current user's by default")
        ->type_name("NAME");
}

CLI::Option* AddJsonFlag(CLI::App& command, bool& bJson, const char* pszText)
{
    return command.add_flag("--json", bJson, pszText);
}

} // namespace VelHost
