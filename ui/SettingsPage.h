#pragma once
/// The settings page (IDD_SETTINGS): paper, orientation, colour and duplex. It starts from pdmIn, offers what the
/// snapshot in Config.ini allows, and on apply writes pdmOut, pdmIn and the user's DevMode.dat. The controls' own work
/// stands with their groups: PaperControls, OrientationControls, OtherControls.

#include "ui/SheetData.h"

#include <windows.h>

/// Dialog procedure of the page. Leaving the page is never refused, and nothing is validated.
INT_PTR CALLBACK ProSetPage(HWND hDlg, UINT uiMessage, WPARAM wParam, LPARAM lParam);

/// Writes the controls into pdmOut, pdmIn and the user's DevMode.dat.
/// @return 1.
int SubSetDlgData(HWND hDlg, stuPassData* pstuPassData);
