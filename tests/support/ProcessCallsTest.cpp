// The process utilities' calls of the platform: what they hand over, to the argument, and what they make of the
// answers.

#include "support/Exception.h"
#include "support/KeptText.h"
#include "support/ProcessUtilities.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/HeapUse.h"
#include "tests/common/ImportHook.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <iterator>
#include <shlobj.h>
#include <tlhelp32.h>
#include <vector>

using namespace Win32;

namespace
{

/// What AdjustTokenPrivileges was given.
struct Adjusted
{
    BOOL bDisableAll;
    DWORD dwCount;
    DWORD dwAttributes;
    DWORD cbState;
    bool bAskedForOld;
};
std::vector<Adjusted> s_adjusted;

BOOL WINAPI RecordAdjust(HANDLE, BOOL bDisableAll, PTOKEN_PRIVILEGES pState, DWORD cbState, PTOKEN_PRIVILEGES pOld,
                         PDWORD pcbOld)
{
    s_adjusted.push_back({bDisableAll, pState->PrivilegeCount, pState->Privileges[0].Attributes, cbState,
                          pOld != nullptr || pcbOld != nullptr});
    SetLastError(ERROR_NOT_ALL_ASSIGNED);
    return TRUE;
}

std::wstring s_strLookedUp;
bool s_bLocalSystem = false;
BOOL WINAPI RecordLookup(LPCWSTR pszSystem, LPCWSTR pszName, PLUID pLuid)
{
    s_bLocalSystem = pszSystem == nullptr;
    s_strLookedUp = pszName;
    *pLuid = {20, 0};
    return TRUE;
}

DWORD s_dwTokenAccess = 0;
BOOL WINAPI RecordToken(HANDLE hProcess, DWORD dwAccess, PHANDLE phToken)
{
    s_dwTokenAccess = dwAccess;
    static auto* const s_pfnReal = Platform<BOOL WINAPI(HANDLE, DWORD, PHANDLE)>(L"advapi32", "OpenProcessToken");
    return s_pfnReal(hProcess, dwAccess, phToken);
}

void CheckAdjusted(const Adjusted& adjusted, DWORD dwAttributes)
{
    CHECK(adjusted.bDisableAll == FALSE);
    CHECK(adjusted.dwCount == 1);
    CHECK(adjusted.dwAttributes == dwAttributes);
    CHECK(adjusted.cbState == 16); // the count, one identifier of 8 bytes and its attributes
    CHECK_FALSE(adjusted.bAskedForOld);
}

DWORD s_cchName = 0;
BOOL WINAPI LongestName(LPWSTR pszName, LPDWORD pcchName)
{
    s_cchName = *pcchName;
    std::fill_n(pszName, 256, L'n');
    pszName[256] = L'\0';
    *pcchName = 257;
    return TRUE;
}

std::vector<std::pair<DWORD, DWORD>> s_snapshots;
HANDLE WINAPI RecordSnapshot(DWORD dwFlags, DWORD dwPid)
{
    s_snapshots.emplace_back(dwFlags, dwPid);
    return CreateEventW(nullptr, TRUE, FALSE, nullptr); // something to be closed; the entries are made up
}

DWORD s_cbEntry = 0;

BOOL WINAPI FirstProcess(HANDLE, LPPROCESSENTRY32W pEntry)
{
    s_cbEntry = pEntry->dwSize;
    pEntry->th32ProcessID = 11;
    pEntry->cntThreads = 12;
    pEntry->th32ParentProcessID = 13;
    pEntry->pcPriClassBase = -14;
    wcscpy(pEntry->szExeFile, L"first.exe");
    return TRUE;
}
BOOL WINAPI NextProcess(HANDLE, LPPROCESSENTRY32W pEntry)
{
    if (pEntry->th32ProcessID == 21)
    {
        SetLastError(5); // whatever the reason, the walk ends
        return FALSE;
    }
    *pEntry = {pEntry->dwSize, 0, 21, 0, 0, 22, 23, 24, 0, L"second.exe"};
    return TRUE;
}

BOOL WINAPI FirstModule(HANDLE, LPMODULEENTRY32W pEntry)
{
    s_cbEntry = pEntry->dwSize;
    pEntry->th32ProcessID = 31;
    pEntry->modBaseAddr = reinterpret_cast<BYTE*>(0x320000);
    pEntry->modBaseSize = 33;
    pEntry->hModule = reinterpret_cast<HMODULE>(0x340000);
    wcscpy(pEntry->szModule, L"module.dll");
    wcscpy(pEntry->szExePath, L"C:\\folder\\module.dll");
    return TRUE;
}
BOOL WINAPI NoNextModule(HANDLE, LPMODULEENTRY32W)
{
    return FALSE;
}

/// An absolute path of so many characters, with a last one of its own.
std::wstring PathOf(size_t uiUnits, wchar_t cLast)
{
    std::wstring strPath = L"C:\\";
    while (strPath.size() < uiUnits)
    {
        strPath += strPath.size() % 50 == 0 ? L'\\' : L'p';
    }
    strPath.back() = cLast;
    return strPath;
}

/// The code of what a comparison throws; 0 when it throws nothing.
DWORD CodeThrown(const std::wstring& strFirst, const std::wstring& strSecond)
{
    try
    {
        PathsEqual(strFirst, strSecond);
    }
    catch (const Win32Exception& exception)
    {
        CHECK(exception.WhatW().find(L"GetFullPathName failed. last error = ") == 0);
        return exception.errorCode;
    }
    return 0;
}

int s_iFolderCalls = 0;
HANDLE s_hInside = nullptr;
HANDLE s_hGoOn = nullptr;

/// The first call is held until the test lets it go on, and then finds another folder than all others.
HRESULT WINAPI HoldFirstFolder(HWND hWindow, int iFolder, HANDLE hToken, DWORD dwFlags, LPWSTR pszFolder)
{
    CHECK(hWindow == nullptr);
    CHECK(iFolder == 38); // CSIDL_PROGRAM_FILES
    CHECK(hToken == nullptr);
    CHECK(dwFlags == 0);
    if (++s_iFolderCalls > 1)
    {
        wcscpy(pszFolder, L"C:\\First");
        return S_OK;
    }
    SetEvent(s_hInside);
    WaitForSingleObject(s_hGoOn, 20000);
    wcscpy(pszFolder, L"C:\\Second");
    return S_OK;
}

} // namespace

