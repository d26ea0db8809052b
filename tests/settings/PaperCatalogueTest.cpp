#include "settings/PaperCatalogue.h"

#include "diag/FunctionTrace.h"
#include "settings/DefaultRecord.h"
#include "tests/common/ChildCase.h"
#include "tests/common/GuardedBuffer.h"
#include "tests/common/ImportHook.h"
#include "tests/common/LogLines.h"
#include "tests/ui/SheetDataFixture.h"
#include "ui/PaperControls.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

#include <clocale>
#include <set>

namespace
{

using Lines = std::vector<std::string>;

/// The name found for a typed size in whole millimetres.
std::wstring NameFor(const SheetDataFixture& fixture, int iX, int iY)
{
    wchar_t szName[64];
    CHECK(SubCheckPaperName(fixture.data.pstuPaperInfo, fixture.data.dwCount, szName, iX, iY) == 1);
    return szName;
}

// Which allocation of a zeroed block fails, counted from 1; 0 for none.
int s_iFailing = 0;
std::set<void*> s_blocks;

void* FailingCalloc(size_t uiCount, size_t uiSize)
{
    if (s_iFailing != 0 && --s_iFailing == 0)
    {
        return nullptr;
    }
    static auto* const pfnCalloc = Platform<void*(size_t, size_t)>(L"msvcrt", "calloc");
    void* const pBlock = pfnCalloc(uiCount, uiSize);
    s_blocks.insert(pBlock);
    return pBlock;
}

void NotedFree(void* pBlock)
{
    s_blocks.erase(pBlock);
    static auto* const pfnFree = Platform<void(void*)>(L"msvcrt", "free");
    pfnFree(pBlock);
}

// A snapshot that claims papers without end, as quick to read as no file is. Paper i has number i, cut to 16 bits, a
// name of its own, and no size.
UINT s_uiClaimed = 0;
DWORD s_dwNamesRead = 0;

UINT WINAPI ClaimNumber(LPCWSTR, LPCWSTR pszKey, INT, LPCWSTR)
{
    const std::wstring strKey = pszKey;
    if (strKey == L"PapersCount" || strKey == L"PaperNamesCount")
    {
        return s_uiClaimed;
    }
    return strKey.compare(0, 6, L"Papers") == 0 ? static_cast<WORD>(_wtoi(pszKey + 6)) : VelUtility::kNoAnswer;
}

DWORD WINAPI ClaimText(LPCWSTR, LPCWSTR, LPCWSTR, LPWSTR szText, DWORD, LPCWSTR)
{
    ++s_dwNamesRead;
    szText[0] = L'n';
    return 1;
}

/// Paper 9, which is A4, stands behind the 65,536th and nowhere else; all others have number 1.
UINT WINAPI ClaimLateA4(LPCWSTR, LPCWSTR pszKey, INT, LPCWSTR)
{
    const std::wstring strKey = pszKey;
    return strKey == L"PapersCount" ? s_uiClaimed : strKey == L"Papers" + std::to_wstring(s_uiClaimed - 1) ? 9 : 1;
}

} // namespace

TEST_CASE_METHOD(SheetDataFixture, "without PapersCount the list holds the custom paper alone", "[settings][papers]")
{
    WriteCaps({{L"PaperNamesCount", L"1"}, {L"PaperNames0", L"A4"}});
    GuardedBuffer room(sizeof(stuPaperInfo), 0xEE);
    CHECK(GetPaperInfoList(nullptr) == 0);
    CHECK(GetPaperInfoList(room.As<stuPaperInfo>()) == 0);
    CHECK(std::wstring(room.As<stuPaperInfo>()->aszPaperName) == L"自定义");
    CHECK(room.As<stuPaperInfo>()->wPaper == 256);
    CHECK(room.As<stuPaperInfo>()->stuPaperSize.x == 0);
    CHECK(room.As<stuPaperInfo>()->stuPaperSize.y == 0);
    CHECK(room.Intact());
}

