#include "ui/Controls.h"

#include "diag/LogSite.h"
#include "support/module/ModuleTexts.h"
#include "support/module/Resource.h"

#include <cstdlib>
#include <cwchar>
#include <cwctype>
#include <string>

VELUI_SOURCE_MODULE("SubVelUi");

bool IsChecked(HWND hDlg, int iControl)
{
    return IsDlgButtonChecked(hDlg, iControl) == BST_CHECKED;
}

void Check(HWND hDlg, int iControl)
{
    CheckDlgButton(hDlg, iControl, BST_CHECKED);
}

void Disable(HWND hDlg, int iControl)
{
    EnableWindow(GetDlgItem(hDlg, iControl), FALSE);
}

void WriteNumber(HWND hEdit, int iValue)
{
    wchar_t szNumber[12]; // a 32-bit number with its sign and a terminator
    swprintf_s(szNumber, L"%d", iValue);
    SetWindowTextW(hEdit, szNumber);
}

int SubGetEditToINT(HWND hEdit, wchar_t* szprint, int iCount, int& iResult)
{
    FunctionScope scope("SubGetEditToINT");
    TRACE_ARGUMENTS(scope, hEdit, szprint, iCount, iResult);
    szprint[0] = L'\0'; // what a window that is gone leaves
    GetWindowTextW(hEdit, szprint, iCount);
    if (SubCheckAllNum(szprint, std::wcslen(szprint)) == 0)
    {
        return 0;
    }
    iResult = _wtoi(szprint);
    return 1;
}

int SubCheckAllNum(const wchar_t* szprint, size_t uiCount)
{
    FunctionScope scope("SubCheckAllNum");
    TRACE_ARGUMENTS(scope, szprint, uiCount);
    std::wstring strCaption;
    std::wstring strText;
    SubLoadString(IDS_WARNING_CAPTION, strCaption);
    SubLoadString(IDS_WARNING_TEXT, strText);
    for (size_t i = 0; i < uiCount; ++i)
    {
        // Required: the C runtime's digits, which are those of Windows' character types: full-width digits among them,
        // which a Chinese keyboard writes and which count like the plain ones, but also raised ones ("²"), which have
        // no value in a number and count as 0.
        if (std::iswdigit(szprint[i]) == 0)
        {
            MessageBoxW(nullptr, strText.c_str(), strCaption.c_str(), MB_OK);
            return 0;
        }
    }
    return 1;
}
