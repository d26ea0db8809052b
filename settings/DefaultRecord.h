#pragma once
/// The default record of the current user, and the merge of a caller's record with it.

#include "settings/DriverDevmode.h"

/// Fills the public part of a record: from the user's DevMode.dat as it stands, or, without a usable file, with the
/// hard-coded default. The tail is not touched.
/// @param stuDefDev [out] at least 220 bytes.
/// @return 1 always.
int SubSetDevMode(stuDrvDevmode* stuDefDev);

/// The default paper: A4 when the printer has it or can't tell, else the first that it lists.
/// @return a DMPAPER_ number.
short SubSetDefPaperSize();

/// Merges a caller's record with a default one. Bytes only: no bit of dmFields is honoured, and nothing of the private
/// tail is copied.
/// @param stuDefDev  the public part of a default record, by value.
/// @param pstuDevIn  the caller's record; null copies the default.
/// @param pstuDevOut [in, out] buffer for the smaller of the two dmSize values; its own dmSize and dmDriverExtra bound
///                   the result's.
/// @return 1, or 0 for a null pstuDevOut.
int SubConvertDevmodeOut(DEVMODEW stuDefDev, const DEVMODEW* pstuDevIn, DEVMODEW* pstuDevOut);
