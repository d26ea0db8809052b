#pragma once
/// Reading texts from profile files.

#include <windows.h>

#include <string>

namespace VelUtility
{

/// Reads a key's text, empty when it is absent.
/// @tparam uiUnits room for the text in wide characters, the terminator among them; a longer text is cut.
template <size_t uiUnits>
std::wstring ReadProfileText(const wchar_t* pszSection, const wchar_t* pszKey, const wchar_t* pszFile)
{
    wchar_t szText[uiUnits] = {};
    GetPrivateProfileStringW(pszSection, pszKey, L"", szText, uiUnits, pszFile);
    return szText;
}

} // namespace VelUtility
