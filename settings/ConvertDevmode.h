#pragma once
/// Conversion of device-mode records: the work behind DrvConvertDevMode.

#include "support/module/EntryAnswer.h"

#include <windows.h>

/// Copies a foreign record into a buffer whose size is declared in its own header. Bytes only: no field is validated or
/// interpreted, and dmFields is not honoured.
/// @param pstuIn  record of dmSize + dmDriverExtra bytes; borrowed.
/// @param pstuOut [in, out] buffer of dmSize + dmDriverExtra bytes by its own header, which it keeps.
/// @return 0 for success; 1 when either pointer is null or nothing was copied.
int ConvertDevmode(DEVMODEW* pstuIn, DEVMODEW* pstuOut);

/// Converts a record, or delivers the user's default one, as fMode asks. What goes wrong is told by the last error.
/// @param pdmIn     record of dmSize + dmDriverExtra bytes; not looked at in CDM_DRIVER_DEFAULT.
/// @param pdmOut    [in, out] buffer whose own header declares its size in bytes; for CDM_DRIVER_DEFAULT 232 bytes.
/// @param pcbNeeded [in, out] bytes at pdmOut, compared as a signed value; not tested for null. In CDM_DRIVER_DEFAULT:
///                  tested for null, and compared as an unsigned value.
/// @param fMode     one CDM_ mode.
/// @return 1; or 0 with last error 87 (CDM_CONVERT; a null pcbNeeded), 122 (too small, in the other two modes), 13 (any
///         other mode).
EntryAnswer<BOOL> ConvertByMode(PDEVMODEW pdmIn, PDEVMODEW pdmOut, PLONG pcbNeeded, DWORD fMode);
