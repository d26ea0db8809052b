#include "ui/SheetPages.h"

#include "diag/LogSite.h"
#include "support/module/ModuleTexts.h"

VELUI_SOURCE_MODULE("VelUI");

void FillPage(PROPSHEETPAGEW* pPage, const PageRow& row, const wchar_t* pszTitle, stuPassData* pstuPassData)
{
    *pPage = {};
    pPage->dwSize = sizeof(*pPage);
    pPage->dwFlags = PSP_USETITLE;
    pPage->hInstance = g_hModule;
    pPage->pszTemplate = MAKEINTRESOURCEW(row.uiTemplate);
    pPage->pszTitle = pszTitle;
    pPage->pfnDlgProc = row.pfnDialog;
    pPage->lParam = row.bTakesData ? reinterpret_cast<LPARAM>(pstuPassData) : 0;
}

LONG_PTR SubAddpropertySheet(PPROPSHEETUI_INFO pPSUIInfo, const PROPSHEETPAGEW* pPage)
{
    const FunctionScope scope("SubAddpropertySheet");
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

// No trace scope: the line belongs to the entry point.
LONG_PTR AddLoggedPage(PPROPSHEETUI_INFO pPSUIInfo, const PROPSHEETPAGEW* pPage)
{
    const LONG_PTR lHandle = SubAddpropertySheet(pPSUIInfo, pPage);
    if (lHandle == 0)
    {
        LOG_ERROR("SubAddpropertySheet returns NULL");
    }
    return lHandle;
}
