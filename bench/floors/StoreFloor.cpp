#include "bench/floors/StoreFloor.h"

#include <cstdio>
#include <cstdlib>
#include <cwchar>

namespace
{

void FloorFolder(const wchar_t* pszValue, wchar_t* szFolder)
{
    HKEY hKey = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Vel-soft\\Client", 0, KEY_READ, &hKey);
    DWORD cbFolder = 260 * sizeof(wchar_t);
    RegQueryValueExW(hKey, pszValue, nullptr, nullptr, reinterpret_cast<BYTE*>(szFolder), &cbFolder);
    RegCloseKey(hKey);
}

/// A text value: its size, then its bytes.
void FloorText(HKEY hKey, const wchar_t* pszValue, wchar_t* szText)
{
    DWORD cbText = 0;
    RegQueryValueExW(hKey, pszValue, nullptr, nullptr, nullptr, &cbText);
    RegQueryValueExW(hKey, pszValue, nullptr, nullptr, reinterpret_cast<BYTE*>(szText), &cbText);
}

} // namespace

void FloorClientCheck(DWORD dwClientPid)
{
    wchar_t szUser[257];
    DWORD cchUser = 257;
    GetUserNameW(szUser, &cchUser);
    if (dwClientPid != 0)
    {
        GetProcessVersion(dwClientPid);
    }
}

void FloorConfigPath(wchar_t* szPath)
{
    wchar_t szFolder[260];
    FloorFolder(L"TempDir", szFolder);
    _wmakepath(szPath, nullptr, szFolder, L"Config.ini", nullptr);
}

void FloorPersonalPath(const wchar_t* pszFile, wchar_t* szPath)
{
    HKEY hKey = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\\\Microsoft\\\\Windows NT\\\\CurrentVersion\\\\Winlogon", 0,
                  KEY_ALL_ACCESS, &hKey);
    wchar_t szUser[81];
    FloorText(hKey, L"DefaultUserName", szUser);
    wchar_t szDomain[81];
    FloorText(hKey, L"DefaultDomainName", szDomain);
    wchar_t szComputer[32];
    DWORD cchComputer = 32;
    GetComputerNameW(szComputer, &cchComputer);
    RegCloseKey(hKey);

    wchar_t szName[260];
    _snwprintf(szName, 260, L"%ls@%ls_%ls", szUser, szDomain, pszFile);
    wchar_t szFolder[260];
    FloorFolder(L"DataDir", szFolder);
    _wmakepath(szPath, nullptr, szFolder, szName, nullptr);
}

FloorLock::FloorLock(const wchar_t* pszPath)
{
    wchar_t szName[260];
    _wfullpath(szName, pszPath, 260);
    _wcslwr(szName);
    for (wchar_t* p = szName; *p != L'\0'; ++p)
    {
        if (*p == L'\\')
        {
            *p = L'|';
        }
    }
    m_hMutex = CreateMutexW(nullptr, FALSE, szName);
    WaitForSingleObject(m_hMutex, INFINITE);
}

FloorLock::~FloorLock()
{
    ReleaseMutex(m_hMutex);
    ReleaseMutex(m_hMutex); // the contract's second release
    CloseHandle(m_hMutex);
}
