#include "bench/floors/FirstQueryFloor.h"

#include <windows.h>

#include <cwchar>
#include <shlobj.h>
#include <tlhelp32.h>

namespace
{

void FloorProgramFiles(wchar_t* szFolder)
{
    const HMODULE hShell = LoadLibraryExW(L"shell32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    const auto pfnFolder = reinterpret_cast<decltype(&SHGetFolderPathW)>(
        reinterpret_cast<void*>(GetProcAddress(hShell, "SHGetFolderPathW")));
    pfnFolder(nullptr, CSIDL_PROGRAM_FILES, nullptr, 0, szFolder);
}

/// In front of each walk.
void FloorDebugPrivilege()
{
    HANDLE hToken = nullptr;
    OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &hToken);
    TOKEN_PRIVILEGES privileges = {};
    privileges.PrivilegeCount = 1;
    LookupPrivilegeValueW(nullptr, L"SeDebugPrivilege", &privileges.Privileges[0].Luid);
    privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    AdjustTokenPrivileges(hToken, FALSE, &privileges, sizeof(privileges), nullptr, nullptr);
    CloseHandle(hToken);
}

bool FloorHostsModule(DWORD dwPid, const wchar_t* pszClient)
{
    FloorDebugPrivilege();
    const HANDLE hSnapshot = CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, dwPid);
    MODULEENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    bool bFound = false;
    wchar_t szClient[MAX_PATH];
    wchar_t szModule[MAX_PATH];
    // The contract compares behind the walk.
    MODULEENTRY32W entries[64];
    size_t uiEntries = 0;
    for (BOOL bMore = Module32FirstW(hSnapshot, &entry); bMore && uiEntries < 64;
         bMore = Module32NextW(hSnapshot, &entry))
    {
        entries[uiEntries++] = entry;
    }
    CloseHandle(hSnapshot);
    for (size_t ui = 0; ui < uiEntries && !bFound; ++ui)
    {
        GetFullPathNameW(pszClient, MAX_PATH, szClient, nullptr);
        GetFullPathNameW(entries[ui].szExePath, MAX_PATH, szModule, nullptr);
        bFound = _wcsicmp(szClient, szModule) == 0;
    }
    return bFound;
}

} // namespace

bool FloorFirstQuery(const wchar_t* pszClient)
{
    wchar_t szUser[257];
    DWORD cchUser = 257;
    GetUserNameW(szUser, &cchUser);
    wchar_t szFolder[MAX_PATH];
    FloorProgramFiles(szFolder);
    FloorDebugPrivilege();
    const HANDLE hSnapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    DWORD adwPids[64];
    size_t uiPids = 0;
    for (BOOL bMore = Process32FirstW(hSnapshot, &entry); bMore; bMore = Process32NextW(hSnapshot, &entry))
    {
        if (_wcsicmp(entry.szExeFile, L"VelprintD.exe") == 0 && uiPids < 64)
        {
            adwPids[uiPids++] = entry.th32ProcessID;
        }
    }
    CloseHandle(hSnapshot);
    bool bFound = false;
    for (size_t ui = 0; ui < uiPids && !bFound; ++ui)
    {
        bFound = FloorHostsModule(adwPids[ui], pszClient);
    }
    return bFound;
}
