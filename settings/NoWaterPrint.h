#pragma once
/// The user's stored request for pages without a watermark (DefaultNoWaterPrint in defsetting.ini): its one reader.

#include <windows.h>

#include <optional>

/// Reads the request. Nothing of its own is logged.
/// @return the stored number, 0 by default; nothing when the file's path can't be made.
std::optional<DWORD> ReadNoWaterPrint();

/// The same for the calls that show no sheet.
/// @return dwNoWaterPrint for a record; 0, with a warning in the log, when it can't be read.
DWORD ReadNoWaterPrintOrWarn();