TEST_CASE("without a configuration the list holds the custom paper alone", "[settings][papers]")
{
    const PrivateRegistry registry;
    stuPaperInfo entry = {};
    CHECK(GetPaperInfoList(nullptr) == 0);
    CHECK(GetPaperInfoList(&entry) == 0);
    CHECK(entry.wPaper == 256);
}

TEST_CASE_METHOD(SheetDataFixture, "the list holds the papers in the order of the file, and last the custom one",
                 "[settings][papers]")
{
    WriteCaps(PaperKeys({{L"A4", 9, 2100, 2970}, {L"大16开", 257, 2100, 2850}}));
    GuardedBuffer room(3 * sizeof(stuPaperInfo), 0xEE);
    CHECK(GetPaperInfoList(nullptr) == 2);
    CHECK(GetPaperInfoList(room.As<stuPaperInfo>()) == 2);
    const auto* const pEntries = room.As<stuPaperInfo>();
    CHECK(std::wstring(pEntries[0].aszPaperName) == L"A4");
    CHECK(pEntries[0].wPaper == 9);
    CHECK(pEntries[0].stuPaperSize.x == 2100);
    CHECK(pEntries[0].stuPaperSize.y == 2970);
    CHECK(std::wstring(pEntries[1].aszPaperName) == L"大16开");
    CHECK(pEntries[1].wPaper == 257);
    CHECK(pEntries[1].stuPaperSize.x == 2100);
    CHECK(pEntries[1].stuPaperSize.y == 2850);
    CHECK(std::wstring(pEntries[2].aszPaperName) == L"自定义");
    CHECK(pEntries[2].wPaper == 256);
    // All 64 units are written: zeros behind the terminator.
    CHECK(std::wstring(pEntries[0].aszPaperName + 2, 62) == std::wstring(62, L'\0'));
    CHECK(std::wstring(pEntries[2].aszPaperName + 3, 61) == std::wstring(61, L'\0'));
}

TEST_CASE_METHOD(SheetDataFixture, "a missing paper number stays as the store left it", "[settings][papers]")
{
    CapKeys keys = PaperKeys({{L"A4", 9, 2100, 2970}, {L"A3", 8, 2970, 4200}});
    keys[0].second = L"3"; // PapersCount
    WriteCaps(keys);
    stuPaperInfo entries[4];
    CHECK(GetPaperInfoList(entries) == 3);
    CHECK(entries[1].wPaper == 8);
    CHECK(entries[2].wPaper == 0xFFFF);
    CHECK(std::wstring(entries[2].aszPaperName).empty()); // the other two lists hold two entries
    CHECK(entries[2].stuPaperSize.x == 0);
    CHECK(entries[3].wPaper == 256);
}

TEST_CASE_METHOD(SheetDataFixture, "a failed list of sizes leaves zeros", "[settings][papers]")
{
    CapKeys keys = PaperKeys({{L"A4", 9, 2100, 2970}, {L"A3", 8, 2970, 4200}});
    keys.pop_back(); // the last height
    WriteCaps(keys);
    stuPaperInfo entries[3];
    CHECK(GetPaperInfoList(entries) == 2);
    CHECK(entries[0].stuPaperSize.x == 0);
    CHECK(entries[0].stuPaperSize.y == 0);
    CHECK(entries[1].wPaper == 8);
}

TEST_CASE_METHOD(SheetDataFixture, "counts of names and sizes above the count of papers write nothing behind the list",
                 "[settings][papers]")
{
    CapKeys keys = PaperKeys(kPapers);
    keys[0].second = L"1"; // PapersCount
    WriteCaps(keys);
    GuardedBuffer room(2 * sizeof(stuPaperInfo), 0xEE);
    CHECK(GetPaperInfoList(room.As<stuPaperInfo>()) == 1);
    CHECK(std::wstring(room.As<stuPaperInfo>()[0].aszPaperName) == L"A4");
    CHECK(room.As<stuPaperInfo>()[1].wPaper == 256);
    CHECK(room.Intact());
}

