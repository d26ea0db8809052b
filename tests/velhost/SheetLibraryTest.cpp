// The host's sheet library, driven by sheet functions of the test's own.

#include "tests/ui/OpenSheet.h"
#include "tools/velhost/sheet/SheetLibrary.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

#include <vector>

namespace
{

/// What a sheet function saw in one call.
struct SeenCall
{
    PROPSHEETUI_INFO info;
    LPARAM lParam;
    SETRESULT_INFO result; ///< of PROPSHEETUI_REASON_SET_RESULT
    WORD wHeaderSize;      ///< of PROPSHEETUI_REASON_GET_INFO_HEADER
};

std::vector<SeenCall> s_seen;
LONG s_lInitReturn = 1;
bool s_bAddPage = true;
LONG_PTR s_lPage = 0;

/// Describes a page with nothing on it.
HPROPSHEETPAGE MakeEmptyPage()
{
    struct
    {
        DLGTEMPLATE dialog;
        WORD wMenu, wClass, wTitle;
    } static const emptyDialog = {{WS_CHILD, 0, 0, 0, 0, 100, 50}, 0, 0, 0};
    PROPSHEETPAGEW page = {};
    page.dwSize = sizeof(page);
    page.dwFlags = PSP_DLGINDIRECT | PSP_USETITLE;
    page.pResource = &emptyDialog.dialog;
    page.pszTitle = L"empty";
    page.pfnDlgProc = [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return 0; };
    return CreatePropertySheetPageW(&page);
}

LONG WINAPI Sheet(PPROPSHEETUI_INFO pInfo, LPARAM lParam)
{
    SeenCall call = {*pInfo, lParam, {}, 0};
    switch (pInfo->Reason)
    {
    case PROPSHEETUI_REASON_INIT:
        if (s_bAddPage)
        {
            s_lPage = pInfo->pfnComPropSheet(pInfo->hComPropSheet, CPSFUNC_ADD_HPROPSHEETPAGE,
                                             reinterpret_cast<LPARAM>(MakeEmptyPage()), 0);
        }
        pInfo->UserData = 0xABCD;
        break;
    case PROPSHEETUI_REASON_GET_INFO_HEADER:
        call.wHeaderSize = reinterpret_cast<const PROPSHEETUI_INFO_HEADER*>(lParam)->cbSize;
        break;
    case PROPSHEETUI_REASON_SET_RESULT:
        call.result = *reinterpret_cast<const SETRESULT_INFO*>(lParam);
        pInfo->Result = 0x55;
        break;
    default:
        break;
    }
    s_seen.push_back(call);
    return pInfo->Reason == PROPSHEETUI_REASON_INIT ? s_lInitReturn : 1;
}

struct LibraryFixture
{
    LibraryFixture()
    {
        s_seen.clear();
        s_lInitReturn = 1;
        s_bAddPage = true;
    }
    /// Calls the library as the sheet function does.
    LONG_PTR Ask(UINT uiFunction, LPARAM lParam1, LPARAM lParam2) const
    {
        const PROPSHEETUI_INFO& info = s_seen.at(0).info;
        return info.pfnComPropSheet(info.hComPropSheet, uiFunction, lParam1, lParam2);
    }
    DEVICEPROPERTYHEADER header = {};
    VelHost::SheetLibrary library{&Sheet, reinterpret_cast<LPARAM>(&header)};
    VelHost::SheetOutcome outcome;
};

} // namespace

TEST_CASE_METHOD(LibraryFixture, "a sheet is told of its opening, its header and its end", "[velhost][sheets]")
{
    OpenSheet sheet([this] { outcome = library.Show(nullptr, L"a title"); });
    wchar_t szTitle[32] = {};
    GetWindowTextW(sheet.Get(), szTitle, 32);
    CHECK(std::wstring(szTitle) == L"a title");
    sheet.Close(PSBTN_CANCEL);
    REQUIRE(s_seen.size() == 3);
    const auto lHeader = reinterpret_cast<LPARAM>(&header);
    for (const SeenCall& call : s_seen)
    {
        CHECK(call.info.cbSize == 48);
        CHECK(call.info.Version == 0x100);
        CHECK(call.info.Flags == 1);
        CHECK(call.info.lParamInit == lHeader);
    }
    CHECK(s_seen[0].info.Reason == 0);
    CHECK(s_seen[0].lParam == lHeader);
    CHECK(s_seen[0].info.UserData == 0);
    CHECK(s_seen[1].info.Reason == 1);
    CHECK(s_seen[1].wHeaderSize == 40);
    CHECK(s_seen[1].info.UserData == 0xABCD);
    CHECK(s_seen[2].info.Reason == 2);
    CHECK(s_seen[2].lParam != 0); // a sheet was shown
    CHECK(outcome.lInitReturn == 1);
    CHECK(outcome.uiDeliveries == 0);
}

