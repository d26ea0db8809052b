#pragma once
/// The launcher of the resident client, through the built DLL: a client of the test's own, and counts of the platform
/// calls that the module's checks make.

#include "support/ProcessUtilities.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/ImportHook.h"
#include "tests/common/StandIns.h"

#include <catch2/catch_test_macros.hpp>

#include <iterator>
#include <string>
#include <tlhelp32.h>
#include <vector>

inline int s_iUserNames = 0;
inline int s_iVersions = 0;
inline int s_iWalks = 0;
inline bool s_bFailWalk = false;

inline BOOL WINAPI CountUserName(LPWSTR psz, LPDWORD pcch)
{
    ++s_iUserNames;
    return GetUserNameW(psz, pcch);
}

inline DWORD WINAPI CountVersion(DWORD dwPid)
{
    ++s_iVersions;
    return GetProcessVersion(dwPid);
}

inline HANDLE WINAPI CountWalk(DWORD dwFlags, DWORD dwPid)
{
    s_iWalks += dwFlags == TH32CS_SNAPPROCESS ? 1 : 0;
    if (s_bFailWalk)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return INVALID_HANDLE_VALUE;
    }
    return CreateToolhelp32Snapshot(dwFlags, dwPid);
}

/// A test's client: its program, its user, and counts of the calls that the module makes.
class LauncherFixture : public ClientFixture
{
public:
    LauncherFixture()
        : programs(folder.File(L"Program Files")), strClient(programs + L"\\Vel-soft\\Client\\VelprintD.exe"),
          userNames(module.handle, "GetUserNameW", &CountUserName),
          versions(module.handle, "GetProcessVersion", &CountVersion),
          walks(module.handle, "CreateToolhelp32Snapshot", &CountWalk)
    {
        MakeFolders(programs + L"\\Vel-soft\\Client");
        registry.SetText(L"Software\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir", programs);
        ResetCounts();
    }
    ~LauncherFixture() { StopClient(strClient); }

    void ResetCounts()
    {
        s_iUserNames = s_iVersions = s_iWalks = 0;
        s_bFailWalk = false;
    }
    /// One query of a constant, at whose head the check stands.
    void Check() { REQUIRE(module.DeviceCapabilities(nullptr, nullptr, DC_SIZE, nullptr, nullptr) == 220); }
    /// The same where the client may be started, which leaves the handle of its process open. Without the checks around
    /// a call, which would see it.
    void CheckThatStarts()
    {
        const decltype(&DrvDeviceCapabilities) pfnCaps = module.DeviceCapabilities;
        REQUIRE(pfnCaps(nullptr, nullptr, DC_SIZE, nullptr, nullptr) == 220);
    }
    /// How many clients from that path run.
    static int Running(const std::wstring& strPath)
    {
        int iRunning = 0;
        for (const Win32::ProcessInfo& process : Win32::WalkProcesses())
        {
            iRunning += _wcsicmp(process.szExeFile.c_str(), L"VelprintD.exe") == 0 &&
                                Win32::IsProcessHostingModule(process.th32ProcessID, strPath)
                            ? 1
                            : 0;
        }
        return iRunning;
    }
    static void WaitForRunning(const std::wstring& strPath, int iExpected)
    {
        for (int i = 0; i < 500 && Running(strPath) != iExpected; ++i)
        {
            Sleep(20);
        }
        REQUIRE(Running(strPath) == iExpected);
    }
    /// Whether a client from that path runs, or one that has only just been started, whose modules can't be read yet.
    static bool MayRun(const std::wstring& strPath)
    {
        for (const Win32::ProcessInfo& process : Win32::WalkProcesses())
        {
            std::vector<Win32::ModuleInfo> modules;
            try
            {
                if (_wcsicmp(process.szExeFile.c_str(), L"VelprintD.exe") == 0)
                {
                    Win32::ModuleSnapshot(process.th32ProcessID, std::back_inserter(modules));
                    if (modules.empty() || Win32::PathsEqual(strPath, modules.front().szExePath))
                    {
                        return true;
                    }
                }
            }
            catch (...)
            {
                return true;
            }
        }
        return false;
    }
    static void StopClient(const std::wstring& strPath)
    {
        WriteFileBytes(strPath + L".stop", "");
        for (int i = 0; i < 500 && MayRun(strPath); ++i)
        {
            Sleep(20);
        }
        DeleteFileW((strPath + L".stop").c_str());
        DeleteFileW((strPath + L".ran").c_str());
    }

    const UserName user{L"mei"};
    const std::wstring programs;
    const std::wstring strClient;
    BuiltModule module;
    ImportHook userNames;
    ImportHook versions;
    ImportHook walks;
};
