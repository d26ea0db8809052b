// How the settings page comes up.

#include "tests/ui/IconShape.h"
#include "tests/ui/PageWindow.h"
#include "tests/ui/SettingsFixture.h"
#include "ui/OrientationControls.h"
#include "ui/OtherControls.h"
#include "ui/PaperControls.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

TEST_CASE_METHOD(SettingsFixture, "the page offers the papers in list order and the custom paper last",
                 "[ui][settings]")
{
    const PageWindow page = Open();
    REQUIRE(SendMessageW(page.Item(1006), CB_GETCOUNT, 0, 0) == 5);
    const std::vector<std::wstring> expected = {L"A4", L"A3", L"A5", L"Letter", L"自定义"};
    for (size_t i = 0; i < expected.size(); ++i)
    {
        wchar_t szName[64] = {};
        SendMessageW(page.Item(1006), CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(szName));
        CHECK(szName == expected[i]);
    }
}

TEST_CASE_METHOD(SettingsFixture, "the page selects the record's paper and shows its size in millimetres",
                 "[ui][settings]")
{
    in.stuDevmode.dmPaperSize = 1; // 2159 by 2794
    const PageWindow page = Open();
    CHECK(page.Paper() == L"Letter");
    CHECK(page.Text(1007) == L"215");
    CHECK(page.Text(1008) == L"279");
}

TEST_CASE_METHOD(SettingsFixture, "a paper that is not listed gives A4, wherever that stands", "[ui][settings]")
{
    UsePapers({{L"B5", 13, 1820, 2570}, {L"A4", 9, 2100, 2970}});
    in.stuDevmode.dmPaperSize = 77;
    const PageWindow page = Open();
    CHECK(page.PaperIndex() == 1);
    CHECK(page.Text(1007) == L"210");
}

TEST_CASE_METHOD(SettingsFixture, "without A4 a paper that is not listed gives the first of the list", "[ui][settings]")
{
    UsePapers({{L"B5", 13, 1820, 2570}, {L"B4", 12, 2570, 3640}});
    in.stuDevmode.dmPaperSize = 77;
    const PageWindow page = Open();
    CHECK(page.PaperIndex() == 0);
    CHECK(page.Text(1007) == L"182");
}

TEST_CASE_METHOD(SettingsFixture, "each step that sets the page up answers 1", "[ui][settings]")
{
    UsePapers(kPapers);
    const PageWindow page(module.handle, IDD_SETTINGS, &NoPage, 0);
    CHECK(SubInitPaperSize(&data, page.Get()) == 1);
    CHECK(SubInitOrientation(&data, page.Get()) == 1);
    CHECK(SubInitOther(&data, page.Get()) == 1);
}

TEST_CASE_METHOD(SettingsFixture, "without any paper the page comes up on the custom one", "[ui][settings]")
{
    UsePapers({});
    const PageWindow page = Open();
    CHECK(page.Paper() == L"自定义");
    CHECK(page.Text(1007).empty());
    CHECK(page.Text(1008).empty());
}

TEST_CASE_METHOD(SettingsFixture, "an empty list leaves the page without a selection", "[ui][settings]")
{
    UsePapers({});
    data.dwCount = 0;
    list[0].aszPaperName[0] = L'\0';
    const PageWindow page = Open();
    CHECK(SendMessageW(page.Item(1006), CB_GETCOUNT, 0, 0) == 0);
    CHECK(page.PaperIndex() == CB_ERR);
    CHECK(page.Text(1007).empty());
    CHECK(bPaperSync == 1);
}

TEST_CASE_METHOD(SettingsFixture, "a custom record opens with two empty size boxes, whatever size it holds",
                 "[ui][settings]")
{
    in.stuDevmode.dmPaperSize = 256;
    in.stuDevmode.dmPaperWidth = 1000;
    in.stuDevmode.dmPaperLength = 2000;
    const PageWindow page = Open();
    CHECK(page.Paper() == L"自定义");
    CHECK(page.Text(1007).empty());
    CHECK(page.Text(1008).empty());
}

