#include "settings/DriverDevmode.h"
#include "support/module/PrinterInterface.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/CanaryBuffer.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/HostModule.h"
#include "tools/velhost/report/DevmodeReport.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"
#include "tools/velhost/report/Table.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>

namespace VelHost
{
namespace
{

struct ConvertOptions
{
    std::string strModule;
    std::string strPrinter = kDefaultPrinter;
    DWORD dwMode = 0;
    std::string strIn;
    std::string strOut;
    std::optional<WORD> wOutSize;  ///< bytes; dmSize of an output record made for the call
    std::optional<WORD> wOutExtra; ///< bytes; its dmDriverExtra
    std::optional<LONG> lNeeded;   ///< bytes; what *pcbNeeded says before the call
    std::string strSave;
    bool bJson = false;
};

/// What a call did.
struct ConvertResult
{
    BOOL bResult = FALSE;
    DWORD dwLastError = 0;
    LONG lNeededBefore = 0; ///< bytes
    LONG lNeededAfter = 0;  ///< bytes
    size_t cbOverrun = 0;   ///< bytes that were changed behind the output's buffer
};

/// The mode of the default record, with an output of a whole record unless another was asked for.
void UseDefaultMode(ConvertOptions& options)
{
    options.dwMode = CDM_DRIVER_DEFAULT;
    if (options.strOut.empty() && !options.wOutSize && !options.wOutExtra)
    {
        options.wOutSize = kDevmodeSize;
        options.wOutExtra = kDriverExtra;
    }
}

/// Reads a record file; what it declares beyond its end reads as 0.
std::vector<BYTE> ReadRecord(const std::string& strFile)
{
    std::vector<BYTE> record = ReadBinaryFile(AbsolutePath(strFile));
    RequireDevmodeHeader(record, strFile);
    record.resize(std::max(record.size(), DevmodeDeclaredBytes(record.data())));
    return record;
}

/// @return the output record as it is before the call; empty for a call without one.
std::vector<BYTE> OutputRecord(const ConvertOptions& options)
{
    if (!options.strOut.empty())
    {
        return ReadRecord(options.strOut);
    }
    if (!options.wOutSize && !options.wOutExtra)
    {
        return {};
    }
    const WORD wSize = options.wOutSize.value_or(0);
    const WORD wExtra = options.wOutExtra.value_or(0);
    std::vector<BYTE> record(std::max<size_t>(size_t{wSize} + wExtra, kDevmodeHeaderBytes));
    std::memcpy(record.data() + offsetof(DEVMODEW, dmSize), &wSize, sizeof(wSize));
    std::memcpy(record.data() + offsetof(DEVMODEW, dmDriverExtra), &wExtra, sizeof(wExtra));
    return record;
}

/// Copies a record into a watched buffer; none for no record.
std::unique_ptr<CanaryBuffer> BufferOf(const std::vector<BYTE>& record, size_t cbLeast)
{
    if (record.empty())
    {
        return nullptr;
    }
    auto pBuffer = std::make_unique<CanaryBuffer>(std::max(record.size(), cbLeast));
    std::memcpy(pBuffer->Data(), record.data(), record.size());
    return pBuffer;
}

ConvertResult CallConvert(const ConvertOptions& options, CanaryBuffer* pIn, CanaryBuffer* pOut, LONG lNeeded)
{
    const HostModule module(ModulePath(options.strModule));
    auto* const pfnConvert = module.Get<decltype(DrvConvertDevMode)>("DrvConvertDevMode");
    std::wstring strPrinter = FromUtf8(options.strPrinter);
    ConvertResult result;
    result.lNeededBefore = lNeeded;
    result.lNeededAfter = lNeeded;
    SetLastError(ERROR_SUCCESS);
    result.bResult = pfnConvert(strPrinter.data(), pIn == nullptr ? nullptr : reinterpret_cast<DEVMODEW*>(pIn->Data()),
                                pOut == nullptr ? nullptr : reinterpret_cast<DEVMODEW*>(pOut->Data()),
                                &result.lNeededAfter, options.dwMode);
    result.dwLastError = GetLastError();
    result.cbOverrun = pOut == nullptr ? 0 : pOut->OverrunBytes();
    return result;
}

void PrintResult(const ConvertOptions& options, const ConvertResult& result, const CanaryBuffer* pOut)
{
    if (options.bJson)
    {
        Json value;
        value["mode"] = options.dwMode;
        value["result"] = result.bResult;
        value["lastError"] = result.dwLastError;
        value["neededBefore"] = result.lNeededBefore;
        value["neededAfter"] = result.lNeededAfter;
        value["overrunBytes"] = result.cbOverrun;
        value["out"] = pOut == nullptr ? Json() : DevmodeToJson(ReadDevmode(pOut->Data(), pOut->Size()));
        PrintJson(value);
        return;
    }
    Table table({{"item"}, {"value", Table::Align::Right}});
    table.AddRow({"mode", std::to_string(options.dwMode)});
    table.AddRow({"result", std::to_string(result.bResult)});
    table.AddRow({"last error", std::to_string(result.dwLastError)});
    table.AddRow({"*pcbNeeded before", std::to_string(result.lNeededBefore)});
    table.AddRow({"*pcbNeeded after", std::to_string(result.lNeededAfter)});
    table.AddRow({"bytes written behind the room", std::to_string(result.cbOverrun)});
    Print(table.Text());
    if (pOut != nullptr)
    {
        Print("\n" + DevmodeTable(ReadDevmode(pOut->Data(), pOut->Size())));
    }
}

int RunConvert(const ConvertOptions& options)
{
    if (!options.strSave.empty() && options.strOut.empty() && !options.wOutSize && !options.wOutExtra)
    {
        throw UsageError("--save: there is no output record: give --out, or --out-size and --out-extra");
    }
    const std::vector<BYTE> in = options.strIn.empty() ? std::vector<BYTE>() : ReadRecord(options.strIn);
    const std::vector<BYTE> out = OutputRecord(options);
    const LONG lNeeded =
        options.lNeeded.value_or(out.empty() ? 0 : static_cast<LONG>(DevmodeDeclaredBytes(out.data())));
    const auto pIn = BufferOf(in, 0);
    const auto pOut = BufferOf(out, lNeeded > 0 ? static_cast<size_t>(lNeeded) : 0);

    const ConvertResult result = CallConvert(options, pIn.get(), pOut.get(), lNeeded);
    if (!options.strSave.empty())
    {
        WriteBinaryFile(AbsolutePath(options.strSave), pOut->Data(),
                        std::min(pOut->Size(), DevmodeDeclaredBytes(pOut->Data())));
    }
    PrintResult(options, result, pOut.get());
    return result.bResult && result.cbOverrun == 0 ? kExitGood : kExitFailed;
}

} // namespace

void AddConvertCommand(CommandSyntax& program, int& iExitCode)
{
    constexpr LONG kMostNeeded = 16 * 1024 * 1024;
    CommandSyntax command = program.AddCommand(
        "convert", "Calls the module's DrvConvertDevMode with records from files, and prints what it did.\n"
                   "Exit code 1 when it returns 0.");
    const auto pOptions = std::make_shared<ConvertOptions>();
    AddModuleOption(command, pOptions->strModule);
    const OptionSyntax mode =
        command
            .AddOption("--mode", pOptions->dwMode, "1 converts, 2 converts to the oldest form, 4 asks for the default")
            .Type("N");
    const OptionSyntax whole = command.AddFlag("--default", "Ask for the current user's default record, whole");
    whole.Excludes(mode);
    command.AddOption("--in", pOptions->strIn, "The input record; a null pointer without one").Type("FILE");
    const OptionSyntax out =
        command.AddOption("--out", pOptions->strOut, "The output record as it is before the call").Type("FILE");
    command.AddOption("--out-size", pOptions->wOutSize, "Make an output record of zeros with this dmSize")
        .Type("BYTES")
        .Excludes(out);
    command.AddOption("--out-extra", pOptions->wOutExtra, "... and with this dmDriverExtra")
        .Type("BYTES")
        .Excludes(out);
    command
        .AddOption("--room", pOptions->lNeeded,
                   "*pcbNeeded before the call; by default the size that the output record declares")
        .Type("BYTES")
        .Range(-kMostNeeded, kMostNeeded);
    command.AddOption("--save", pOptions->strSave, "Write the output record here").Type("FILE");
    AddPrinterOption(command, pOptions->strPrinter);
    AddJsonFlag(command, pOptions->bJson, "Print JSON instead of tables");
    command.OnRun([pOptions, mode, whole, &iExitCode] {
        if (whole.IsGiven())
        {
            UseDefaultMode(*pOptions);
        }
        else if (!mode.IsGiven())
        {
            throw UsageError("--mode or --default is required");
        }
        iExitCode = RunConvert(*pOptions);
    });
}

} // namespace VelHost
