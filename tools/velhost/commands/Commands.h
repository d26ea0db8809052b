#pragma once
/// The program's commands. Each function adds one command with its options to the program; when the command is chosen
/// it runs and stores its exit code. A command that can't do its work throws CommandError.

#include <CLI/CLI.hpp>

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
};

/// @param iExitCode outlives the program object; written when the command has run.
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
void AddLogCommand(CLI::App& program, int& iExitCode);
void AddSheetCommand(CLI::App& program, int& iExitCode);

} // namespace VelHost
