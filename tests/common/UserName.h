#pragma once

#include <windows.h>

#include <string>

/// Makes the platform name another user for this process. Wine takes the name from a variable of the process.
class UserName
{
public:
    /// @param pszName the name; null makes asking for it fail.
    explicit UserName(const wchar_t* pszName)
    {
        wchar_t szOld[257] = {};
        m_strOld.assign(szOld, GetEnvironmentVariableW(kVariable, szOld, 257));
        SetEnvironmentVariableW(kVariable, pszName);
    }
    ~UserName() { SetEnvironmentVariableW(kVariable, m_strOld.c_str()); }
    UserName(const UserName&) = delete;
    UserName& operator=(const UserName&) = delete;

private:
    static constexpr wchar_t kVariable[] = L"WINEUSERNAME";
    std::wstring m_strOld;
};
