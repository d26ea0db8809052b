#include "support/Account.h"

#include "support/Exception.h"
#include "support/ScopeGuard.h"

#include <boost/bind/bind.hpp>

#include <shlobj.h>

namespace Win32
{

std::wstring GetUserNameString()
{
    wchar_t szName[257];
    DWORD cchName = static_cast<DWORD>(sizeof(szName) / sizeof(szName[0]));
    if (!GetUserNameW(szName, &cchName))
    {
        ThrowLastError(L"GetUserNameW");
    }
    return szName;
}

bool IsSystemUser()
{
    return GetUserNameString() == L"SYSTEM";
}

const std::wstring& GetProgramFilesFolder()
{
    static std::wstring strFolder;
    if (strFolder.empty())
    {
        wchar_t szFolder[MAX_PATH] = {};
        if (SUCCEEDED(SHGetFolderPathW(nullptr, CSIDL_PROGRAM_FILES, nullptr, 0, szFolder)))
        {
            strFolder = szFolder;
        }
    }
    return strFolder;
}

void EnableDebugPrivilege(HANDLE hProcess, const wchar_t* /*pszPrivilege*/, bool bEnable)
{
    HANDLE hToken = nullptr;
    if (!OpenProcessToken(hProcess, TOKEN_ADJUST_PRIVILEGES, &hToken))
    {
        ThrowLastError(L"OpenProcessToken");
    }
    const Language::scope_guard guard(boost::bind(&CloseHandle, hToken));

    TOKEN_PRIVILEGES privileges = {};
    privileges.PrivilegeCount = 1;
    if (!LookupPrivilegeValueW(nullptr, L"SeDebugPrivilege", &privileges.Privileges[0].Luid))
    {
        ThrowLastError(L"LookupPrivilegeValue"); // Required: without a W
    }
    // Required: turning it off removes the right, which is more than disabling it.
    privileges.Privileges[0].Attributes = bEnable ? SE_PRIVILEGE_ENABLED : SE_PRIVILEGE_REMOVED;
    // A result other than 0 is a success also when the user does not hold the right.
    if (!AdjustTokenPrivileges(hToken, FALSE, &privileges, sizeof(privileges), nullptr, nullptr))
    {
        ThrowLastError(L"AdjustTokenPrivileges");
    }
}

bool TryEnableDebugPrivilege(HANDLE hProcess, const wchar_t* pszPrivilege, bool bEnable) noexcept
{
    try
    {
        EnableDebugPrivilege(hProcess, pszPrivilege, bEnable);
        return true;
    }
    catch (...)
    {
        return false;
    }
}

} // namespace Win32
