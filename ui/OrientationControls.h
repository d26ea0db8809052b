#pragma once
/// The settings page's orientation controls: two buttons and a picture. hDlg is the page's window.

#include "ui/SheetData.h"

#include <windows.h>

/// Sets the orientation controls; landscape only where the printer turns by 90 or 270 degrees. Fills the size boxes.
/// @return 1.
int SubInitOrientation(const stuPassData* pstuPassData, HWND hDlg);

/// Follows a click on an orientation button: picture, roles of the size boxes, their texts.
/// @return 1.
int On_Radio_Stand(HWND hDlg, const stuPassData* pstuPassData);

/// Writes the chosen orientation into a record.
void ReadOrientation(HWND hDlg, DEVMODEW& stuDevmode);
