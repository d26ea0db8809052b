#include "tests/ui/OpenSheet.h"

#include "tools/velhost/sheet/SheetClerk.h"

#include <commctrl.h>

#include <catch2/catch_test_macros.hpp>

#include <utility>

namespace
{

constexpr DWORD kPatience = 20000;   // milliseconds
constexpr int kApplyButton = 0x3021; // of the platform's sheet

HWND TabsOf(HWND hSheet)
{
    return reinterpret_cast<HWND>(SendMessageW(hSheet, PSM_GETTABCONTROL, 0, 0));
}

HWND FocusOf(DWORD dwThread)
{
    GUITHREADINFO info = {};
    info.cbSize = sizeof(info);
    return GetGUIThreadInfo(dwThread, &info) ? info.hwndFocus : nullptr;
}

/// wParam of the message that stands behind a pressed key, and what is set when the sheet's loop takes it out.
constexpr WPARAM kBehindKey = 0x4B45;
HANDLE g_hTaken = nullptr;

LRESULT CALLBACK OnTaken(int iCode, WPARAM wParam, LPARAM lParam)
{
    const MSG& message = *reinterpret_cast<const MSG*>(lParam);
    if (iCode == HC_ACTION && wParam == PM_REMOVE && message.message == WM_NULL && message.wParam == kBehindKey)
    {
        SetEvent(g_hTaken);
    }
    return CallNextHookEx(nullptr, iCode, wParam, lParam);
}

} // namespace

OpenSheet::OpenSheet(std::function<void()> show) : m_show(std::move(show))
{
    m_hThread = CreateThread(nullptr, 0, &OpenSheet::Run, this, 0, &m_dwThread);
    REQUIRE(m_hThread != nullptr);
    const DWORD dwStart = GetTickCount();
    while (m_hSheet == nullptr && GetTickCount() - dwStart < kPatience &&
           WaitForSingleObject(m_hThread, 5) == WAIT_TIMEOUT)
    {
        m_hSheet = VelHost::FindSheetOfThread(m_dwThread);
    }
    INFO("waiting for the sheet");
    REQUIRE(m_hSheet != nullptr);
}

OpenSheet::~OpenSheet()
{
    if (m_hSheet != nullptr)
    {
        PostMessageW(m_hSheet, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
    }
    WaitForSingleObject(m_hThread, kPatience);
    CloseHandle(m_hThread);
}

DWORD WINAPI OpenSheet::Run(void* pThis)
{
    static_cast<OpenSheet*>(pThis)->m_show();
    return 0;
}

int OpenSheet::PageCount() const
{
    return static_cast<int>(SendMessageW(TabsOf(m_hSheet), TCM_GETITEMCOUNT, 0, 0));
}

HWND OpenSheet::TurnTo(int iPage) const
{
    SendMessageW(m_hSheet, PSM_SETCURSEL, static_cast<WPARAM>(iPage), 0);
    const auto hPage = reinterpret_cast<HWND>(SendMessageW(m_hSheet, PSM_GETCURRENTPAGEHWND, 0, 0));
    REQUIRE(hPage != nullptr);
    return hPage;
}

std::wstring OpenSheet::TabText(int iPage) const
{
    wchar_t szText[64] = {};
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = szText;
    item.cchTextMax = 64;
    SendMessageW(TabsOf(m_hSheet), TCM_GETITEMW, static_cast<WPARAM>(iPage), reinterpret_cast<LPARAM>(&item));
    return szText;
}

bool OpenSheet::ApplyEnabled() const
{
    return IsWindowEnabled(GetDlgItem(m_hSheet, kApplyButton)) != FALSE;
}

int OpenSheet::Focus() const
{
    const HWND hFocus = FocusOf(m_dwThread);
    const HWND hParent = GetParent(hFocus);
    wchar_t szClass[16] = {};
    GetClassNameW(hParent, szClass, 16);
    return GetDlgCtrlID(_wcsicmp(szClass, L"ComboBox") == 0 ? hParent : hFocus);
}

void OpenSheet::PressKey(WORD wKey) const
{
    const HWND hFocus = FocusOf(m_dwThread);
    REQUIRE(hFocus != nullptr);
    g_hTaken = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const HHOOK hHook = SetWindowsHookExW(WH_GETMESSAGE, &OnTaken, nullptr, m_dwThread);
    PostMessageW(hFocus, WM_KEYDOWN, wKey, 1);
    PostMessageW(hFocus, WM_NULL, kBehindKey, 0);
    const DWORD dwWait = WaitForSingleObject(g_hTaken, kPatience);
    UnhookWindowsHookEx(hHook);
    CloseHandle(g_hTaken);
    INFO("waiting for the sheet to take a key");
    REQUIRE(dwWait == WAIT_OBJECT_0);
}

void OpenSheet::Apply() const
{
    SendMessageW(m_hSheet, PSM_PRESSBUTTON, PSBTN_APPLYNOW, 0);
}

void OpenSheet::Close(WPARAM wButton)
{
    PostMessageW(std::exchange(m_hSheet, nullptr), PSM_PRESSBUTTON, wButton, 0);
    INFO("waiting for the sheet's end");
    REQUIRE(WaitForSingleObject(m_hThread, kPatience) == WAIT_OBJECT_0);
}
