#pragma once
/// The loaded module's handle, and the texts of its string table.

#include <windows.h>

#include <string>

/// The module's own handle, stored anew at every call of DllMain with the same value.
extern HMODULE g_hModule;

/// Reads a text of the module's string table.
/// @param uiId    IDS_ number.
/// @param strText [out] the text, cut at 99 characters; untouched on failure.
/// @return 1, or 0 when the string was not loaded.
int SubLoadString(UINT uiId, std::wstring& strText);
