// The sheet under the keyboard alone: where the focus goes, and what changes on its way. A window of another process's
// that came up would take the focus away; the cases that run meanwhile show theirs on another display.

#include "tests/ui/DrivenFixture.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

#include <algorithm>

namespace
{

constexpr int kOk = IDOK; // the sheet's own controls
constexpr int kCancel = IDCANCEL;
constexpr int kTabs = 0x3020;

using Stops = std::vector<int>;

struct KeyboardFixture : DrivenFixture
{
    /// What a page of the sheet holds: texts, check marks, and whether "Apply" may be pressed.
    static std::vector<std::wstring> StateOf(const OpenSheet& sheet, HWND hPage)
    {
        std::vector<std::wstring> state = {sheet.ApplyEnabled() ? L"to apply" : L"nothing to apply"};
        for (HWND hControl = GetWindow(hPage, GW_CHILD); hControl != nullptr;
             hControl = GetWindow(hControl, GW_HWNDNEXT))
        {
            state.push_back(Hand::TextOf(hControl));
            state.push_back(std::to_wstring(SendMessageW(hControl, BM_GETCHECK, 0, 0)));
        }
        return state;
    }
    /// Presses Tab from a control until it has the focus again. @return the controls that had it, that one first.
    static Stops TabRound(const OpenSheet& sheet, int iFrom)
    {
        for (int i = 0; i < 20 && sheet.Focus() != iFrom; ++i)
        {
            sheet.PressKey(VK_TAB);
        }
        REQUIRE(sheet.Focus() == iFrom);
        Stops stops;
        do
        {
            stops.push_back(sheet.Focus());
            sheet.PressKey(VK_TAB);
        } while (sheet.Focus() != iFrom && stops.size() < 20);
        return stops;
    }
};

/// The number of the first character that the paper box shows.
int FirstShown(HWND hPage)
{
    COMBOBOXINFO info = {};
    info.cbSize = sizeof(info);
    SendMessageW(GetDlgItem(hPage, 1006), CB_GETCOMBOBOXINFO, 0, reinterpret_cast<LPARAM>(&info));
    RECT place = {};
    GetClientRect(info.hwndItem, &place);
    return LOWORD(SendMessageW(info.hwndItem, EM_CHARFROMPOS, 0, MAKELPARAM(3, place.bottom / 2)));
}

} // namespace

TEST_CASE_METHOD(KeyboardFixture,
                 "Tab stops once in each group of the settings page, at what is chosen, and changes "
                 "nothing",
                 "[ui][driven][keyboard]")
{
    struct Choice
    {
        short nOrientation, nColour, nDuplex;
        Stops stops;
    };
    const Choice choice =
        GENERATE(Choice{1, 1, 1, {1006, 1007, 1008, 1011, 1002, 1016, 1018, kOk, kCancel, kTabs}},
                 Choice{2, 2, 3, {1006, 1007, 1008, 1012, 1003, 1016, 1013, 1018, kOk, kCancel, kTabs}},
                 Choice{2, 1, 2, {1006, 1007, 1008, 1012, 1002, 1016, 1014, 1018, kOk, kCancel, kTabs}});
    record.stuDevmode.dmOrientation = choice.nOrientation;
    record.stuDevmode.dmColor = choice.nColour;
    record.stuDevmode.dmDuplex = choice.nDuplex;
    OpenSheet sheet = Open(Road::Hosted);
    const HWND hPage = sheet.TurnTo(0);
    const auto before = StateOf(sheet, hPage);
    const Stops stops = TabRound(sheet, 1006);
    CHECK(stops == choice.stops);
    CHECK(StateOf(sheet, hPage) == before);
    CHECK_FALSE(sheet.ApplyEnabled());
    sheet.Close(PSBTN_CANCEL);
    CHECK(memcmp(&result, &record, sizeof(record)) == 0);
}

