// The process utilities: whose process this is, its rights, walks, paths; and the scope guard.

#include "support/Exception.h"
#include "support/ProcessUtilities.h"
#include "support/ScopeGuard.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/Handles.h"
#include "tests/common/ImportHook.h"

#include <boost/bind/bind.hpp>
#include <catch2/catch_test_macros.hpp>

#include <iterator>
#include <tlhelp32.h>
#include <vector>

using namespace Win32;

namespace
{

/// A platform call that fails with code 5, whatever its arguments.
template <typename... Arguments>
BOOL WINAPI FailCall(Arguments...)
{
    SetLastError(5);
    return FALSE;
}

template <typename... Arguments>
HANDLE WINAPI FailSnapshot(Arguments...)
{
    SetLastError(5);
    return INVALID_HANDLE_VALUE;
}

int s_iFailedFolders = 0;
HRESULT WINAPI FailFolder(HWND, int, HANDLE, DWORD, LPWSTR)
{
    ++s_iFailedFolders;
    return E_FAIL;
}

HRESULT WINAPI FailLate(HWND, int, HANDLE, DWORD, LPWSTR pszPath)
{
    wcscpy_s(pszPath, MAX_PATH, L"C:\\half a path");
    return E_FAIL;
}

HRESULT WINAPI FindNothing(HWND, int, HANDLE, DWORD, LPWSTR pszPath)
{
    *pszPath = L'\0';
    return S_OK;
}

/// Runs a call that is to throw for a failed platform call, and checks the whole text and that no handle was lost.
template <typename Call>
void CheckThrows(const wchar_t* pszApi, Call call)
{
    const size_t uiBefore = NextHandle();
    std::wstring strText = L"nothing was thrown";
    DWORD dwCode = 0;
    try
    {
        call();
    }
    catch (const Win32Exception& exception)
    {
        strText = exception.WhatW();
        dwCode = exception.errorCode;
    }
    CHECK(strText == FormatLastErrorText(pszApi, 5, nullptr));
    CHECK(dwCode == 5);
    CHECK(NextHandle() == uiBefore);
}

int s_iGuarded = 0;
int CountGuarded(int iBy)
{
    return s_iGuarded += iBy;
}

} // namespace

TEST_CASE("a user's name that can't be had is thrown", "[support][account]")
{
    const ImportHook hook(nullptr, "GetUserNameW", &FailCall<LPWSTR, LPDWORD>);
    CheckThrows(L"GetUserNameW", [] { GetUserNameString(); });
    CheckThrows(L"GetUserNameW", [] { IsSystemUser(); });
}

TEST_CASE("only the six capital letters are the system user", "[support][account]")
{
    struct Row
    {
        const wchar_t* pszName;
        bool bSystem;
    };
    for (const Row& row : {Row{L"SYSTEM", true}, Row{L"system", false}, Row{L"SYSTEM ", false}, Row{L"SYSTE", false},
                           Row{L"SYSTEMX", false}, Row{L"mei", false}})
    {
        const UserName user(row.pszName);
        CHECK(GetUserNameString() == row.pszName);
        CHECK(IsSystemUser() == row.bSystem);
    }
}

// In a process of its own: once the folder is found nobody looks for it.
TEST_CASE("the Program Files folder that can't be had is empty, looked for again, and then kept",
          "[support][account][alone]")
{
    {
        const ImportHook hook(nullptr, "SHGetFolderPathW", &FailFolder);
        CHECK(GetProgramFilesFolder().empty());
        CHECK(GetProgramFilesFolder().empty());
        CHECK(s_iFailedFolders == 2);
    }
    {
        const ImportHook hook(nullptr, "SHGetFolderPathW", &FailLate);
        CHECK(GetProgramFilesFolder().empty());
    }
    {
        const ImportHook hook(nullptr, "SHGetFolderPathW", &FindNothing);
        CHECK(GetProgramFilesFolder().empty());
    }
    const std::wstring& strFolder = GetProgramFilesFolder();
    CHECK_FALSE(strFolder.empty());
    CHECK(strFolder.back() != L'\\');
    const ImportHook hook(nullptr, "SHGetFolderPathW", &FailFolder);
    CHECK(&GetProgramFilesFolder() == &strFolder);
    CHECK_FALSE(GetProgramFilesFolder().empty());
    CHECK(s_iFailedFolders == 2);
}

TEST_CASE("each failed step of the debug right is thrown by its own word", "[support][privilege]")
{
    {
        const ImportHook hook(nullptr, "OpenProcessToken", &FailCall<HANDLE, DWORD, PHANDLE>);
        CheckThrows(L"OpenProcessToken", [] { EnableDebugPrivilege(GetCurrentProcess(), L"x", true); });
        CHECK_FALSE(TryEnableDebugPrivilege(GetCurrentProcess(), L"x", true));
    }
    {
        const ImportHook hook(nullptr, "LookupPrivilegeValueW", &FailCall<LPCWSTR, LPCWSTR, PLUID>);
        CheckThrows(L"LookupPrivilegeValue", [] { EnableDebugPrivilege(GetCurrentProcess(), L"x", true); });
    }
    {
        const ImportHook hook(nullptr, "AdjustTokenPrivileges",
                              &FailCall<HANDLE, BOOL, PTOKEN_PRIVILEGES, DWORD, PTOKEN_PRIVILEGES, PDWORD>);
        CheckThrows(L"AdjustTokenPrivileges", [] { EnableDebugPrivilege(GetCurrentProcess(), L"x", true); });
    }
}

