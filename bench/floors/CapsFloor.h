#pragma once
/// The floor of capability queries: exactly the platform calls that the contract demands for one query, and nothing
/// else. Folder and key names are given, no table is searched, nothing is logged.

#include <windows.h>

/// The user, the folder from the registry, the lock, one number, the lock given back.
DWORD FloorNumber(const wchar_t* pszKey);

/// The same with a list of dwCount 16-bit numbers behind its count.
DWORD FloorWords(const wchar_t* pszCountKey, const wchar_t* pszBaseKey, WORD* pwOutput);
