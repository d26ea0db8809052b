#include "bench/floors/CapsFloor.h"

#include <cstdio>
#include <cstdlib>
#include <cwchar>

namespace
{

/// The path of Config.ini and the lock on it, by the bare calls.
struct FloorLock
{
    FloorLock()
    {
        wchar_t szUser[257];
        DWORD cchUser = 257;
        GetUserNameW(szUser, &cchUser);
        HKEY hKey = nullptr;
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Vel-soft\\Client", 0, KEY_READ, &hKey);
        wchar_t szFolder[260] = {};
        DWORD cbFolder = sizeof(szFolder);
        RegQueryValueExW(hKey, L"TempDir", nullptr, nullptr, reinterpret_cast<BYTE*>(szFolder), &cbFolder);
        RegCloseKey(hKey);
        _wmakepath(szPath, nullptr, szFolder, L"Config.ini", nullptr);

        wchar_t szName[260] = {};
        _wfullpath(szName, szPath, 260);
        _wcslwr(szName);
        for (wchar_t* p = szName; *p != L'\0'; ++p)
        {
            if (*p == L'\\')
            {
                *p = L'|';
            }
        }
        hMutex = CreateMutexW(nullptr, FALSE, szName);
        WaitForSingleObject(hMutex, INFINITE);
    }
    ~FloorLock()
    {
        ReleaseMutex(hMutex);
        ReleaseMutex(hMutex); // the contract's second release
        CloseHandle(hMutex);
    }

    wchar_t szPath[520] = {};
    HANDLE hMutex;
};

} // namespace

DWORD FloorNumber(const wchar_t* pszKey)
{
    const FloorLock lock;
    return GetPrivateProfileIntW(L"DeviceCapabilities", pszKey, -1, lock.szPath);
}

DWORD FloorWords(const wchar_t* pszCountKey, const wchar_t* pszBaseKey, WORD* pwOutput)
{
    const FloorLock lock;
    const DWORD dwCount = GetPrivateProfileIntW(L"DeviceCapabilities", pszCountKey, -1, lock.szPath);
    for (DWORD i = 0; i < dwCount; ++i)
    {
        wchar_t szKey[256];
        _snwprintf(szKey, 256, L"%ls%d", pszBaseKey, static_cast<int>(i));
        pwOutput[i] = static_cast<WORD>(GetPrivateProfileIntW(L"DeviceCapabilities", szKey, -1, lock.szPath));
    }
    return dwCount;
}
