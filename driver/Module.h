#pragma once
/// The module's start and stop.

#include "support/ModuleTexts.h"

#include <windows.h>

/// Called by the loader. At process attach it reads the log configuration; at process detach it closes logging.
/// @return 1 always.
extern "C" BOOL WINAPI DllMain(HINSTANCE hinstDLL, DWORD fdwReason, LPVOID lpvReserved);
