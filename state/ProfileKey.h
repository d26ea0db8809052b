#pragma once

#include <windows.h>

#include <cstdio>

namespace VelUtility
{

/// The key of one array element: the base name and the index in decimal.
class ElementKey
{
public:
    ElementKey(const wchar_t* pszBaseKey, DWORD dwIndex)
    {
        _snwprintf_s(m_szKey, kUnits, _TRUNCATE, L"%ls%d", pszBaseKey, static_cast<int>(dwIndex));
    }
    operator const wchar_t*() const noexcept { return m_szKey; }

private:
    static constexpr size_t kUnits = 256; // wide characters
    wchar_t m_szKey[kUnits];
};

} // namespace VelUtility
