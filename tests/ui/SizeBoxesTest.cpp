// How the settings page reads the size boxes, and which paper it finds for what they hold.

#include "tests/common/ImportHook.h"
#include "tests/common/LogLines.h"
#include "tests/ui/BoxWatcher.h"
#include "tests/ui/SettingsFixture.h"
#include "ui/Controls.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

namespace
{

struct SizeFixture : SettingsFixture
{
    /// What the page selects for a typed size, on a printer with these limits.
    std::wstring Search(const CapKeys& limits, const std::vector<Paper>& papers, const wchar_t* pszFirst,
                        const wchar_t* pszSecond)
    {
        UsePapers(papers, limits);
        in.stuDevmode.dmPaperSize = 256;
        const PageWindow page = Open();
        page.Type(1007, pszFirst);
        page.Type(1008, pszSecond);
        CHECK(page.Text(1007) == pszFirst); // the typed text stays as it is
        CHECK(page.Text(1008) == pszSecond);
        CHECK(bPaperSync == 1);
        return page.Paper();
    }
    BoxWatcher watcher;
};

/// How the buffer began in which the text of no entry was asked for: nothing is written into it.
wchar_t s_chUnselected = L'?';
LRESULT WINAPI NoteUnselected(HWND hDlg, int iItem, UINT uiMessage, WPARAM wParam, LPARAM lParam)
{
    if (uiMessage == CB_GETLBTEXT && wParam == static_cast<WPARAM>(-1))
    {
        s_chUnselected = *reinterpret_cast<const wchar_t*>(lParam);
    }
    return SendMessageW(GetDlgItem(hDlg, iItem), uiMessage, wParam, lParam);
}

/// DC_MINEXTENT or DC_MAXEXTENT in tenths of a millimetre.
std::wstring Extent(int iX, int iY)
{
    return std::to_wstring(iY << 16 | iX);
}

} // namespace

TEST_CASE_METHOD(SizeFixture, "a width below the least counts as the least, for the search alone", "[ui][settings]")
{
    // The least is 76 by 127 mm; a typed 10 by 200 is searched as 76 by 200.
    CHECK(Search({{L"MinExtent", Extent(760, 1270)}, {L"MaxExtent", Extent(2970, 12190)}},
                 {{L"strip", 300, 760, 2000}, {L"A4", 9, 2100, 2970}}, L"10", L"200") == L"strip");
}

TEST_CASE_METHOD(SizeFixture, "a width above the greatest counts as the greatest", "[ui][settings]")
{
    CHECK(Search({{L"MinExtent", Extent(760, 1270)}, {L"MaxExtent", Extent(2970, 12190)}},
                 {{L"A3", 8, 2970, 4200}, {L"A4", 9, 2100, 2970}}, L"900", L"420") == L"A3");
}

TEST_CASE_METHOD(SizeFixture, "a height below the least counts as the least", "[ui][settings]")
{
    CHECK(Search({{L"MinExtent", Extent(760, 1270)}, {L"MaxExtent", Extent(2970, 12190)}},
                 {{L"card", 300, 1000, 1270}, {L"A4", 9, 2100, 2970}}, L"100", L"10") == L"card");
}

TEST_CASE_METHOD(SizeFixture, "a height has no upper limit", "[ui][settings]")
{
    // The greatest height is 1,219 mm; 2,000 would have to count as that to find the banner.
    CHECK(Search({{L"MinExtent", Extent(760, 1270)}, {L"MaxExtent", Extent(2970, 12190)}},
                 {{L"banner", 300, 2100, 12190}, {L"A4", 9, 2100, 2970}}, L"210", L"2000") == L"自定义");
}

