#pragma once
/// The floor of capability queries: the path of Config.ini, its lock, the reads of one answer. Key names are given, no
/// table is searched.

#include <windows.h>

/// One number.
DWORD FloorNumber(const wchar_t* pszKey);

/// A list of 16-bit numbers behind its count.
DWORD FloorWords(const wchar_t* pszCountKey, const wchar_t* pszBaseKey, WORD* pwOutput);

/// A list of 32-bit numbers.
DWORD FloorDwords(const wchar_t* pszCountKey, const wchar_t* pszBaseKey, DWORD* pdwOutput);

/// A list of pairs: all x, then all y.
DWORD FloorPairs(const wchar_t* pszCountKey, const wchar_t* pszBaseKeyX, const wchar_t* pszBaseKeyY, POINT* pstuOutput);

/// A list of names.
/// @param dwWidth wide characters of an entry, 24 or 64.
DWORD FloorNames(const wchar_t* pszCountKey, const wchar_t* pszBaseKey, wchar_t* pszOutput, DWORD dwWidth);