TEST_CASE_METHOD(SettingsFixture, "the size boxes take five characters and the spins go from 0 to 5", "[ui][settings]")
{
    const PageWindow page = Open();
    for (const int iBox : {1007, 1008})
    {
        CHECK(SendMessageW(page.Item(iBox), EM_GETLIMITTEXT, 0, 0) == 5);
    }
    for (const int iSpin : {1004, 1005})
    {
        CHECK(SendMessageW(page.Item(iSpin), UDM_GETRANGE, 0, 0) == MAKELONG(5, 0));
    }
    CHECK(reinterpret_cast<HWND>(SendMessageW(page.Item(1004), UDM_GETBUDDY, 0, 0)) == page.Item(1007));
    CHECK(reinterpret_cast<HWND>(SendMessageW(page.Item(1005), UDM_GETBUDDY, 0, 0)) == page.Item(1008));
}

TEST_CASE_METHOD(SettingsFixture, "a printer that does not turn the paper offers portrait alone", "[ui][settings]")
{
    const wchar_t* const pszDegrees = GENERATE(L"0", L"180", L"1", L"-1");
    UsePapers(kPapers, {{L"Orientation", pszDegrees}, {L"ColorDevice", L"1"}, {L"Duplex", L"1"}});
    in.stuDevmode.dmOrientation = 2;
    const PageWindow page = Open();
    CHECK_FALSE(page.Enabled(1012));
    CHECK(page.Checked(1011));
    CHECK_FALSE(page.Checked(1012));
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmOrientation == 1);
}

TEST_CASE_METHOD(SettingsFixture, "a printer that turns the paper by 90 or 270 degrees shows the record's orientation",
                 "[ui][settings]")
{
    const wchar_t* const pszDegrees = GENERATE(L"90", L"270");
    const short nOrientation = GENERATE(short{1}, short{2}, short{0}, short{3});
    UsePapers(kPapers, {{L"Orientation", pszDegrees}});
    in.stuDevmode.dmOrientation = nOrientation;
    const PageWindow page = Open();
    CHECK(page.Enabled(1012));
    CHECK(page.Checked(1012) == (nOrientation == 2));
    CHECK(page.Checked(1011) == (nOrientation != 2));
    CHECK(page.Text(1007) == (nOrientation == 2 ? L"297" : L"210"));
    CHECK(page.Text(1008) == (nOrientation == 2 ? L"210" : L"297"));
}

TEST_CASE_METHOD(SettingsFixture, "a printer without colour offers monochrome alone", "[ui][settings]")
{
    const CapKeys keys = GENERATE(CapKeys{}, CapKeys{{L"ColorDevice", L"0"}}, CapKeys{{L"ColorDevice", L"2"}});
    UsePapers(kPapers, keys);
    in.stuDevmode.dmColor = 2;
    const PageWindow page = Open();
    CHECK_FALSE(page.Enabled(1003));
    CHECK(page.Checked(1002));
    CHECK_FALSE(page.Checked(1003));
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmColor == 1);
}

TEST_CASE_METHOD(SettingsFixture, "a colour printer shows the record's choice", "[ui][settings]")
{
    const short nColour = GENERATE(short{1}, short{2}, short{0});
    in.stuDevmode.dmColor = nColour;
    const PageWindow page = Open();
    CHECK(page.Enabled(1003));
    CHECK(page.Checked(1003) == (nColour == 2));
    CHECK(page.Checked(1002) == (nColour != 2));
}

TEST_CASE_METHOD(SettingsFixture, "a printer without duplex offers neither it nor a binding", "[ui][settings]")
{
    const CapKeys keys = GENERATE(CapKeys{}, CapKeys{{L"Duplex", L"0"}}, CapKeys{{L"Duplex", L"3"}});
    UsePapers(kPapers, keys);
    in.stuDevmode.dmDuplex = 3;
    const PageWindow page = Open();
    for (const int iControl : {1016, 1013, 1014})
    {
        CAPTURE(iControl);
        CHECK_FALSE(page.Enabled(iControl));
        CHECK_FALSE(page.Checked(iControl));
    }
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmDuplex == 1);
}

