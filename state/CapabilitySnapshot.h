#pragma once
/// The capability snapshot in Config.ini, which stands for the printer: written by whoever takes it of a real printer,
/// and read anew, under the file's lock, for each answer. Which capabilities there are: CapabilityTable.h.

#include "state/CapabilityTable.h"
#include "state/StoreTypes.h"

#include <windows.h>

#include <string>

namespace VelUtility
{

/// The snapshot's sections in Config.ini: the printer's capabilities, and what it is called.
inline constexpr wchar_t kCapsSection[] = L"DeviceCapabilities";
inline constexpr wchar_t kPrinterSection[] = L"Printer";

/// Where the printer stands and what it is called; section Printer of Config.ini.
struct PrinterInfo
{
    std::wstring PrinterName;
    std::wstring Location;
    std::wstring Description;
};

/// Writes a snapshot: the sections Printer and DeviceCapabilities of Config.ini in the client's TempDir, under the
/// file's lock. No entry point of this module calls it: it is kept for the client's programs that take the snapshot.
/// @param pstuInfo, pstuCaps borrowed; neither may be null.
/// @return 0 always, also after a failed write, which only the log shows; what was written until then stays.
DWORD MakePrinterConfig(const PrinterInfo* pstuInfo, const PrinterCaps* pstuCaps);

/// Reads section Printer under the file's lock; each text at most 255 characters. Kept for the client's programs, like
/// MakePrinterConfig.
/// @param pstuInfo [out] an absent key gives an empty text.
/// @return 0, or 1 without the client's folder.
DWORD GetPrinterInfo(PrinterInfo* pstuInfo);

/// Answers one capability from the snapshot.
/// @param iDevCap  DC_ code; one that is not in the snapshot is refused.
/// @param pvOutput [out] null asks a list for its count; otherwise a buffer for all entries in the element form of the
///                 code: 16-bit identifiers (DC_PAPERS, DC_BINS), x/y pairs of 32-bit numbers (DC_PAPERSIZE in tenths
///                 of a millimetre, DC_ENUMRESOLUTIONS in dots per inch), 32-bit numbers (DC_MEDIATYPES), names of 24
///                 (DC_BINNAMES) or 64 wide characters. A single value ignores it.
/// @param dwRoom   entries that pvOutput can take; those of a longer list are left out.
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
