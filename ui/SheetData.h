#pragma once
/// The private data of one document sheet, and how a page reaches it and its sheet.

#include "settings/DriverDevmode.h"
#include "settings/PaperInfo.h"
#include "support/module/PrinterInterface.h"

/// Made, zeroed, when the sheet opens and ended when it is destroyed; PROPSHEETUI_INFO.UserData holds its address
/// between the calls, and each page keeps it on its window. Used on the sheet's thread only.
struct stuPassData
{
    stuDrvDevmode* pdmIn;            ///< what the pages start from; an apply brings its public part up to date. Owned
    stuDrvDevmode* pdmOut;           ///< what the pages write and the sheet delivers. Owned
    stuPaperInfo* pstuPaperInfo;     ///< the papers on offer. Never freed
    PFNCOMPROPSHEET pfnComPropSheet; ///< the sheet library's callback, which takes a page's result
    HANDLE hComPropSheet;            ///< its first argument
    LONG_PTR hSetPage;               ///< the library's handle of the settings page
    LONG_PTR hSeniorPage;            ///< the library's handle of the advanced page
    DWORD bPassResult;               ///< 1; the result is delivered only while it isn't 0
    DWORD dwCount;                   ///< entries at pstuPaperInfo, the custom paper included
};

static_assert(offsetof(stuPassData, pdmIn) == 0 && offsetof(stuPassData, pdmOut) == 8 &&
                  offsetof(stuPassData, pstuPaperInfo) == 16 && offsetof(stuPassData, pfnComPropSheet) == 24 &&
                  offsetof(stuPassData, hComPropSheet) == 32 && offsetof(stuPassData, hSetPage) == 40 &&
                  offsetof(stuPassData, hSeniorPage) == 48 && offsetof(stuPassData, bPassResult) == 56 &&
                  offsetof(stuPassData, dwCount) == 60 && sizeof(stuPassData) == 64,
              "seven pointers and two numbers in this order, 64 bit");

/// The sheet's data as WM_INITDIALOG brings it; null for a page without.
stuPassData* SheetDataOf(LPARAM lParam);
/// Keeps the sheet's data on the page's window. @return whether it could be stored.
bool BindSheetData(HWND hDlg, stuPassData* pstuPassData);
/// The data that the page's window keeps, or null.
stuPassData* BoundSheetData(HWND hDlg);

/// Tells the sheet that the page has something to apply.
void TellChanged(HWND hDlg);
/// Reports CPSUI_OK for a page to the sheet library.
/// @param hPage hSetPage or hSeniorPage of the data.
void ReportOk(const stuPassData* pstuPassData, LONG_PTR hPage);
