#pragma once

#include "state/StoreTypes.h"

#include <windows.h>

namespace VelUtility
{

/// Answers one capability from the snapshot in Config.ini, read anew on every call under the file's lock.
/// @param iDevCap  DC_ code; one that is not in the snapshot is refused.
/// @param pvOutput [out] null asks a list for its count; otherwise room for all entries in the element form of the
/// code:
///                 16-bit identifiers (DC_PAPERS, DC_BINS), x/y pairs of 32-bit numbers (DC_PAPERSIZE in tenths of a
///                 millimetre, DC_ENUMRESOLUTIONS in dots per inch), 32-bit numbers (DC_MEDIATYPES), names of 24
///                 (DC_BINNAMES) or 64 wide characters. A single value ignores it.
/// @param dwRoom   entries that pvOutput has room for; those of a longer list are left out.
/// @return the count or the value; 0xFFFFFFFF when the key or the client's folder is missing, or the code is refused.
///         After a failed read of a list: identifiers hold 0xFFFF at the missing entry and 0 behind it, pairs are
///         untouched, names hold what was read.
DWORD GetComputerCaps(WORD iDevCap, void* pvOutput, DWORD dwRoom = kNoAnswer);

/// Reads one number of the snapshot.
/// @return the number, or 0xFFFFFFFF when the key or the file is absent.
DWORD SubCmpCaps_Rtn(const wchar_t* pszKey, const wchar_t* pszFile);

/// Reads a list of numbers from the keys pszBaseKey0, pszBaseKey1 and so on.
/// @param pdwValues [out] dwCount numbers; from the first absent one on only that one is written, as 0xFFFFFFFF.
/// @return dwCount, or 0xFFFFFFFF when a key is absent (a stored -1 counts as absent).
DWORD SubCmpCaps_IntArray(const wchar_t* pszBaseKey, const wchar_t* pszFile, DWORD* pdwValues, DWORD dwCount);

/// Reads a list of names from the keys pszBaseKey0, pszBaseKey1 and so on.
/// @param pszValues [out] dwCount entries of dwWidth wide characters each.
/// @return dwCount, or 0xFFFFFFFF when a name has exactly dwWidth - 1 or dwWidth - 2 characters: reading stops there.
DWORD SubCmpCaps_StrArray(const wchar_t* pszBaseKey, const wchar_t* pszFile, wchar_t* pszValues, DWORD dwCount,
                          DWORD dwWidth);

} // namespace VelUtility
