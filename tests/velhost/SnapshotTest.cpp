#include "tests/common/ClientFixture.h"

#include "state/CapabilitySnapshot.h"
#include "tests/common/ImportHook.h"
#include "tests/common/TestPrinter.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/doctor/CapsCheck.h"
#include "tools/velhost/doctor/Kinds.h"
#include "tools/velhost/host/Snapshot.h"
#include "tools/velhost/report/Encoding.h"

#include <catch2/catch_test_macros.hpp>

#include <cstdio>
#include <cwchar>

using namespace VelHost;

namespace
{

/// A printer with two papers, a duplex unit, and a list of bins that can't be fetched.
DWORD AskSmallPrinter(WORD wCode, void* pvRoom)
{
    switch (wCode)
    {
    case DC_PAPERS:
        if (pvRoom != nullptr)
        {
            static_cast<WORD*>(pvRoom)[0] = DMPAPER_A4;
            static_cast<WORD*>(pvRoom)[1] = 257;
        }
        return 2;
    case DC_PAPERNAMES:
        if (pvRoom != nullptr)
        {
            std::wcscpy(static_cast<wchar_t*>(pvRoom), L"A4");
            std::wcscpy(static_cast<wchar_t*>(pvRoom) + 64, L"大16开");
        }
        return 2;
    case DC_BINS:
        return pvRoom == nullptr ? 3 : kRefused;
    case DC_DUPLEX:
        return 1;
    default:
        return kRefused;
    }
}

} // namespace

TEST_CASE("a snapshot takes what is answered and leaves the rest missing", "[velhost][snapshot]")
{
    const Snapshot snapshot(&AskSmallPrinter);
    const VelUtility::PrinterCaps& stuCaps = snapshot.Caps();
    REQUIRE(stuCaps.PapersCount == 2);
    CHECK(stuCaps.Papers[1] == 257);
    REQUIRE(stuCaps.PaperNamesCount == 2);
    CHECK(std::wstring(stuCaps.PaperNames[1]) == L"大16开");
    CHECK(stuCaps.Duplex == 1);
    CHECK(stuCaps.BinsCount == 0);
    CHECK(stuCaps.Bins == nullptr);
    CHECK(stuCaps.MediaTypesCount == 0);
    CHECK(stuCaps.Collate == 0xFFFFFFFF);
}

TEST_CASE_METHOD(ClientFixture, "a snapshot that was written answers as the printer did", "[velhost][snapshot]")
{
    WriteCaps({});
    const Snapshot snapshot(&AskSmallPrinter);
    const VelUtility::PrinterInfo stuInfo = {L"Small", L"", L""};
    VelUtility::MakePrinterConfig(&stuInfo, &snapshot.Caps());

    wchar_t szNames[2][64] = {};
    CHECK(VelUtility::GetComputerCaps(DC_PAPERNAMES, szNames) == 2);
    CHECK(std::wstring(szNames[1]) == L"大16开");
    CHECK(VelUtility::GetComputerCaps(DC_DUPLEX, nullptr) == 1);
    CHECK(VelUtility::GetComputerCaps(DC_BINS, nullptr) == 0);
    CHECK(VelUtility::GetComputerCaps(DC_COLLATE, nullptr) == 0xFFFFFFFF);
}

