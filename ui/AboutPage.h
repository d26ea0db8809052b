#pragma once

#include <windows.h>

/// Dialog procedure of the about page (IDD_ABOUT), which shows its texts and its picture and does nothing else.
/// @return 1 for WM_INITDIALOG and WM_COMMAND, else 0.
INT_PTR CALLBACK ProAbouPage(HWND hDlg, UINT uiMessage, WPARAM wParam, LPARAM lParam);