TEST_CASE("the debug right is enabled or removed by one call, whatever name is given, also for a user who lacks it",
          "[support][privilege]")
{
    s_adjusted.clear();
    const ImportHook token(nullptr, "OpenProcessToken", &RecordToken);
    const ImportHook adjust(nullptr, "AdjustTokenPrivileges", &RecordAdjust);
    const ImportHook lookup(nullptr, "LookupPrivilegeValueW", &RecordLookup);
    EnableDebugPrivilege(GetCurrentProcess(), L"SeSomethingElse", true);
    CHECK(s_dwTokenAccess == 0x20); // TOKEN_ADJUST_PRIVILEGES
    CHECK(s_strLookedUp == L"SeDebugPrivilege");
    CHECK(s_bLocalSystem);
    CHECK(TryEnableDebugPrivilege(GetCurrentProcess(), L"SeDebugPrivilege", false));
    REQUIRE(s_adjusted.size() == 2);
    CheckAdjusted(s_adjusted[0], 2); // SE_PRIVILEGE_ENABLED
    CheckAdjusted(s_adjusted[1], 4); // SE_PRIVILEGE_REMOVED
}

TEST_CASE("each walk enables the debug right, once, and does not remove it", "[support][walk]")
{
    s_adjusted.clear();
    const ImportHook adjust(nullptr, "AdjustTokenPrivileges", &RecordAdjust);
    WalkProcesses();
    REQUIRE(s_adjusted.size() == 1);
    CheckAdjusted(s_adjusted[0], 2);
    WalkModules(GetCurrentProcessId());
    REQUIRE(s_adjusted.size() == 2);
    CheckAdjusted(s_adjusted[1], 2);
}

TEST_CASE("a user's name has room for 256 characters and its end", "[support][account]")
{
    const ImportHook hook(nullptr, "GetUserNameW", &LongestName);
    CHECK(GetUserNameString() == std::wstring(256, L'n'));
    CHECK(s_cchName == 257);
}

TEST_CASE("a walk over processes asks for processes alone and hands on each with all its parts, in order",
          "[support][walk]")
{
    s_snapshots.clear();
    const ImportHook snapshot(nullptr, "CreateToolhelp32Snapshot", &RecordSnapshot);
    const ImportHook first(nullptr, "Process32FirstW", &FirstProcess);
    const ImportHook next(nullptr, "Process32NextW", &NextProcess);
    std::vector<ProcessInfo> processes;
    ProcessSnapshot(std::back_inserter(processes));
    CHECK(s_snapshots == std::vector<std::pair<DWORD, DWORD>>{{2, 0}}); // TH32CS_SNAPPROCESS
    CHECK(s_cbEntry == sizeof(PROCESSENTRY32W));
    REQUIRE(processes.size() == 2);
    CHECK(processes[0].th32ProcessID == 11);
    CHECK(processes[0].cntThreads == 12);
    CHECK(processes[0].th32ParentProcessID == 13);
    CHECK(processes[0].pcPriClassBase == -14);
    CHECK(processes[0].szExeFile == L"first.exe");
    CHECK(processes[1].th32ProcessID == 21);
    CHECK(processes[1].cntThreads == 22);
    CHECK(processes[1].th32ParentProcessID == 23);
    CHECK(processes[1].pcPriClassBase == 24);
    CHECK(processes[1].szExeFile == L"second.exe");
}