TEST_CASE_METHOD(SizeFixture, "a width above the greatest height counts as that", "[ui][settings]")
{
    // Greatest 500 by 300 mm. A width of 400 passes the width's limit and meets the height's: 300.
    CHECK(Search({{L"MinExtent", Extent(100, 100)}, {L"MaxExtent", Extent(5000, 3000)}},
                 {{L"wide", 300, 3000, 2000}, {L"wider", 301, 4000, 2000}}, L"400", L"200") == L"wide");
}

TEST_CASE_METHOD(SizeFixture, "the greatest height is held against the width that the width's own limits have left",
                 "[ui][settings]")
{
    // At most 300 by 350 mm: a width of 400 becomes 300, which passes the second limit. The 400 itself would give 350.
    CHECK(Search({{L"MinExtent", Extent(100, 100)}, {L"MaxExtent", Extent(3000, 3500)}},
                 {{L"cut once", 300, 3000, 2000}, {L"cut anew", 301, 3500, 2000}}, L"400", L"200") == L"cut once");
    // At least 400, at most 500 by 350 mm: a width of 10 becomes 400, which the second limit cuts to 350.
    CHECK(Search({{L"MinExtent", Extent(4000, 100)}, {L"MaxExtent", Extent(5000, 3500)}},
                 {{L"raised", 300, 4000, 2000}, {L"raised and cut", 301, 3500, 2000}}, L"10",
                 L"200") == L"raised and cut");
}

TEST_CASE_METHOD(SizeFixture, "a height below the least keeps the width from its second limit", "[ui][settings]")
{
    CHECK(Search({{L"MinExtent", Extent(100, 2000)}, {L"MaxExtent", Extent(5000, 3000)}},
                 {{L"wide", 300, 3000, 2000}, {L"wider", 301, 4000, 2000}}, L"400", L"20") == L"wider");
}

TEST_CASE_METHOD(SizeFixture, "a size of exactly the least is not below it", "[ui][settings]")
{
    // The height is not raised, and so the width meets its second limit, 300 mm.
    CHECK(Search({{L"MinExtent", Extent(100, 2000)}, {L"MaxExtent", Extent(5000, 3000)}},
                 {{L"wide", 300, 3000, 2000}, {L"wider", 301, 4000, 2000}}, L"400", L"200") == L"wide");
    // The width is not raised, and so it meets its first one, of a printer whose limits contradict each other.
    CHECK(Search({{L"MinExtent", Extent(4000, 100)}, {L"MaxExtent", Extent(3000, 5000)}},
                 {{L"wide", 300, 3000, 2000}, {L"wider", 301, 4000, 2000}}, L"400", L"200") == L"wide");
}

TEST_CASE_METHOD(SizeFixture, "a size less than a tenth beyond a limit is beyond it", "[ui][settings]")
{
    CHECK(Search({{L"MinExtent", Extent(2000, 100)}, {L"MaxExtent", Extent(5000, 5000)}},
                 {{L"least", 300, 2000, 2000}, {L"typed", 301, 1850, 2000}}, L"185", L"200") == L"least");
    CHECK(Search({{L"MinExtent", Extent(100, 100)}, {L"MaxExtent", Extent(4000, 5000)}},
                 {{L"most", 300, 4000, 2000}, {L"typed", 301, 4300, 2000}}, L"430", L"200") == L"most");
    CHECK(Search({{L"MinExtent", Extent(100, 2000)}, {L"MaxExtent", Extent(5000, 5000)}},
                 {{L"least", 300, 2000, 2000}, {L"typed", 301, 2000, 1850}}, L"200", L"185") == L"least");
    CHECK(Search({{L"MinExtent", Extent(100, 100)}, {L"MaxExtent", Extent(5000, 3000)}},
                 {{L"most", 300, 3000, 2000}, {L"typed", 301, 3300, 2000}}, L"330", L"200") == L"most");
}

