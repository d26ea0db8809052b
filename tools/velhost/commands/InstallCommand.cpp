#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/HostModule.h"
#include "tools/velhost/host/Spooler.h"
#include "tools/velhost/install/ClientFolders.h"
#include "tools/velhost/install/DriverSetup.h"
#include "tools/velhost/install/LogSetup.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"
#include "tools/velhost/report/Table.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace VelHost
{
namespace
{

struct InstallOptions
{
    std::string strModule;
    std::string strRoot = "C:\\Program Files\\Vel-soft\\Client";
    std::string strPrinter = kDefaultPrinter;
    std::string strPort = "FILE:";
    std::string strSample;
    std::string strDriver;
    std::string strData;
    bool bForce = false;
    bool bLogging = false;
    bool bJson = false;
};

/// What was done, in words.
struct InstallReport
{
    DriverReport driver;
    const char* pszPrinter = "";
    const char* pszConfig = "";
    const char* pszLogConfig = ""; ///< empty when none was asked for
};

/// The calls that the spooler makes without asking whether they are there.
const char* const kNeededExports[] = {"DrvDeviceCapabilities", "DrvDocumentPropertySheets"};

/// Throws CommandError when the spooler would crash on the module.
void CheckModule(const std::wstring& strModule)
{
    const HostModule module(strModule, HostModule::Purpose::Examine);
    for (const char* pszExport : kNeededExports)
    {
        if (module.Find(pszExport) == nullptr)
        {
            throw CommandError(ToUtf8(strModule) + " is no printer interface module: it does not export " + pszExport);
        }
    }
}

/// Throws CommandError when a printer of that name belongs to another driver.
void CheckPrinterName(const std::wstring& strPrinter)
{
    constexpr size_t kMostNameUnits = 220;
    if (strPrinter.empty() || strPrinter.size() > kMostNameUnits ||
        strPrinter.find_first_of(L"\\,!") != std::wstring::npos)
    {
        throw CommandError("\"" + ToUtf8(strPrinter) + "\" can't be a printer's name");
    }
    if (IsPrinterInstalled(strPrinter))
    {
        const PrinterDescription description = DescribePrinter(strPrinter);
        if (description.strDriver != kDriverName)
        {
            throw CommandError("the printer \"" + ToUtf8(strPrinter) + "\" is there already, with the driver \"" +
                               ToUtf8(description.strDriver) + "\"");
        }
    }
}

void CheckPort(const std::wstring& strPort)
{
    const std::vector<std::wstring> ports = PortNames();
    const bool bThere = std::any_of(ports.begin(), ports.end(),
                                    [&strPort](const std::wstring& strOther) { return IsSameName(strOther, strPort); });
    if (!bThere)
    {
        std::string strNames;
        for (const std::wstring& strOther : ports)
        {
            strNames += (strNames.empty() ? "" : ", ") + ToUtf8(strOther);
        }
        throw CommandError("there is no port \"" + ToUtf8(strPort) + "\"; there are: " + strNames);
    }
}

/// @return the main number of Wine's version; 0 under Windows.
int WineVersion()
{
    const auto pfnVersion = reinterpret_cast<const char*(CDECL*)()>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version")));
    return pfnVersion == nullptr ? 0 : std::atoi(pfnVersion());
}

/// @return the print processor for the driver that renders. Newer releases of Wine hand their PostScript driver pages
/// as EMF files, which the print processor of its own name takes and "winprint" refuses; Wine 8 has that one already
/// and can't finish a job with it.
std::wstring PrintProcessorOf(const std::wstring& strRenderingDriver)
{
    const std::wstring strFile = NameInFolder(strRenderingDriver);
    const std::wstring strName = strFile.substr(0, strFile.rfind(L'.'));
    return WineVersion() >= 9 && HasPrintProcessor(strName) ? strName : L"winprint";
}

void AddPrinterOnce(std::wstring strPrinter, std::wstring strPort, std::wstring strProcessor, InstallReport& report)
{
    if (IsPrinterInstalled(strPrinter))
    {
        report.pszPrinter = "there already";
        return;
    }
    std::wstring strDriver = kDriverName;
    std::wstring strDatatype = L"RAW";
    PRINTER_INFO_2W info = {};
    info.pPrinterName = strPrinter.data();
    info.pPortName = strPort.data();
    info.pDriverName = strDriver.data();
    info.pPrintProcessor = strProcessor.data();
    info.pDatatype = strDatatype.data();
    const PrinterHandle printer(AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&info)));
    if (printer.Get() == nullptr)
    {
        ThrowCommandError("can't add the printer \"" + ToUtf8(strPrinter) + "\"");
    }
    report.pszPrinter = "added";
}

