#pragma once
/// The settings page's paper controls: the list of papers, the two size boxes and their spins. They own the page's
/// process-wide variables.
///
/// All operations return 1 for success and 0 for failure unless told otherwise, and run on the sheet's thread. hDlg is
/// the page's window.

#include "ui/SheetData.h"

#include <windows.h>
#include <commctrl.h>

/// The custom paper's name as the page knows it.
/// Required: this text and not the string table's. A translated table would change what the list shows, and with it
/// what a click on an orientation button does to a custom size.
inline constexpr wchar_t kCustomPaper[] = L"自定义";

// The page's process-wide variables. They keep their values from one sheet to the next, and two sheets of one process
// share them.

/// 0 while a handler writes the size boxes or the selection, so that the changes that this causes start no handler.
extern DWORD bPaperSync;
/// 0 only while TurnSizes runs Sub_On_Combo: then the texts of a custom size are exchanged.
extern DWORD bNoSwap;
/// The size box that holds the paper's x (the width) and the one that holds its y (the height): IDC_FIRST_SIZE and
/// IDC_SECOND_SIZE in portrait, the other way round in landscape.
extern int iWidthEditId;
extern int iHeightEditId;

/// Sets the limits of the size controls, fills the paper list and selects the record's paper; else "A4", else the
/// first.
int SubInitPaperSize(const stuPassData* pstuPassData, HWND hDlg);

/// Finds the name of the paper in pdmIn by its number; sizes play no part.
/// @param aszPaperName [out] 64 wide characters; untouched when nothing is found.
/// @return 1 when found, else 0.
int GetDevDefPaperName(const stuPassData* pstuPassData, wchar_t* aszPaperName);

/// Makes the paper box show a name that is too long for it from its beginning, as soon as the box has the name: all of
/// it is selected from its end to its start, so that the caret, which the box keeps in sight, stands at the start.
void ShowNameFromStart(HWND hDlg);

/// Shows the selected paper's size. A custom paper leaves the boxes alone, or exchanges them while bNoSwap is 0.
int Sub_On_Combo(HWND hDlg, const stuPassData* pstuPassData);
/// Selects the paper whose size was typed.
/// @param wNotification EN_ code; only EN_CHANGE counts.
/// @return 0 when a box holds no number or the paper found is not in the list.
int Sub_On_Edit(HWND hDlg, WORD wNotification, const stuPassData* pstuPassData);
/// Adds a spin's step to its size box; not below 0.
int Sub_On_Spin(HWND hDlg, const NMUPDOWN* pUpDown);

/// Gives the size boxes the roles that they have in an orientation, and shows the selected paper's size in them.
void TurnSizes(HWND hDlg, const stuPassData* pstuPassData, bool bLandscape);

/// Writes the selected paper, and a custom one's size, into a record.
void ReadPaper(HWND hDlg, const stuPassData* pstuPassData, DEVMODEW& stuDevmode);
