#pragma once

#include "support/PrinterInterface.h"

/// What a call of the sheet library answers, and whether its result line is written.
struct SheetAnswer
{
    LONG lReturn;        ///< 1 for success, -1 for failure
    bool bLogged = true; ///< false leaves the result line out
};

/// Plays the document sheet's side of one call of the sheet library: opens the sheet with its three pages, delivers its
/// record, ends it.
/// @param pPSUIInfo not null; lParamInit is a DOCUMENTPROPERTYHEADER, of which only pdmIn and pdmOut are used.
/// @param lParam    a SETRESULT_INFO in PROPSHEETUI_REASON_SET_RESULT.
SheetAnswer PlayDocumentSheet(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam);