TEST_CASE_METHOD(KeyboardFixture,
                 "the arrow keys choose within a group and do not leave it, and the tab stop goes along",
                 "[ui][driven][keyboard]")
{
    record.stuDevmode.dmDuplex = 3;
    OpenSheet sheet = Open(Road::Hosted);
    const HWND hPage = sheet.TurnTo(0);
    const std::pair<int, int> pair = GENERATE(std::pair{1011, 1012}, std::pair{1002, 1003}, std::pair{1013, 1014});
    CAPTURE(pair.first);
    TabRound(sheet, pair.first);
    CHECK_FALSE(sheet.ApplyEnabled());
    sheet.PressKey(VK_DOWN);
    CHECK(sheet.Focus() == pair.second);
    CHECK(Checked(hPage, pair.second));
    CHECK_FALSE(Checked(hPage, pair.first));
    CHECK(sheet.ApplyEnabled());
    const Stops stops = TabRound(sheet, pair.second);
    CHECK(std::find(stops.begin(), stops.end(), pair.first) == stops.end());
    CHECK(Checked(hPage, pair.second));
    for (const WORD wKey : {VK_UP, VK_RIGHT, VK_LEFT, VK_DOWN})
    {
        sheet.PressKey(wKey);
        CHECK((sheet.Focus() == pair.first || sheet.Focus() == pair.second));
        CHECK(Checked(hPage, sheet.Focus()));
    }
    sheet.Close(PSBTN_CANCEL);
}

TEST_CASE_METHOD(KeyboardFixture, "Tab on the advanced page stops at its button and its box and changes nothing",
                 "[ui][driven][keyboard]")
{
    OpenSheet sheet = Open(Road::Hosted);
    const HWND hPage = sheet.TurnTo(1);
    const auto before = StateOf(sheet, hPage);
    const Stops stops = TabRound(sheet, kOk);
    CHECK(stops == Stops{kOk, kCancel, kTabs, 1018, 1006});
    CHECK(StateOf(sheet, hPage) == before);
    sheet.Close(PSBTN_CANCEL);
}

TEST_CASE_METHOD(KeyboardFixture, "Tab on the about page stops at the sheet's own controls alone",
                 "[ui][driven][keyboard]")
{
    OpenSheet sheet = Open(Road::Hosted);
    sheet.TurnTo(2);
    const Stops stops = TabRound(sheet, kOk);
    CHECK(stops == Stops{kOk, kCancel, kTabs});
    sheet.Close(PSBTN_CANCEL);
}

TEST_CASE_METHOD(KeyboardFixture,
                 "a paper's name that is longer than its box shows its beginning, however it is chosen",
                 "[ui][driven][keyboard]")
{
    // 63 characters, as many as a name can have.
    std::wstring strLong = L"A0 ";
    for (wchar_t ch = L'A'; strLong.size() < 63; ++ch)
    {
        strLong += ch;
    }
    WriteCaps(PaperKeys({{L"A4", 9, 2100, 2970}, {strLong, 300, 8410, 11890}}, kAbleKeys));
    record.stuDevmode.dmPaperSize = 300;
    OpenSheet sheet = Open(Road::Hosted);
    const HWND hPage = sheet.TurnTo(0);
    const HWND hPapers = GetDlgItem(hPage, 1006);
    const auto shownFirst = [&] {
        sheet.PressKey(VK_SHIFT); // what stands in the sheet's queue is done behind it
        CHECK(Hand::PaperOf(hPapers) == strLong);
        return FirstShown(hPage);
    };
    CHECK(shownFirst() == 0); // as the sheet opens, with the focus in the box

    Hand::ChoosePaper(hPapers, 0);
    Hand::ChoosePaper(hPapers, 1); // by the arrow keys
    CHECK(shownFirst() == 0);

    Hand::ChoosePaper(hPapers, 0);
    Hand::Type(GetDlgItem(hPage, 1007), L"841"); // by its size
    Hand::Type(GetDlgItem(hPage, 1008), L"1189");
    CHECK(shownFirst() == 0);

    TabRound(sheet, 1006); // and when the focus comes back
    CHECK(shownFirst() == 0);
    sheet.Close(PSBTN_CANCEL);
}