TEST_CASE_METHOD(SettingsFixture, "a duplex printer shows the record's binding", "[ui][settings]")
{
    const short nDuplex = GENERATE(short{1}, short{2}, short{3}, short{0});
    in.stuDevmode.dmDuplex = nDuplex;
    const PageWindow page = Open();
    const bool bDuplex = nDuplex == 2 || nDuplex == 3;
    CHECK(page.Enabled(1016));
    CHECK(page.Checked(1016) == bDuplex);
    CHECK(page.Enabled(1013) == bDuplex);
    CHECK(page.Enabled(1014) == bDuplex);
    CHECK(page.Checked(1013) == (nDuplex == 3));
    CHECK(page.Checked(1014) == (nDuplex == 2));
}

TEST_CASE_METHOD(SettingsFixture, "the page tells the sheet of a change as soon as it is up", "[ui][settings]")
{
    const PageWindow page = Open();
    CHECK(page.Changes() == 2); // one for each size box that it filled
}

TEST_CASE_METHOD(SettingsFixture, "a page on the custom paper tells of the exchange of two empty boxes",
                 "[ui][settings]")
{
    in.stuDevmode.dmPaperSize = 256;
    const PageWindow page = Open();
    CHECK(page.Changes() == 2);
}

TEST_CASE_METHOD(SettingsFixture, "the picture follows the orientation, at 64 by 64 pixels", "[ui][settings]")
{
    const PageWindow page = Open();
    const auto picture = [&page] {
        const auto hIcon = reinterpret_cast<HICON>(SendMessageW(page.Item(1015), STM_GETICON, 0, 0));
        ICONINFO info = {};
        REQUIRE(GetIconInfo(hIcon, &info));
        BITMAP bitmap = {};
        GetObjectW(info.hbmColor, sizeof(bitmap), &bitmap);
        DeleteObject(info.hbmColor);
        DeleteObject(info.hbmMask);
        CHECK(bitmap.bmWidth == 64);
        CHECK(bitmap.bmHeight == 64);
        return hIcon;
    };
    const HICON hPortrait = picture();
    page.Click(1012);
    const HICON hLandscape = picture();
    CHECK(hLandscape != hPortrait);
    // A sheet of paper that stands, and one that lies.
    CHECK(DrawnSize(hPortrait).cy > DrawnSize(hPortrait).cx);
    CHECK(DrawnSize(hLandscape).cx > DrawnSize(hLandscape).cy);
    page.Click(1011);
    CHECK(picture() == hPortrait);
}

TEST_CASE_METHOD(SettingsFixture, "the first message runs on into the next: its window handle is taken for a control",
                 "[ui][settings]")
{
    in.stuDevmode.dmDuplex = 3;
    const PageWindow page = Open();
    PROPSHEETPAGEW sheetPage = {};
    sheetPage.lParam = reinterpret_cast<LPARAM>(&data);
    SendMessageW(page.Item(1006), CB_RESETCONTENT, 0, 0);
    const int iBefore = page.Changes();
    // The boxes are filled, two changes; no control has the number 0.
    CHECK(ProSetPage(page.Get(), WM_INITDIALOG, 0, reinterpret_cast<LPARAM>(&sheetPage)) == 1);
    CHECK(page.Changes() == iBefore + 2);
    SendMessageW(page.Item(1006), CB_RESETCONTENT, 0, 0);
    // A handle whose words are a control and a click makes one more.
    CHECK(ProSetPage(page.Get(), WM_INITDIALOG, MAKEWPARAM(1002, BN_CLICKED), reinterpret_cast<LPARAM>(&sheetPage)) ==
          1);
    CHECK(page.Changes() == iBefore + 5);
}

