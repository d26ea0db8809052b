#include "ui/SheetData.h"

#include <commctrl.h>

stuPassData* SheetDataOf(LPARAM lParam)
{
    return reinterpret_cast<stuPassData*>(reinterpret_cast<const PROPSHEETPAGEW*>(lParam)->lParam);
}

bool BindSheetData(HWND hDlg, stuPassData* pstuPassData)
{
    // An old value of 0 and a failure look alike but for the last error.
    SetLastError(ERROR_SUCCESS);
    const LONG_PTR lOld = SetWindowLongPtrW(hDlg, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(pstuPassData));
    return GetLastError() == ERROR_SUCCESS || lOld != 0;
}

stuPassData* BoundSheetData(HWND hDlg)
{
    return reinterpret_cast<stuPassData*>(GetWindowLongPtrW(hDlg, GWLP_USERDATA));
}

void TellChanged(HWND hDlg)
{
    SendMessageW(GetParent(hDlg), PSM_CHANGED, reinterpret_cast<WPARAM>(hDlg), 0);
}

void ReportOk(const stuPassData* pstuPassData, LONG_PTR hPage)
{
    pstuPassData->pfnComPropSheet(pstuPassData->hComPropSheet, CPSFUNC_SET_RESULT, hPage, CPSUI_OK);
}
