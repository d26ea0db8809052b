#pragma once
/// The settings page's colour and duplex controls. hDlg is the page's window.

#include "ui/SheetData.h"

#include <windows.h>

/// Sets colour and duplex as far as the printer has them.
/// @return 1.
int SubInitOther(const stuPassData* pstuPassData, HWND hDlg);

/// Follows a click on the duplex box.
/// @param nDuplex DMDUP_ number that was applied last; it and not the buttons' state decides which binding comes up.
/// @return 1.
int On_Check_Duplex(HWND hDlg, short nDuplex);

/// Writes the chosen colour and duplex into a record.
void ReadOther(HWND hDlg, DEVMODEW& stuDevmode);
