#include "diag/LogText.h"

#include "diag/FormatText.h"

#include <cstdlib>
#include <vector>

std::string ToLogText(int iValue)
{
    return std::to_string(iValue);
}

std::string ToLogText(LONG lValue)
{
    return std::to_string(lValue);
}

std::string ToLogText(DWORD dwValue)
{
    return std::to_string(dwValue);
}

std::string ToLogText(PCWSTR pszValue)
{
    if (pszValue == nullptr)
    {
        return std::string();
    }
    // At most two bytes a unit in the code pages that msvcrt's wcstombs serves; _TRUNCATE covers any other.
    std::vector<char> text(wcslen(pszValue) * 2 + 1);
    size_t cbConverted = 0;
    if (wcstombs_s(&cbConverted, text.data(), text.size(), pszValue, _TRUNCATE) == EILSEQ)
    {
        return std::string();
    }
    return text.data();
}

std::string ToLogText(const DEVMODEW* pstuDevmode)
{
    const std::string strAddress = FormatText("0x%p", static_cast<const void*>(pstuDevmode));
    return pstuDevmode == nullptr ? strAddress : strAddress + " => " + ToLogText(*pstuDevmode);
}

std::string ArgumentText(WORD wValue)
{
    return std::to_string(wValue);
}

std::string ArgumentText(SHORT nValue)
{
    return std::to_string(nValue);
}

std::string ArgumentText(unsigned __int64 uiValue)
{
    return FormatText("%I64u", uiValue);
}

std::string ArgumentText(void* pValue)
{
    return FormatText("0x%p", pValue);
}

std::string ArgumentText(LONG* plValue)
{
    const std::string strAddress = FormatText("0x%p", static_cast<void*>(plValue));
    return plValue == nullptr ? strAddress : strAddress + " => " + std::to_string(static_cast<DWORD>(*plValue));
}

std::string ArgumentText(HWND hWindow)
{
    return IsWindow(hWindow) ? "(Valid windows handle)" : "(Invalid windows handle)";
}
