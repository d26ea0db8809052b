#include "support/module/PrinterInterface.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/HostModule.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"

#include <map>
#include <memory>

namespace VelHost
{
namespace
{

const std::map<std::string, int> kEventNames = {
    {"configuration-change", PRINTER_EVENT_CONFIGURATION_CHANGE},
    {"add-connection", PRINTER_EVENT_ADD_CONNECTION},
    {"delete-connection", PRINTER_EVENT_DELETE_CONNECTION},
    {"initialize", PRINTER_EVENT_INITIALIZE},
    {"delete", PRINTER_EVENT_DELETE},
    {"cache-refresh", PRINTER_EVENT_CACHE_REFRESH},
    {"cache-delete", PRINTER_EVENT_CACHE_DELETE},
    {"attributes-changed", PRINTER_EVENT_ATTRIBUTES_CHANGED},
};

struct EventOptions
{
    std::string strModule;
    std::string strPrinter = kDefaultPrinter;
    int iEvent = 0;
    DWORD dwFlags = 0;
    bool bJson = false;
};

int RunEvent(const EventOptions& options)
{
    const HostModule module(ModulePath(options.strModule));
    auto* const pfnEvent = module.Get<decltype(DrvPrinterEvent)>("DrvPrinterEvent");
    std::wstring strPrinter = FromUtf8(options.strPrinter);
    const BOOL bResult = pfnEvent(strPrinter.data(), options.iEvent, options.dwFlags, 0);
    ItemReport report;
    report.Add("event", options.iEvent);
    report.Add("printer", options.strPrinter);
    report.Add("result", bResult);
    report.PrintOut(options.bJson);
    return bResult ? kExitGood : kExitFailed;
}

} // namespace

void AddEventCommand(CommandSyntax& program, int& iExitCode)
{
    std::string strNames;
    for (const auto& entry : kEventNames)
    {
        strNames += (strNames.empty() ? "" : ", ") + entry.first;
    }
    CommandSyntax command = program.AddCommand("event", "Calls the module's DrvPrinterEvent once.");
    const auto pOptions = std::make_shared<EventOptions>();
    command.AddOption("NAME", pOptions->iEvent, "The event, by number or as one of " + strNames)
        .Required()
        .Names(kEventNames);
    AddModuleOption(command, pOptions->strModule);
    AddPrinterOption(command, pOptions->strPrinter);
    command.AddOption("--flags", pOptions->dwFlags, "The event's flags; 1 forbids windows").Type("N");
    AddJsonFlag(command, pOptions->bJson);
    command.OnRun([pOptions, &iExitCode] { iExitCode = RunEvent(*pOptions); });
}

} // namespace VelHost