namespace
{

/// What the printer of the following cases is called to name.
std::vector<std::wstring> s_papers;
std::vector<std::wstring> s_bins;

/// Delivers names in entries of a width; one that fills its entry has no terminator.
DWORD PutNames(const std::vector<std::wstring>& names, size_t uiWidth, void* pvRoom)
{
    for (size_t i = 0; pvRoom != nullptr && i < names.size(); ++i)
    {
        std::wcsncpy(static_cast<wchar_t*>(pvRoom) + i * uiWidth, names[i].c_str(), uiWidth);
    }
    return static_cast<DWORD>(names.size());
}

/// A printer of those names, with a number and a size for each; all else is told as 1.
DWORD AskNamedPrinter(WORD wCode, void* pvRoom)
{
    const std::vector<std::wstring>& names = wCode == DC_BINS || wCode == DC_BINNAMES ? s_bins : s_papers;
    const auto dwCount = static_cast<DWORD>(names.size());
    switch (wCode)
    {
    case DC_PAPERNAMES:
        return PutNames(s_papers, 64, pvRoom);
    case DC_BINNAMES:
        return PutNames(s_bins, 24, pvRoom);
    case DC_PAPERS:
    case DC_BINS:
        for (DWORD i = 0; pvRoom != nullptr && i < dwCount; ++i)
        {
            static_cast<WORD*>(pvRoom)[i] = static_cast<WORD>(300 + i);
        }
        return dwCount;
    case DC_PAPERSIZE:
        for (DWORD i = 0; pvRoom != nullptr && i < dwCount; ++i)
        {
            static_cast<POINT*>(pvRoom)[i] = {2100, 2970};
        }
        return dwCount;
    case DC_MEDIAREADY:
    case DC_MEDIATYPENAMES:
        return PutNames({L"Plain"}, 64, pvRoom);
    case DC_MEDIATYPES:
        if (pvRoom != nullptr)
        {
            *static_cast<DWORD*>(pvRoom) = DMMEDIA_STANDARD;
        }
        return 1;
    case DC_ENUMRESOLUTIONS:
        if (pvRoom != nullptr)
        {
            *static_cast<POINT*>(pvRoom) = {600, 600};
        }
        return 1;
    case DC_MINEXTENT:
        return MAKELONG(900, 1400);
    case DC_MAXEXTENT:
        return MAKELONG(3000, 4200);
    default:
        return 1;
    }
}

int WINAPI AskNamedPrinterByName(LPCWSTR, LPCWSTR, WORD wCode, LPWSTR pszRoom, const DEVMODEW*)
{
    return static_cast<int>(AskNamedPrinter(wCode, pszRoom));
}

/// A name of so many letters that tells its number.
std::wstring NameOf(size_t uiLength, wchar_t chLast = L'z')
{
    return std::wstring(uiLength - 1, L'n') + chLast;
}

/// Codes and keys of what the checks find in a snapshot, as "CFG17 PaperNames0".
std::vector<std::string> FindingsIn(const Snapshot& snapshot)
{
    Findings findings(AllKinds());
    CheckCaps(UnwrittenSnapshot(snapshot.Caps()), L"f", findings);
    std::vector<std::string> result;
    for (const Finding& finding : findings.List())
    {
        const std::string strWhere = ToUtf8(finding.strWhere);
        result.push_back(finding.pKind->pszCode + strWhere.substr(strWhere.rfind(' ')));
    }
    return result;
}

/// The names of a list as the module tells them from what was written.
std::vector<std::wstring> NamesFromModule(WORD wCode, size_t uiWidth)
{
    std::vector<wchar_t> room(16 * uiWidth);
    const DWORD dwCount = VelUtility::GetComputerCaps(wCode, room.data(), 16);
    std::vector<std::wstring> names;
    for (DWORD i = 0; dwCount != kRefused && i < dwCount; ++i)
    {
        names.push_back(CellText(room.data() + i * uiWidth, uiWidth));
    }
    return names;
}

std::string s_strPrinted;

size_t TakePrinted(const void* pv, size_t uiSize, size_t uiCount, FILE*)
{
    s_strPrinted.append(static_cast<const char*>(pv), uiSize * uiCount);
    return uiCount;
}

/// Runs velhost's snapshot command in this process. @return what it printed.
std::string RunSnapshotCommand(const std::vector<std::string>& arguments)
{
    int iExitCode = -1;
    ProgramSyntax program("test");
    AddSnapshotCommand(program, iExitCode);
    s_strPrinted.clear();
    const ImportHook caps(nullptr, "DeviceCapabilitiesW", &AskNamedPrinterByName);
    const ImportHook print(nullptr, "fwrite", &TakePrinted);
    program.Run(arguments);
    CHECK(iExitCode == kExitGood);
    return s_strPrinted;
}

} // namespace

TEST_CASE("what a good printer tells is written without a finding", "[velhost][snapshot]")
{
    s_papers = {L"A4", NameOf(61)};
    s_bins = {L"Tray", NameOf(21)};
    Snapshot snapshot(&AskNamedPrinter);
    CHECK(FindingsIn(snapshot).empty());
    CHECK(snapshot.FixNames().empty());
}

TEST_CASE("the checks of a snapshot that is still unwritten are those of the file", "[velhost][snapshot]")
{
    s_papers = {L"A4", NameOf(62), NameOf(63), NameOf(64), L"A4"};
    s_bins = {NameOf(22), NameOf(23), NameOf(24), L"Tray"};
    const Snapshot snapshot(&AskNamedPrinter);
    CHECK(FindingsIn(snapshot) == std::vector<std::string>{"CFG17 BinNames0", "CFG17 BinNames1", "CFG18 BinNames2",
                                                           "CFG17 PaperNames1", "CFG17 PaperNames2",
                                                           "CFG18 PaperNames3", "CFG19 PaperNames4"});
}

