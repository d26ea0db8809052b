#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/CapsQuery.h"
#include "tools/velhost/host/GuardedRoom.h"
#include "tools/velhost/host/HostModule.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Utf8.h"

#include <algorithm>
#include <memory>

namespace VelHost
{
namespace
{

struct CapsOptions
{
    std::string strModule;
    std::string strPrinter = kDefaultPrinter;
    bool bModule = false;
    bool bJson = false;
};

struct SplCapsOptions
{
    std::string strModule;
    std::string strPrinter = kDefaultPrinter;
    WORD wCode = DC_PAPERNAMES;
    DWORD cchRoom = 0;
    bool bNullRoom = false;
    bool bJson = false;
};

/// The module's DrvDeviceCapabilities as the one that answers.
/// @param module, strPrinter borrowed for the life of the result.
AskCaps ModuleCaps(const HostModule& module, std::wstring& strPrinter)
{
    auto* const pfnCaps = module.Get<decltype(DrvDeviceCapabilities)>("DrvDeviceCapabilities");
    return [pfnCaps, &strPrinter](WORD wCode, void* pvRoom) {
        return pfnCaps(nullptr, strPrinter.data(), wCode, pvRoom, nullptr);
    };
}

int PrintCaps(const CapsOptions& options, const char* pszAsked, const std::vector<CapsAnswer>& answers)
{
    if (options.bJson)
    {
        Json value;
        value["printer"] = options.strPrinter;
        value["asked"] = pszAsked;
        value["capabilities"] = Json::array();
        for (const CapsAnswer& answer : answers)
        {
            value["capabilities"].push_back(CapsToJson(answer));
        }
        PrintJson(value);
    }
    else
    {
        Print(CapsTable(answers));
    }
    const bool bOverrun =
        std::any_of(answers.begin(), answers.end(), [](const CapsAnswer& answer) { return answer.cbOverrun != 0; });
    return bOverrun ? kExitFailed : kExitGood;
}

int RunCaps(const CapsOptions& options)
{
    std::wstring strPrinter = FromUtf8(options.strPrinter);
    if (!options.bModule)
    {
        return PrintCaps(options, "spooler", QueryAllCaps(SpoolerCaps(strPrinter)));
    }
    const HostModule module(ModulePath(options.strModule));
    return PrintCaps(options, "module", QueryAllCaps(ModuleCaps(module, strPrinter)));
}

/// Calls DrvSplDeviceCaps once, as the spooler does.
CapsAnswer AskSplCaps(const HostModule& module, const SplCapsOptions& options)
{
    auto* const pfnCaps = module.Get<decltype(DrvSplDeviceCaps)>("DrvSplDeviceCaps");
    std::wstring strPrinter = FromUtf8(options.strPrinter);
    const GuardedRoom room(size_t{options.cchRoom} * sizeof(wchar_t));

    CapsAnswer answer;
    answer.code = FindCapsCode(options.wCode);
    answer.dwAnswer = pfnCaps(nullptr, strPrinter.data(), options.wCode, options.bNullRoom ? nullptr : room.Data(),
                              options.cchRoom, nullptr);
    answer.dwFillAnswer = answer.dwAnswer;
    answer.cbOverrun = room.OverrunBytes();
    if (answer.cbOverrun != 0)
    {
        answer.strNote = "wrote " + std::to_string(answer.cbOverrun) + " bytes behind the room";
    }
    const size_t cbEntry = EntryBytes(answer.code.form);
    if (!answer.IsRefused() && !options.bNullRoom && cbEntry != 0)
    {
        const size_t entryCount = std::min<size_t>(answer.dwAnswer, room.Size() / cbEntry);
        answer.entries.assign(room.Data(), room.Data() + entryCount * cbEntry);
    }
    return answer;
}

int RunSplCaps(const SplCapsOptions& options)
{
    // The platform finds the entry point by this ordinal.
    constexpr WORD kSplDeviceCapsOrdinal = 254;
    const HostModule module(ModulePath(options.strModule));
    const bool bOrdinal = module.Find("DrvSplDeviceCaps") != nullptr &&
                          module.Find("DrvSplDeviceCaps") == module.FindOrdinal(kSplDeviceCapsOrdinal);
    const CapsAnswer answer = AskSplCaps(module, options);
    if (options.bJson)
    {
        Json value = CapsToJson(answer);
        value["room"] = options.bNullRoom ? Json() : Json(options.cchRoom);
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

void AddCapsCommand(CLI::App& program, int& iExitCode)
{
    CLI::App* const pCommand = program.add_subcommand(
        "caps", "Asks every device capability, codes 0 to 36, and prints the answers with their entries.\n"
                "A list is asked for its count and then with exact, guarded room for its entries.");
    const auto pOptions = std::make_shared<CapsOptions>();
    CLI::Option* const pSpooler =
        pCommand->add_flag("--spooler", "Ask the platform's spooler through DeviceCapabilitiesW (this is the default)");
    pCommand->add_option("--module", pOptions->strModule, "Load this module and ask its DrvDeviceCapabilities")
        ->type_name("PATH")
        ->excludes(pSpooler)
        ->each([pOptions](const std::string&) { pOptions->bModule = true; });
    pCommand->add_option("--printer", pOptions->strPrinter, "The printer")->type_name("NAME")->capture_default_str();
    pCommand->add_flag("--json", pOptions->bJson, "Print JSON instead of a table");
    pCommand->callback([pOptions, &iExitCode] { iExitCode = RunCaps(*pOptions); });
}

void AddSplCapsCommand(CLI::App& program, int& iExitCode)
{
    CLI::App* const pCommand = program.add_subcommand(
        "splcaps", "Calls the module's DrvSplDeviceCaps once. Exit code 1 when the question is refused.");
    const auto pOptions = std::make_shared<SplCapsOptions>();
    pCommand->add_option("--module", pOptions->strModule, "The module; VelUI.dll beside this program by default")
        ->type_name("PATH");
    pCommand
        ->add_option("--code", pOptions->wCode, "The capability; 16 (paper names) and 29 (media ready) are answered")
        ->type_name("N")
        ->required();
    pCommand->add_option("--room", pOptions->cchRoom, "Room for the names, in wide characters")
        ->type_name("CHARS")
        ->check(CLI::Range(0, 16 * 1024 * 1024))
        ->required();
    pCommand->add_flag("--null", pOptions->bNullRoom, "Pass no room at all, whatever --room says");
    pCommand->add_option("--printer", pOptions->strPrinter, "The printer")->type_name("NAME")->capture_default_str();
    pCommand->add_flag("--json", pOptions->bJson, "Print JSON instead of a table");
    pCommand->callback([pOptions, &iExitCode] { iExitCode = RunSplCaps(*pOptions); });
}

} // namespace VelHost
