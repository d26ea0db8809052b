#include "state/DataFiles.h"
#include "state/LockedFile.h"
#include "state/StorePaths.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/DevmodeReport.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"

#include <memory>

namespace VelHost
{
namespace
{

struct DevmodeOptions
{
    std::string strFile;
    bool bForget = false;
    bool bJson = false;
};

std::vector<BYTE> RecordOf(const DevmodeOptions& options)
{
    if (!options.strFile.empty())
    {
        return ReadBinaryFile(AbsolutePath(options.strFile));
    }
    std::vector<BYTE> record(sizeof(DEVMODEW));
    if (VelUtility::GetDevDef(reinterpret_cast<DEVMODEW*>(record.data())) != 0)
    {
        throw CommandError("the current user has no stored device mode that can be read");
    }
    return record;
}

/// Deletes the current user's stored record, so that the next default is the module's own again.
int Forget()
{
    wchar_t szPath[VelUtility::kStorePathUnits];
    if (!VelUtility::MakePersonalFilePath(VelUtility::kDevModeFile, szPath))
    {
        throw CommandError("there is no folder for the current user's stored device mode");
    }
    const bool bThere = IsFile(szPath);
    VelUtility::DeleteLocked(szPath);
    if (IsFile(szPath))
    {
        throw CommandError("can't delete " + ToUtf8(szPath));
    }
    Print((bThere ? "deleted " : "there was no ") + ToUtf8(szPath) + "\n");
    return kExitGood;
}

int RunDevmode(const DevmodeOptions& options)
{
    if (options.bForget)
    {
        return Forget();
    }
    const std::vector<BYTE> record = RecordOf(options);
    RequireDevmodeHeader(record, options.strFile);
    const DevmodeReport report = ReadDevmode(record.data(), record.size());
    options.bJson ? PrintJson(DevmodeToJson(report)) : Print(DevmodeTable(report));
    return kExitGood;
}

} // namespace

void AddDevmodeCommand(CommandSyntax& program, int& iExitCode)
{
    CommandSyntax command = program.AddCommand(
        "devmode", "Decodes a device-mode record: a file, or the current user's stored one; or forgets that.");
    const auto pOptions = std::make_shared<DevmodeOptions>();
    const OptionSyntax file = command.AddOption("FILE", pOptions->strFile, "The record's bytes");
    const OptionSyntax stored =
        command.AddFlag("--stored", "The current user's DevMode.dat (without a file the default)");
    stored.Excludes(file);
    command
        .AddFlag("--forget", pOptions->bForget,
                 "Delete the current user's DevMode.dat: what the sheet's OK has stored is forgotten")
        .Excludes(file)
        .Excludes(stored);
    AddJsonFlag(command, pOptions->bJson);
    command.OnRun([pOptions, &iExitCode] { iExitCode = RunDevmode(*pOptions); });
}

} // namespace VelHost