TEST_CASE_METHOD(ClientFixture, "names of the failing lengths are fixed to the longest that pass, no two equal",
                 "[velhost][snapshot]")
{
    const std::wstring strSame = std::wstring(61, L'n');
    s_papers = {std::wstring(62, L'N'), strSame + L"b", strSame + L"cd", L"A4", std::wstring(61, L'n'), NameOf(64)};
    s_bins = {NameOf(23), L"Tray"};
    WriteCaps({});
    const VelUtility::PrinterInfo stuInfo = {L"Named", L"", L""};
    Snapshot snapshot(&AskNamedPrinter);
    VelUtility::MakePrinterConfig(&stuInfo, &snapshot.Caps());
    CHECK(NamesFromModule(DC_PAPERNAMES, 64).empty()); // refused
    CHECK(NamesFromModule(DC_BINNAMES, 24).empty());

    const std::vector<NameFix> fixes = snapshot.FixNames();
    REQUIRE(fixes.size() == 5);
    CHECK(fixes[0].strKey == L"BinNames0");
    CHECK(fixes[0].strOld == NameOf(23));
    CHECK(fixes[0].strNew == std::wstring(21, L'n'));
    CHECK(fixes[1].strKey == L"PaperNames0");
    CHECK(fixes[4].strKey == L"PaperNames5");
    VelUtility::MakePrinterConfig(&stuInfo, &snapshot.Caps());
    // 61 letters are the name of the fifth, in other letters; so each gives way by a number.
    const std::wstring strShort(59, L'n');
    CHECK(NamesFromModule(DC_PAPERNAMES, 64) == std::vector<std::wstring>{std::wstring(59, L'N') + L"~2",
                                                                          strShort + L"~3", strShort + L"~4", L"A4",
                                                                          std::wstring(61, L'n'), strShort + L"~5"});
    CHECK(NamesFromModule(DC_BINNAMES, 24) == std::vector<std::wstring>{std::wstring(21, L'n'), L"Tray"});
    CHECK(FindingsIn(snapshot).empty());
}

TEST_CASE("a fixed name ends in no half letter and no blank", "[velhost][snapshot]")
{
    // The 61st unit is the first half of a letter of two.
    s_papers = {std::wstring(60, L'n') + L"\xD83D\xDDA8", std::wstring(60, L'm') + L" ab"};
    s_bins = {L"Tray"};
    Snapshot snapshot(&AskNamedPrinter);
    const std::vector<NameFix> fixes = snapshot.FixNames();
    REQUIRE(fixes.size() == 2);
    CHECK(fixes[0].strNew == std::wstring(60, L'n'));
    CHECK(fixes[1].strNew == std::wstring(60, L'm'));
}

TEST_CASE_METHOD(ClientFixture, "a name counts as it comes back from the file, without blanks and quotation marks",
                 "[velhost][snapshot]")
{
    s_papers = {L"\"" + std::wstring(61, L'q') + L"\"", L" " + std::wstring(61, L'b') + L" "}; // 63 letters each
    s_bins = {L"Tray"};
    WriteCaps({});
    Snapshot snapshot(&AskNamedPrinter);
    CHECK(FindingsIn(snapshot).empty());
    CHECK(snapshot.FixNames().empty());
    const VelUtility::PrinterInfo stuInfo = {L"Named", L"", L""};
    VelUtility::MakePrinterConfig(&stuInfo, &snapshot.Caps());
    CHECK(NamesFromModule(DC_PAPERNAMES, 64) ==
          std::vector<std::wstring>{std::wstring(61, L'q'), std::wstring(61, L'b')});
}

TEST_CASE_METHOD(ClientFixture, "velhost snapshot tells which names it makes fail, and with --fix which it has mended",
                 "[velhost][snapshot]")
{
    const TestPrinter printer(*this);
    const std::string strName = ToUtf8(printer.Name());
    s_papers = {L"A4", NameOf(63)};
    s_bins = {L"Tray"};
    const std::string strTold = RunSnapshotCommand({"snapshot", "--printer", strName});
    CHECK(strTold.find("\nCFG17: A name of this length makes the query of its whole list fail\n    ") !=
          std::string::npos);
    CHECK(strTold.find("[DeviceCapabilities] PaperNames1: \"" + ToUtf8(NameOf(63)) + "\" has 63 characters") !=
          std::string::npos);
    CHECK(strTold.find("fixed:") == std::string::npos);
    CHECK(NamesFromModule(DC_PAPERNAMES, 64).empty());

    const Json report = Json::parse(RunSnapshotCommand({"snapshot", "--printer", strName, "--json"}));
    REQUIRE(report["findings"].size() == 1);
    CHECK(report["findings"][0]["code"] == "CFG17");
    CHECK(report["fixed"].empty());

    const std::string strFixed = RunSnapshotCommand({"snapshot", "--printer", strName, "--fix"});
    CHECK(strFixed.find("\nfixed: PaperNames1 was \"" + ToUtf8(NameOf(63)) + "\", is \"" + std::string(61, 'n') +
                        "\"\n") != std::string::npos);
    CHECK(strFixed.find("CFG") == std::string::npos);
    CHECK(NamesFromModule(DC_PAPERNAMES, 64) == std::vector<std::wstring>{L"A4", std::wstring(61, L'n')});
}
