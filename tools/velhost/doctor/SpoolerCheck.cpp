#include "tools/velhost/doctor/SpoolerCheck.h"

#include "settings/DriverDevmode.h"
#include "state/CapabilityTable.h"
#include "support/ProcessUtilities.h"
#include "tools/velhost/doctor/CapsCheck.h"
#include "tools/velhost/host/CapsQuery.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/HostModule.h"
#include "tools/velhost/host/OtherProgram.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"

#include <algorithm>
#include <map>
#include <optional>

namespace VelHost
{
namespace
{

constexpr char kArea[] = "spooler";

/// Milliseconds in which a printer has to tell all its capabilities.
constexpr DWORD kPatience = 30000;

/// The module's entry points.
constexpr const char* kExports[] = {"DllMain",
                                    "DevQueryPrintEx",
                                    "DrvConvertDevMode",
                                    "DrvDeviceCapabilities",
                                    "DrvDevicePropertySheets",
                                    "DrvDocumentPropertySheets",
                                    "DrvPrinterEvent",
                                    "DrvSplDeviceCaps"};

/// @return the version of a file by its version resource, "1.0.0.0"; empty without one.
std::wstring FileVersion(const std::wstring& strFile)
{
    std::vector<BYTE> block(GetFileVersionInfoSizeW(strFile.c_str(), nullptr));
    VS_FIXEDFILEINFO* pInfo = nullptr;
    UINT cbInfo = 0;
    wchar_t szRoot[] = L"\\";
    if (block.empty() || !GetFileVersionInfoW(strFile.c_str(), 0, static_cast<DWORD>(block.size()), block.data()) ||
        !VerQueryValueW(block.data(), szRoot, reinterpret_cast<void**>(&pInfo), &cbInfo) || cbInfo < sizeof(*pInfo))
    {
        return std::wstring();
    }
    return std::to_wstring(HIWORD(pInfo->dwFileVersionMS)) + L"." + std::to_wstring(LOWORD(pInfo->dwFileVersionMS)) +
           L"." + std::to_wstring(HIWORD(pInfo->dwFileVersionLS)) + L"." +
           std::to_wstring(LOWORD(pInfo->dwFileVersionLS));
}

/// Looks whether a file of a driver is there and can be loaded, without running any of it.
/// @return the file, loaded; nothing after a finding.
std::optional<HostModule> LoadDriverFile(const std::wstring& strFile, const std::wstring& strDriver, Findings& findings)
{
    if (!IsFile(strFile))
    {
        findings.Add("SPL02", strFile, L"of driver " + strDriver);
        return std::nullopt;
    }
    try
    {
        return std::optional<HostModule>(std::in_place, strFile, HostModule::Purpose::Examine);
    }
    catch (const CommandError& error)
    {
        findings.Add("SPL04", strFile, FromUtf8(error.what()));
        return std::nullopt;
    }
}

/// @return whether a program that asks the driver's printers gets to the module at all.
bool CheckModuleFile(const std::wstring& strModule, const DriverDescription& driver, Findings& findings)
{
    const std::wstring& strFile = driver.strConfigFile;
    const std::optional<HostModule> module = LoadDriverFile(strFile, driver.strName, findings);
    if (!module)
    {
        return false;
    }
    std::wstring strMissing;
    for (const char* pszExport : kExports)
    {
        strMissing += module->Find(pszExport) == nullptr ? L" " + FromUtf8(pszExport) : std::wstring();
    }
    if (!strMissing.empty())
    {
        findings.Add("SPL05", strFile, L"missing:" + strMissing);
        return false;
    }
    const std::wstring strVersion = FileVersion(strFile);
    const std::wstring strExpected = FileVersion(strModule);
    if (strVersion != strExpected)
    {
        findings.Add("SPL03", strFile,
                     L"version " + (strVersion.empty() ? L"none" : strVersion) + L"; " + strModule + L" has " +
                         strExpected);
        return true;
    }
    findings.Good(kArea, strFile + L" has version " + strVersion + L" and all entry points");
    return true;
}

/// Looks at what draws the pages: a driver and its data.
void CheckRenderingHalf(const DriverDescription& driver, Findings& findings)
{
    const std::wstring strOwn = Win32::PathFileNamePart(driver.strConfigFile);
    bool bGood = true;
    for (const std::wstring* const pFile : {&driver.strDriverFile, &driver.strDataFile})
    {
        if (IsSameName(Win32::PathFileNamePart(*pFile), strOwn))
        {
            const bool bDriver = pFile == &driver.strDriverFile;
            findings.Add(
                "SPL06", L"driver " + driver.strName,
                (bDriver ? L"the module stands as its driver file: " : L"the module stands as its data file: ") +
                    *pFile);
            bGood = false;
        }
    }
    if (!bGood)
    {
        return;
    }
    bGood = LoadDriverFile(driver.strDriverFile, driver.strName, findings).has_value();
    if (!IsFile(driver.strDataFile))
    {
        findings.Add("SPL02", driver.strDataFile, L"of driver " + driver.strName);
        bGood = false;
    }
    if (bGood)
    {
        findings.Good(kArea, L"pages are drawn by " + driver.strDriverFile + L" with " + driver.strDataFile);
    }
}

/// Looks at a printer's stored record, and at the user's own where that is another.
void CheckRecords(const std::wstring& strPrinter, Findings& findings)
{
    const auto ofPrinter = StoredRecordSizes(strPrinter, StoredRecord::OfPrinter);
    const auto ofUser = StoredRecordSizes(strPrinter, StoredRecord::OfUser);
    const std::pair<WORD, WORD> expected(kDevmodeSize, kDriverExtra);
    const auto tell = [&](const wchar_t* pszWhose, const std::optional<std::pair<WORD, WORD>>& sizes) {
        const std::wstring strSizes =
            sizes ? L"dmSize " + std::to_wstring(sizes->first) + L", dmDriverExtra " + std::to_wstring(sizes->second)
                  : L"there is none";
        findings.Add("SPL09", L"printer " + strPrinter, pszWhose + strSizes);
    };
    if (ofPrinter != expected)
    {
        tell(L"the printer's default: ", ofPrinter);
    }
    // A user without a record of their own has the printer's.
    if (ofUser && ofUser != ofPrinter && ofUser != expected)
    {
        tell(L"the user's default: ", ofUser);
    }
}

/// What a printer answered to one code.
struct CapsLook
{
    DWORD dwCount = 0;     ///< of the question for the count; 0 when refused
    bool bRefused = false; ///< the list, after it had been counted
};

/// @return the answers by the codes' names. Throws nlohmann's exception for a text that is no answer.
std::map<std::string, CapsLook> ReadAnswers(const std::string& strOutput)
{
    std::map<std::string, CapsLook> answers;
    const Json capabilities = Json::parse(strOutput).at("capabilities");
    for (const Json& capability : capabilities)
    {
        CapsLook look;
        look.dwCount = capability.at("refused").get<bool>() ? 0 : capability.at("answer").get<DWORD>();
        const auto entries = capability.find("entries");
        // Of the snapshot's lists alone: the module counts pages on a sheet, and has no list of them.
        const bool bSnapshot = VelUtility::FindCapRow(capability.at("code").get<WORD>()) != nullptr;
        look.bRefused = bSnapshot && look.dwCount != 0 && entries != capability.end() && entries->empty();
        answers[capability.at("name").get<std::string>()] = look;
    }
    return answers;
}

void CheckAnswers(const std::wstring& strWhere, std::map<std::string, CapsLook> answers, Findings& findings)
{
    for (const auto& [strName, look] : answers)
    {
        if (look.bRefused)
        {
            findings.Add("SPL13", strWhere, FromUtf8(strName) + L" counts " + std::to_wstring(look.dwCount));
        }
    }
    if (answers["DC_PAPERS"].dwCount == 0 && answers["DC_PAPERSIZE"].dwCount == 0 &&
        answers["DC_PAPERNAMES"].dwCount == 0)
    {
        findings.Add("SPL11", strWhere, L"");
    }
    const auto counted = [&answers](const std::string& strName) {
        return FromUtf8(strName) + L" " + std::to_wstring(answers[strName].dwCount);
    };
    for (const std::vector<WORD>& group : ListGroups())
    {
        const std::string strFirst = FindCapsCode(group[0]).pszName;
        for (size_t ui = 1; ui < group.size(); ++ui)
        {
            const std::string strOther = FindCapsCode(group[ui]).pszName;
            if (answers[strFirst].dwCount != answers[strOther].dwCount)
            {
                findings.Add("SPL12", strWhere, counted(strFirst) + L", " + counted(strOther));
            }
        }
    }
}

/// Has another program ask a printer for all its capabilities: a module that ends or holds up its host does so there.
void CheckCapabilities(const std::wstring& strPrinter, Findings& findings)
{
    const std::wstring strWhere = L"printer " + strPrinter;
    const ProgramRun run = RunProgram(
        L"\"" + BesideProgram(L"velhost.exe") + L"\" caps --json --printer \"" + strPrinter + L"\"", kPatience);
    try
    {
        if (run.bEnded)
        {
            CheckAnswers(strWhere, ReadAnswers(run.strOutput), findings);
            return;
        }
        findings.Add("SPL10", strWhere, L"no end after " + std::to_wstring(kPatience / 1000) + L" s");
    }
    catch (const Json::exception&)
    {
        findings.Add("SPL10", strWhere,
                     L"it ended with code " + std::to_wstring(run.dwExitCode) + L", without an answer: " +
                         FromUtf8(run.strErrors));
    }
}

void CheckPrinters(const SpoolerQuestion& question, const std::vector<DriverDescription>& drivers, Findings& findings)
{
    bool bNamedFound = question.strPrinter.empty();
    size_t usingCount = 0;
    for (const std::wstring& strPrinter : PrinterNames())
    {
        const std::wstring strDriver = DescribePrinter(strPrinter).strDriver;
        const bool bUses = std::any_of(drivers.begin(), drivers.end(), [&](const DriverDescription& driver) {
            return IsSameName(driver.strName, strDriver);
        });
        if (IsSameName(strPrinter, question.strPrinter))
        {
            bNamedFound = true;
            if (!bUses)
            {
                findings.Add("SPL08", L"printer " + strPrinter, L"its driver is " + strDriver);
            }
        }
        if (!bUses)
        {
            continue;
        }
        ++usingCount;
        const size_t faultCount = findings.List().size();
        CheckRecords(strPrinter, findings);
        if (question.bAsk)
        {
            CheckCapabilities(strPrinter, findings);
        }
        if (findings.List().size() == faultCount)
        {
            findings.Good(kArea, L"printer " + strPrinter + (question.bAsk ? L" answers" : L" is there"));
        }
    }
    if (!bNamedFound)
    {
        findings.Add("SPL08", L"printer " + question.strPrinter, L"there is no such printer");
    }
    else if (usingCount == 0 && !drivers.empty() && question.strPrinter.empty())
    {
        findings.Add("SPL07", L"driver " + drivers.front().strName, L"");
    }
}

} // namespace

const std::vector<FindingKind>& SpoolerKinds()
{
    static const std::vector<FindingKind> s_kinds = {
        {"SPL01", "No printer driver has the module as its configuration file",
         "Install the driver; velhost install does it, too."},
        {"SPL02", "A file of the driver is missing", "Install the driver again."},
        {"SPL03", "The spooler has another version of the module",
         "End the programs that have the module loaded, and install the driver again."},
        {"SPL04", "A file of the driver can't be loaded", "Install the driver again, from files for 64-bit Windows."},
        {"SPL05", "The spooler's module lacks entry points", "Install the driver again: the file is no whole module."},
        {"SPL06", "The driver has nothing that draws its pages",
         "Install the driver again with a rendering driver and its data file; velhost install mends what it once "
         "made."},
        {"SPL07", "No printer uses the driver", "Add a printer with it."},
        {"SPL08", "The printer asked for is not there, or has another driver",
         "Add the printer with the driver, or ask for one of the printers that use it."},
        {"SPL09", "A stored record of the printer declares other sizes than the driver's",
         "Open the printer's properties, set its defaults anew and press OK, or add the printer again."},
        {"SPL10", "A program that asks the printer for its capabilities ends or hangs",
         "Look at the other findings first, LogConfig.conf's before all; then install the driver again."},
        {"SPL11", "The printer tells no papers", "Bring a snapshot of the printer to Config.ini: velhost snapshot."},
        {"SPL12", "Lists of the printer that belong together have different lengths",
         "Take the snapshot anew: velhost snapshot."},
        {"SPL13", "A list is counted and then refused",
         "Shorten or lengthen names of 22, 23, 62 or 63 characters in Config.ini: velhost snapshot --fix."},
    };
    return s_kinds;
}

std::vector<DriverDescription> ModuleDrivers(const std::wstring& strModule)
{
    const std::wstring strName = Win32::PathFileNamePart(strModule);
    std::vector<DriverDescription> drivers = ListDrivers();
    drivers.erase(std::remove_if(drivers.begin(), drivers.end(),
                                 [&strName](const DriverDescription& driver) {
                                     return !IsSameName(Win32::PathFileNamePart(driver.strConfigFile), strName);
                                 }),
                  drivers.end());
    return drivers;
}

void CheckSpooler(const SpoolerQuestion& question, Findings& findings)
{
    const std::vector<DriverDescription> drivers = ModuleDrivers(question.strModule);
    if (drivers.empty())
    {
        findings.Add("SPL01", Win32::PathFileNamePart(question.strModule), L"");
    }
    bool bAsk = question.bAsk;
    for (const DriverDescription& driver : drivers)
    {
        bAsk = CheckModuleFile(question.strModule, driver, findings) && bAsk;
        CheckRenderingHalf(driver, findings);
    }
    CheckPrinters({question.strModule, question.strPrinter, bAsk}, drivers, findings);
}

} // namespace VelHost
