#pragma once
/// Single controls of a page, whatever the page: buttons, and text boxes that hold a number.

#include <windows.h>

#include <cstddef>

/// Whether a check box or radio button is checked.
bool IsChecked(HWND hDlg, int iControl);
/// Checks it.
void Check(HWND hDlg, int iControl);
/// Disables a control.
void Disable(HWND hDlg, int iControl);

/// Writes a number into a text box, in decimal.
void WriteNumber(HWND hEdit, int iValue);

/// Reads a text box as a decimal number. Anything but digits gets the warning box; an empty text is 0.
/// @param szprint [out] the text, iCount wide characters at most with its terminator; a longer text is cut.
/// @param iResult [out] the number; untouched unless 1 is returned.
/// @return 1, or 0 when the text is no number.
int SubGetEditToINT(HWND hEdit, wchar_t* szprint, int iCount, int& iResult);

/// Tests that a text is all digits; shows the warning box, modal and without an owner, at the first that is not.
/// @param uiCount wide characters to test.
/// @return 1 when all are digits (none fails in an empty text), else 0.
int SubCheckAllNum(const wchar_t* szprint, size_t uiCount);
