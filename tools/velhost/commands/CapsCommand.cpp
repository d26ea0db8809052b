#include "tools/velhost/commands/Commands.h"
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

struct CapsOptions
{
    std::string strModule;
    std::string strPrinter = kDefaultPrinter;
    bool bModule = false;
    bool bJson = false;
};

/// The module's DrvDeviceCapabilities as the one that answers.
/// @param module, strPrinter borrowed for the life of the result.
AskCaps ModuleCaps(const HostModule& module, std::wstring& strPrinter)
{
    auto* const pfnCaps = module.Get<decltype(DrvDeviceCapabilities)>("DrvDeviceCapabilities");
    return [pfnCaps, &strPrinter](WORD wCode, void* pvBuffer) {
        return pfnCaps(nullptr, strPrinter.data(), wCode, pvBuffer, nullptr);
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

} // namespace

void AddCapsCommand(CommandSyntax& program, int& iExitCode)
{
    CommandSyntax command = program.AddCommand(
        "caps", "Asks every device capability, codes 0 to 36, and prints the answers with their entries.\n"
                "A list is asked for its count and then with exact, guarded room for its entries.");
    const auto pOptions = std::make_shared<CapsOptions>();
    const OptionSyntax spooler =
        command.AddFlag("--spooler", "Ask the platform's spooler through DeviceCapabilitiesW (this is the default)");
    const OptionSyntax module =
        command.AddOption("--module", pOptions->strModule, "Load this module and ask its DrvDeviceCapabilities")
            .Type("PATH")
            .Excludes(spooler);
    AddPrinterOption(command, pOptions->strPrinter);
    AddJsonFlag(command, pOptions->bJson);
    command.OnRun([pOptions, module, &iExitCode] {
        pOptions->bModule = module.IsGiven();
        iExitCode = RunCaps(*pOptions);
    });
}

} // namespace VelHost
