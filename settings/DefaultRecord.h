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
/// @param stuDefDev  the public part of a default record, by value. A stored one may declare any dmSize.
/// @param pstuDevIn  the caller's record, of dmSize bytes; null copies as many bytes of the default as its dmSize says,
///                   at most 220.
/// @param pstuDevOut [in, out] where the bytes go. Its own header bounds nothing: it needs room for the smaller of the
///                   two dmSize values, which a stored default with a great dmSize leaves to the input alone, and at
///                   least the 72 bytes up to the end of dmDriverExtra. The words dmSize and dmDriverExtra of the
///                   result are at most those that stand there once the bytes are copied.
/// @return 1, or 0 for a null pstuDevOut.
int SubConvertDevmodeOut(DEVMODEW stuDefDev, const DEVMODEW* pstuDevIn, DEVMODEW* pstuDevOut);
