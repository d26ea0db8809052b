#include "state/DataFiles.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/DevmodeReport.h"
#include "tools/velhost/report/Output.h"

#include <memory>

namespace VelHost
{
namespace
{

struct DevmodeOptions
{
    std::string strFile;
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

int RunDevmode(const DevmodeOptions& options)
{
    const std::vector<BYTE> record = RecordOf(options);
    RequireDevmodeHeader(record, options.strFile);
    const DevmodeReport report = ReadDevmode(record.data(), record.size());
    options.bJson ? PrintJson(DevmodeToJson(report)) : Print(DevmodeTable(report));
    return kExitGood;
}

} // namespace

void AddDevmodeCommand(CLI::App& program, int& iExitCode)
{
    CLI::App* const pCommand =
        program.add_subcommand("devmode", "Decodes a device-mode record: a file, or the current user's stored one.");
    const auto pOptions = std::make_shared<DevmodeOptions>();
    CLI::Option* const pFile = pCommand->add_option("FILE", pOptions->strFile, "The record's bytes");
    CLI::Option* const pStored =
        pCommand->add_flag("--stored", "The current user's DevMode.dat (without a file the default)");
    pStored->excludes(pFile);
    AddJsonFlag(*pCommand, pOptions->bJson);
    pCommand->callback([pOptions, &iExitCode] { iExitCode = RunDevmode(*pOptions); });
}

} // namespace VelHost
