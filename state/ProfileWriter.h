#pragma once
/// Typed writing of profile (ini) files. An array takes one key for each element: the base name and the element's index
/// from zero. No function here takes a lock; a caller that wants exclusion holds a CScopeFileLock.
///
/// Each function takes section, key and file as wide text, the file as a full path, and returns non-zero for success
/// and zero for failure. An array writer stops at the first failed write; the keys already written stay.

#include "state/PrinterCaps.h"

#include <windows.h>

namespace VelUtility
{

/// Writes an unsigned number in decimal.
DWORD WritePrivateProfileUINT(const wchar_t* pszSection, const wchar_t* pszKey, DWORD dwValue, const wchar_t* pszFile);

/// Writes a signed number in decimal.
DWORD WritePrivateProfileINT(const wchar_t* pszSection, const wchar_t* pszKey, int iValue, const wchar_t* pszFile);

/// Writes "1" for any non-zero value and "0" for zero.
DWORD WritePrivateProfileBOOL(const wchar_t* pszSection, const wchar_t* pszKey, BOOL bValue, const wchar_t* pszFile);

/// Writes names of 24 or 64 wide characters each. An element that fills its width without a terminator runs on into the
/// element behind it.
/// @param pszValues dwCount elements; borrowed; not tested for null.
DWORD WritePrivateProfileStringWArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const NarrowName* pszValues,
                                      DWORD dwCount, const wchar_t* pszFile);
DWORD WritePrivateProfileStringWArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const WideName* pszValues,
                                      DWORD dwCount, const wchar_t* pszFile);

/// Writes unsigned numbers.
/// @param pValues dwCount elements; borrowed; null is a success that writes nothing.
DWORD WritePrivateProfileUINTArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const WORD* pValues,
                                   DWORD dwCount, const wchar_t* pszFile);
DWORD WritePrivateProfileUINTArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const DWORD* pValues,
                                   DWORD dwCount, const wchar_t* pszFile);

/// Writes pairs as unsigned numbers, the first of each under pszBaseKeyX and the second under pszBaseKeyY.
/// @param pValues dwCount pairs; borrowed; null is a success that writes nothing.
DWORD WritePrivateProfileResolutoinArray(const wchar_t* pszSection, const wchar_t* pszBaseKeyX,
                                         const wchar_t* pszBaseKeyY, const Resolution* pValues, DWORD dwCount,
                                         const wchar_t* pszFile);

/// The same for points; a null array also leaves a line in the log.
DWORD WritePrivateProfilePointArray(const wchar_t* pszSection, const wchar_t* pszBaseKeyX, const wchar_t* pszBaseKeyY,
                                    const POINT* pstuValue, DWORD dwCount, const wchar_t* pszFile);

} // namespace VelUtility
