// What the settings page's controls do to each other.

#include "tests/common/LineAtCall.h"
#include "tests/ui/BoxWatcher.h"
#include "tests/ui/SettingsFixture.h"
#include "ui/OrientationControls.h"
#include "ui/OtherControls.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

#include <set>

namespace
{

struct EditFixture : SettingsFixture
{
    BoxWatcher watcher;
};

void HandleMessages()
{
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
    {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

std::set<DWORD> s_sync; ///< the values of bPaperSync at messages to the paper box
LRESULT WINAPI NoteSync(HWND hDlg, int iItem, UINT uiMessage, WPARAM wParam, LPARAM lParam)
{
    if (iItem == 1006)
    {
        s_sync.insert(bPaperSync);
    }
    return SendMessageW(GetDlgItem(hDlg, iItem), uiMessage, wParam, lParam);
}

} // namespace

TEST_CASE_METHOD(EditFixture, "choosing a paper writes its size into the boxes and tells the sheet", "[ui][settings]")
{
    const PageWindow page = Open();
    const int iBefore = page.Changes();
    page.ChoosePaper(1);
    CHECK(page.Paper() == L"A3");
    CHECK(page.Text(1007) == L"297");
    CHECK(page.Text(1008) == L"420");
    CHECK(page.Changes() == iBefore + 3); // two texts and the selection
    CHECK(bPaperSync == 1);
}

TEST_CASE_METHOD(EditFixture, "choosing the custom paper leaves the boxes as they are", "[ui][settings]")
{
    const PageWindow page = Open();
    const int iBefore = page.Changes();
    page.ChoosePaper(4);
    CHECK(page.Paper() == L"自定义");
    CHECK(page.Text(1007) == L"215"); // the paper passed on the way
    CHECK(page.Text(1008) == L"279");
    CHECK(page.Changes() > iBefore);
}

TEST_CASE_METHOD(EditFixture, "a paper's name that is too long for its box is shown from its beginning, all selected",
                 "[ui][settings]")
{
    const std::wstring strLong = L"Transparency, heavy, WWWWWWW, from the second tray of the annex";
    UsePapers({{L"A4", 9, 2100, 2970}, {strLong, 300, 2000, 2000}});
    in.stuDevmode.dmPaperSize = 300;
    const PageWindow page = Open();
    HandleMessages();
    REQUIRE(page.Paper() == strLong);
    const HWND hEdit = FindWindowExW(page.Item(1006), nullptr, L"Edit", nullptr);
    REQUIRE(hEdit != nullptr);
    DWORD dwFirst = 99;
    DWORD dwLast = 99;
    SendMessageW(hEdit, EM_GETSEL, reinterpret_cast<WPARAM>(&dwFirst), reinterpret_cast<LPARAM>(&dwLast));
    CHECK(dwFirst == 0);
    CHECK(dwLast == strLong.size());
    CHECK(static_cast<short>(LOWORD(SendMessageW(hEdit, EM_POSFROMCHAR, 0, 0))) >= 0);
    RECT client = {};
    GetClientRect(hEdit, &client);
    // It is too long indeed.
    CHECK(static_cast<short>(LOWORD(SendMessageW(hEdit, EM_POSFROMCHAR, strLong.size() - 1, 0))) > client.right);
}

TEST_CASE_METHOD(EditFixture, "in landscape the paper's width stands in the second box", "[ui][settings]")
{
    const PageWindow page = Open();
    page.Click(1012);
    CHECK(iWidthEditId == 1008);
    CHECK(iHeightEditId == 1007);
    page.ChoosePaper(2);
    CHECK(page.Text(1007) == L"210");
    CHECK(page.Text(1008) == L"148");
}

TEST_CASE_METHOD(EditFixture, "switching the orientation exchanges the two numbers of a listed paper", "[ui][settings]")
{
    const PageWindow page = Open();
    const int iBefore = page.Changes();
    page.Click(1012);
    CHECK(page.Text(1007) == L"297");
    CHECK(page.Text(1008) == L"210");
    CHECK(page.Changes() == iBefore + 3);
    CHECK(bNoSwap == 1);
    page.Click(1011);
    CHECK(page.Text(1007) == L"210");
    CHECK(page.Text(1008) == L"297");
}

TEST_CASE_METHOD(EditFixture, "switching the orientation exchanges the texts of a custom paper", "[ui][settings]")
{
    in.stuDevmode.dmPaperSize = 256;
    const PageWindow page = Open();
    page.Type(1007, L"100");
    page.Type(1008, L"200");
    REQUIRE(page.Paper() == L"自定义");
    page.Click(1012);
    CHECK(page.Text(1007) == L"200");
    CHECK(page.Text(1008) == L"100");
    page.Click(1011);
    CHECK(page.Text(1007) == L"100");
    CHECK(page.Text(1008) == L"200");
}

TEST_CASE_METHOD(EditFixture, "an exchange keeps four characters of each text", "[ui][settings]")
{
    in.stuDevmode.dmPaperSize = 256;
    const PageWindow page = Open();
    page.Type(1007, L"12345");
    page.Type(1008, L"67890");
    page.Click(1012);
    CHECK(page.Text(1007) == L"6789");
    CHECK(page.Text(1008) == L"1234");
}

TEST_CASE_METHOD(EditFixture, "a second click on the chosen orientation exchanges a custom paper's texts again",
                 "[ui][settings]")
{
    in.stuDevmode.dmPaperSize = 256;
    const PageWindow page = Open();
    page.Type(1007, L"100");
    page.Type(1008, L"200");
    page.Click(1011);
    CHECK(page.Text(1007) == L"200");
    CHECK(page.Text(1008) == L"100");
}

TEST_CASE_METHOD(EditFixture, "a custom paper is known by the code's text and not by its number", "[ui][settings]")
{
    UsePapers({{L"256 by number", 256, 1000, 2000}, {L"A4", 9, 2100, 2970}});
    const PageWindow page = Open();
    page.ChoosePaper(0);
    CHECK(page.Text(1007) == L"100");
    CHECK(page.Text(1008) == L"200");
}

TEST_CASE_METHOD(EditFixture, "typing a size selects its paper, in both orientations", "[ui][settings]")
{
    const int iOrientation = GENERATE(1011, 1012);
    in.stuDevmode.dmPaperSize = 8;
    const PageWindow page = Open();
    page.Click(iOrientation);
    page.Type(iOrientation == 1011 ? 1007 : 1008, L"210");
    page.Type(iOrientation == 1011 ? 1008 : 1007, L"297");
    CHECK(page.Paper() == L"A4");
    CHECK(bPaperSync == 1);
}

TEST_CASE_METHOD(EditFixture, "typing a small number selects the custom paper and leaves the other box",
                 "[ui][settings]")
{
    const PageWindow page = Open();
    page.Type(1007, L"1");
    CHECK(page.Paper() == L"自定义");
    CHECK(page.Text(1007) == L"1");
    CHECK(page.Text(1008) == L"297");
}

TEST_CASE_METHOD(EditFixture, "a small number selects a paper that is that small", "[ui][settings]")
{
    UsePapers({{L"A4", 9, 2100, 2970}, {L"label", 300, 40, 2970}});
    const PageWindow page = Open();
    page.Type(1007, L"1");
    CHECK(page.Paper() == L"label");
}

TEST_CASE_METHOD(EditFixture, "an empty box counts as 0, without a warning", "[ui][settings]")
{
    const PageWindow page = Open();
    page.Type(1007, L"");
    CHECK(page.Text(1007).empty());
    CHECK(page.Paper() == L"自定义");
    CHECK(watcher.Count() == 0);
}

TEST_CASE_METHOD(EditFixture, "each key in a size box tells the sheet of a change", "[ui][settings]")
{
    const PageWindow page = Open();
    const int iBefore = page.Changes();
    page.Type(1007, L"150");
    CHECK(page.Changes() == iBefore + 3);
}

TEST_CASE_METHOD(EditFixture, "a non-digit brings the warning box, leaves text and selection, and typing goes on",
                 "[ui][settings]")
{
    const PageWindow page = Open();
    page.Type(1007, L"2x");
    CHECK(page.Text(1007) == L"2x");
    CHECK(page.Paper() == L"自定义"); // found for the 2
    const std::vector<BoxWatcher::Box> boxes = watcher.Boxes();
    REQUIRE(boxes.size() == 1);
    CHECK(boxes[0].strCaption == L"警告");
    CHECK(boxes[0].strText == L"请确保输入的数据正确");
    CHECK_FALSE(boxes[0].bOwned);
    CHECK(boxes[0].uiButtons == 1);

    SendMessageW(page.Item(1007), WM_CHAR, VK_BACK, 1);
    SendMessageW(page.Item(1007), WM_CHAR, L'1', 1);
    SendMessageW(page.Item(1007), WM_CHAR, L'0', 1);
    CHECK(page.Text(1007) == L"210");
    CHECK(page.Paper() == L"A4");
    CHECK(watcher.Count() == 1);
    CHECK(bPaperSync == 1);
}

TEST_CASE_METHOD(EditFixture, "the warning box comes once for each change while a non-digit stands in either box",
                 "[ui][settings]")
{
    const PageWindow page = Open();
    page.Type(1008, L"y"); // 1: the width is read first and passes, the height fails
    CHECK(watcher.Count() == 1);
    page.Type(1007, L"12"); // 2 and 3: both boxes are read each time
    CHECK(watcher.Count() == 3);
    page.Type(1007, L"-"); // 4: the width fails, and the height is not read
    CHECK(watcher.Count() == 4);
}

TEST_CASE_METHOD(EditFixture, "a minus sign is no digit", "[ui][settings]")
{
    const PageWindow page = Open();
    page.Type(1007, L"-5");
    CHECK(watcher.Count() == 2);
    CHECK(page.Paper() == L"A4");
}

TEST_CASE_METHOD(EditFixture, "a handler of the boxes does nothing while another writes them", "[ui][settings]")
{
    const PageWindow page = Open();
    bPaperSync = 0;
    page.Type(1007, L"x");
    CHECK(watcher.Count() == 0);
    CHECK(page.Paper() == L"A4");
    CHECK(Sub_On_Edit(page.Get(), EN_CHANGE, &data) == 1);
    CHECK(Sub_On_Combo(page.Get(), &data) == 1);
    CHECK(page.Text(1007) == L"x");
    CHECK(bPaperSync == 0);
    bPaperSync = 1;
}

TEST_CASE_METHOD(EditFixture, "while a handler of the boxes writes, the others are told to do nothing",
                 "[ui][settings]")
{
    const PageWindow page = Open();
    const ImportHook hook(nullptr, "SendDlgItemMessageW", &NoteSync);
    s_sync.clear();
    page.Type(1007, L"297");
    CHECK(s_sync == std::set<DWORD>{0}); // the selection of the custom paper
    s_sync.clear();
    page.ChoosePaper(1);
    CHECK(s_sync == std::set<DWORD>{0});
    CHECK(bPaperSync == 1);
}

TEST_CASE_METHOD(EditFixture, "a blocked handler's change is told to the sheet all the same", "[ui][settings]")
{
    const PageWindow page = Open();
    bPaperSync = 0;
    const int iBefore = page.Changes();
    page.Type(1007, L"1");
    CHECK(page.Changes() == iBefore + 1);
    bPaperSync = 1;
}

TEST_CASE_METHOD(EditFixture, "only EN_CHANGE starts the search", "[ui][settings]")
{
    const PageWindow page = Open();
    page.Type(1007, L"1");
    REQUIRE(page.Paper() == L"自定义");
    page.ChoosePaper(0);
    SetWindowTextW(page.Item(1006), L"A4");
    CHECK(Sub_On_Edit(page.Get(), EN_UPDATE, &data) == 1);
    CHECK(page.Paper() == L"A4");
}

TEST_CASE_METHOD(EditFixture, "a paper that the combo box does not hold makes the handler fail without changing it",
                 "[ui][settings]")
{
    const PageWindow page = Open();
    SendMessageW(page.Item(1006), CB_DELETESTRING, 1, 0); // A3
    bPaperSync = 0;
    page.Type(1007, L"297");
    page.Type(1008, L"420");
    bPaperSync = 1;
    CHECK(Sub_On_Edit(page.Get(), EN_CHANGE, &data) == 0);
    CHECK(page.Paper() == L"A4");
    CHECK(bPaperSync == 1);
}

TEST_CASE_METHOD(EditFixture, "a name is selected by its beginning, as the platform does it", "[ui][settings]")
{
    UsePapers({{L"A4 landscape", 300, 2970, 2100}, {L"A4", 9, 2100, 2970}});
    in.stuDevmode.dmPaperSize = 256;
    const PageWindow page = Open();
    page.Type(1007, L"210");
    page.Type(1008, L"297");
    CHECK(page.Paper() == L"A4 landscape");
}

TEST_CASE_METHOD(EditFixture, "text typed into the paper box itself leaves the page alone", "[ui][settings]")
{
    const PageWindow page = Open();
    COMBOBOXINFO info = {};
    info.cbSize = sizeof(info);
    REQUIRE(GetComboBoxInfo(page.Item(1006), &info));
    const int iBefore = page.Changes();
    SendMessageW(info.hwndItem, WM_CHAR, L'q', 1);
    CHECK(page.Changes() == iBefore);
    CHECK(page.Text(1007) == L"210");
}

TEST_CASE_METHOD(EditFixture, "a spin changes its box by one, and the search follows", "[ui][settings]")
{
    const PageWindow page = Open();
    page.PressSpin(1004, true);
    CHECK(page.Text(1007) == L"211");
    page.PressSpin(1005, false);
    CHECK(page.Text(1008) == L"296");
    CHECK(page.Paper() == L"A4"); // within 5 mm
    for (int i = 0; i < 5; ++i)
    {
        page.PressSpin(1004, true);
    }
    CHECK(page.Text(1007) == L"216");
    CHECK(page.Paper() == L"自定义");
}

TEST_CASE_METHOD(EditFixture, "a spin goes on beyond the range that it was given", "[ui][settings]")
{
    const PageWindow page = Open();
    for (int i = 0; i < 8; ++i)
    {
        page.PressSpin(1004, false);
    }
    CHECK(page.Text(1007) == L"202");
}

TEST_CASE_METHOD(EditFixture, "the arrow keys spin too", "[ui][settings]")
{
    const PageWindow page = Open();
    SendMessageW(page.Item(1007), WM_KEYDOWN, VK_UP, 1);
    CHECK(page.Text(1007) == L"211");
    SendMessageW(page.Item(1007), WM_KEYDOWN, VK_DOWN, 1);
    SendMessageW(page.Item(1007), WM_KEYDOWN, VK_DOWN, 1);
    CHECK(page.Text(1007) == L"209");
}

TEST_CASE_METHOD(EditFixture, "a spin stays at 0", "[ui][settings]")
{
    const PageWindow page = Open();
    page.Type(1007, L"0");
    page.PressSpin(1004, false);
    CHECK(page.Text(1007) == L"0");
}

TEST_CASE_METHOD(EditFixture, "a spin goes from 9999 to 10000, which is read as 1000 the next time", "[ui][settings]")
{
    const PageWindow page = Open();
    page.Type(1007, L"9999");
    page.PressSpin(1004, true);
    CHECK(page.Text(1007) == L"10000");
    page.PressSpin(1004, true);
    CHECK(page.Text(1007) == L"1001");
}

TEST_CASE_METHOD(EditFixture, "a spin on an empty box starts at 0", "[ui][settings]")
{
    const PageWindow page = Open();
    page.Type(1007, L"");
    page.PressSpin(1004, true);
    CHECK(page.Text(1007) == L"1");
}

TEST_CASE_METHOD(EditFixture, "a spin on a text that is no number warns and leaves it", "[ui][settings]")
{
    const PageWindow page = Open();
    bPaperSync = 0;
    page.Type(1007, L"1a");
    bPaperSync = 1;
    NMUPDOWN press = {};
    press.hdr.hwndFrom = page.Item(1004);
    press.iDelta = 1;
    CHECK(Sub_On_Spin(page.Get(), &press) == 0);
    CHECK(page.Text(1007) == L"1a");
    CHECK(watcher.Count() == 1);
}

TEST_CASE_METHOD(EditFixture, "duplex on brings the binding that was applied last, off forgets a click",
                 "[ui][settings]")
{
    in.stuDevmode.dmDuplex = 3;
    const PageWindow page = Open();
    page.Click(1014); // the long edge instead
    REQUIRE(page.Checked(1014));
    REQUIRE_FALSE(page.Checked(1013));
    page.Click(1016);
    CHECK_FALSE(page.Checked(1013));
    CHECK_FALSE(page.Checked(1014));
    CHECK_FALSE(page.Enabled(1013));
    CHECK_FALSE(page.Enabled(1014));
    page.Click(1016);
    CHECK(page.Checked(1013));
    CHECK_FALSE(page.Checked(1014));
    CHECK(page.Enabled(1013));
    CHECK(page.Enabled(1014));
}

TEST_CASE_METHOD(EditFixture, "duplex on a one-sided record brings the long edge", "[ui][settings]")
{
    const PageWindow page = Open();
    const int iBefore = page.Changes();
    page.Click(1016);
    CHECK(page.Checked(1014));
    CHECK_FALSE(page.Checked(1013));
    CHECK(page.Changes() == iBefore + 1);
}

TEST_CASE_METHOD(EditFixture, "the binding's handler does not uncheck the other button", "[ui][settings]")
{
    in.stuDevmode.dmDuplex = 2;
    const PageWindow page = Open();
    CHECK(On_Check_Duplex(page.Get(), 3) == 1);
    CHECK(page.Checked(1013));
    CHECK(page.Checked(1014));
}

TEST_CASE_METHOD(EditFixture, "each button but the help button tells the sheet of a change", "[ui][settings]")
{
    in.stuDevmode.dmDuplex = 2;
    const PageWindow page = Open();
    for (const int iButton : {1002, 1003, 1013, 1014})
    {
        CAPTURE(iButton);
        const int iBefore = page.Changes();
        page.Click(iButton);
        CHECK(page.Changes() == iBefore + 1);
        CHECK(page.Checked(iButton));
    }
    const int iBefore = page.Changes();
    page.Click(1018);
    CHECK(page.Changes() == iBefore);
    CHECK(calls.empty());
    CHECK(watcher.Count() == 0);
}

TEST_CASE_METHOD(EditFixture, "a spin and the edit that it makes leave their scopes in the log, the box read inside",
                 "[ui][settings][log]")
{
    const std::string strFunction = GENERATE(std::string("Sub_On_Spin"), std::string("Sub_On_Edit"));
    const PageWindow page = Open();
    const LoggingOn logging{"OutputFunBeginInfo"};
    page.PressSpin(1004, true);
    const std::vector<std::string> lines = Masked(logging);
    const auto at = [&](const std::string& strEvent) {
        return std::find(lines.begin(), lines.end(), "VelUI_dll__" + strFunction + " :" + strEvent + "......");
    };
    const auto start = at("START");
    const auto end = at("End  ");
    REQUIRE(start != lines.end());
    REQUIRE(end != lines.end());
    CHECK(*(start + 1) == "VelUI_dll__SubGetEditToINT :START......");
    CHECK(start < end);
}

TEST_CASE_METHOD(EditFixture, "a spin's scope is open when it asks for its box", "[ui][settings][log]")
{
    const PageWindow page = Open();
    NMUPDOWN press = {};
    press.hdr.hwndFrom = page.Item(1004);
    const LoggingOn logging{"OutputFunBeginInfo"};
    const LineAtCall<decltype(SendMessageW)> line(logging, "SendMessageW");
    CHECK(Sub_On_Spin(page.Get(), &press) == 1);
    CHECK(line.Text() == "VelUI_dll__Sub_On_Spin :START......");
}

TEST_CASE_METHOD(EditFixture,
                 "the scopes of the orientation and of the duplex box are open when they read their buttons",
                 "[ui][settings][log]")
{
    const PageWindow page = Open();
    const LoggingOn logging{"OutputFunBeginInfo"};
    {
        const LineAtCall<decltype(IsDlgButtonChecked)> line(logging, "IsDlgButtonChecked");
        On_Radio_Stand(page.Get(), &data);
        CHECK(line.Text() == "VelUI_dll__On_Radio_Stand :START......");
    }
    const LineAtCall<decltype(IsDlgButtonChecked)> line(logging, "IsDlgButtonChecked");
    On_Check_Duplex(page.Get(), 1);
    CHECK(line.Text() == "VelUI_dll__On_Check_Duplex :START......");
}

TEST_CASE_METHOD(EditFixture, "the page answers 1 to commands and 0 to all else", "[ui][settings]")
{
    const PageWindow page = Open();
    CHECK(ProSetPage(page.Get(), WM_COMMAND, MAKEWPARAM(1011, BN_CLICKED), 0) == 1);
    CHECK(ProSetPage(page.Get(), WM_COMMAND, MAKEWPARAM(1018, BN_CLICKED), 0) == 1);
    CHECK(ProSetPage(page.Get(), WM_COMMAND, MAKEWPARAM(1006, CBN_EDITCHANGE), 0) == 1);
    CHECK(ProSetPage(page.Get(), WM_SETFONT, 0, 0) == 0);
    CHECK(ProSetPage(page.Get(), WM_MOUSEMOVE, 0, 0) == 0);
    for (const UINT uiCode : {PSN_SETACTIVE, PSN_KILLACTIVE, PSN_RESET, PSN_QUERYCANCEL, PSN_HELP, PSN_APPLY})
    {
        CHECK(page.Notify(uiCode) == 0);
    }
}

TEST_CASE_METHOD(EditFixture, "two pages of one process share the roles of the size boxes", "[ui][settings]")
{
    const PageWindow first = Open();
    SheetDataFixture other;
    other.UsePapers(kPapers);
    other.in = in;
    other.out = in;
    const PageWindow second(module.handle, IDD_SETTINGS, &ProSetPage, reinterpret_cast<LPARAM>(&other.data));
    second.Click(1012);
    first.ChoosePaper(1); // portrait, but the last orientation handled was landscape
    CHECK(first.Checked(1011));
    CHECK(first.Text(1007) == L"420");
    CHECK(first.Text(1008) == L"297");
}
