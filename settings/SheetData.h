#pragma once
/// The private data of one document sheet.

#include "settings/DriverDevmode.h"
#include "settings/PaperInfo.h"
#include "support/PrinterInterface.h"

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

static_assert(sizeof(stuPassData) == 64, "seven pointers and two numbers, 64 bit");