TEST_CASE_METHOD(SizeFixture, "the greatest size is asked for in front of the least, and both in front of the search",
                 "[ui][settings][log]")
{
    UsePapers(kPapers, {});
    const PageWindow page = Open();
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    CHECK(Sub_On_Edit(page.Get(), EN_CHANGE, &data) == 1); // the paper that is selected already
    const std::string strLog = logging.Text();
    CHECK(strLog.find("DEBUG - GetComputerCaps(5)") < strLog.find("DEBUG - GetComputerCaps(4)"));
    CHECK(strLog.find("DEBUG - GetComputerCaps(4)") != std::string::npos);
    CHECK(Outline(logging, "Sub_On_Edit") ==
          std::vector<std::string>{"> SubGetEditToINT", "> SubGetEditToINT", "> VelUtility::GetComputerCaps",
                                   "> VelUtility::GetComputerCaps", "> SubCheckPaperName"});
}

TEST_CASE_METHOD(SizeFixture, "without both limits none is looked at", "[ui][settings]")
{
    const CapKeys limits =
        GENERATE(CapKeys{}, CapKeys{{L"MinExtent", Extent(760, 1270)}}, CapKeys{{L"MaxExtent", Extent(2000, 2000)}});
    CHECK(Search(limits, {{L"slip", 300, 100, 200}, {L"sheet", 301, 760, 1270}}, L"10", L"20") == L"slip");
}

TEST_CASE_METHOD(SizeFixture, "the limits leave the record alone", "[ui][settings]")
{
    UsePapers(kPapers, {{L"MinExtent", Extent(760, 1270)}, {L"MaxExtent", Extent(2970, 4200)}});
    in.stuDevmode.dmPaperSize = 256;
    const PageWindow page = Open();
    page.Type(1007, L"10");
    page.Type(1008, L"3000");
    REQUIRE(page.Paper() == L"自定义");
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmPaperWidth == 100);
    CHECK(out.stuDevmode.dmPaperLength == 30000);
}

TEST_CASE_METHOD(SizeFixture, "a box is read as a number", "[ui][settings]")
{
    const PageWindow page = Open();
    bPaperSync = 0;
    SetWindowTextW(page.Item(1007), L"12345");
    wchar_t szText[64];
    int iResult = 7;
    CHECK(SubGetEditToINT(page.Item(1007), szText, 5, iResult) == 1);
    CHECK(iResult == 1234);
    CHECK(std::wstring(szText) == L"1234");
    CHECK(SubGetEditToINT(page.Item(1007), szText, 64, iResult) == 1);
    CHECK(iResult == 12345);
    SetWindowTextW(page.Item(1007), L"");
    CHECK(SubGetEditToINT(page.Item(1007), szText, 5, iResult) == 1);
    CHECK(iResult == 0);
    SetWindowTextW(page.Item(1007), L"0012");
    CHECK(SubGetEditToINT(page.Item(1007), szText, 5, iResult) == 1);
    CHECK(iResult == 12);
    SetWindowTextW(page.Item(1007), L"1 2");
    CHECK(SubGetEditToINT(page.Item(1007), szText, 5, iResult) == 0);
    CHECK(iResult == 12); // left alone
    CHECK(watcher.Count() == 1);
    bPaperSync = 1;
}

TEST_CASE_METHOD(SizeFixture, "a text of digits passes up to the length asked for", "[ui][settings]")
{
    CHECK(SubCheckAllNum(L"", 0) == 1);
    CHECK(SubCheckAllNum(L"0123456789", 10) == 1);
    CHECK(SubCheckAllNum(L"12x", 2) == 1);
    CHECK(watcher.Count() == 0);
    CHECK(SubCheckAllNum(L"12x", 3) == 0);
    CHECK(SubCheckAllNum(L"xyz", 3) == 0); // one box for the first non-digit
    CHECK(watcher.Count() == 2);
}