TEST_CASE_METHOD(SettingsFixture, "a window handle that names a handled pair calls that pair's handler",
                 "[ui][settings]")
{
    in.stuDevmode.dmPaperSize = 256;
    const PageWindow page = Open();
    PROPSHEETPAGEW sheetPage = {};
    sheetPage.lParam = reinterpret_cast<LPARAM>(&data);
    const auto initAgain = [&](WPARAM wHandle) {
        SendMessageW(page.Item(1006), CB_RESETCONTENT, 0, 0);
        CHECK(ProSetPage(page.Get(), WM_INITDIALOG, wHandle, reinterpret_cast<LPARAM>(&sheetPage)) == 1);
    };
    page.Type(1007, L"100");
    page.Type(1008, L"200");
    // The page exchanges a custom paper's texts while it comes up.
    initAgain(MAKEWPARAM(1018, BN_CLICKED));
    CHECK(page.Text(1007) == L"200");
    // Then it does so, and the handler of the orientation does so once more.
    initAgain(MAKEWPARAM(1011, BN_CLICKED));
    CHECK(page.Text(1007) == L"200");
    CHECK(page.Text(1008) == L"100");
}

namespace
{

LONG_PTR RealSetWindowLong(HWND hWindow, int iIndex, LONG_PTR lValue)
{
    auto* const pfnReal = Platform<LONG_PTR WINAPI(HWND, int, LONG_PTR)>(L"user32", "SetWindowLongPtrW");
    return pfnReal(hWindow, iIndex, lValue);
}

/// Fails for a page's data alone.
LONG_PTR WINAPI FailSetWindowLong(HWND hWindow, int iIndex, LONG_PTR lValue)
{
    if (iIndex != GWLP_USERDATA)
    {
        return RealSetWindowLong(hWindow, iIndex, lValue);
    }
    SetLastError(ERROR_ACCESS_DENIED);
    return 0;
}

LONG_PTR WINAPI FailWithOldValue(HWND hWindow, int iIndex, LONG_PTR lValue)
{
    RealSetWindowLong(hWindow, iIndex, lValue);
    SetLastError(ERROR_ACCESS_DENIED);
    return 1;
}

} // namespace

TEST_CASE_METHOD(SettingsFixture, "a page that can't keep its data is not set up", "[ui][settings]")
{
    const PageWindow page(module.handle, IDD_ABOUT, &NoPage, 0);
    PROPSHEETPAGEW sheetPage = {};
    sheetPage.lParam = reinterpret_cast<LPARAM>(&data);
    const ImportHook hook(nullptr, "SetWindowLongPtrW", &FailSetWindowLong);
    CHECK(ProSetPage(page.Get(), WM_INITDIALOG, 0, reinterpret_cast<LPARAM>(&sheetPage)) == 0);
    CHECK(page.Changes() == 0);
}

TEST_CASE_METHOD(SettingsFixture, "a page that could not keep its data tells of changes and does nothing else",
                 "[ui][settings]")
{
    PROPSHEETPAGEW sheetPage = {};
    sheetPage.lParam = reinterpret_cast<LPARAM>(&data);
    const ImportHook hook(nullptr, "SetWindowLongPtrW", &FailSetWindowLong);
    const PageWindow page(module.handle, IDD_SETTINGS, &ProSetPage, sheetPage.lParam);
    page.Type(IDC_FIRST_SIZE, L"210");
    CHECK(page.Changes() == 3); // one a key
    page.Click(IDC_LANDSCAPE);
    page.Click(IDC_DUPLEX);
    CHECK(page.Changes() == 5);
    CHECK(page.Text(IDC_FIRST_SIZE) == L"210");
    CHECK(page.Text(IDC_SECOND_SIZE).empty());
    CHECK(page.Enabled(IDC_SHORT_EDGE)); // as the dialog has it
}

TEST_CASE_METHOD(SettingsFixture, "a last error beside an old value is no failure to keep the data", "[ui][settings]")
{
    const ImportHook hook(nullptr, "SetWindowLongPtrW", &FailWithOldValue);
    const PageWindow page = Open();
    CHECK(page.Paper() == L"A4");
}
