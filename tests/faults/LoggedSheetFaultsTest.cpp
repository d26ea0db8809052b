// A whole sheet, opened, worked with, applied and ended, while everything is logged and functions fail.

#include "tests/driver/SheetCalls.h"
#include "tests/faults/LoggedFaultFixture.h"
#include "tests/ui/PageWindow.h"

namespace
{

/// The sheet that is being played: a page's template and procedure, as the module gave them, and what memory cost.
std::vector<PROPSHEETPAGEW> s_pages;
DLGPROC s_pfnPage = nullptr;
std::string s_strPageAnswers;
decltype(&CreatePropertySheetPageW) s_pfnCreatePage = nullptr;

HPROPSHEETPAGE WINAPI KeepPage(LPCPROPSHEETPAGEW pPage)
{
    const Disarmed disarmed;
    s_pages.push_back(*pPage);
    return s_pfnCreatePage(pPage);
}

int WINAPI AnswerBox(HWND, LPCWSTR, LPCWSTR, UINT)
{
    return IDOK;
}

/// Stands between the window and the page, so that the plan is in force in the page alone, and an exception ends here
/// and not in the platform.
INT_PTR CALLBACK PlayPage(HWND hPage, UINT uiMessage, WPARAM wParam, LPARAM lParam)
{
    INT_PTR iResult = 0;
    const std::string strAnswer = Armed([&] { return iResult = s_pfnPage(hPage, uiMessage, wParam, lParam); });
    if (strAnswer == "no memory ")
    {
        s_strPageAnswers += "page without memory ";
    }
    return iResult;
}

/// A sheet library that takes pages, and comes back for the result when a page reports one.
struct SheetPlayer
{
    static LONG_PTR CALLBACK Take(HANDLE hComPropSheet, UINT uiFunction, LPARAM lParam1, LPARAM lParam2)
    {
        const Disarmed disarmed;
        auto* const pThis = static_cast<SheetPlayer*>(hComPropSheet);
        if (uiFunction == CPSFUNC_ADD_HPROPSHEETPAGE)
        {
            pThis->pages.push_back(reinterpret_cast<HPROPSHEETPAGE>(lParam1));
            return static_cast<LONG_PTR>(pThis->pages.size());
        }
        if (uiFunction == CPSFUNC_SET_RESULT)
        {
            SETRESULT_INFO result = {};
            result.cbSize = sizeof(result);
            result.Result = lParam2;
            pThis->strAnswers += pThis->Call(PROPSHEETUI_REASON_SET_RESULT, reinterpret_cast<LPARAM>(&result));
        }
        return 1;
    }
    SheetPlayer()
    {
        header.cbSize = sizeof(header);
        header.pdmIn = &in.stuDevmode;
        header.pdmOut = &out.stuDevmode;
        info.cbSize = sizeof(info);
        info.Version = 0x0100;
        info.Flags = PSUIINFO_UNICODE;
        info.hComPropSheet = this;
        info.pfnComPropSheet = &SheetPlayer::Take;
        info.lParamInit = reinterpret_cast<LPARAM>(&header);
        s_pages.clear();
        s_strPageAnswers.clear();
    }
    ~SheetPlayer()
    {
        for (const HPROPSHEETPAGE hPage : pages)
        {
            DestroyPropertySheetPage(hPage);
        }
    }
    std::string Call(WORD wReason, LPARAM lParam)
    {
        info.Reason = wReason;
        return Armed([&] { return DrvDocumentPropertySheets(&info, lParam); });
    }
    std::unique_ptr<PageWindow> Show(HMODULE hModule, size_t uiPage)
    {
        const PROPSHEETPAGEW& page = s_pages.at(uiPage);
        s_pfnPage = page.pfnDlgProc;
        return std::make_unique<PageWindow>(hModule, static_cast<UINT>(reinterpret_cast<ULONG_PTR>(page.pszTemplate)),
                                            &PlayPage, page.lParam, 0);
    }

