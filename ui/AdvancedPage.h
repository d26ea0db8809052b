#pragma once
/// The advanced page (IDD_ADVANCED): the request to print without the watermark. The module records it and neither
/// checks the right to it nor acts on it.

#include "ui/SheetData.h"

#include <windows.h>

/// Dialog procedure of the page. WM_INITDIALOG reads the user's stored setting, which outranks the record's; on
/// PSN_APPLY the check box goes into pdmOut and into the store, and the sheet library hears CPSUI_OK. A page that could
/// not read the setting stays unbound and applies nothing.
INT_PTR CALLBACK ProSeniorPage(HWND hDlg, UINT uiMessage, WPARAM wParam, LPARAM lParam);

/// Checks the box when dwNoWaterPrint of pdmIn is exactly 1. @return what CheckDlgButton returned.
int SubDefDlgSenior(HWND hDlg, const stuPassData* pstuPassData);

/// Writes the box into dwNoWaterPrint of pdmOut, 1 or 0, and 0 into the tail's other two words. @return 1.
int SubGetDlgSenior(HWND hDlg, stuPassData* pstuPassData);
