#include "ui/SheetPages.h"

#include "diag/LogSite.h"
#include "support/ModuleTexts.h"

#include <commctrl.h>

VELUI_SOURCE_MODULE("SubVelUi");

void FillPage(PROPSHEETPAGEW* pPage, UINT uiTemplate, DLGPROC pfnDialog, const wchar_t* pszTitle, LPARAM lParam)
{
    *pPage = {};
    pPage->dwSize = sizeof(*pPage);
    pPage->dwFlags = PSP_USETITLE;
    pPage->hInstance = g_hModule;
    pPage->pszTemplate = MAKEINTRESOURCEW(uiTemplate);
    pPage->pszTitle = pszTitle;
    pPage->pfnDlgProc = pfnDialog;
    pPage->lParam = lParam;
}

LONG_PTR SubAddpropertySheet(PPROPSHEETUI_INFO pPSUIInfo, const PROPSHEETPAGEW* pPage)
{
    TRACE_FUNCTION("SubAddpropertySheet");
    const HPROPSHEETPAGE hPage = CreatePropertySheetPageW(pPage);
    if (hPage == nullptr)
    {
        return 0;
    }
    const LONG_PTR lHandle = pPSUIInfo->pfnComPropSheet(pPSUIInfo->hComPropSheet, CPSFUNC_ADD_HPROPSHEETPAGE,
                                                        reinterpret_cast<LPARAM>(hPage), 0);
    if (lHandle == 0)
    {
        DestroyPropertySheetPage(hPage);
    }
    return lHandle;
}

stuPassData* SheetDataOf(LPARAM lParam)
{
    return reinterpret_cast<stuPassData*>(reinterpret_cast<const PROPSHEETPAGEW*>(lParam)->lParam);
}

bool BindSheetData(HWND hDlg, stuPassData* stuPassData)
{
    // An old value of 0 and a failure look alike but for the last error.
    SetLastError(ERROR_SUCCESS);
    const LONG_PTR lOld = SetWindowLongPtrW(hDlg, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(stuPassData));
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

void ReportOk(const stuPassData* stuPassData, LONG_PTR hPage)
{
    stuPassData->pfnComPropSheet(stuPassData->hComPropSheet, CPSFUNC_SET_RESULT, hPage, CPSUI_OK);
}
