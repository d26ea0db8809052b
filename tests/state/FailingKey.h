#pragma once
/// Writes to profile files of which one fails.

#include "tests/common/ImportHook.h"

#include <windows.h>

#include <string>
#include <vector>

/// Makes the writes of one key fail with "disk full" for the length of a scope, and notes which keys are written. One
/// at a time.
class FailingKey
{
public:
    /// @param strKey the key; an empty one fails none.
    explicit FailingKey(const std::wstring& strKey) : m_hook(nullptr, "WritePrivateProfileStringW", &Write)
    {
        s_pfnReal = reinterpret_cast<decltype(s_pfnReal)>(m_hook.Original());
        s_strFailing = strKey;
        s_asked.clear();
    }

    /// The keys so far in the order of their writes, the failing one among them.
    const std::vector<std::wstring>& Asked() const { return s_asked; }

private:
    static BOOL WINAPI Write(LPCWSTR pszSection, LPCWSTR pszKey, LPCWSTR pszValue, LPCWSTR pszFile)
    {
        s_asked.push_back(pszKey);
        if (s_strFailing == pszKey)
        {
            SetLastError(ERROR_DISK_FULL);
            return FALSE;
        }
        return s_pfnReal(pszSection, pszKey, pszValue, pszFile);
    }

    static inline BOOL(WINAPI* s_pfnReal)(LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR) = nullptr;
    static inline std::wstring s_strFailing;
    static inline std::vector<std::wstring> s_asked;
    ImportHook m_hook;
};
