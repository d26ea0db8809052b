// Which entry points check for the resident client, and what a check makes of the platform's answers: through the built
// DLL, with the platform's functions replaced.

#include "driver/ResidentClient.h"
#include "settings/DriverDevmode.h"
#include "tests/driver/LauncherFixture.h"

#include <vector>

namespace
{

std::vector<std::wstring> s_looked; // the programs that were looked for

/// No program is there.
int __cdecl LookInVain(const wchar_t* pszPath, int)
{
    s_looked.push_back(pszPath);
    return -1;
}

int s_iStarts = 0;
HANDLE s_hStarted = nullptr;

intptr_t __cdecl CountStart(int, const wchar_t*, const wchar_t* const*)
{
    ++s_iStarts;
    return reinterpret_cast<intptr_t>(s_hStarted);
}

std::wstring s_strOnlyProcess; // this process's name in a walk that finds no other

BOOL WINAPI OnlyProcess(HANDLE, LPPROCESSENTRY32W pEntry)
{
    pEntry->th32ProcessID = GetCurrentProcessId();
    wcscpy(pEntry->szExeFile, s_strOnlyProcess.c_str());
    return TRUE;
}
BOOL WINAPI NoNextProcess(HANDLE, LPPROCESSENTRY32W)
{
    return FALSE;
}

DWORD WINAPI FailFullPath(LPCWSTR, DWORD, LPWSTR, LPWSTR*)
{
    SetLastError(ERROR_INVALID_NAME);
    return 0;
}

int s_iFolders = 0;
HRESULT WINAPI FailFolder(HWND, int, HANDLE, DWORD, LPWSTR)
{
    ++s_iFolders;
    return E_FAIL;
}

HANDLE s_hInside = nullptr;
HANDLE s_hGoOn = nullptr;

/// The first call is held until the test lets it go on, and then finds another folder than all others.
HRESULT WINAPI HoldFirstFolder(HWND, int, HANDLE, DWORD, LPWSTR pszFolder)
{
    if (InterlockedIncrement(reinterpret_cast<LONG*>(&s_iFolders)) > 1)
    {
        wcscpy(pszFolder, L"C:\\First");
        return S_OK;
    }
    SetEvent(s_hInside);
    WaitForSingleObject(s_hGoOn, 20000);
    wcscpy(pszFolder, L"C:\\Second");
    return S_OK;
}

/// A check whose answers are made up.
struct CheckFixture : LauncherFixture
{
    CheckFixture()
    {
        s_iStarts = s_iFolders = 0;
        s_hStarted = nullptr;
        s_looked.clear();
    }
};

} // namespace

TEST_CASE_METHOD(CheckFixture, "a document sheet's entry point checks at every call", "[driver][client]")
{
    PROPSHEETUI_INFO info = {};
    info.cbSize = sizeof(info);
    DOCUMENTPROPERTYHEADER header = {};
    int iCalls = 0;
    const auto call = [&](PPROPSHEETUI_INFO pInfo, LPARAM lParam) {
        const LONG lReturn = module.DocumentSheets(pInfo, lParam);
        ++iCalls;
        CHECK(s_iUserNames == iCalls);
        CHECK(s_iWalks == iCalls);
        return lReturn;
    };
    CHECK(call(nullptr, 0) == -1);
    CHECK(call(nullptr, reinterpret_cast<LPARAM>(&header)) == 232);
    for (const WORD wReason : {PROPSHEETUI_REASON_GET_INFO_HEADER, PROPSHEETUI_REASON_GET_ICON, 99})
    {
        info.Reason = wReason;
        call(&info, 0);
    }
}

TEST_CASE_METHOD(CheckFixture, "the entry points for records, names, the device sheet, events and jobs never check",
                 "[driver][client]")
{
    PlaceStandIn(strClient);
    stuDrvDevmode in = {};
    stuDrvDevmode out = {};
    in.stuDevmode.dmSize = out.stuDevmode.dmSize = 220;
    for (const DWORD fMode : {CDM_CONVERT, CDM_CONVERT351, CDM_DRIVER_DEFAULT, 99})
    {
        LONG cbNeeded = 232;
        module.ConvertDevMode(nullptr, &in.stuDevmode, &out.stuDevmode, &cbNeeded, fMode);
    }
    wchar_t szNames[64] = {};
    module.SplDeviceCaps(nullptr, nullptr, DC_PAPERNAMES, szNames, 64, nullptr);
    module.QueryPrintEx(nullptr);
    PROPSHEETUI_INFO info = {};
    info.cbSize = sizeof(info);
    info.Reason = PROPSHEETUI_REASON_GET_INFO_HEADER;
    module.DeviceSheets(nullptr, 0);
    module.DeviceSheets(&info, 0);
    const auto pfnEvent = reinterpret_cast<decltype(&DrvPrinterEvent)>(
        reinterpret_cast<void*>(GetProcAddress(module.handle, "DrvPrinterEvent")));
    REQUIRE(pfnEvent != nullptr);
    pfnEvent(nullptr, PRINTER_EVENT_INITIALIZE, 0, 0);
    CHECK(s_iWalks == 0);
    CHECK(s_iVersions == 0);
    CHECK(s_iUserNames == 0);
    Check();
    CHECK(s_iWalks == 1);
}

