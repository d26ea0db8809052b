#pragma once
/// One page as a real window, without a sheet: its parent is a plain window that counts what the page tells it.

#include "support/module/Resource.h"

#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <string>

/// Makes a page from the built module's dialog with a dialog procedure of the test program, and destroys it.
class PageWindow
{
public:
    /// @param hModule    the module with the dialog.
    /// @param uiTemplate IDD_ number.
    /// @param lParam     what the page finds in lParam of its PROPSHEETPAGE.
    /// @param dwVisible  0 for a page that nobody sees, which costs half: it works, and is never drawn.
    PageWindow(HMODULE hModule, UINT uiTemplate, DLGPROC pfnDialog, LPARAM lParam, DWORD dwVisible = WS_VISIBLE);
    ~PageWindow();
    PageWindow(const PageWindow&) = delete;
    PageWindow& operator=(const PageWindow&) = delete;

    HWND Get() const { return m_hPage; }
    HWND Item(int iControl) const { return GetDlgItem(m_hPage, iControl); }
    bool Enabled(int iControl) const { return IsWindowEnabled(Item(iControl)) != FALSE; }
    bool Checked(int iControl) const { return IsDlgButtonChecked(m_hPage, iControl) == BST_CHECKED; }
    std::wstring Text(int iControl) const;
    /// The selected paper's name; empty without a selection.
    std::wstring Paper() const;
    LRESULT PaperIndex() const { return SendMessageW(Item(IDC_PAPER), CB_GETCURSEL, 0, 0); }

    /// Clicks a button, as with the mouse.
    void Click(int iControl) const { SendMessageW(Item(iControl), BM_CLICK, 0, 0); }
    /// Types a text in the place of what a box holds, key by key.
    void Type(int iControl, const std::wstring& strText) const;
    /// Chooses a paper with the arrow keys.
    void ChoosePaper(LRESULT lIndex) const;
    /// Presses a spin's arrow with the mouse.
    void PressSpin(int iControl, bool bUp) const;
    /// Sends the page a notification of the sheet. @return what the dialog procedure returned.
    LRESULT Notify(UINT uiCode) const;

    /// PSM_CHANGED messages so far that named this page.
    int Changes() const { return m_iChanges; }

private:
    static LRESULT CALLBACK OnParentMessage(HWND hWindow, UINT uiMessage, WPARAM wParam, LPARAM lParam);

    HWND m_hParent = nullptr;
    HWND m_hPage = nullptr;
    int m_iChanges = 0;
};

/// How a person works with a page's controls, wherever the page is.
namespace Hand
{

void Type(HWND hBox, const std::wstring& strText);
void ChoosePaper(HWND hCombo, LRESULT lIndex);
void PressSpin(HWND hSpin, bool bUp);
std::wstring TextOf(HWND hWindow);
std::wstring PaperOf(HWND hCombo);

} // namespace Hand
