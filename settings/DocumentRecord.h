#pragma once

#include "support/module/PrinterInterface.h"

/// The document sheet's call without a sheet: tells the record's size, or fills the caller's record from the user's
/// default and the caller's input.
/// @param pDPHdr null is refused. fMode 0 or a null pdmOut asks for the size, which also goes into cbOut. cbOut is not
///               read: pdmOut's own header bounds what is written, but for dwNoWaterPrint, which is written at its
///               place in the whole record as soon as dmDriverExtra is 4 or more.
/// @return 232 for the size, 1 for a filled record, -1 for anything refused.
LONG AnswerDocumentRecord(PDOCUMENTPROPERTYHEADER pDPHdr);