TEST_CASE_METHOD(CheckFixture, "a user's name that could not be had is asked for again by the next check",
                 "[driver][client]")
{
    PlaceStandIn(strClient);
    {
        const UserName nobody(nullptr);
        Check();
        Check();
        CHECK(s_iUserNames == 2);
        CHECK(s_iWalks == 0);
    }
    CheckThatStarts();
    CHECK(s_iUserNames == 3);
    CHECK(s_iWalks == 1);
    CHECK_FALSE(WaitForRun(strClient).empty());
}

TEST_CASE_METHOD(CheckFixture, "the handle of a started client's process stays open", "[driver][client]")
{
    WriteFileBytes(strClient, "");
    s_hStarted = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const ImportHook start(module.handle, "_wspawnv", &CountStart);
    Check();
    CHECK(s_iStarts == 1);
    DWORD dwFlags = 0;
    CHECK(GetHandleInformation(s_hStarted, &dwFlags));
    CloseHandle(s_hStarted);
}

TEST_CASE_METHOD(CheckFixture, "a path that can't be compared ends the walk, and nothing is started",
                 "[driver][client]")
{
    WriteFileBytes(strClient, "");
    s_strOnlyProcess = L"VelprintD.exe"; // of that name, from another folder
    const ImportHook first(module.handle, "Process32FirstW", &OnlyProcess);
    const ImportHook next(module.handle, "Process32NextW", &NoNextProcess);
    const ImportHook start(module.handle, "_wspawnv", &CountStart);
    {
        const ImportHook paths(module.handle, "GetFullPathNameW", &FailFullPath);
        Check();
        CHECK(s_iWalks == 1);
        CHECK(s_iStarts == 0);
    }
    Check();
    CHECK(s_iStarts == 1);
}

TEST_CASE_METHOD(CheckFixture, "a path without the Program Files folder is kept for the life of the module",
                 "[driver][client]")
{
    const ImportHook look(module.handle, "_waccess", &LookInVain);
    {
        const ImportHook folders(module.handle, "SHGetFolderPathW", &FailFolder);
        Check();
        CHECK(s_iFolders == 1);
        Check();
        CHECK(s_iFolders == 1); // nobody looks for the folder again
    }
    Check();
    CHECK(s_looked == std::vector<std::wstring>(3, L"\\Vel-soft\\Client\\VelprintD.exe"));
}

TEST_CASE_METHOD(CheckFixture, "of two threads that make the client's path at once the first decides for both",
                 "[driver][client][cores]")
{
    s_hInside = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    s_hGoOn = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const ImportHook look(module.handle, "_waccess", &LookInVain);
    const ImportHook folders(module.handle, "SHGetFolderPathW", &HoldFirstFolder);
    const decltype(&DrvDeviceCapabilities) pfnCaps = module.DeviceCapabilities;
    const HANDLE hThread = CreateThread(
        nullptr, 0,
        [](void* pv) -> DWORD {
            return reinterpret_cast<decltype(&DrvDeviceCapabilities)>(pv)(nullptr, nullptr, DC_SIZE, nullptr, nullptr);
        },
        reinterpret_cast<void*>(pfnCaps), 0, nullptr);
    REQUIRE(WaitForSingleObject(s_hInside, 20000) == WAIT_OBJECT_0);
    pfnCaps(nullptr, nullptr, DC_SIZE, nullptr, nullptr);
    SetEvent(s_hGoOn);
    REQUIRE(WaitForSingleObject(hThread, 20000) == WAIT_OBJECT_0);
    pfnCaps(nullptr, nullptr, DC_SIZE, nullptr, nullptr);
    CHECK(s_iFolders == 2);
    CHECK(s_looked == std::vector<std::wstring>(3, L"C:\\First\\Vel-soft\\Client\\VelprintD.exe"));
    CloseHandle(hThread);
    CloseHandle(s_hInside);
    CloseHandle(s_hGoOn);
}

TEST_CASE("the client's process is found by its name in any case", "[driver][client]")
{
    s_strOnlyProcess = L"vElTeStS.eXe";
    const ImportHook first(nullptr, "Process32FirstW", &OnlyProcess);
    const ImportHook next(nullptr, "Process32NextW", &NoNextProcess);
    CHECK(FindClientProcess(BesideTests(L"VELtests.exe")) == GetCurrentProcessId());
    CHECK(FindClientProcess(BesideTests(L"elsewhere\\veltests.exe")) == 0);
}
