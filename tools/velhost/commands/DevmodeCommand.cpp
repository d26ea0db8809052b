#include "state/UserRecords.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/BinaryFile.h"
#include "tools/velhost/host/HostModule.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/DevmodeReport.h"
#include "tools/velhost/report/Utf8.h"

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
        return ReadBinaryFile(FullPath(FromUtf8(options.strFile)));
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
    if (record.size() < kDevmodeHeaderBytes)
    {
        throw CommandError(options.strFile + " has " + std::to_string(record.size()) +
                           " bytes; a record's header has " + std::to_string(kDevmodeHeaderBytes));
    }
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
    pCommand->add_flag("--json", pOptions->bJson, "Print JSON instead of a table");
    pCommand->callback([pOptions, &iExitCode] { iExitCode = RunDevmode(*pOptions); });
}

} // namespace VelHost
