#pragma once
/// What the capability snapshot knows of the printer: the record that holds it in memory, and the one table that says
/// of each capability its code, its form, its keys in Config.ini and its place in the record. Who reads, writes,
/// answers or shows capabilities goes by this table.

#include <windows.h>

#include <string>
#include <variant>

namespace VelUtility
{

/// Wide characters of one entry in a list of names, with the terminator only where the name leaves space for it.
inline constexpr size_t kNarrowNameUnits = 24;
inline constexpr size_t kWideNameUnits = 64;

/// Whether a name of this length makes the query of its whole list fail (see SubCmpCaps_StrArray).
/// @param uiLength wide characters of the name, without a terminator.
/// @param uiWidth  wide characters of its entry.
constexpr bool IsRefusedLength(size_t uiLength, size_t uiWidth)
{
    return uiLength == uiWidth - 1 || uiLength == uiWidth - 2;
}

using NarrowName = wchar_t[kNarrowNameUnits];
using WideName = wchar_t[kWideNameUnits];

/// A pair of 32-bit numbers: a resolution in dots per inch, x then y.
struct Resolution
{
    LONG x;
    LONG y;
};
static_assert(sizeof(Resolution) == 8, "the element of DC_ENUMRESOLUTIONS");

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

// The forms that a capability can have. Each names the members of the record; a list also names the base keys of its
// elements. In the caller's buffer a list is an array of its element type.

/// One number, without a buffer.
struct CapNumber
{
    DWORD PrinterCaps::*pValue;
};

/// A number that packs two words, x low and y high, in tenths of a millimetre.
struct CapExtent : CapNumber
{
};

/// A list of numbers or of names.
template <typename Entry>
struct CapList
{
    using Element = Entry;
    const Element* PrinterCaps::*pElements;
    DWORD PrinterCaps::*pCount;
    const wchar_t* pszBaseKey;
};

/// A list of pairs of 32-bit numbers, which have a base key each.
template <typename Pair>
struct CapPairs
{
    using Element = Pair;
    const Element* PrinterCaps::*pElements;
    DWORD PrinterCaps::*pCount;
    const wchar_t* pszBaseKeyX;
    const wchar_t* pszBaseKeyY;
};

/// Whoever handles a capability visits its form, and so handles all forms or does not compile.
using CapForm = std::variant<CapNumber, CapExtent, CapList<WORD>, CapList<DWORD>, CapList<NarrowName>,
                             CapList<WideName>, CapPairs<Resolution>, CapPairs<POINT>>;

/// One capability of the snapshot.
struct CapRow
{
    WORD iDevCap;          ///< DC_ code
    const wchar_t* pszKey; ///< the number's key, or the key of the list's count
    CapForm form;
};

/// All capabilities of the snapshot, in the order in which they are written to the file; a list's elements come behind
/// its count.
inline constexpr CapRow kCapRows[] = {
    {DC_BINNAMES, L"BinNamesCount",
     CapList<NarrowName>{&PrinterCaps::BinNames, &PrinterCaps::BinNamesCount, L"BinNames"}},
    {DC_BINS, L"BinsCount", CapList<WORD>{&PrinterCaps::Bins, &PrinterCaps::BinsCount, L"Bins"}},
    {DC_COLLATE, L"Collate", CapNumber{&PrinterCaps::Collate}},
    {DC_COLORDEVICE, L"ColorDevice", CapNumber{&PrinterCaps::ColorDevice}},
    {DC_COPIES, L"Copies", CapNumber{&PrinterCaps::Copies}},
    {DC_DUPLEX, L"Duplex", CapNumber{&PrinterCaps::Duplex}},
    {DC_ENUMRESOLUTIONS, L"ResolutionCount",
     CapPairs<Resolution>{&PrinterCaps::Resolutions, &PrinterCaps::ResolutionCount, L"ResolutionX", L"ResolutionY"}},
    {DC_MAXEXTENT, L"MaxExtent", CapExtent{{&PrinterCaps::MaxExtent}}},
    {DC_MINEXTENT, L"MinExtent", CapExtent{{&PrinterCaps::MinExtent}}},
    {DC_MEDIAREADY, L"MediaReadyCount",
     CapList<WideName>{&PrinterCaps::MediaReady, &PrinterCaps::MediaReadyCount, L"MediaReady"}},
    {DC_MEDIATYPENAMES, L"MediaTypeNamesCount",
     CapList<WideName>{&PrinterCaps::MediaTypeNames, &PrinterCaps::MediaTypeNamesCount, L"MediaTypeNames"}},
    {DC_MEDIATYPES, L"MediaTypesCount",
     CapList<DWORD>{&PrinterCaps::MediaTypes, &PrinterCaps::MediaTypesCount, L"MediaTypes"}},
    {DC_ORIENTATION, L"Orientation", CapNumber{&PrinterCaps::Orientation}},
    {DC_PAPERNAMES, L"PaperNamesCount",
     CapList<WideName>{&PrinterCaps::PaperNames, &PrinterCaps::PaperNamesCount, L"PaperNames"}},
    {DC_PAPERS, L"PapersCount", CapList<WORD>{&PrinterCaps::Papers, &PrinterCaps::PapersCount, L"Papers"}},
    {DC_PAPERSIZE, L"PaperSizeCount",
     CapPairs<POINT>{&PrinterCaps::PaperSizes, &PrinterCaps::PaperSizeCount, L"PaperSizeX", L"PaperSizeY"}},
    {DC_PRINTERMEM, L"PrintMem", CapNumber{&PrinterCaps::PrintMem}},
    {DC_PRINTRATE, L"PrintRate", CapNumber{&PrinterCaps::PrintRate}},
    {DC_PRINTRATEPPM, L"PrintPPM", CapNumber{&PrinterCaps::PrintPPM}},
    {DC_PRINTRATEUNIT, L"PrintRateUnit", CapNumber{&PrinterCaps::PrintRateUnit}},
};

/// The row of a code, or null when the code is not in the snapshot.
constexpr const CapRow* FindCapRow(WORD iDevCap)
{
    for (const CapRow& row : kCapRows)
    {
        if (row.iDevCap == iDevCap)
        {
            return &row;
        }
    }
    return nullptr;
}

} // namespace VelUtility
