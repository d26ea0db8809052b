#include "tests/common/LineAtCall.h"
#include "tests/ui/SettingsFixture.h"
#include "ui/AdvancedPage.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

namespace
{

struct AdvancedFixture : SheetDataFixture
{
    PageWindow Open()
    {
        return PageWindow(module.handle, IDD_ADVANCED, &ProSeniorPage, reinterpret_cast<LPARAM>(&data));
    }
    void Store(const char* pszValue) const
    {
        WriteFileBytes(DefSettingFile(), std::string("[PrintSetting]\r\nDefaultNoWaterPrint=") + pszValue + "\r\n");
    }
    std::string Stored() const
    {
        wchar_t szValue[32] = {};
        GetPrivateProfileStringW(L"PrintSetting", L"DefaultNoWaterPrint", L"none", szValue, 32,
                                 DefSettingFile().c_str());
        const std::wstring strValue = szValue;
        return std::string(strValue.begin(), strValue.end());
    }
};

LONG_PTR WINAPI FailSetWindowLong(HWND, int, LONG_PTR)
{
    SetLastError(ERROR_ACCESS_DENIED);
    return 0;
}

} // namespace

TEST_CASE_METHOD(AdvancedFixture, "without a stored setting the request comes up unchecked", "[ui][advanced]")
{
    in.dwNoWaterPrint = 1;
    const PageWindow page = Open();
    CHECK_FALSE(page.Checked(1006));
    CHECK(in.dwNoWaterPrint == 0);
    CHECK(page.Changes() == 0);
}

TEST_CASE_METHOD(AdvancedFixture, "a stored 1 comes up checked, whatever the record holds", "[ui][advanced]")
{
    Store("1");
    in.dwNoWaterPrint = GENERATE(0u, 7u);
    const PageWindow page = Open();
    CHECK(page.Checked(1006));
    CHECK(in.dwNoWaterPrint == 1);
}

TEST_CASE_METHOD(AdvancedFixture, "any other stored number comes up unchecked, and an apply writes 0", "[ui][advanced]")
{
    Store(GENERATE("5", "2", "-1"));
    const PageWindow page = Open();
    CHECK_FALSE(page.Checked(1006));
    page.Notify(PSN_APPLY);
    CHECK(out.dwNoWaterPrint == 0);
    CHECK(Stored() == "0");
}

TEST_CASE_METHOD(AdvancedFixture, "an apply writes the box into the record's tail and into the store", "[ui][advanced]")
{
    out.dwTailWord0 = out.dwNoWaterPrint = out.dwTailWord2 = 0xBBBBBBBB;
    const PageWindow page = Open();
    page.Click(1006);
    CHECK(page.Changes() == 1);
    CHECK(page.Notify(PSN_APPLY) == 0);
    CHECK(out.dwNoWaterPrint == 1);
    CHECK(out.dwTailWord0 == 0);
    CHECK(out.dwTailWord2 == 0);
    CHECK(Stored() == "1");
    REQUIRE(calls.size() == 1);
    CHECK(calls[0].uiFunction == 9);
    CHECK(calls[0].lParam1 == 0x5E1);
    CHECK(calls[0].lParam2 == 1);

    page.Click(1006);
    page.Notify(PSN_APPLY);
    CHECK(out.dwNoWaterPrint == 0);
    CHECK(Stored() == "0");
    CHECK(calls.size() == 2);
}

TEST_CASE_METHOD(AdvancedFixture, "the request is stored before the library hears of the result", "[ui][advanced]")
{
    const PageWindow page = Open();
    page.Click(1006);
    std::string strStored;
    onCall = [&] { strStored = Stored(); };
    page.Notify(PSN_APPLY);
    CHECK(strStored == "1");
}

TEST_CASE_METHOD(AdvancedFixture, "an apply leaves the public part alone", "[ui][advanced]")
{
    memset(&out.stuDevmode, 0x5A, 220);
    const PageWindow page = Open();
    page.Notify(PSN_APPLY);
    CHECK(std::string(reinterpret_cast<char*>(&out), 220) == std::string(220, 0x5A));
}

TEST_CASE_METHOD(AdvancedFixture, "a reset and a turn of the page change nothing", "[ui][advanced]")
{
    const PageWindow page = Open();
    page.Click(1006);
    for (const UINT uiCode : {PSN_RESET, PSN_SETACTIVE, PSN_KILLACTIVE})
    {
        CHECK(page.Notify(uiCode) == 0);
    }
    CHECK(out.dwNoWaterPrint == 0);
    CHECK_FALSE(PathExists(DefSettingFile()));
    CHECK(calls.empty());
}

TEST_CASE_METHOD(AdvancedFixture, "a page whose setting can't be read stays unbound and applies nothing",
                 "[ui][advanced]")
{
    const PrivateRegistry nothing; // no data folder
    Store("1");
    in.dwNoWaterPrint = 7;
    const PageWindow page = Open();
    CHECK_FALSE(page.Checked(1006));
    CHECK(in.dwNoWaterPrint == 7);
    CHECK(GetWindowLongPtrW(page.Get(), GWLP_USERDATA) == 0);
    out.dwNoWaterPrint = 9;
    CHECK(page.Notify(PSN_APPLY) == 0);
    CHECK(out.dwNoWaterPrint == 9);
    CHECK(calls.empty());
}

