#pragma once
/// The papers that a document sheet offers: those of the snapshot in Config.ini, and last the custom paper.

#include "settings/PaperInfo.h"
#include "state/StoreTypes.h"

/// Counts the papers, or builds the list.
/// @param pstuPaperInfo [out] null only asks for the count. Otherwise, owned by the caller, a buffer for the configured
///                      papers and one entry more, which takes the custom paper (256, size 0 by 0).
/// @param dwRoom        configured papers that the buffer can take. A snapshot that has grown since it was counted is
///                      cut to it.
/// @return the number of configured papers, kMostPapers at most: one less than the entries written. 0 without a
///         snapshot. 0xFFFFFFFF when there is no memory for the work; the list is then untouched.
DWORD GetPaperInfoList(stuPaperInfo* pstuPaperInfo, DWORD dwRoom = VelUtility::kNoAnswer);

/// Finds a paper by its number; sizes play no part.
/// @param dwCount entries at pstuPaperInfo.
/// @return the first entry of that number, or null.
const stuPaperInfo* FindPaper(const stuPaperInfo* pstuPaperInfo, DWORD dwCount, WORD wPaper);

/// Finds the name for a typed size: the first paper within 5 mm on each side, else the custom paper. Orientation plays
/// no part.
/// @param dwCount      entries at pstuPaperInfo.
/// @param pszPaperName [out] 64 wide characters, all written.
/// @param iUserX,iUserY width and height in whole millimetres.
/// @return 1 always.
int SubCheckPaperName(const stuPaperInfo* pstuPaperInfo, const DWORD& dwCount, wchar_t* pszPaperName, const int& iUserX,
                      const int& iUserY);
