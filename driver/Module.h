#pragma once
/// The loaded module: its handle, its start and stop, and its texts.

#include <windows.h>

#include <string>

/// The module's own handle, stored anew at every call of DllMain with the same value.
extern HMODULE g_hModule;

/// Called by the loader. At process attach it reads the log configuration; at process detach it closes logging.
/// @return 1 always.
extern "C" BOOL WINAPI DllMain(HINSTANCE hinstDLL, DWORD fdwReason, LPVOID lpvReserved);

/// Reads a text of the module's string table.
/// @param uiId    IDS_ number.
/// @param strText [out] the text, cut at 99 characters; untouched on failure.
/// @return 1, or 0 when the string was not loaded.
int SubLoadString(UINT uiId, std::wstring& strText);
