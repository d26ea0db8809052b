#include "settings/DriverDevmode.h"
#include "support/module/PrinterInterface.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/HostModule.h"
#include "tools/velhost/host/Spooler.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/DevmodeReport.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"
#include "tools/velhost/sheet/SheetClerk.h"
#include "tools/velhost/sheet/SheetLibrary.h"

#include <memory>
#include <optional>

namespace VelHost
{
namespace
{

struct SheetOptions
{
    std::string strKind; ///< "document" or "device"
    std::string strModule;
    std::string strPrinter = kDefaultPrinter;
    bool bSpooler = false;
    std::string strIn;
    std::string strSave;
    std::string strPictures;
    std::string strPress;
    SheetChoices choices;
    bool bJson = false;
};

/// What a sheet's run shows.
struct SheetReport
{
    std::vector<BYTE> before; ///< the record that went in; empty for the device sheet
    std::vector<BYTE> after;  ///< the one that came out
    Json result;              ///< further figures
    bool bGood = false;
};

/// A clerk where one is wanted: for choices, for pictures, or for a button.
std::unique_ptr<SheetClerk> HireClerk(const SheetOptions& options)
{
    if (options.strPictures.empty() && options.strPress.empty() && options.choices.IsEmpty())
    {
        return nullptr;
    }
    const std::wstring strFolder = options.strPictures.empty() ? std::wstring() : AbsolutePath(options.strPictures);
    if (!strFolder.empty() && !IsFolder(strFolder))
    {
        throw CommandError("there is no folder " + ToUtf8(strFolder));
    }
    return std::make_unique<SheetClerk>(SheetClerk::Orders{
        strFolder, static_cast<WPARAM>(options.strPress == "ok" ? PSBTN_OK : PSBTN_CANCEL), options.choices});
}

DEVMODEW* AsDevmode(std::vector<BYTE>& record)
{
    return reinterpret_cast<DEVMODEW*>(record.data());
}

/// A record from a file as input, lengthened to a whole one at least.
std::optional<std::vector<BYTE>> InputFile(const SheetOptions& options)
{
    if (options.strIn.empty())
    {
        return std::nullopt;
    }
    std::vector<BYTE> record = ReadBinaryFile(AbsolutePath(options.strIn));
    record.resize(std::max<size_t>(record.size(), kRecordSize));
    return record;
}

/// Asks for the size and then the record, as an application does before it shows the sheet.
std::vector<BYTE> AskRecord(SheetLibrary::SheetFunction* pfnSheet, std::wstring& strPrinter)
{
    DOCUMENTPROPERTYHEADER header = {};
    header.cbSize = sizeof(header);
    header.pszPrinterName = strPrinter.data();
    const LONG lSize = pfnSheet(nullptr, reinterpret_cast<LPARAM>(&header));
    if (lSize < static_cast<LONG>(sizeof(DEVMODEW)))
    {
        throw CommandError("the module tells no record size: " + std::to_string(lSize));
    }
    std::vector<BYTE> record = EmptyRecord(lSize);
    header.pdmOut = AsDevmode(record);
    header.fMode = DM_OUT_BUFFER;
    if (const LONG lReturn = pfnSheet(nullptr, reinterpret_cast<LPARAM>(&header)); lReturn < 0)
    {
        throw CommandError("the module fills no record: " + std::to_string(lReturn));
    }
    return record;
}

void AddOutcome(Json& result, const SheetOutcome& outcome)
{
    result["init"] = outcome.lInitReturn;
    result["sheet"] = outcome.iSheetReturn;
    result["deliveries"] = outcome.uiDeliveries;
    result["deliveryReturn"] = outcome.lDeliveryReturn;
    result["result"] = outcome.ulResult;
    result["refusedFunctions"] = outcome.refusals;
}

SheetReport HostDocument(const SheetOptions& options, const HostModule& module)
{
    auto* const pfnSheet = module.Get<decltype(DrvDocumentPropertySheets)>("DrvDocumentPropertySheets");
    std::wstring strPrinter = FromUtf8(options.strPrinter);
    SheetReport report;
    std::optional<std::vector<BYTE>> input = InputFile(options);
    report.before = input ? *input : AskRecord(pfnSheet, strPrinter);
    report.after = report.before;
    std::vector<BYTE> in = report.before;

    DOCUMENTPROPERTYHEADER header = {};
    header.cbSize = sizeof(header);
    header.pszPrinterName = strPrinter.data();
    header.pdmIn = AsDevmode(in);
    header.pdmOut = AsDevmode(report.after);
    header.cbOut = static_cast<DWORD>(report.after.size());
    header.fMode = DM_IN_BUFFER | DM_IN_PROMPT | DM_OUT_BUFFER;
    SheetLibrary library(pfnSheet, reinterpret_cast<LPARAM>(&header));
    const SheetOutcome outcome = library.Show(nullptr, strPrinter);
    AddOutcome(report.result, outcome);
    report.bGood = outcome.lInitReturn > 0 && outcome.iSheetReturn >= 0;
    return report;
}

SheetReport HostDevice(const SheetOptions& options, const HostModule& module)
{
    auto* const pfnSheet = module.Get<decltype(DrvDevicePropertySheets)>("DrvDevicePropertySheets");
    std::wstring strPrinter = FromUtf8(options.strPrinter);
    DEVICEPROPERTYHEADER header = {};
    header.cbSize = sizeof(header);
    header.pszPrinterName = strPrinter.data();
    SheetLibrary library(pfnSheet, reinterpret_cast<LPARAM>(&header));
    const SheetOutcome outcome = library.Show(nullptr, strPrinter);
    SheetReport report;
    AddOutcome(report.result, outcome);
    report.bGood = outcome.lInitReturn > 0 && outcome.iSheetReturn >= 0;
    return report;
}

/// Windows' own call, as an application makes it.
SheetReport SpoolDocument(const SheetOptions& options)
{
    std::wstring strPrinter = FromUtf8(options.strPrinter);
    const PrinterHandle printer = OpenInstalledPrinter(strPrinter);
    SheetReport report;
    std::optional<std::vector<BYTE>> input = InputFile(options);
    report.before = input ? *input : UserDefaultRecord(strPrinter);
    report.after = report.before;
    std::vector<BYTE> in = report.before;
    const LONG lReturn = DocumentPropertiesW(nullptr, printer.Get(), strPrinter.data(), AsDevmode(report.after),
                                             AsDevmode(in), DM_IN_BUFFER | DM_IN_PROMPT | DM_OUT_BUFFER);
    report.result["DocumentProperties"] = lReturn;
    report.bGood = lReturn >= 0;
    return report;
}

SheetReport SpoolDevice(const SheetOptions& options)
{
    const PrinterHandle printer = OpenInstalledPrinter(FromUtf8(options.strPrinter));
    SheetReport report;
    report.bGood = PrinterProperties(nullptr, printer.Get()) != FALSE;
    report.result["PrinterProperties"] = report.bGood;
    return report;
}

SheetReport ShowSheet(const SheetOptions& options)
{
    if (options.bSpooler)
    {
        return options.strKind == "document" ? SpoolDocument(options) : SpoolDevice(options);
    }
    const HostModule module(ModulePath(options.strModule));
    return options.strKind == "document" ? HostDocument(options, module) : HostDevice(options, module);
}

void PrintReport(const SheetOptions& options, const SheetReport& report, const std::vector<std::wstring>& pictures)
{
    const auto readRecord = [](const std::vector<BYTE>& record) { return ReadDevmode(record.data(), record.size()); };
    if (options.bJson)
    {
        Json value = report.result;
        value["before"] = report.before.empty() ? Json() : DevmodeToJson(readRecord(report.before));
        value["after"] = report.after.empty() ? Json() : DevmodeToJson(readRecord(report.after));
        value["pictures"] = Json::array();
        for (const std::wstring& strPicture : pictures)
        {
            value["pictures"].push_back(ToUtf8(strPicture));
        }
        PrintJson(value);
        return;
    }
    if (!report.before.empty())
    {
        Print("the record before\n" + DevmodeTable(readRecord(report.before)) + "\nthe record after\n" +
              DevmodeTable(readRecord(report.after)) + "\n");
    }
    for (const auto& [strName, value] : report.result.items())
    {
        Print(strName + ": " + value.dump() + "\n");
    }
    for (const std::wstring& strPicture : pictures)
    {
        Print("picture: " + ToUtf8(strPicture) + "\n");
    }
}

int RunSheet(const SheetOptions& options)
{
    const std::unique_ptr<SheetClerk> pClerk = HireClerk(options);
    const SheetReport report = ShowSheet(options);
    if (!options.strSave.empty() && !report.after.empty())
    {
        WriteBinaryFile(AbsolutePath(options.strSave), report.after.data(), report.after.size());
    }
    PrintReport(options, report, pClerk ? pClerk->Pictures() : std::vector<std::wstring>());
    if (pClerk && !pClerk->Error().empty())
    {
        throw CommandError(pClerk->Error());
    }
    return report.bGood ? kExitGood : kExitFailed;
}

} // namespace

namespace
{

/// What to choose on the document sheet's first page before it is closed.
void AddChoices(CommandSyntax& command, SheetChoices& choices)
{
    command.AddOption("--paper", choices.strPaper, "Choose this paper, by its name in the list").Type("NAME");
    command.AddOption("--orientation", choices.strOrientation, "Choose portrait or landscape")
        .Type("WORD")
        .OneOf({"portrait", "landscape"});
    command.AddOption("--colour", choices.strColour, "Choose mono or colour").Type("WORD").OneOf({"mono", "colour"});
    command.AddOption("--sides", choices.strSides, "Choose one side, or both, bound at the long or the short edge")
        .Type("WORD")
        .OneOf({"one", "long", "short"});
}

} // namespace

void AddSheetCommand(CommandSyntax& program, int& iExitCode)
{
    CommandSyntax command = program.AddCommand(
        "sheet", "Shows the module's document or device sheet, as the platform's sheet library does, and prints the\n"
                 "record before and after. Exit code 1 when no sheet could be shown.");
    const auto pOptions = std::make_shared<SheetOptions>();
    command.AddOption("KIND", pOptions->strKind, "Which sheet: document or device")
        .Required()
        .OneOf({"document", "device"});
    const OptionSyntax module = AddModuleOption(command, pOptions->strModule);
    command.AddFlag("--spooler", pOptions->bSpooler, "Let the platform's spooler show the installed printer's sheet")
        .Excludes(module);
    AddPrinterOption(command, pOptions->strPrinter);
    command.AddOption("--in", pOptions->strIn, "The document's record; the user's default one without it").Type("FILE");
    command.AddOption("--save", pOptions->strSave, "Write the record that comes out here").Type("FILE");
    command
        .AddOption("--pictures", pOptions->strPictures,
                   "Save a picture of each page in this folder, page1.png and so on, and close the sheet")
        .Type("FOLDER");
    command.AddOption("--press", pOptions->strPress, "Turn to each page once and close the sheet: ok or cancel")
        .Type("BUTTON")
        .OneOf({"ok", "cancel"});
    AddChoices(command, pOptions->choices);
    AddJsonFlag(command, pOptions->bJson, "Print JSON instead of tables");
    command.OnRun([pOptions, &iExitCode] { iExitCode = RunSheet(*pOptions); });
}

} // namespace VelHost
