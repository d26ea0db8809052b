#pragma once
/// The document sheet: the settings, advanced and about pages around one record of the caller.

#include "support/module/EntryAnswer.h"
#include "support/module/PrinterInterface.h"

/// Plays the document sheet's side of one call of the sheet library: opens the sheet with its three pages, delivers its
/// record, ends it.
/// @param pPSUIInfo not null; lParamInit is a DOCUMENTPROPERTYHEADER, of which only pdmIn and pdmOut are used.
/// @param lParam    a SETRESULT_INFO in PROPSHEETUI_REASON_SET_RESULT.
/// @return 1, or -1 for a failure; some ways out have no result line.
EntryAnswer<LONG> PlayDocumentSheet(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam);
