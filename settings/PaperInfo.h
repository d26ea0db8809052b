#pragma once
/// One paper of the list that a document sheet offers.

#include <windows.h>

#include <cstddef>
#include <string>

/// Wide characters of a paper's name, the terminator included.
inline constexpr size_t kPaperNameUnits = 64;

/// The most papers that a list is made of; what a snapshot claims beyond them is cut off.
/// Required: a bound although none is asked for. Whoever may write the snapshot could otherwise let each sheet and each
/// default record of every user wait for hours, and take gigabytes in each process, with a file of two lines
/// (docs/security.md has what was measured). Paper numbers have 16 bits: a longer list can only repeat them.
inline constexpr DWORD kMostPapers = 65536;

/// A catalogue entry; 140 bytes.
struct stuPaperInfo
{
    wchar_t aszPaperName[kPaperNameUnits]; ///< display name, zero-terminated; also the text in the combo box
    WORD wPaper;                           ///< DMPAPER_ number, as in dmPaperSize
    POINT stuPaperSize;                    ///< width and height in tenths of a millimetre
};

static_assert(sizeof(stuPaperInfo::aszPaperName) == 128, "the name is copied whole");
static_assert(offsetof(stuPaperInfo, wPaper) == 128 && offsetof(stuPaperInfo, stuPaperSize) == 132 &&
                  sizeof(stuPaperInfo) == 140,
              "the entry's layout");

/// The text of an entry in a call line: "{aszPaperName = A4,wPaper9,stuPaperSize{pt.x2100,pt.y}}". The first call sets
/// the process's C locale to "chs", so that a Chinese name can be shown.
std::string ArgumentText(const stuPaperInfo& stuInfo);
