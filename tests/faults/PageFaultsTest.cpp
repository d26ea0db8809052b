// Failing functions of the window library, behind the sheet's pages as real windows.

#include "tests/driver/SheetCalls.h"
#include "tests/faults/FaultFixture.h"
#include "tests/ui/PageWindow.h"

#include <memory>

namespace
{

std::vector<PROPSHEETPAGEW> s_pages;

HPROPSHEETPAGE WINAPI KeepPage(LPCPROPSHEETPAGEW pPage)
{
    s_pages.push_back(*pPage);
    return CreatePropertySheetPageW(pPage);
}

int WINAPI AnswerBox(HWND, LPCWSTR, LPCWSTR, UINT)
{
    return IDOK;
}

// Reading a window's data is not among them: a page that has data can't fail to find it, and without data the
// application of the settings page faults, as is wanted.
const FaultyFunctions kWindowFunctions = {
    FAULTY(GetDlgItem, nullptr, ERROR_CONTROL_ID_NOT_FOUND),
    FAULTY(SendDlgItemMessageW, 0, ERROR_CONTROL_ID_NOT_FOUND),
    FAULTY(SendMessageW, 0, ERROR_INVALID_WINDOW_HANDLE),
    FAULTY(GetParent, nullptr, ERROR_INVALID_WINDOW_HANDLE),
    FAULTY(SetWindowLongPtrW, 0, ERROR_INVALID_WINDOW_HANDLE),
    FAULTY(EnableWindow, FALSE, ERROR_INVALID_WINDOW_HANDLE),
    FAULTY(CheckDlgButton, FALSE, ERROR_CONTROL_ID_NOT_FOUND),
    FAULTY(IsDlgButtonChecked, 0, ERROR_CONTROL_ID_NOT_FOUND),
    FAULTY(GetWindowTextW, 0, ERROR_INVALID_WINDOW_HANDLE),
    FAULTY(SetWindowTextW, FALSE, ERROR_INVALID_WINDOW_HANDLE),
    FAULTY(GetDlgItemTextW, 0, ERROR_CONTROL_ID_NOT_FOUND),
    FAULTY(SetDlgItemTextW, FALSE, ERROR_CONTROL_ID_NOT_FOUND),
    FAULTY(LoadImageW, nullptr, ERROR_RESOURCE_NAME_NOT_FOUND),
    FAULTY(LoadStringW, 0, ERROR_RESOURCE_NAME_NOT_FOUND),
    FAULTY(DeleteObject, FALSE, ERROR_INVALID_HANDLE),
    FAULTY(RegOpenKeyExW, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED),
    FAULTY(CreateMutexW, nullptr, ERROR_ACCESS_DENIED),
    FAULTY(_wfopen, nullptr, ERROR_TOO_MANY_OPEN_FILES),
};

/// The three pages of an opened sheet, whose windows the test makes and works with.
struct PageFaults : FaultFixture
{
    PageFaults() : pageHook(module.handle, "CreatePropertySheetPageW", &KeepPage), calls(module.DocumentSheets)
    {
        hFaulty = module.handle;
        s_pages.clear();
        calls.header.pdmIn = &in.stuDevmode;
        calls.header.pdmOut = &out.stuDevmode;
        REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
        REQUIRE(s_pages.size() == 3);
    }
    ~PageFaults() { calls.Call(PROPSHEETUI_REASON_DESTROY); }

    std::unique_ptr<PageWindow> Show(size_t uiPage) const
    {
        const PROPSHEETPAGEW& page = s_pages[uiPage];
        return std::make_unique<PageWindow>(module.handle,
                                            static_cast<UINT>(reinterpret_cast<ULONG_PTR>(page.pszTemplate)),
                                            page.pfnDlgProc, page.lParam, 0);
    }

    const BuiltModule module;
    const ImportHook boxHook{module.handle, "MessageBoxW", &AnswerBox};
    const ImportHook pageHook;
    stuDrvDevmode in = PlainRecord();
    stuDrvDevmode out = PlainRecord();
    DocumentCalls calls;
};

/// Chooses a list entry and tells the page, whether or not the list has it.
void Choose(const PageWindow& page, WPARAM wIndex)
{
    SendMessageW(page.Item(IDC_PAPER), CB_SETCURSEL, wIndex, 0);
    SendMessageW(page.Get(), WM_COMMAND, MAKEWPARAM(IDC_PAPER, CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(page.Item(IDC_PAPER)));
}

/// Clicks a button that can be clicked.
void Click(const PageWindow& page, int iControl)
{
    if (page.Enabled(iControl))
    {
        page.Click(iControl);
    }
}

} // namespace

TEST_CASE_METHOD(PageFaults, "the settings page survives each failure", "[faults][ui]")
{
    Inject("ProSetPage", kWindowFunctions, [this] {
        const auto pPage = Show(0);
        Choose(*pPage, 1);
        pPage->Type(IDC_FIRST_SIZE, L"12");
        pPage->Type(IDC_SECOND_SIZE, L"x");
        Click(*pPage, IDC_LANDSCAPE);
        Click(*pPage, IDC_DUPLEX);
        pPage->PressSpin(IDC_FIRST_SPIN, true);
        Choose(*pPage, 4);
        Click(*pPage, IDC_PORTRAIT);
        // Required: the application of a page without data faults.
        return Failed("SetWindowLongPtrW") || pPage->Notify(static_cast<UINT>(PSN_APPLY)) == 0;
    });
}

TEST_CASE_METHOD(PageFaults, "the advanced and the about page survive each failure", "[faults][ui]")
{
    Inject("ProSeniorPage", kWindowFunctions, [this] {
        const auto pPage = Show(1);
        pPage->Click(IDC_NO_WATERMARK);
        return pPage->Notify(static_cast<UINT>(PSN_APPLY)) == 0;
    });
    Inject("ProAbouPage", kWindowFunctions, [this] { return Show(2)->Get() != nullptr; });
}
