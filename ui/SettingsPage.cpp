#include "ui/SettingsPage.h"

#include "diag/LogSite.h"
#include "state/DataFiles.h"
#include "support/module/Resource.h"
#include "ui/OrientationControls.h"
#include "ui/OtherControls.h"
#include "ui/PaperControls.h"

#include <cstring>

VELUI_SOURCE_MODULE("SubVelUi");

namespace
{

/// Sets all controls. @return the last step's result alone.
int InitPage(HWND hDlg, const stuPassData* pstuPassData)
{
    SubInitPaperSize(pstuPassData, hDlg);
    SubInitOrientation(pstuPassData, hDlg);
    return SubInitOther(pstuPassData, hDlg);
}

/// The message's result for a control whose handler's own result does not count.
constexpr int kHandled = 1;

int OnPaper(HWND hDlg, const stuPassData* pstuPassData)
{
    Sub_On_Combo(hDlg, pstuPassData);
    ShowNameFromStart(hDlg);
    return kHandled;
}

int OnSize(HWND hDlg, const stuPassData* pstuPassData)
{
    Sub_On_Edit(hDlg, EN_CHANGE, pstuPassData);
    return kHandled;
}

int OnDuplex(HWND hDlg, const stuPassData* pstuPassData)
{
    return On_Check_Duplex(hDlg, pstuPassData->pdmIn->stuDevmode.dmDuplex);
}

/// A control's notification that changes the page, and what is done about it.
struct CommandRow
{
    WORD wControl;
    WORD wNotification;
    int (*pfnHandle)(HWND hDlg, const stuPassData* pstuPassData); ///< gives the message's result; null: nothing to do
};

constexpr CommandRow kCommands[] = {
    {IDC_PAPER, CBN_SELCHANGE, &OnPaper},         {IDC_FIRST_SIZE, EN_CHANGE, &OnSize},
    {IDC_SECOND_SIZE, EN_CHANGE, &OnSize},        {IDC_PORTRAIT, BN_CLICKED, &On_Radio_Stand},
    {IDC_LANDSCAPE, BN_CLICKED, &On_Radio_Stand}, {IDC_DUPLEX, BN_CLICKED, &OnDuplex},
    {IDC_MONOCHROME, BN_CLICKED, nullptr},        {IDC_COLOUR, BN_CLICKED, nullptr},
    {IDC_SHORT_EDGE, BN_CLICKED, nullptr},        {IDC_LONG_EDGE, BN_CLICKED, nullptr},
};

const CommandRow* FindCommand(WPARAM wParam)
{
    for (const CommandRow& row : kCommands)
    {
        if (row.wControl == LOWORD(wParam) && row.wNotification == HIWORD(wParam))
        {
            return &row;
        }
    }
    return nullptr;
}

/// @param iReturn the message's result when no handler gives one.
int OnCommand(HWND hDlg, WPARAM wParam, int iReturn)
{
    const CommandRow* const pRow = FindCommand(wParam);
    if (pRow == nullptr)
    {
        return iReturn;
    }
    // Beyond what the page owes: one whose data could not be bound to it has nothing to work with, and a click on it
    // would end the host.
    const stuPassData* const pstuPassData = BoundSheetData(hDlg);
    if (pRow->pfnHandle != nullptr && pstuPassData != nullptr)
    {
        iReturn = pRow->pfnHandle(hDlg, pstuPassData);
    }
    // Required: also when the handler did nothing because the program itself wrote the text, so that the sheet can be
    // applied as soon as the page is up.
    TellChanged(hDlg);
    return iReturn;
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
        // Required: not guarded, unlike the line before it: a page without data that is applied faults instead of
        // reporting a result that nobody has chosen.
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
    const FunctionScope scope("ProSetPage");
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
        return OnCommand(hDlg, wParam, iReturn);
    case WM_NOTIFY:
        OnNotify(hDlg, reinterpret_cast<const NMHDR*>(lParam));
        return 0;
    default:
        return 0;
    }
}

int SubSetDlgData(HWND hDlg, stuPassData* pstuPassData)
{
    const FunctionScope scope("SubSetDlgData");
    DEVMODEW& stuDevmode = pstuPassData->pdmOut->stuDevmode;
    ReadPaper(hDlg, pstuPassData, stuDevmode);
    ReadOrientation(hDlg, stuDevmode);
    ReadOther(hDlg, stuDevmode);
    std::memcpy(&pstuPassData->pdmIn->stuDevmode, &stuDevmode, sizeof(stuDevmode));
    // Required: behind the copy, so that pdmIn does not get these two: what the page starts from keeps the bits that
    // the caller set.
    stuDevmode.dmFields |= DM_COLOR | DM_DUPLEX;
    // A failure is not shown: the sheet's result is good all the same.
    const DEVMODEW stuCopy = stuDevmode;
    VelUtility::SetDevDef(&stuCopy);
    return 1;
}