/// Makes the printer's default record say that pages are printed at their own size, where it says nothing. The module's
/// records have no scale. Wine's PostScript driver starts from the printer's default record, and with a scale of 0 it
/// tells applications of 0 dots per inch: their texts come out as small as dust, or they divide by it.
void SetPrinterScale(const std::wstring& strPrinter)
{
    constexpr short kOwnSize = 100; // per cent
    const PrinterHandle printer = OpenInstalledPrinter(strPrinter, PRINTER_ALL_ACCESS);
    std::vector<BYTE> record = PrinterDefaultRecord(printer);
    auto* const pRecord = reinterpret_cast<DEVMODEW*>(record.data());
    if (record.size() < sizeof(DEVMODEW) || pRecord->dmScale != 0)
    {
        return;
    }
    pRecord->dmScale = kOwnSize;
    PRINTER_INFO_8W info = {pRecord};
    if (!SetPrinterW(printer.Get(), 8, reinterpret_cast<BYTE*>(&info), 0))
    {
        ThrowCommandError("can't set the default record of the printer \"" + ToUtf8(strPrinter) + "\"");
    }
}

/// Copies the sample snapshot, unless there is one and it is to be kept.
void CopySample(const std::wstring& strSample, const std::wstring& strConfig, bool bForce, InstallRecord& record,
                InstallReport& report)
{
    const bool bThere = IsFile(strConfig);
    if (bThere && !bForce)
    {
        report.pszConfig = "there already, kept";
        return;
    }
    if (!CopyFileW(strSample.c_str(), strConfig.c_str(), FALSE))
    {
        ThrowCommandError("can't copy " + ToUtf8(strSample) + " to " + ToUtf8(strConfig));
    }
    SetFileAttributesW(strConfig.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (!bThere)
    {
        AddOnce(record.files, strConfig);
    }
    report.pszConfig = bThere ? "overwritten" : "copied";
}

/// Installs the sample log configuration, unless there is one and it is to be kept.
void InstallLogConfig(const std::vector<ClientFolder>& folders, bool bForce, InstallRecord& record,
                      InstallReport& report)
{
    const std::wstring strConfig = PathIn(FolderOf(folders, L"InstallDir"), kLogConfigName);
    const bool bThere = IsFile(strConfig);
    if (bThere && !bForce)
    {
        report.pszLogConfig = "there already, kept";
        return;
    }
    WriteLogConfig(BesideProgram(kSampleLogConfig), strConfig, FolderOf(folders, L"LogDir"));
    if (!bThere)
    {
        AddOnce(record.files, strConfig);
        AddOnce(record.files, PathIn(FolderOf(folders, L"InstallDir"), kLogConfigOffName));
    }
    report.pszLogConfig = bThere ? "overwritten" : "installed";
}

void PrintReport(const InstallOptions& options, const InstallReport& report, const std::vector<ClientFolder>& folders,
                 const std::wstring& strConfig)
{
    if (options.bJson)
    {
        Json value;
        value["driver"] = {{"name", ToUtf8(kDriverName)},
                           {"file", ToUtf8(report.driver.strModule)},
                           {"state", report.driver.pszState}};
        value["rendering"] = {{"driver", ToUtf8(report.driver.strDriver)}, {"data", ToUtf8(report.driver.strData)}};
        value["leftOvers"] = Json::array();
        for (const auto& [strFile, pszState] : report.driver.leftOvers)
        {
            value["leftOvers"].push_back({{"file", ToUtf8(strFile)}, {"state", pszState}});
        }
        value["printer"] = {{"name", options.strPrinter}, {"state", report.pszPrinter}};
        for (const ClientFolder& folder : folders)
        {
            value["folders"][ToUtf8(folder.strValue)] = ToUtf8(folder.strPath);
        }
        value["config"] = {{"file", ToUtf8(strConfig)}, {"state", report.pszConfig}};
        value["logConfig"] = *report.pszLogConfig == '\0' ? Json() : Json(report.pszLogConfig);
        PrintJson(value);
        return;
    }
    Table table({{"item"}, {"value"}, {"state"}});
    table.AddRow({"driver", ToUtf8(kDriverName), report.driver.pszState});
    table.AddRow({"driver file", ToUtf8(report.driver.strModule), "copied"});
    table.AddRow({"rendering", ToUtf8(report.driver.strDriver), "registered"});
    table.AddRow({"its data", ToUtf8(report.driver.strData), "copied"});
    for (const auto& [strFile, pszState] : report.driver.leftOvers)
    {
        table.AddRow({"older file", ToUtf8(strFile), pszState});
    }
    table.AddRow({"printer", options.strPrinter, report.pszPrinter});
    for (const ClientFolder& folder : folders)
    {
        table.AddRow({ToUtf8(folder.strValue), ToUtf8(folder.strPath), "set"});
    }
    table.AddRow({"snapshot", ToUtf8(strConfig), report.pszConfig});
    if (*report.pszLogConfig != '\0')
    {
        table.AddRow(
            {"logging", ToUtf8(PathIn(FolderOf(folders, L"InstallDir"), kLogConfigName)), report.pszLogConfig});
    }
    Print(table.Text());
}

int RunInstall(const InstallOptions& options)
{
    // All that can be checked comes before the first change.
    const std::wstring strModule = ModulePath(options.strModule);
    CheckModule(strModule);
    const RenderingHalf rendering = FindRenderingHalf(options.strDriver, options.strData, strModule);
    const std::wstring strPrinter = FromUtf8(options.strPrinter);
    CheckPrinterName(strPrinter);
    const std::wstring strPort = FromUtf8(options.strPort);
    CheckPort(strPort);
    const std::vector<ClientFolder> folders = ClientFolders(AbsolutePath(options.strRoot));
    const std::wstring strSample =
        options.strSample.empty() ? BesideProgram(L"sample\\Config.ini") : AbsolutePath(options.strSample);
    if (!IsFile(strSample))
    {
        throw CommandError("there is no sample file " + ToUtf8(strSample));
    }

    InstallRecord record = InstallRecord::Load();
    InstallReport report;
    // The folders come first: the spooler calls the module while it adds the printer.
    MakeClientFolders(folders, record);
    record.Save();
    const std::wstring strConfig = PathIn(FolderOf(folders, L"TempDir"), L"Config.ini");
    CopySample(strSample, strConfig, options.bForce, record, report);
    if (options.bLogging)
    {
        InstallLogConfig(folders, options.bForce, record, report);
    }
    record.Save();
    report.driver = RegisterDriver(strModule, rendering, record);
    AddPrinterOnce(strPrinter, strPort, PrintProcessorOf(rendering.strDriver), report);
    AddOnce(record.printers, strPrinter);
    record.Save();
    SetPrinterScale(strPrinter);
    PrintReport(options, report, folders, strConfig);
    return kExitGood;
}

} // namespace

