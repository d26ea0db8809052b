#pragma once
/// The program's commands, each in a file of its name. A function adds one command with its options to the program;
/// when the command is chosen it runs and stores its exit code. A command that can't do its work throws CommandError.

#include "tools/velhost/commands/Syntax.h"

#include <string>

namespace VelHost
{

/// The name of the printer that commands work with when none is given.
inline constexpr char kDefaultPrinter[] = "VelPrinter";

/// Exit codes of the program.
enum ExitCode : int
{
    kExitGood = 0,
    kExitFailed = 1,
    kExitUsage = 2,
    kExitFindings = 1,     ///< of doctor: something is wrong
    kExitCouldNotLook = 2, ///< of doctor: nothing was found, but not all could be looked at
};

/// Adds all commands, in the order in which help lists them.
/// @param iExitCode outlives the program object; written when a command has run.
void AddCommands(CommandSyntax& program, int& iExitCode);

void AddInstallCommand(CommandSyntax& program, int& iExitCode);
void AddUninstallCommand(CommandSyntax& program, int& iExitCode);
void AddCapsCommand(CommandSyntax& program, int& iExitCode);
void AddSplCapsCommand(CommandSyntax& program, int& iExitCode);
void AddConvertCommand(CommandSyntax& program, int& iExitCode);
void AddSnapshotCommand(CommandSyntax& program, int& iExitCode);
void AddEventCommand(CommandSyntax& program, int& iExitCode);
void AddClientCommand(CommandSyntax& program, int& iExitCode);
void AddMachineCommand(CommandSyntax& program, int& iExitCode);
void AddSettingsCommand(CommandSyntax& program, int& iExitCode);
void AddSetCommand(CommandSyntax& program, int& iExitCode);
void AddDevmodeCommand(CommandSyntax& program, int& iExitCode);
void AddSheetCommand(CommandSyntax& program, int& iExitCode);
void AddPrintCommand(CommandSyntax& program, int& iExitCode);
void AddLogCommand(CommandSyntax& program, int& iExitCode);
void AddDoctorCommand(CommandSyntax& program, int& iExitCode);

/// Adds what several commands have: --module, which ModulePath understands.
OptionSyntax AddModuleOption(CommandSyntax& command, std::string& strModule);
/// Adds --printer, with what the text says as its default.
OptionSyntax AddPrinterOption(CommandSyntax& command, std::string& strPrinter);
/// Adds --user, whose message files a command works with.
OptionSyntax AddUserOption(CommandSyntax& command, std::string& strUser);
/// Adds --json.
OptionSyntax AddJsonFlag(CommandSyntax& command, bool& bJson, const char* pszText = "Print JSON instead of a table");

} // namespace VelHost
