#include "tools/velhost/commands/Commands.h"

namespace VelHost
{

void AddCommands(CommandSyntax& program, int& iExitCode)
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

OptionSyntax AddModuleOption(CommandSyntax& command, std::string& strModule)
{
    return command.AddOption("--module", strModule, "The module; VelUI.dll beside this program by default")
        .Type("PATH");
}

OptionSyntax AddPrinterOption(CommandSyntax& command, std::string& strPrinter)
{
    return command.AddOption("--printer", strPrinter, "The printer").Type("NAME").ShowDefault();
}

OptionSyntax AddUserOption(CommandSyntax& command, std::string& strUser)
{
    return command.AddOption("--user", strUser, "Whose message files; the current user's by default").Type("NAME");
}

OptionSyntax AddJsonFlag(CommandSyntax& command, bool& bJson, const char* pszText)
{
    return command.AddFlag("--json", bJson, pszText);
}

} // namespace VelHost