TEST_CASE_METHOD(SheetDataFixture, "a snapshot that has grown since it was counted is cut to the list's room",
                 "[settings][papers]")
{
    WriteCaps(PaperKeys(kPapers));
    GuardedBuffer room(3 * sizeof(stuPaperInfo), 0xEE);
    CHECK(GetPaperInfoList(room.As<stuPaperInfo>(), 2) == 2);
    CHECK(std::wstring(room.As<stuPaperInfo>()[1].aszPaperName) == L"A3");
    CHECK(room.As<stuPaperInfo>()[2].wPaper == 256);
    CHECK(room.Intact());
}

TEST_CASE_METHOD(SheetDataFixture, "a list is made of 65,536 papers at most, and no more names are read than those",
                 "[settings][papers]")
{
    const UINT uiClaimed = GENERATE(65535u, 65536u, 65537u, 4294967294u);
    const DWORD dwExpected = uiClaimed == 65535 ? 65535 : 65536;
    CAPTURE(uiClaimed);
    std::vector<stuPaperInfo> entries(65538);
    memset(&entries.back(), 0xEE, sizeof(stuPaperInfo));
    DWORD dwCounted = 0;
    DWORD dwFilled = 0;
    {
        const ImportHook numbers(nullptr, "GetPrivateProfileIntW", &ClaimNumber);
        const ImportHook texts(nullptr, "GetPrivateProfileStringW", &ClaimText);
        s_uiClaimed = uiClaimed;
        s_dwNamesRead = 0;
        dwCounted = GetPaperInfoList(nullptr);
        dwFilled = GetPaperInfoList(entries.data());
    }
    CHECK(dwCounted == dwExpected);
    CHECK(dwFilled == dwExpected);
    CHECK(s_dwNamesRead == dwExpected);
    CHECK(entries[dwExpected - 1].wPaper == dwExpected - 1);
    CHECK(std::wstring(entries[dwExpected - 1].aszPaperName) == L"n");
    CHECK(entries[dwExpected].wPaper == 256);
    CHECK(entries.back().wPaper == 0xEEEE);
}

TEST_CASE_METHOD(SheetDataFixture, "A4 is looked for among the first 65,536 papers", "[settings][default]")
{
    const auto& [uiClaimed, iExpected] = GENERATE(std::pair<UINT, short>{65536u, 9}, std::pair<UINT, short>{65537u, 1});
    CAPTURE(uiClaimed);
    const ImportHook numbers(nullptr, "GetPrivateProfileIntW", &ClaimLateA4);
    s_uiClaimed = uiClaimed;
    CHECK(SubSetDefPaperSize() == iExpected);
}

TEST_CASE_METHOD(SheetDataFixture, "a name that fills its field is cut to 63 characters", "[settings][papers]")
{
    WriteCaps(PaperKeys({{std::wstring(70, L'n'), 9, 2100, 2970}}));
    stuPaperInfo entries[2];
    CHECK(GetPaperInfoList(entries) == 1);
    CHECK(std::wstring(entries[0].aszPaperName) == std::wstring(63, L'n'));
    CHECK(entries[0].wPaper == 9);
}

TEST_CASE_METHOD(SheetDataFixture, "each allocation that fails gives 0xFFFFFFFF, an untouched list and no lost memory",
                 "[settings][papers]")
{
    const int iFailing = GENERATE(1, 2, 3);
    CAPTURE(iFailing);
    WriteCaps(PaperKeys(kPapers));
    stuPaperInfo entries[5];
    memset(entries, 0xEE, sizeof(entries));
    DWORD dwCount = 0;
    {
        const ImportHook calloc_(nullptr, "calloc", &FailingCalloc);
        const ImportHook free_(nullptr, "free", &NotedFree);
        s_blocks.clear();
        s_iFailing = iFailing;
        dwCount = GetPaperInfoList(entries);
        s_iFailing = 0;
    }
    CHECK(dwCount == 0xFFFFFFFF);
    CHECK(std::string(reinterpret_cast<char*>(entries), sizeof(entries)) == std::string(sizeof(entries), '\xEE'));
    CHECK(s_blocks.empty());
}