TEST_CASE("a walk over modules asks for one process's modules alone and hands on each with all its parts",
          "[support][walk]")
{
    s_snapshots.clear();
    const ImportHook snapshot(nullptr, "CreateToolhelp32Snapshot", &RecordSnapshot);
    const ImportHook first(nullptr, "Module32FirstW", &FirstModule);
    const ImportHook next(nullptr, "Module32NextW", &NoNextModule);
    std::vector<ModuleInfo> modules;
    ModuleSnapshot(31, std::back_inserter(modules));
    CHECK(s_snapshots == std::vector<std::pair<DWORD, DWORD>>{{8, 31}}); // TH32CS_SNAPMODULE
    CHECK(s_cbEntry == sizeof(MODULEENTRY32W));
    REQUIRE(modules.size() == 1);
    CHECK(modules[0].th32ProcessID == 31);
    CHECK(modules[0].modBaseAddr == reinterpret_cast<BYTE*>(0x320000));
    CHECK(modules[0].modBaseSize == 33);
    CHECK(modules[0].hModule == reinterpret_cast<HMODULE>(0x340000));
    CHECK(modules[0].szModule == L"module.dll");
    CHECK(modules[0].szExePath == L"C:\\folder\\module.dll");
}

TEST_CASE("paths of up to 259 characters are compared whole, longer ones not at all", "[support][paths]")
{
    CHECK(PathsEqual(PathOf(259, L'a'), PathOf(259, L'A')));
    CHECK_FALSE(PathsEqual(PathOf(259, L'a'), PathOf(259, L'b')));
    CHECK_FALSE(PathsEqual(PathOf(259, L'a'), PathOf(258, L'a')));
    for (const size_t uiUnits : {260, 261, 300, 4000})
    {
        CAPTURE(uiUnits);
        CHECK(CodeThrown(PathOf(uiUnits, L'a'), PathOf(uiUnits, L'b')) == ERROR_FILENAME_EXCED_RANGE);
        CHECK(CodeThrown(PathOf(uiUnits, L'a'), L"C:\\a") == ERROR_FILENAME_EXCED_RANGE);
        CHECK(CodeThrown(L"C:\\a", PathOf(uiUnits, L'a')) == ERROR_FILENAME_EXCED_RANGE);
    }
}

TEST_CASE("a file name is found whatever the length of the path and of the name", "[support][paths]")
{
    for (const size_t uiUnits : {254, 255, 256, 257, 300, 4000})
    {
        CAPTURE(uiUnits);
        CHECK(PathFileNamePart(L"C:\\" + std::wstring(uiUnits, L'f') + L"\\VelprintD.exe") == L"VelprintD.exe");
        const std::wstring strLong = std::wstring(uiUnits, L'n') + L"." + std::wstring(uiUnits, L'x');
        CHECK(PathFileNamePart(L"C:\\folder\\" + strLong) == strLong);
        CHECK(PathFileNamePart(strLong) == strLong);
    }
}

// In a process of its own: once the folder is found nobody looks for it.
TEST_CASE("of two threads that look for the Program Files folder at once the first to find it decides for both",
          "[support][account][alone][cores]")
{
    s_hInside = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    s_hGoOn = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const ImportHook hook(nullptr, "SHGetFolderPathW", &HoldFirstFolder);
    const std::wstring* pOther = nullptr;
    const HANDLE hThread = CreateThread(
        nullptr, 0,
        [](void* pv) -> DWORD {
            *static_cast<const std::wstring**>(pv) = &GetProgramFilesFolder();
            return 0;
        },
        &pOther, 0, nullptr);
    REQUIRE(WaitForSingleObject(s_hInside, 20000) == WAIT_OBJECT_0);
    const std::wstring& strMine = GetProgramFilesFolder();
    CHECK(strMine == L"C:\\First");
    SetEvent(s_hGoOn);
    REQUIRE(WaitForSingleObject(hThread, 20000) == WAIT_OBJECT_0);
    CHECK(s_iFolderCalls == 2);
    CHECK(pOther == &strMine);
    CHECK(strMine == L"C:\\First");
    CloseHandle(hThread);
    CloseHandle(s_hInside);
    CloseHandle(s_hGoOn);
}

TEST_CASE("a text is kept once, and nothing is left of it or of what came too late", "[support][account]")
{
    const std::wstring strLong(1000, L'l'); // too long for the string object itself
    const size_t cbBefore = HeapInUse();
    {
        KeptText text;
        CHECK(text.Get() == nullptr);
        const std::wstring& strKept = text.Keep(strLong);
        CHECK(text.Get() == &strKept);
        const size_t cbKept = HeapInUse();
        CHECK(&text.Keep(strLong + L"late") == &strKept);
        CHECK(strKept == strLong);
        CHECK(HeapInUse() == cbKept);
    }
    CHECK(HeapInUse() == cbBefore);
}

TEST_CASE("1,000 texts of failed calls leave both heaps as they were", "[support][exceptions]")
{
    const auto ask = [] { return FormatLastErrorText(L"Api", 2, nullptr).size(); };
    const size_t uiLength = ask();
    const size_t cbPlatform = HeapInUse(GetProcessHeap());
    const size_t cbOwn = HeapInUse();
    size_t uiSame = 0;
    for (int i = 0; i < 1000; ++i)
    {
        uiSame += ask() == uiLength ? 1 : 0;
    }
    // The system's text is the platform's memory: 1,000 of them would be 100 KB and more.
    CHECK(HeapInUse(GetProcessHeap()) < cbPlatform + 4096);
    CHECK(HeapInUse() == cbOwn);
    CHECK(uiSame == 1000);
}
