#pragma once
/// The program's commands, each in a file of its name. A function adds one command with its options to the program;
/// when the command is chosen it runs and stores its exit code. A command that can't do its work throws CommandError.

#include <CLI/CLI.hpp>

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
void AddCommands(CLI::App& program, int& iExitCode);

void AddInstallCommand(CLI::App& program, int& iExitCode);
void AddUninstallCommand(CLI::App& program, int& iExitCode);
void AddCapsCommand(CLI::App& program, int& iExitCode);
void AddSplCapsCommand(CLI::App& program, int& iExitCode);
void AddConvertCommand(CLI::App& program, int& iExitCode);
void AddSnapshotCommand(CLI::App& program, int& iExitCode);
void AddEventCommand(CLI::App& program, int& iExitCode);
void AddClientCommand(CLI::App& program, int& iExitCode);
void AddMachineCommand(CLI::App& program, int& iExitCode);
void AddSettingsCommand(CLI::App& program, int& iExitCode);
void AddSetCommand(CLI::App& program, int& iExitCode);
void AddDevmodeCommand(CLI::App& program, int& iExitCode);
void AddSheetCommand(CLI::App& program, int& iExitCode);
void AddPrintCommand(CLI::App& program, int& iExitCode);
void AddLogCommand(CLI::App& program, int& iExitCode);
void AddDoctorCommand(CLI::App& program, int& iExitCode);

/// Adds what several commands have: --module, which ModulePath understands.
CLI::Option* AddModuleOption(CLI::App& command, std::string& strModule);
/// Adds --printer, with what the text says as its default.
CLI::Option* AddPrinterOption(CLI::App& command, std::string& strPrinter);
/// Adds --user, whose message files a command works with.
CLI::Option* AddUserOption(CLI::App& command, std::string& strUser);
/// Adds --json.
CLI::Option* AddJsonFlag(CLI::App& command, bool& bJson, const char* pszText = "Print JSON instead of a table");

} // namespace VelHost