    stuDrvDevmode in = PlainRecord();
    stuDrvDevmode out = PlainRecord();
    DOCUMENTPROPERTYHEADER header = {};
    PROPSHEETUI_INFO info = {};
    std::vector<HPROPSHEETPAGE> pages;
    std::string strAnswers;
};

struct LoggedSheet : LoggedFaults
{
    LoggedSheet()
    {
        s_pfnCreatePage = reinterpret_cast<decltype(&CreatePropertySheetPageW)>(pageHook.Original());
        bWrites = true;
        iMostRuns = 40;
    }
    const ImportHook pageHook{nullptr, "CreatePropertySheetPageW", &KeepPage};
    const ImportHook boxHook{nullptr, "MessageBoxW", &AnswerBox};
};

/// One page of a sheet that was opened before, as a real window, which costs so much that a few failures of each
/// function must do while everything is logged; which ones, the run's seed decides.
struct LoggedPage : LoggedSheet
{
    LoggedPage() { iMostRuns = 4; }

    template <typename Hand>
    void ComparePage(const char* pszPage, size_t uiPage, Hand hand)
    {
        Compare(pszPage, [=] {
            SheetPlayer player;
            player.info.Reason = PROPSHEETUI_REASON_INIT;
            REQUIRE(DrvDocumentPropertySheets(&player.info, 0) == 1);
            hand(*player.Show(module.handle, uiPage));
            player.info.Reason = PROPSHEETUI_REASON_DESTROY;
            REQUIRE(DrvDocumentPropertySheets(&player.info, 0) == 1);
            return player.strAnswers + s_strPageAnswers + Hex(&player.out, sizeof(player.out)) +
                   ReadFileBytes(DevModeFile()) + ReadFileBytes(DefSettingFile());
        });
    }
};

} // namespace

TEST_CASE_METHOD(LoggedSheet, "a log that fails does not show when a document sheet opens and ends",
                 "[faults][log][ui]")
{
    Compare("DrvDocumentPropertySheets, sheet, logged", [] {
        SheetPlayer player;
        const std::string strOpened = player.Call(PROPSHEETUI_REASON_INIT, 0);
        if (strOpened != "1 ")
        {
            return strOpened;
        }
        return strOpened + std::to_string(player.pages.size()) + " " + player.Call(PROPSHEETUI_REASON_DESTROY, 0);
    });
}

TEST_CASE_METHOD(LoggedPage, "a log that fails does not show in the settings page, nor in what it stores",
                 "[faults][log][ui][once]")
{
    ComparePage("ProSetPage, logged", 0, [](const PageWindow& page) {
        SendMessageW(page.Item(IDC_PAPER), CB_SETCURSEL, 1, 0);
        SendMessageW(page.Get(), WM_COMMAND, MAKEWPARAM(IDC_PAPER, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(page.Item(IDC_PAPER)));
        if (page.Enabled(IDC_LANDSCAPE)) // the platform would look for an enabled button of the group for ever
        {
            page.Click(IDC_LANDSCAPE);
        }
        page.Notify(static_cast<UINT>(PSN_APPLY));
    });
}

TEST_CASE_METHOD(LoggedPage, "a log that fails does not show in the advanced page, nor in what it stores",
                 "[faults][log][ui][once]")
{
    ComparePage("ProSeniorPage, logged", 1, [](const PageWindow& page) {
        page.Click(IDC_NO_WATERMARK);
        page.Notify(static_cast<UINT>(PSN_APPLY));
    });
}

TEST_CASE_METHOD(LoggedPage, "a log that fails does not show in the about page", "[faults][log][ui][once]")
{
    ComparePage("ProAbouPage, logged", 2, [](const PageWindow&) {});
}

TEST_CASE_METHOD(LoggedSheet, "a log that fails does not show in a device sheet", "[faults][log][ui]")
{
    Compare("DrvDevicePropertySheets, logged", [] {
        SheetPlayer player;
        DEVICEPROPERTYHEADER header = {};
        header.cbSize = sizeof(header);
        player.info.lParamInit = reinterpret_cast<LPARAM>(&header);
        std::string strAnswer;
        for (const WORD wReason : {PROPSHEETUI_REASON_INIT, PROPSHEETUI_REASON_DESTROY})
        {
            player.info.Reason = wReason;
            strAnswer += Armed([&] { return DrvDevicePropertySheets(&player.info, 0); });
        }
        return strAnswer + std::to_string(player.pages.size());
    });
}
