#pragma once

#include <windows.h>

/// Copies a foreign record into a buffer whose size is declared in its own header. Bytes only: no field is validated or
/// interpreted, and dmFields is not honoured.
/// @param pstuIn  record of dmSize + dmDriverExtra bytes; borrowed.
/// @param pstuOut [in, out] buffer of dmSize + dmDriverExtra bytes by its own header, which it keeps.
/// @return 0 for success; 1 when either pointer is null or nothing was copied.
int ConvertDevmode(DEVMODEW* pstuIn, DEVMODEW* pstuOut);
