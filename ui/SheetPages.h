#pragma once
/// What the pages of both sheets share: how a page is described, added and bound to the sheet's data.

#include "settings/SheetData.h"
#include "support/PrinterInterface.h"

/// Describes a page. All else of the structure becomes 0.
/// @param pPage      [out] the structure.
/// @param uiTemplate IDD_ number of the dialog in the module.
/// @param pszTitle   borrowed; must live until the page has been added.
/// @param lParam     what the page gets; the sheet's data or 0.
void FillPage(PROPSHEETPAGEW* pPage, UINT uiTemplate, DLGPROC pfnDialog, const wchar_t* pszTitle, LPARAM lParam);

/// Makes a page and adds it to the sheet.
/// @param pPSUIInfo the library's call.
/// @param pPage     borrowed; the library copies what it needs.
/// @return the library's handle of the page, or 0 when it could not be made or was refused.
LONG_PTR SubAddpropertySheet(PPROPSHEETUI_INFO pPSUIInfo, const PROPSHEETPAGEW* pPage);

/// The sheet's data as WM_INITDIALOG brings it; null for a page without.
stuPassData* SheetDataOf(LPARAM lParam);
/// Keeps the sheet's data on the page's window. @return whether it could be stored.
bool BindSheetData(HWND hDlg, stuPassData* stuPassData);
/// The data that the page's window keeps, or null.
stuPassData* BoundSheetData(HWND hDlg);

/// Tells the sheet that the page has something to apply.
void TellChanged(HWND hDlg);
/// Reports CPSUI_OK for a page to the sheet library.
/// @param hPage hSetPage or hSeniorPage of the data.
void ReportOk(const stuPassData* stuPassData, LONG_PTR hPage);
