#include "ui/NumberBox.h"

#include "diag/LogSite.h"
#include "support/ModuleTexts.h"
#include "support/Resource.h"

#include <cstdlib>
#include <cwchar>
#include <cwctype>
#include <string>

VELUI_SOURCE_MODULE("SubVelUi");

int SubGetEditToINT(HWND hEdit, wchar_t* szprint, int iCount, int& iResult)
{
    TRACE_FUNCTION("SubGetEditToINT");
    if (IsFatalEnabled())
    {
        TRACE_ARGUMENT(hEdit);
        TRACE_ARGUMENT(szprint);
        TRACE_ARGUMENT(iCount);
        TRACE_ARGUMENT(iResult);
    }
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
    TRACE_FUNCTION("SubCheckAllNum");
    if (IsFatalEnabled())
    {
        TRACE_ARGUMENT(szprint);
        TRACE_ARGUMENT(uiCount);
    }
    std::wstring strCaption;
    std::wstring strText;
    SubLoadString(IDS_WARNING_CAPTION, strCaption);
    SubLoadString(IDS_WARNING_TEXT, strText);
    for (size_t i = 0; i < uiCount; ++i)
    {
        if (std::iswdigit(szprint[i]) == 0)
        {
            MessageBoxW(nullptr, strText.c_str(), strCaption.c_str(), MB_OK);
            return 0;
        }
    }
    return 1;
}
