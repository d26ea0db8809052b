#include "support/module/ModuleTexts.h"

#include "diag/LogSite.h"

#include <iterator>

HMODULE g_hModule = nullptr;

int SubLoadString(UINT uiId, std::wstring& strText)
{
    const FunctionScope scope("SubLoadString");
    wchar_t szText[100];
    if (LoadStringW(g_hModule, uiId, szText, static_cast<int>(std::size(szText))) == 0)
    {
        return 0;
    }
    strText = szText;
    return 1;
}
