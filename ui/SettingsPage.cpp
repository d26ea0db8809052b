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

void OnPaper(HWND hDlg, const stuPassData* stuPassData, int& /*iReturn*/)
{
    Sub_On_Combo(hDlg, stuPassData);
}

void OnSize(HWND hDlg, const stuPassData* stuPassData, int& /*iReturn*/)
{
    Sub_On_Edit(hDlg, EN_CHANGE, stuPassData);
}

void OnOrientation(HWND hDlg, const stuPassData* stuPassData, int& iReturn)
{
    iReturn = On_Radio_Stand(hDlg, stuPassData);
}

void OnDuplex(HWND hDlg, const stuPassData* stuPassData, int& iReturn)
{
    iReturn = On_Check_Duplex(hDlg, stuPassData->pdmIn->stuDevmode.dmDuplex);
}

/// A control's notification that changes the page, and what is done about it.
struct CommandRow
{
    WORD wControl;
    WORD wNotification;
    /// Null for a control that needs no more. The last argument, the message's result, is set by some.
    void (*pfnHandle)(HWND hDlg, const stuPassData* stuPassData, int& iReturn);
};

constexpr CommandRow kCommands[] = {
    {IDC_PAPER, CBN_SELCHANGE, &OnPaper},        {IDC_FIRST_SIZE, EN_CHANGE, &OnSize},
    {IDC_SECOND_SIZE, EN_CHANGE, &OnSize},       {IDC_PORTRAIT, BN_CLICKED, &OnOrientation},
    {IDC_LANDSCAPE, BN_CLICKED, &OnOrientation}, {IDC_DUPLEX, BN_CLICKED, &OnDuplex},
    {IDC_MONOCHROME, BN_CLICKED, nullptr},       {IDC_COLOUR, BN_CLICKED, nullptr},
    {IDC_SHORT_EDGE, BN_CLICKED, nullptr},       {IDC_LONG_EDGE, BN_CLICKED, nullptr},
};

void OnCommand(HWND hDlg, WPARAM wParam, int& iReturn)
{
    for (const CommandRow& row : kCommands)
    {
        if (row.wControl != LOWORD(wParam) || row.wNotification != HIWORD(wParam))
        {
            continue;
        }
        // A page whose data could not be bound to it has nothing to work with.
        const stuPassData* const pstuPassData = BoundSheetData(hDlg);
        if (row.pfnHandle != nullptr && pstuPassData != nullptr)
        {
            row.pfnHandle(hDlg, pstuPassData, iReturn);
        }
        // Required: also when the handler did nothing because the program itself wrote the text, so that the sheet can
        // be applied as soon as the page is up.
        TellChanged(hDlg);
        return;
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