TEST_CASE_METHOD(SheetDataFixture, "a typed size is found within 5 mm on each side, both limits included",
                 "[settings][papers]")
{
    UsePapers({{L"A4", 9, 2100, 2970}});
    CHECK(NameFor(*this, 210, 297) == L"A4");
    CHECK(NameFor(*this, 205, 292) == L"A4");
    CHECK(NameFor(*this, 215, 302) == L"A4");
    CHECK(NameFor(*this, 204, 297) == L"自定义");
    CHECK(NameFor(*this, 216, 297) == L"自定义");
    CHECK(NameFor(*this, 210, 291) == L"自定义");
    CHECK(NameFor(*this, 210, 303) == L"自定义");
    CHECK(NameFor(*this, 297, 210) == L"自定义"); // orientation plays no part
}

TEST_CASE_METHOD(SheetDataFixture, "of two papers within 5 mm the earlier wins, whatever the later one's size",
                 "[settings][papers]")
{
    UsePapers({{L"first", 300, 2140, 3000}, {L"second", 301, 2100, 2970}});
    CHECK(NameFor(*this, 210, 297) == L"first");
}

TEST_CASE_METHOD(SheetDataFixture, "a paper's size is cut to whole millimetres for the search", "[settings][papers]")
{
    UsePapers({{L"Letter", 1, 2159, 2794}}); // 215 and 279
    CHECK(NameFor(*this, 220, 284) == L"Letter");
    CHECK(NameFor(*this, 210, 274) == L"Letter");
    CHECK(NameFor(*this, 221, 279) == L"自定义");
    CHECK(NameFor(*this, 215, 285) == L"自定义");
}

TEST_CASE_METHOD(SheetDataFixture, "a typed size of 5 by 5 mm or less is custom, and so is one that nothing matches",
                 "[settings][papers]")
{
    UsePapers(kPapers);
    CHECK(NameFor(*this, 5, 5) == L"自定义");
    CHECK(NameFor(*this, 0, 0) == L"自定义");
    CHECK(NameFor(*this, 6, 6) == L"自定义");
    CHECK(NameFor(*this, 9999, 9999) == L"自定义");
}

TEST_CASE_METHOD(SheetDataFixture, "the name found is written with all its 64 units", "[settings][papers]")
{
    UsePapers(kPapers);
    GuardedBuffer name(128, 0xEE);
    SubCheckPaperName(data.pstuPaperInfo, data.dwCount, name.As<wchar_t>(), 210, 297);
    CHECK(std::wstring(name.As<wchar_t>(), 64) == L"A4" + std::wstring(62, L'\0'));
    memset(name.Get(), 0xEE, 128);
    SubCheckPaperName(data.pstuPaperInfo, data.dwCount, name.As<wchar_t>(), 1, 297);
    CHECK(std::wstring(name.As<wchar_t>(), 64) == L"自定义" + std::wstring(61, L'\0'));
}

TEST_CASE_METHOD(SheetDataFixture, "the record's paper is found by its number alone", "[settings][papers]")
{
    UsePapers(kPapers);
    in.stuDevmode.dmPaperSize = 8;
    in.stuDevmode.dmPaperWidth = 2100;
    in.stuDevmode.dmPaperLength = 2970;
    wchar_t szName[64] = {};
    CHECK(GetDevDefPaperName(&data, szName) == 1);
    CHECK(std::wstring(szName) == L"A3");
}

TEST_CASE_METHOD(SheetDataFixture, "a paper number that the list does not hold leaves the buffer untouched",
                 "[settings][papers]")
{
    UsePapers(kPapers);
    in.stuDevmode.dmPaperSize = 70;
    wchar_t szName[64] = L"as it was";
    CHECK(GetDevDefPaperName(&data, szName) == 0);
    CHECK(std::wstring(szName) == L"as it was");
}

