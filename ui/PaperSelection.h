#pragma once
/// The paper list's combo box.

#include "settings/PaperInfo.h"
#include "support/Resource.h"

#include <windows.h>

/// Selects the first paper whose name begins so; the rest of the name and case don't matter to the platform.
/// @return its index, or CB_ERR with the selection unchanged.
inline LRESULT SelectPaper(HWND hDlg, const wchar_t* pszName)
{
    return SendDlgItemMessageW(hDlg, IDC_PAPER, CB_SELECTSTRING, static_cast<WPARAM>(-1),
                               reinterpret_cast<LPARAM>(pszName));
}

/// Tells the selected paper.
/// @param szName [out] its name; empty without a selection.
/// @return its index, or CB_ERR without a selection, as when the user typed into the box.
inline LRESULT SelectedPaper(HWND hDlg, wchar_t (&szName)[kPaperNameUnits])
{
    szName[0] = L'\0';
    const LRESULT lIndex = SendDlgItemMessageW(hDlg, IDC_PAPER, CB_GETCURSEL, 0, 0);
    SendDlgItemMessageW(hDlg, IDC_PAPER, CB_GETLBTEXT, static_cast<WPARAM>(lIndex), reinterpret_cast<LPARAM>(szName));
    return lIndex;
}
