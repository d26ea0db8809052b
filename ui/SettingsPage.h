#pragma once
/// The settings page (IDD_SETTINGS): paper, orientation, colour and duplex. It starts from pdmIn, offers what the
/// snapshot in Config.ini allows, and on apply writes pdmOut, pdmIn and the user's DevMode.dat.
///
/// All operations return 1 for success and 0 for failure, and run on the sheet's thread. hDlg is the page's window.

#include "settings/SheetData.h"

#include <windows.h>
#include <commctrl.h>

// The page's process-wide variables. They keep their values from one sheet to the next, and two sheets of one process
// share them.

/// 0 while a handler writes the size boxes or the selection, so that the changes that this causes start no handler.
extern DWORD bPaperSync;
/// 0 only while an orientation button's handler runs Sub_On_Combo: then the texts of a custom size are exchanged.
extern DWORD bNoSwap;
/// The size box that holds the paper's x (the width) and the one that holds its y (the height): IDC_FIRST_SIZE and
/// IDC_SECOND_SIZE in portrait, the other way round in landscape.
extern int iWidthEditId;
extern int iHeightEditId;

/// Dialog procedure of the page. Leaving the page is never refused, and nothing is validated.
INT_PTR CALLBACK ProSetPage(HWND hDlg, UINT uiMessage, WPARAM wParam, LPARAM lParam);

/// Sets the limits of the size controls, fills the paper list and selects the record's paper; else "A4", else the
/// first.
int SubInitPaperSize(const stuPassData* stuPassData, HWND hDlg);
/// Sets the orientation controls; landscape only where the printer turns by 90 or 270 degrees. Fills the size boxes.
int SubInitOrientation(const stuPassData* stuPassData, HWND hDlg);
/// Sets colour and duplex as far as the printer has them.
int SubInitOther(const stuPassData* stuPassData, HWND hDlg);

/// Follows a click on an orientation button: picture, roles of the size boxes, their texts.
int On_Radio_Stand(HWND hDlg, const stuPassData* stuPassData);
/// Follows a click on the duplex box.
/// @param nDuplex DMDUP_ number that was applied last; it and not the buttons' state decides which binding comes up.
int On_Check_Duplex(HWND hDlg, short nDuplex);
/// Shows the selected paper's size. A custom paper leaves the boxes alone, or exchanges them while bNoSwap is 0.
int Sub_On_Combo(HWND hDlg, const stuPassData* stuPassData);
/// Selects the paper whose size was typed.
/// @param wNotification EN_ code; only EN_CHANGE counts.
/// @return 0 when a box holds no number or the paper found is not in the list.
int Sub_On_Edit(HWND hDlg, WORD wNotification, const stuPassData* stuPassData);
/// Adds a spin's step to its size box; not below 0.
int Sub_On_Spin(HWND hDlg, const NMUPDOWN* pUpDown);

/// Writes the controls into pdmOut, pdmIn and the user's DevMode.dat.
int SubSetDlgData(HWND hDlg, stuPassData* stuPassData);