TEST_CASE("a walk over processes finds this one with its parts", "[support][walk]")
{
    std::vector<ProcessInfo> processes;
    ProcessSnapshot(std::back_inserter(processes));
    int iFound = 0;
    for (const ProcessInfo& process : processes)
    {
        if (process.th32ProcessID == GetCurrentProcessId())
        {
            ++iFound;
            CHECK(_wcsicmp(process.szExeFile.c_str(), L"veltests.exe") == 0);
            CHECK(process.cntThreads >= 1);
        }
    }
    CHECK(iFound == 1);
}

TEST_CASE("a walk over modules finds this program first, with its address", "[support][walk]")
{
    std::vector<ModuleInfo> modules;
    ModuleSnapshot(GetCurrentProcessId(), std::back_inserter(modules));
    REQUIRE(modules.size() > 2);
    CHECK(modules[0].hModule == GetModuleHandleW(nullptr));
    CHECK(modules[0].modBaseAddr == reinterpret_cast<BYTE*>(GetModuleHandleW(nullptr)));
    CHECK(modules[0].modBaseSize > 0);
    CHECK(PathsEqual(modules[0].szExePath, BesideTests(L"veltests.exe")));
}

TEST_CASE("a snapshot that can't be made is thrown by both walks", "[support][walk]")
{
    const ImportHook hook(nullptr, "CreateToolhelp32Snapshot", &FailSnapshot<DWORD, DWORD>);
    CheckThrows(L"CreateToolhelp32Snapshot", [] { WalkProcesses(); });
    CheckThrows(L"CreateToolhelp32Snapshot", [] { WalkModules(GetCurrentProcessId()); });
    CHECK_FALSE(IsProcessHostingModule(GetCurrentProcessId(), BesideTests(L"veltests.exe")));
}

TEST_CASE("a walk that can't begin is thrown by its own word", "[support][walk]")
{
    const ImportHook processes(nullptr, "Process32FirstW", &FailCall<HANDLE, LPPROCESSENTRY32W>);
    const ImportHook modules(nullptr, "Module32FirstW", &FailCall<HANDLE, LPMODULEENTRY32W>);
    CheckThrows(L"Process32First", [] { WalkProcesses(); });
    CheckThrows(L"Module32First", [] { WalkModules(GetCurrentProcessId()); });
}

TEST_CASE("a walk goes on without the debug right", "[support][walk]")
{
    const ImportHook hook(nullptr, "OpenProcessToken", &FailCall<HANDLE, DWORD, PHANDLE>);
    CHECK(WalkProcesses().size() >= 1);
}

TEST_CASE("a process hosts its own program in any spelling, and no other", "[support][walk]")
{
    CHECK(IsProcessHostingModule(GetCurrentProcessId(), BesideTests(L"VELTESTS.EXE")));
    CHECK(IsProcessHostingModule(GetCurrentProcessId(), BesideTests(L"x\\..\\veltests.exe")));
    CHECK_FALSE(IsProcessHostingModule(GetCurrentProcessId(), L"C:\\elsewhere\\veltests.exe"));
    CHECK_FALSE(IsProcessHostingModule(0x7FFFFFF0, BesideTests(L"veltests.exe")));
}

TEST_CASE("a path that can't be compared is thrown out of the search through the modules", "[support][walk]")
{
    const ImportHook hook(nullptr, "GetFullPathNameW", &FailCall<LPCWSTR, DWORD, LPWSTR, LPWSTR*>);
    CheckThrows(L"GetFullPathName", [] { IsProcessHostingModule(GetCurrentProcessId(), L"x"); });
}

TEST_CASE("paths are equal once made full, without regard to case", "[support][paths]")
{
    CHECK(PathsEqual(L"C:\\A\\..\\b.EXE", L"c:\\B.exe"));
    CHECK(PathsEqual(L"C:/a/b", L"c:\\A\\B"));
    CHECK_FALSE(PathsEqual(L"C:\\b.exe", L"C:\\b.exe1"));
    CHECK_FALSE(PathsEqual(L"C:\\b.exe", L"D:\\b.exe"));
}

TEST_CASE("a path that can't be made full is thrown", "[support][paths]")
{
    const ImportHook hook(nullptr, "GetFullPathNameW", &FailCall<LPCWSTR, DWORD, LPWSTR, LPWSTR*>);
    CheckThrows(L"GetFullPathName", [] { PathsEqual(L"a", L"b"); });
}

TEST_CASE("a path's file name comes with its extension", "[support][paths]")
{
    CHECK(PathFileNamePart(L"C:\\Program Files\\Vel-soft\\VelprintD.exe") == L"VelprintD.exe");
    CHECK(PathFileNamePart(L"VelprintD.exe") == L"VelprintD.exe");
    CHECK(PathFileNamePart(L"C:\\folder\\") == L"");
    CHECK(PathFileNamePart(L"C:\\folder\\name") == L"name");
    CHECK(PathFileNamePart(L"") == L"");
}

TEST_CASE("a scope guard runs its call once at the end, also when an exception leaves", "[support][guard]")
{
    s_iGuarded = 0;
    {
        const Language::scope_guard guard(boost::bind(&CountGuarded, 5));
        CHECK(s_iGuarded == 0);
    }
    CHECK(s_iGuarded == 5);
    try
    {
        const Language::scope_guard guard(boost::bind(&CountGuarded, 2));
        throw 1;
    }
    catch (int)
    {}
    CHECK(s_iGuarded == 7);
}

TEST_CASE("a scope guard without memory for its call runs it at once and says so", "[support][guard]")
{
    s_iGuarded = 0;
    const auto noMemory = [](size_t) -> void* { return nullptr; };
    bool bThrown = false;
    {
        const ImportHook hook(nullptr, "malloc", +noMemory);
        try
        {
            const Language::scope_guard guard(boost::bind(&CountGuarded, 3));
        }
        catch (const std::bad_alloc&)
        {
            bThrown = true;
        }
    }
    CHECK(bThrown);
    CHECK(s_iGuarded == 3);
}
