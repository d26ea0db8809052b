#pragma once

#include <windows.h>

/// The user's stored request for pages without a watermark.
/// @return dwNoWaterPrint; 0, with a warning in the log, when it can't be read.
DWORD ReadStoredNoWaterPrint();
