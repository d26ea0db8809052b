#include "state/CapabilitySnapshot.h"
#include "state/FileLocker.h"
#include "state/PsFolder.h"
#include "state/StoreTypes.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/doctor/CapsCheck.h"
#include "tools/velhost/doctor/Kinds.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/Snapshot.h"
#include "tools/velhost/host/Spooler.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"
#include "tools/velhost/report/Table.h"

#include <memory>
#include <utility>

namespace VelHost
{
namespace
{

/// The key that is written last, so that its presence proves that all were written.
const wchar_t* const kLastKey = std::rbegin(VelUtility::kCapRows)->pszKey;
static_assert(std::holds_alternative<VelUtility::CapNumber>(std::rbegin(VelUtility::kCapRows)->form),
              "a list's elements would be written behind its key");

struct SnapshotOptions
{
    std::string strPrinter;
    bool bFix = false;
    bool bJson = false;
};

using KeyValues = std::vector<std::pair<std::wstring, std::wstring>>;

/// The snapshot's place, from the client's registry values.
std::wstring ConfigPath()
{
    // The buffer and the size of the snapshot's own readers.
    wchar_t szFolder[VelUtility::kFolderUnits] = {};
    constexpr unsigned __int64 kSize = 256;
    const DWORD dwStatus = VelUtility::GetClientFolder(VelUtility::kClientTempDir, szFolder, kSize);
    if (dwStatus != VelUtility::PSERR_OK)
    {
        throw CommandError("the client's TempDir is not set up (status " + std::to_string(dwStatus) +
                           "); velhost install does it");
    }
    if (!IsFolder(szFolder))
    {
        throw CommandError("the client's TempDir " + ToUtf8(szFolder) + " does not exist");
    }
    return PathIn(szFolder, L"Config.ini");
}

/// Windows keeps a profile file in UTF-16 that begins with its mark; any other loses names outside the code page.
void MakeUnicodeFile(const std::wstring& strPath)
{
    if (!IsFile(strPath))
    {
        const BYTE mark[] = {0xFF, 0xFE};
        WriteBinaryFile(strPath, mark, sizeof(mark));
    }
}

KeyValues ReadSection(const wchar_t* pszSection, const std::wstring& strPath)
{
    std::vector<wchar_t> buffer(32768);
    DWORD cchRead = 0;
    // A cut section is told by two terminators at the end of the buffer.
    while ((cchRead = GetPrivateProfileSectionW(pszSection, buffer.data(), static_cast<DWORD>(buffer.size()),
                                                strPath.c_str())) == buffer.size() - 2)
    {
        buffer.resize(buffer.size() * 2);
    }
    KeyValues values;
    for (const wchar_t* pszLine = buffer.data(); cchRead > 0 && *pszLine != L'\0'; pszLine += wcslen(pszLine) + 1)
    {
        const std::wstring strLine = pszLine;
        const size_t equals = strLine.find(L'=');
        if (equals != std::wstring::npos)
        {
            values.emplace_back(strLine.substr(0, equals), strLine.substr(equals + 1));
        }
    }
    return values;
}

/// Writes the snapshot and makes sure that all of it arrived, since the writer itself reports nothing.
void WriteSnapshot(const VelUtility::PrinterInfo& stuInfo, const Snapshot& snapshot, const std::wstring& strPath)
{
    // Held over the removal of the old snapshot too, so that no query finds the section gone; the lock is recursive.
    const VelUtility::CScopeFileLock lock(strPath.c_str());
    MakeUnicodeFile(strPath);
    if (!WritePrivateProfileStringW(VelUtility::kCapsSection, nullptr, nullptr, strPath.c_str()))
    {
        ThrowCommandError("can't write " + ToUtf8(strPath));
    }
    VelUtility::MakePrinterConfig(&stuInfo, &snapshot.Caps());
    wchar_t szValue[16] = {};
    if (GetPrivateProfileStringW(VelUtility::kCapsSection, kLastKey, L"", szValue,
                                 static_cast<DWORD>(std::size(szValue)), strPath.c_str()) == 0)
    {
        throw CommandError("the snapshot was not written whole to " + ToUtf8(strPath));
    }
}

/// What the checks say of the snapshot, and what was mended in it.
struct SnapshotReview
{
    std::vector<NameFix> fixes;
    Findings findings{AllKinds()};
};

void AddReview(const SnapshotReview& review, Json& value)
{
    Json& fixes = value["fixed"] = Json::array();
    for (const NameFix& fix : review.fixes)
    {
        fixes.push_back({{"key", ToUtf8(fix.strKey)}, {"old", ToUtf8(fix.strOld)}, {"new", ToUtf8(fix.strNew)}});
    }
    value["findings"] = review.findings.ToJson();
}

std::string ReviewText(const SnapshotReview& review)
{
    std::string strText;
    for (const NameFix& fix : review.fixes)
    {
        strText +=
            "\nfixed: " + ToUtf8(fix.strKey) + " was \"" + ToUtf8(fix.strOld) + "\", is \"" + ToUtf8(fix.strNew) + "\"";
    }
    for (const Finding& finding : review.findings.List())
    {
        strText += std::string("\n") + finding.pKind->pszCode + ": " + finding.pKind->pszTitle + "\n    " +
                   ToUtf8(finding.strWhere) + ": " + ToUtf8(finding.strDetail) + "\n    " + finding.pKind->pszCure;
    }
    return strText.empty() ? strText : strText + "\n";
}

void PrintSnapshot(const SnapshotOptions& options, const std::wstring& strPath, const SnapshotReview& review)
{
    const wchar_t* const sections[] = {VelUtility::kPrinterSection, VelUtility::kCapsSection};
    Table table({{"section"}, {"key"}, {"value"}});
    Json value;
    value["file"] = ToUtf8(strPath);
    for (const wchar_t* pszSection : sections)
    {
        Json& section = value[ToUtf8(pszSection)] = Json::object();
        for (const auto& keyValue : ReadSection(pszSection, strPath))
        {
            section[ToUtf8(keyValue.first)] = ToUtf8(keyValue.second);
            table.AddRow({ToUtf8(pszSection), ToUtf8(keyValue.first), ToUtf8(keyValue.second)});
        }
    }
    if (options.bJson)
    {
        AddReview(review, value);
        PrintJson(value);
        return;
    }
    Print(ToUtf8(strPath) + "\n\n" + table.Text() + ReviewText(review));
}

int RunSnapshot(const SnapshotOptions& options)
{
    const std::wstring strPrinter = FromUtf8(options.strPrinter);
    const PrinterDescription description = DescribePrinter(strPrinter);
    const std::wstring strPath = ConfigPath();
    Snapshot snapshot(SpoolerCaps(strPrinter));
    SnapshotReview review;
    if (options.bFix)
    {
        review.fixes = snapshot.FixNames();
    }
    CheckCaps(UnwrittenSnapshot(snapshot.Caps()), strPath, review.findings);
    const VelUtility::PrinterInfo stuInfo = {description.strName, description.strLocation, description.strComment};
    WriteSnapshot(stuInfo, snapshot, strPath);
    PrintSnapshot(options, strPath, review);
    return kExitGood; // what the printer does not tell is no failure of this program
}

} // namespace

void AddSnapshotCommand(CommandSyntax& program, int& iExitCode)
{
    CommandSyntax command = program.AddCommand(
        "snapshot",
        "Takes a printer's name, place and capabilities into the client's Config.ini, in TempDir, prints what was\n"
        "written, and tells which of it the module will refuse to applications, or tell wrongly.");
    const auto pOptions = std::make_shared<SnapshotOptions>();
    command.AddOption("--printer", pOptions->strPrinter, "The installed printer to describe").Type("NAME").Required();
    command.AddFlag("--fix", pOptions->bFix,
                    "Shorten the names of the lengths that make the query of their list fail, and tell which");
    AddJsonFlag(command, pOptions->bJson);
    command.OnRun([pOptions, &iExitCode] { iExitCode = RunSnapshot(*pOptions); });
}

} // namespace VelHost