TEST_CASE_METHOD(LibraryFixture, "a page's result is told to the sheet, and what it leaves is kept",
                 "[velhost][sheets]")
{
    OpenSheet sheet([this] { outcome = library.Show(nullptr, L"a title"); });
    CHECK(Ask(CPSFUNC_GET_PAGECOUNT, 0, 0) == 1);
    CHECK(Ask(CPSFUNC_SET_RESULT, s_lPage, CPSUI_OK) == 1);
    CHECK(Ask(CPSFUNC_SET_RESULT, 0, CPSUI_CANCEL) == 1);
    CHECK(Ask(CPSFUNC_SET_RESULT, s_lPage + 1, CPSUI_OK) == -1);
    CHECK(Ask(CPSFUNC_SET_HSTARTPAGE, 0, 0) == 0);
    CHECK(Ask(CPSFUNC_ADD_HPROPSHEETPAGE, 0, 0) == 0);
    sheet.Close(PSBTN_OK);
    REQUIRE(s_seen.size() == 5);
    CHECK(s_seen[2].info.Reason == 3);
    CHECK(s_seen[2].result.cbSize == 24);
    CHECK(s_seen[2].result.hSetResult == reinterpret_cast<HANDLE>(s_lPage));
    CHECK(s_seen[2].result.Result == 1);
    CHECK(s_seen[3].result.Result == 0);
    CHECK(s_seen[3].info.Result == 0x55);
    CHECK(outcome.uiDeliveries == 2);
    CHECK(outcome.ulResult == 0x55);
    CHECK(outcome.refusals == std::vector<UINT>{CPSFUNC_SET_HSTARTPAGE});
}

TEST_CASE_METHOD(LibraryFixture, "a sheet that does not open is ended and not shown", "[velhost][sheets]")
{
    s_lInitReturn = GENERATE(0, -1);
    outcome = library.Show(nullptr, L"a title");
    CHECK(outcome.lInitReturn == s_lInitReturn);
    CHECK(outcome.iSheetReturn == -1);
    REQUIRE(s_seen.size() == 2);
    CHECK(s_seen[1].info.Reason == 2);
    CHECK(s_seen[1].lParam == 0);
}

TEST_CASE_METHOD(LibraryFixture, "a sheet without a page is ended and not shown", "[velhost][sheets]")
{
    s_bAddPage = false;
    outcome = library.Show(nullptr, L"a title");
    CHECK(outcome.iSheetReturn == -1);
    REQUIRE(s_seen.size() == 2);
    CHECK(s_seen[1].info.Reason == 2);
}

TEST_CASE("the font size of both forms of a dialog is found behind its names", "[velhost][sheets]")
{
    // style, extended style, count, place; menu by name, class by number, title; size and font
    WORD plain[] = {DS_SETFONT, 0, 0, 0, 0, 1, 2, 3, 4, 'm', 0, 0xFFFF, 7, 't', 'i', 0, 8, 'F', 0};
    VelHost::SetTemplateFontSize(plain, 9);
    CHECK(plain[16] == 9);
    // version, mark, help, extended style, style, count, place; none, none, title; size and the rest
    WORD extended[] = {1, 0xFFFF, 0, 0, 0, 0, DS_SETFONT, 0, 0, 1, 2, 3, 4, 0, 0, 't', 0, 8, 400, 1, 'F', 0};
    VelHost::SetTemplateFontSize(extended, 9);
    CHECK(extended[17] == 9);
    WORD fontless[] = {0, 0, 0, 0, 0, 1, 2, 3, 4, 0, 0, 0, 8};
    VelHost::SetTemplateFontSize(fontless, 9);
    CHECK(fontless[12] == 8);
}