void AddInstallCommand(CommandSyntax& program, int& iExitCode)
{
    CommandSyntax command = program.AddCommand(
        "install", "Registers a printer driver with the module as its user-interface half, adds a printer with it,\n"
                   "makes the client's folders with their registry values, and copies a sample snapshot. May be run\n"
                   "again.");
    const auto pOptions = std::make_shared<InstallOptions>();
    AddModuleOption(command, pOptions->strModule);
    command.AddOption("--root", pOptions->strRoot, "The client's folder, which gets Data, Temp and Log")
        .Type("DIR")
        .ShowDefault();
    AddPrinterOption(command, pOptions->strPrinter);
    command.AddOption("--port", pOptions->strPort, "The printer's port").Type("PORT").ShowDefault();
    command
        .AddOption("--sample", pOptions->strSample,
                   "The snapshot to copy; sample\\Config.ini beside this program by default")
        .Type("FILE");
    command
        .AddOption("--driver", pOptions->strDriver,
                   "What renders the pages, with --data; Wine's PostScript driver by default")
        .Type("FILE");
    command.AddOption("--data", pOptions->strData, "Its data file; sample\\VelPrinter.ppd by default").Type("FILE");
    command.AddFlag("--force", pOptions->bForce, "Overwrite a snapshot, and a log configuration, that is there");
    command.AddFlag("--logging", pOptions->bLogging, "Install the sample log configuration: every call is logged");
    AddJsonFlag(command, pOptions->bJson);
    command.OnRun([pOptions, &iExitCode] { iExitCode = RunInstall(*pOptions); });
}

} // namespace VelHost