TEST_CASE_METHOD(SizeFixture, "the boxes' handler answers 1 when it has selected the paper of the typed size",
                 "[ui][settings]")
{
    UsePapers(kPapers, {});
    const PageWindow page = Open();
    bPaperSync = 0;
    page.Type(1007, L"148");
    page.Type(1008, L"210");
    bPaperSync = 1;
    REQUIRE(page.Paper() == L"A4");
    CHECK(Sub_On_Edit(page.Get(), EN_CHANGE, &data) == 1);
    CHECK(page.Paper() == L"A5");
}

TEST_CASE_METHOD(SizeFixture, "a list without a selection gets the paper of the size that the boxes have",
                 "[ui][settings]")
{
    UsePapers(kPapers, {});
    const PageWindow page = Open();
    SendMessageW(page.Item(1006), CB_SETCURSEL, static_cast<WPARAM>(-1), 0);
    s_chUnselected = L'?';
    {
        const ImportHook hook(nullptr, "SendDlgItemMessageW", &NoteUnselected);
        CHECK(Sub_On_Edit(page.Get(), EN_CHANGE, &data) == 1);
    }
    CHECK(s_chUnselected == L'\0');
    CHECK(page.Paper() == L"A4");
}

TEST_CASE_METHOD(SizeFixture, "a non-digit in either box makes the boxes' handler answer 0 and change nothing",
                 "[ui][settings]")
{
    const int iBox = GENERATE(1007, 1008);
    const PageWindow page = Open();
    bPaperSync = 0;
    page.Type(iBox, L"x");
    bPaperSync = 1;
    CHECK(Sub_On_Edit(page.Get(), EN_CHANGE, &data) == 0);
    CHECK(watcher.Count() == 1);
    CHECK(page.Paper() == L"A4");
    CHECK(bPaperSync == 1);
}

TEST_CASE_METHOD(SizeFixture, "full-width digits are a number", "[ui][settings]")
{
    in.stuDevmode.dmPaperSize = 8;
    const PageWindow page = Open();
    page.Type(1007, L"２１０");
    page.Type(1008, L"２９７");
    CHECK(watcher.Count() == 0);
    CHECK(page.Paper() == L"A4");
    wchar_t szText[64];
    int iResult = 7;
    CHECK(SubGetEditToINT(page.Item(1007), szText, 64, iResult) == 1);
    CHECK(iResult == 210);
}

TEST_CASE_METHOD(SizeFixture, "a raised digit passes the digit test and counts as 0", "[ui][settings]")
{
    in.stuDevmode.dmPaperSize = 256;
    const PageWindow page = Open();
    page.Type(1007, L"²");
    page.Type(1008, L"50");
    CHECK(watcher.Count() == 0);
    wchar_t szText[64];
    int iResult = 7;
    CHECK(SubGetEditToINT(page.Item(1007), szText, 64, iResult) == 1);
    CHECK(iResult == 0);
    page.Notify(PSN_APPLY);
    CHECK(watcher.Count() == 0);
    CHECK(out.stuDevmode.dmPaperWidth == 0);
    CHECK(out.stuDevmode.dmPaperLength == 500);
}

TEST_CASE_METHOD(SizeFixture, "reading a size box leaves its scopes in the log, the check's inside the reading's",
                 "[ui][settings][log]")
{
    const PageWindow page = Open();
    page.Type(1007, L"123");
    const LoggingOn logging{"OutputFunBeginInfo"};
    wchar_t szNumber[5];
    int iNumber = 0;
    CHECK(SubGetEditToINT(page.Item(1007), szNumber, 5, iNumber) == 1);
    CHECK(iNumber == 123);
    const std::vector<std::string> lines = Masked(logging);
    REQUIRE(lines.size() >= 4);
    CHECK(lines.front() == "VelUI_dll__SubGetEditToINT :START......");
    CHECK(lines[1] == "VelUI_dll__SubCheckAllNum :START......");
    CHECK(lines[lines.size() - 2] == "VelUI_dll__SubCheckAllNum :End  ......");
    CHECK(lines.back() == "VelUI_dll__SubGetEditToINT :End  ......");
}