TEST_CASE_METHOD(SheetDataFixture, "paper number 256 is the custom paper", "[settings][papers]")
{
    UsePapers(kPapers);
    in.stuDevmode.dmPaperSize = 256;
    wchar_t szName[64] = {};
    CHECK(GetDevDefPaperName(&data, szName) == 1);
    CHECK(std::wstring(szName) == L"自定义");
}

TEST_CASE_METHOD(SheetDataFixture, "of two entries with one number the first gives the name", "[settings][papers]")
{
    UsePapers({{L"one", 9, 1, 1}, {L"two", 9, 2, 2}});
    in.stuDevmode.dmPaperSize = 9;
    wchar_t szName[64] = {};
    CHECK(GetDevDefPaperName(&data, szName) == 1);
    CHECK(std::wstring(szName) == L"one");
}

TEST_CASE_METHOD(SheetDataFixture, "a paper that is not listed is logged with the buffer as it stands",
                 "[settings][papers][log]")
{
    UsePapers(kPapers);
    in.stuDevmode.dmPaperSize = 70;
    wchar_t szName[64] = L"none";
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    GetDevDefPaperName(&data, szName);
    CHECK(Masked(logging) == Lines{"VelUI_dll__GetDevDefPaperName :START......",
                                   "Param - SubVelUi(#) : aszPaperName = none",
                                   "VelUI_dll__GetDevDefPaperName :End  ......"});
}

TEST_CASE_METHOD(SheetDataFixture, "the search logs the name and the typed size", "[settings][papers][log]")
{
    UsePapers(kPapers);
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    wchar_t szName[64];
    SubCheckPaperName(data.pstuPaperInfo, data.dwCount, szName, 148, 210);
    CHECK(OwnLines(logging, "SubCheckPaperName") ==
          Lines{"VelUI_dll__SubCheckPaperName :START......", "Param - SubVelUi(#) : pszPaperName = A5",
                "Param - SubVelUi(#) : iUserX = 148", "Param - SubVelUi(#) : iUserY = 210",
                "VelUI_dll__SubCheckPaperName :End  ......"});
}

TEST_CASE("a list of papers prints in brackets, with all its labels but the first run into their values",
          "[settings][papers][log]")
{
    const stuPaperInfo papers[2] = {{L"A4", 9, {2100, 2970}}, {L"A3", 8, {2970, 4200}}};
    const stuPaperInfo* pstuPaperInfo = papers;
    FunctionTrace trace("F");
    trace.AddParam("pstuPaperInfo, dwCount", &pstuPaperInfo, 2);
    CHECK(CallText(trace) == "F([pstuPaperInfo, dwCount] = [{aszPaperName = A4,wPaper9,stuPaperSize{pt.x2100,pt.y}}, "
                             "{aszPaperName = A3,wPaper8,stuPaperSize{pt.x2970,pt.y}}], )");
    FunctionTrace empty("F");
    empty.AddParam("pstuPaperInfo, dwCount", &pstuPaperInfo, 0);
    CHECK(CallText(empty) == "F([pstuPaperInfo, dwCount] = [], )");
}

// Run by the next case: the flag behind it belongs to the process.
TEST_CASE("child: the first paper that prints sets the Chinese locale", "[.child]")
{
    setlocale(LC_ALL, "C");
    const stuPaperInfo paper = {L"大16开", 257, {2100, 2850}};
    CHECK(ArgumentText(paper) == "{aszPaperName = \xB4\xF3"
                                 "16\xBF\xAA,wPaper257,stuPaperSize{pt.x2100,pt.y}}");
    CHECK(std::string(setlocale(LC_ALL, nullptr)).find("Chinese") == 0);
    setlocale(LC_ALL, "C");
    ArgumentText(paper);
    CHECK(std::string(setlocale(LC_ALL, nullptr)) == "C");
}

TEST_CASE("the first paper that prints in a process sets the Chinese locale, once", "[settings][papers][log]")
{
    CHECK(ExitCodeOfCase(L"child: the first paper that prints sets the Chinese locale") == 0);
}
