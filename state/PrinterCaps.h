#pragma once
/// The capability snapshot in memory, and the description of the printer that it was taken from.

#include <windows.h>

#include <string>

namespace VelUtility
{

/// Wide characters of one entry in a list of names, with the terminator only where the name leaves room for it.
inline constexpr size_t kNarrowNameUnits = 24;
inline constexpr size_t kWideNameUnits = 64;

using NarrowName = wchar_t[kNarrowNameUnits];
using WideName = wchar_t[kWideNameUnits];

/// A pair of 32-bit numbers: a resolution in dots per inch, x then y.
struct Resolution
{
    LONG x;
    LONG y;
};
static_assert(sizeof(Resolution) == 8, "the element of DC_ENUMRESOLUTIONS");

/// Where the printer stands and what it is called; section Printer of Config.ini.
struct PrinterInfo
{
    std::wstring PrinterName;
    std::wstring Location;
    std::wstring Description;
};

/// What the printer can do. Arrays are owned by whoever fills the record; each may be null when its count is 0.
struct PrinterCaps
{
    const NarrowName* BinNames;
    DWORD BinNamesCount;
    const WORD* Bins; ///< DMBIN_ numbers
    DWORD BinsCount;
    DWORD Collate;
    DWORD ColorDevice;
    DWORD Copies;
    DWORD Duplex;
    const Resolution* Resolutions;
    DWORD ResolutionCount;
    DWORD MaxExtent; ///< x in the low word, y in the high word, tenths of a millimetre
    DWORD MinExtent; ///< as MaxExtent
    const WideName* MediaReady;
    DWORD MediaReadyCount;
    const WideName* MediaTypeNames;
    DWORD MediaTypeNamesCount;
    const DWORD* MediaTypes; ///< DMMEDIA_ numbers
    DWORD MediaTypesCount;
    DWORD Orientation; ///< degrees from portrait to landscape
    const WideName* PaperNames;
    DWORD PaperNamesCount;
    const WORD* Papers; ///< DMPAPER_ numbers
    DWORD PapersCount;
    const POINT* PaperSizes; ///< tenths of a millimetre
    DWORD PaperSizeCount;
    DWORD PrintMem; ///< kilobytes
    DWORD PrintRate;
    DWORD PrintPPM;
    DWORD PrintRateUnit; ///< PRINTRATEUNIT_ number
};

} // namespace VelUtility
