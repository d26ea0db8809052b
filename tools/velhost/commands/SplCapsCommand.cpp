#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/CanaryBuffer.h"
#include "tools/velhost/host/CapsQuery.h"
#include "tools/velhost/host/HostModule.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"

#include <algorithm>
#include <memory>

namespace VelHost
{
namespace
{

struct SplCapsOptions
{
    std::string strModule;
    std::string strPrinter = kDefaultPrinter;
    WORD wCode = DC_PAPERNAMES;
    DWORD cchBuffer = 0; ///< wide characters
    bool bNullBuffer = false;
    bool bJson = false;
};

/// Calls DrvSplDeviceCaps once, as the spooler does.
CapsAnswer AskSplCaps(const HostModule& module, const SplCapsOptions& options)
{
    auto* const pfnCaps = module.Get<decltype(DrvSplDeviceCaps)>("DrvSplDeviceCaps");
    std::wstring strPrinter = FromUtf8(options.strPrinter);
    const CanaryBuffer buffer(size_t{options.cchBuffer} * sizeof(wchar_t));

    CapsAnswer answer;
    answer.code = FindCapsCode(options.wCode);
    answer.dwAnswer = pfnCaps(nullptr, strPrinter.data(), options.wCode, options.bNullBuffer ? nullptr : buffer.Data(),
                              options.cchBuffer, nullptr);
    answer.dwFillAnswer = answer.dwAnswer;
    answer.cbOverrun = buffer.OverrunBytes();
    if (answer.cbOverrun != 0)
    {
        answer.strNote = "wrote " + std::to_string(answer.cbOverrun) + " bytes behind the room";
    }
    const size_t cbEntry = EntryBytes(answer.code.form);
    if (!answer.IsRefused() && !options.bNullBuffer && cbEntry != 0)
    {
        const size_t entryCount = std::min<size_t>(answer.dwAnswer, buffer.Size() / cbEntry);
        answer.entries.assign(buffer.Data(), buffer.Data() + entryCount * cbEntry);
    }
    return answer;
}

int RunSplCaps(const SplCapsOptions& options)
{
    // Windows finds the entry point by this ordinal.
    constexpr WORD kSplDeviceCapsOrdinal = 254;
    const HostModule module(ModulePath(options.strModule));
    const bool bOrdinal = module.Find("DrvSplDeviceCaps") != nullptr &&
                          module.Find("DrvSplDeviceCaps") == module.FindOrdinal(kSplDeviceCapsOrdinal);
    const CapsAnswer answer = AskSplCaps(module, options);
    if (options.bJson)
    {
        Json value = CapsToJson(answer);
        value["room"] = options.bNullBuffer ? Json() : Json(options.cchBuffer);
        value["atOrdinal254"] = bOrdinal;
        PrintJson(value);
    }
    else
    {
        Print(CapsTable({answer}));
        Print(std::string("DrvSplDeviceCaps ") + (bOrdinal ? "has" : "does not have") + " ordinal 254\n");
    }
    return answer.cbOverrun != 0 || answer.IsRefused() ? kExitFailed : kExitGood;
}

} // namespace

void AddSplCapsCommand(CommandSyntax& program, int& iExitCode)
{
    CommandSyntax command = program.AddCommand(
        "splcaps", "Calls the module's DrvSplDeviceCaps once. Exit code 1 when the question is refused.");
    const auto pOptions = std::make_shared<SplCapsOptions>();
    AddModuleOption(command, pOptions->strModule);
    command.AddOption("--code", pOptions->wCode, "The capability; 16 (paper names) and 29 (media ready) are answered")
        .Type("N")
        .Required();
    command.AddOption("--room", pOptions->cchBuffer, "Room for the names, in wide characters")
        .Type("CHARS")
        .Range(0, 16 * 1024 * 1024)
        .Required();
    command.AddFlag("--null", pOptions->bNullBuffer, "Pass no room at all, whatever --room says");
    AddPrinterOption(command, pOptions->strPrinter);
    AddJsonFlag(command, pOptions->bJson);
    command.OnRun([pOptions, &iExitCode] { iExitCode = RunSplCaps(*pOptions); });
}

} // namespace VelHost
