#include "tests/ui/PageWindow.h"

#include <catch2/catch_test_macros.hpp>

namespace Hand
{

std::wstring TextOf(HWND hWindow)
{
    wchar_t szText[128] = {};
    // The message and not GetWindowText, which does not ask a window of another thread's.
    SendMessageW(hWindow, WM_GETTEXT, 128, reinterpret_cast<LPARAM>(szText));
    return szText;
}

std::wstring PaperOf(HWND hCombo)
{
    wchar_t szText[128] = {};
    const LRESULT lIndex = SendMessageW(hCombo, CB_GETCURSEL, 0, 0);
    SendMessageW(hCombo, CB_GETLBTEXT, static_cast<WPARAM>(lIndex), reinterpret_cast<LPARAM>(szText));
    return szText;
}

void Type(HWND hBox, const std::wstring& strText)
{
    SendMessageW(hBox, EM_SETSEL, 0, -1);
    if (strText.empty())
    {
        SendMessageW(hBox, WM_KEYDOWN, VK_DELETE, 0);
    }
    for (const wchar_t ch : strText)
    {
        SendMessageW(hBox, WM_CHAR, ch, 1);
    }
}

void ChoosePaper(HWND hCombo, LRESULT lIndex)
{
    COMBOBOXINFO info = {};
    info.cbSize = sizeof(info);
    SendMessageW(hCombo, CB_GETCOMBOBOXINFO, 0, reinterpret_cast<LPARAM>(&info));
    for (int i = 0; i < 50; ++i)
    {
        const LRESULT lNow = SendMessageW(hCombo, CB_GETCURSEL, 0, 0);
        if (lNow == lIndex)
        {
            return;
        }
        SendMessageW(info.hwndItem, WM_KEYDOWN, lNow < lIndex ? VK_DOWN : VK_UP, 0);
    }
    FAIL("the paper can't be chosen");
}

void PressSpin(HWND hSpin, bool bUp)
{
    RECT place = {};
    GetClientRect(hSpin, &place);
    const LPARAM lPoint = MAKELPARAM(place.right / 2, bUp ? place.bottom / 4 : place.bottom * 3 / 4);
    SendMessageW(hSpin, WM_LBUTTONDOWN, MK_LBUTTON, lPoint);
    SendMessageW(hSpin, WM_LBUTTONUP, 0, lPoint);
}

} // namespace Hand

PageWindow::PageWindow(HMODULE hModule, UINT uiTemplate, DLGPROC pfnDialog, LPARAM lParam, DWORD dwVisible)
{
    static constexpr wchar_t kClass[] = L"VelTestPageParent";
    WNDCLASSW parentClass = {};
    parentClass.lpfnWndProc = &PageWindow::OnParentMessage;
    parentClass.cbWndExtra = sizeof(this);
    parentClass.lpszClassName = kClass;
    RegisterClassW(&parentClass); // fails when it is there
    m_hParent =
        CreateWindowW(kClass, L"", WS_OVERLAPPEDWINDOW | dwVisible, 0, 0, 900, 700, nullptr, nullptr, nullptr, nullptr);
    REQUIRE(m_hParent != nullptr);
    SetWindowLongPtrW(m_hParent, 0, reinterpret_cast<LONG_PTR>(this));

    PROPSHEETPAGEW page = {};
    page.dwSize = sizeof(page);
    page.lParam = lParam;
    m_hPage = CreateDialogParamW(hModule, MAKEINTRESOURCEW(uiTemplate), m_hParent, pfnDialog,
                                 reinterpret_cast<LPARAM>(&page));
    REQUIRE(m_hPage != nullptr);
    // A sheet takes the dialog's "disabled" away.
    EnableWindow(m_hPage, TRUE);
    ShowWindow(m_hPage, SW_SHOW);
}

PageWindow::~PageWindow()
{
    DestroyWindow(m_hParent);
}

LRESULT CALLBACK PageWindow::OnParentMessage(HWND hWindow, UINT uiMessage, WPARAM wParam, LPARAM lParam)
{
    auto* const pThis = reinterpret_cast<PageWindow*>(GetWindowLongPtrW(hWindow, 0));
    if (uiMessage == PSM_CHANGED && pThis != nullptr)
    {
        const auto hPage = reinterpret_cast<HWND>(wParam);
        pThis->m_iChanges += GetParent(hPage) == hWindow ? 1 : 0;
        return 0;
    }
    return DefWindowProcW(hWindow, uiMessage, wParam, lParam);
}

std::wstring PageWindow::Text(int iControl) const
{
    return Hand::TextOf(Item(iControl));
}

std::wstring PageWindow::Paper() const
{
    return Hand::PaperOf(Item(IDC_PAPER));
}

void PageWindow::Type(int iControl, const std::wstring& strText) const
{
    Hand::Type(Item(iControl), strText);
}

void PageWindow::ChoosePaper(LRESULT lIndex) const
{
    Hand::ChoosePaper(Item(IDC_PAPER), lIndex);
}

void PageWindow::PressSpin(int iControl, bool bUp) const
{
    Hand::PressSpin(Item(iControl), bUp);
}

LRESULT PageWindow::Notify(UINT uiCode) const
{
    PSHNOTIFY notification = {};
    notification.hdr.hwndFrom = m_hParent;
    notification.hdr.code = uiCode;
    const auto pfnDialog = reinterpret_cast<DLGPROC>(GetWindowLongPtrW(m_hPage, DWLP_DLGPROC));
    return pfnDialog(m_hPage, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notification));
}