TEST_CASE_METHOD(AdvancedFixture, "a page that can't keep its data applies nothing", "[ui][advanced]")
{
    Store("1");
    const PageWindow page(module.handle, IDD_ADVANCED, &NoPage, 0);
    PROPSHEETPAGEW sheetPage = {};
    sheetPage.lParam = reinterpret_cast<LPARAM>(&data);
    {
        const ImportHook hook(nullptr, "SetWindowLongPtrW", &FailSetWindowLong);
        CHECK(ProSeniorPage(page.Get(), WM_INITDIALOG, 0, reinterpret_cast<LPARAM>(&sheetPage)) == 0);
    }
    CHECK_FALSE(page.Checked(1006));
    PSHNOTIFY notification = {};
    notification.hdr.code = PSN_APPLY;
    CHECK(ProSeniorPage(page.Get(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notification)) == 0);
    CHECK(calls.empty());
}

TEST_CASE_METHOD(AdvancedFixture, "a setting that can't be stored leaves the new value in the record and a good result",
                 "[ui][advanced]")
{
    const PageWindow page = Open();
    page.Click(1006);
    {
        const PrivateRegistry nothing; // the path can't be made
        page.Notify(PSN_APPLY);
    }
    CHECK(out.dwNoWaterPrint == 1);
    CHECK_FALSE(PathExists(DefSettingFile()));
    REQUIRE(calls.size() == 1);
    CHECK(calls[0].lParam2 == 1);
}

TEST_CASE_METHOD(AdvancedFixture, "a page without data comes up unbound", "[ui][advanced]")
{
    const PageWindow page(module.handle, IDD_ADVANCED, &ProSeniorPage, 0);
    CHECK(GetWindowLongPtrW(page.Get(), GWLP_USERDATA) == 0);
    PROPSHEETPAGEW sheetPage = {};
    CHECK(ProSeniorPage(page.Get(), WM_INITDIALOG, 0, reinterpret_cast<LPARAM>(&sheetPage)) == 1);
    CHECK(page.Notify(PSN_APPLY) == 0);
}

TEST_CASE_METHOD(AdvancedFixture, "the advanced page answers 1 to commands and 0 to all else", "[ui][advanced]")
{
    const PageWindow page = Open();
    CHECK(ProSeniorPage(page.Get(), WM_COMMAND, MAKEWPARAM(1006, BN_CLICKED), 0) == 1);
    CHECK(page.Changes() == 1);
    CHECK(ProSeniorPage(page.Get(), WM_COMMAND, MAKEWPARAM(1006, BN_SETFOCUS), 0) == 1);
    CHECK(page.Changes() == 1);
    CHECK(ProSeniorPage(page.Get(), WM_SETFONT, 0, 0) == 0);
    CHECK(ProSeniorPage(page.Get(), WM_MOUSEMOVE, 0, 0) == 0);
}

TEST_CASE_METHOD(AdvancedFixture, "the advanced page's help button does nothing", "[ui][advanced]")
{
    const PageWindow page = Open();
    page.Click(1018);
    CHECK(page.Changes() == 0);
    CHECK(calls.empty());
}

TEST_CASE_METHOD(AdvancedFixture, "the setting's two functions give what they are documented to", "[ui][advanced]")
{
    const PageWindow page = Open();
    in.dwNoWaterPrint = 1;
    CHECK(SubDefDlgSenior(page.Get(), &data) == TRUE); // CheckDlgButton's
    CHECK(page.Checked(1006));
    in.dwNoWaterPrint = 2;
    CHECK(SubDefDlgSenior(page.Get(), &data) == TRUE);
    CHECK_FALSE(page.Checked(1006));
    CHECK(SubGetDlgSenior(page.Get(), &data) == 1);
    CHECK(out.dwNoWaterPrint == 0);
}

TEST_CASE_METHOD(AdvancedFixture, "the scopes of the page's work are open while it sets and reads the box",
                 "[ui][advanced][log]")
{
    const PageWindow page = Open();
    const LoggingOn logging{"OutputFunBeginInfo"};
    const LineAtCall<decltype(CheckDlgButton)> set(logging, "CheckDlgButton");
    const LineAtCall<decltype(IsDlgButtonChecked)> read(logging, "IsDlgButtonChecked");
    SubDefDlgSenior(page.Get(), &data);
    SubGetDlgSenior(page.Get(), &data);
    CHECK(set.Text() == "VelUI_dll__SubDefDlgSenior :START......");
    CHECK(read.Text() == "VelUI_dll__SubGetDlgSenior :START......");
}

TEST_CASE_METHOD(AdvancedFixture, "the pages write no log lines but their scopes", "[ui][advanced][log]")
{
    const PageWindow page = Open();
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    page.Click(1006);
    page.Notify(PSN_APPLY);
    CHECK(OwnLines(logging, "SubGetDlgSenior") == std::vector<std::string>{"VelUI_dll__SubGetDlgSenior :START......",
                                                                           "VelUI_dll__SubGetDlgSenior :End  ......"});
    for (const std::string& strLine : OwnLines(logging, "ProSeniorPage"))
    {
        CHECK(
            (strLine == "VelUI_dll__ProSeniorPage :START......" || strLine == "VelUI_dll__ProSeniorPage :End  ......"));
    }
}
