#include "ui/SettingsPage.h"

#include "diag/LogSite.h"
#include "support/Resource.h"
#include "ui/SheetPages.h"

VELUI_SOURCE_MODULE("SubVelUi");

DWORD bPaperSync = 1;
DWORD bNoSwap = 1;
int iWidthEditId = IDC_FIRST_SIZE;
int iHeightEditId = IDC_SECOND_SIZE;

namespace
{

/// Sets all controls. @return the last step's result alone.
int InitPage(HWND hDlg, const stuPassData* stuPassData)
{
    SubInitPaperSize(stuPassData, hDlg);
    SubInitOrientation(stuPassData, hDlg);
    return SubInitOther(stuPassData, hDlg);
}

constexpr WPARAM Command(WORD wControl, WORD wNotification)
{
    return MAKEWPARAM(wControl, wNotification);
}

/// Calls the handler of a control's notification.
/// @param iReturn [in, out] the message's result; set by some handlers.
/// @return whether the notification is one that changes the page.
bool HandleCommand(HWND hDlg, WPARAM wParam, int& iReturn)
{
    stuPassData* const pstuPassData = BoundSheetData(hDlg);
    switch (wParam & 0xFFFFFFFF)
    {
    case Command(IDC_PAPER, CBN_SELCHANGE):
        Sub_On_Combo(hDlg, pstuPassData);
        return true;
    case Command(IDC_FIRST_SIZE, EN_CHANGE):
    case Command(IDC_SECOND_SIZE, EN_CHANGE):
        Sub_On_Edit(hDlg, HIWORD(wParam), pstuPassData);
        return true;
    case Command(IDC_PORTRAIT, BN_CLICKED):
    case Command(IDC_LANDSCAPE, BN_CLICKED):
        iReturn = On_Radio_Stand(hDlg, pstuPassData);
        return true;
    case Command(IDC_DUPLEX, BN_CLICKED):
        iReturn = On_Check_Duplex(hDlg, pstuPassData->pdmIn->stuDevmode.dmDuplex);
        return true;
    case Command(IDC_MONOCHROME, BN_CLICKED):
    case Command(IDC_COLOUR, BN_CLICKED):
    case Command(IDC_SHORT_EDGE, BN_CLICKED):
    case Command(IDC_LONG_EDGE, BN_CLICKED):
        return true;
    default:
        return false;
    }
}

void OnCommand(HWND hDlg, WPARAM wParam, int& iReturn)
{
    if (HandleCommand(hDlg, wParam, iReturn))
    {
        // Required: also when the handler did nothing because the program itself wrote the text, so that the sheet can
        // be applied as soon as the page is up.
        TellChanged(hDlg);
    }
}

void OnNotify(HWND hDlg, const NMHDR* pHeader)
{
    stuPassData* const pstuPassData = BoundSheetData(hDlg);
    switch (pHeader->code)
    {
    case static_cast<UINT>(UDN_DELTAPOS):
        Sub_On_Spin(hDlg, reinterpret_cast<const NMUPDOWN*>(pHeader));
        return;
    case static_cast<UINT>(PSN_APPLY):
        if (pstuPassData != nullptr)
        {
            SubSetDlgData(hDlg, pstuPassData);
        }
        // Required: not guarded, unlike the line before it.
        // cppcheck-suppress nullPointerRedundantCheck
        ReportOk(pstuPassData, pstuPassData->hSetPage);
        return;
    default:
        return;
    }
}

} // namespace

INT_PTR CALLBACK ProSetPage(HWND hDlg, UINT uiMessage, WPARAM wParam, LPARAM lParam)
{
    TRACE_FUNCTION("ProSetPage");
    int iReturn = 1;
    switch (uiMessage)
    {
    case WM_INITDIALOG:
        if (!BindSheetData(hDlg, SheetDataOf(lParam)))
        {
            return 0;
        }
        iReturn = InitPage(hDlg, SheetDataOf(lParam));
        // Required: the message runs on into the next one. Its wParam, a window's handle, is then taken for a control
        // and its notification, and acts when its words happen to be a pair of the table.
        [[fallthrough]];
    case WM_COMMAND:
        OnCommand(hDlg, wParam, iReturn);
        return iReturn;
    case WM_NOTIFY:
        OnNotify(hDlg, reinterpret_cast<const NMHDR*>(lParam));
        return 0;
    default:
        return 0;
    }
}
