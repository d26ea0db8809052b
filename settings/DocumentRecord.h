#pragma once

#include "support/module/PrinterInterface.h"

/// The document sheet's call without a sheet: tells the record's size, or fills the caller's record from the user's
/// default and the caller's input.
/// @param pDPHdr null is refused. fMode 0 or a null pdmOut asks for the size, which also goes into cbOut. As an input
///               cbOut only goes into the log: pdmOut needs the room that SubConvertDevmodeOut asks for, whatever its
///               own header declares, and all 232 bytes where the result declares a dmDriverExtra of 4 or more: then
///               dwNoWaterPrint is written, at byte 224 whatever dmSize is.
/// @return 232 for the size, 1 for a filled record, -1 for anything refused.
LONG AnswerDocumentRecord(PDOCUMENTPROPERTYHEADER pDPHdr);
