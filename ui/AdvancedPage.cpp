#include "ui/AdvancedPage.h"

#include "diag/LogSite.h"
#include "settings/NoWaterPrint.h"
#include "state/UserIniFiles.h"
#include "support/module/Resource.h"
#include "ui/Controls.h"

#include <commctrl.h>

VELUI_SOURCE_MODULE("SubVelUi");

namespace
{

constexpr DWORD kRequested = 1;

int OnInitDialog(HWND hDlg, stuPassData* pstuPassData)
{
    if (pstuPassData == nullptr)
    {
        return 1;
    }
    const std::optional<DWORD> noWaterPrint = ReadNoWaterPrint();
    if (!noWaterPrint)
    {
        return 0;
    }
    pstuPassData->pdmIn->dwNoWaterPrint = *noWaterPrint;
    return BindSheetData(hDlg, pstuPassData) ? SubDefDlgSenior(hDlg, pstuPassData) : 0;
}

void OnApply(HWND hDlg)
{
    stuPassData* const pstuPassData = BoundSheetData(hDlg);
    if (pstuPassData == nullptr || SubGetDlgSenior(hDlg, pstuPassData) != 1)
    {
        return;
    }
    // A failed write is not shown: the record keeps the new value, the file the old one.
    VelUtility::MakeDefSetting(&pstuPassData->pdmOut->dwNoWaterPrint);
    ReportOk(pstuPassData, pstuPassData->hSeniorPage);
}

} // namespace

INT_PTR CALLBACK ProSeniorPage(HWND hDlg, UINT uiMessage, WPARAM wParam, LPARAM lParam)
{
    const FunctionScope scope("ProSeniorPage");
    switch (uiMessage)
    {
    case WM_INITDIALOG:
        return OnInitDialog(hDlg, SheetDataOf(lParam));
    case WM_COMMAND:
        if (LOWORD(wParam) == IDC_NO_WATERMARK && HIWORD(wParam) == BN_CLICKED)
        {
            TellChanged(hDlg);
        }
        return 1;
    case WM_NOTIFY:
        if (reinterpret_cast<const NMHDR*>(lParam)->code == PSN_APPLY)
        {
            OnApply(hDlg);
        }
        return 0;
    default:
        return 0;
    }
}

int SubDefDlgSenior(HWND hDlg, const stuPassData* pstuPassData)
{
    const FunctionScope scope("SubDefDlgSenior");
    const bool bChecked = pstuPassData->pdmIn->dwNoWaterPrint == kRequested;
    return CheckDlgButton(hDlg, IDC_NO_WATERMARK, bChecked ? BST_CHECKED : BST_UNCHECKED);
}

int SubGetDlgSenior(HWND hDlg, stuPassData* pstuPassData)
{
    const FunctionScope scope("SubGetDlgSenior");
    const bool bChecked = IsChecked(hDlg, IDC_NO_WATERMARK);
    pstuPassData->pdmOut->dwNoWaterPrint = bChecked ? kRequested : 0;
    pstuPassData->pdmOut->dwTailWord2 = 0;
    pstuPassData->pdmOut->dwTailWord0 = 0;
    return 1;
}
