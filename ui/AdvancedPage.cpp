#include "ui/AdvancedPage.h"

#include "diag/LogSite.h"
#include "state/ClientConfig.h"
#include "state/StoreTypes.h"
#include "support/Resource.h"
#include "ui/SheetPages.h"

#include <commctrl.h>

VELUI_SOURCE_MODULE("SubVelUi");

namespace
{

constexpr DWORD kRequested = 1;

int OnInitDialog(HWND hDlg, stuPassData* stuPassData)
{
    if (stuPassData == nullptr)
    {
        return 1;
    }
    DWORD dwNoWaterPrint = 0;
    if (VelUtility::GetDefSetting(&dwNoWaterPrint) != VelUtility::PSERR_OK)
    {
        return 0;
    }
    stuPassData->pdmIn->dwNoWaterPrint = dwNoWaterPrint;
    return BindSheetData(hDlg, stuPassData) ? SubDefDlgSenior(hDlg, stuPassData) : 0;
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
    TRACE_FUNCTION("ProSeniorPage");
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

int SubDefDlgSenior(HWND hDlg, const stuPassData* stuPassData)
{
    TRACE_FUNCTION("SubDefDlgSenior");
    const bool bChecked = stuPassData->pdmIn->dwNoWaterPrint == kRequested;
    return CheckDlgButton(hDlg, IDC_NO_WATERMARK, bChecked ? BST_CHECKED : BST_UNCHECKED);
}

int SubGetDlgSenior(HWND hDlg, stuPassData* stuPassData)
{
    TRACE_FUNCTION("SubGetDlgSenior");
    const bool bChecked = IsDlgButtonChecked(hDlg, IDC_NO_WATERMARK) == BST_CHECKED;
    stuPassData->pdmOut->dwNoWaterPrint = bChecked ? kRequested : 0;
    stuPassData->pdmOut->dwTailWord2 = 0;
    stuPassData->pdmOut->dwTailWord0 = 0;
    return 1;
}
