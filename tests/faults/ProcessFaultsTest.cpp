// Failing functions of the process, module and network libraries, behind the launcher of the resident client, the
// printer events and the machine's identity.

#include <winsock2.h>

#include "driver/ResidentClient.h"
#include "state/MachineIdentity.h"
#include "support/module/PrinterInterface.h"
#include "tests/common/StandIns.h"
#include "tests/faults/FaultFixture.h"

#include <iphlpapi.h>
#include <shlobj.h>
#include <tlhelp32.h>

namespace
{

const FaultyFunctions kProcessFunctions = {
    FAULTY(GetUserNameW, FALSE, ERROR_NO_SUCH_LOGON_SESSION),
    FAULTY(SHGetFolderPathW, E_FAIL, ERROR_FILE_NOT_FOUND),
    FAULTY(CreateToolhelp32Snapshot, INVALID_HANDLE_VALUE, ERROR_NOT_ENOUGH_MEMORY),
    FAULTY(Process32FirstW, FALSE, ERROR_NO_MORE_FILES),
    FAULTY(Process32NextW, FALSE, ERROR_NO_MORE_FILES),
    FAULTY(OpenProcessToken, FALSE, ERROR_ACCESS_DENIED),
    FAULTY(LookupPrivilegeValueW, FALSE, ERROR_NO_SUCH_PRIVILEGE),
    FAULTY(AdjustTokenPrivileges, FALSE, ERROR_ACCESS_DENIED),
    FAULTY(GetFullPathNameW, 0, ERROR_INVALID_NAME),
    FAULTY(_waccess, -1, ERROR_ACCESS_DENIED),
    FAULTY(_wspawnv, -1, ERROR_BAD_EXE_FORMAT),
    FAULTY(FormatMessageW, 0, ERROR_MR_MID_NOT_FOUND),
    FAULTY(malloc, nullptr, ERROR_NOT_ENOUGH_MEMORY),
};

/// A client's file that is no program, so that each check comes as far as its start and no farther.
struct LauncherFaults : FaultFixture
{
    LauncherFaults()
    {
        const std::wstring strFolder = folder.File(L"Program Files\\Vel-soft\\Client");
        MakeFolders(strFolder);
        WriteFileBytes(strFolder + L"\\VelprintD.exe", "no program");
        registry.SetText(L"Software\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir",
                         folder.File(L"Program Files"));
    }
    const UserName user{L"mei"};
};

/// A copy of the module in a driver folder without tools.
struct EventFaults : FaultFixture
{
    EventFaults()
    {
        REQUIRE(CopyFileW(ModulePath().c_str(), folder.File(L"VelUI.dll").c_str(), FALSE));
        hModule = LoadLibraryW(folder.File(L"VelUI.dll").c_str());
        REQUIRE(hModule != nullptr);
        pfnEvent = reinterpret_cast<decltype(&DrvPrinterEvent)>(
            reinterpret_cast<void*>(GetProcAddress(hModule, "DrvPrinterEvent")));
        hFaulty = hModule;
    }
    ~EventFaults() { FreeLibrary(hModule); }

    HMODULE hModule;
    decltype(&DrvPrinterEvent) pfnEvent;
};

} // namespace

TEST_CASE_METHOD(LauncherFaults, "the launcher of the resident client survives each failure", "[faults]")
{
    Inject("CheckResidentClient", kProcessFunctions, [] {
        CheckResidentClient(); // no result, and never an exception
        return true;
    });
}

TEST_CASE_METHOD(EventFaults, "printer events survive each failure", "[faults]")
{
    const FaultyFunctions functions = {
        FAULTY(GetModuleFileNameW, 0, ERROR_INVALID_HANDLE),
        FAULTY(WritePrivateProfileStringW, FALSE, ERROR_DISK_FULL),
        FAULTY(malloc, nullptr, ERROR_NOT_ENOUGH_MEMORY),
    };
    wchar_t szConnection[] = L"\\\\server\\printer";
    Inject("DrvPrinterEvent, added connection", functions,
           [&] { return pfnEvent(szConnection, PRINTER_EVENT_ADD_CONNECTION, 0, 0) == 1; });
    wchar_t szOwnCopy[] = L"\\\\server\\VelPrinter,LocalsplOnly";
    Inject("DrvPrinterEvent, own copy's end", functions,
           [&] { return pfnEvent(szOwnCopy, PRINTER_EVENT_DELETE, 0, 0) == 1; });
}

TEST_CASE_METHOD(FaultFixture, "the machine's identity survives each failure", "[faults]")
{
    const FaultyFunctions functions = {
        FAULTY(WSAStartup, WSASYSNOTREADY, WSASYSNOTREADY), FAULTY(gethostname, SOCKET_ERROR, WSAENETDOWN),
        FAULTY(gethostbyname, nullptr, WSAHOST_NOT_FOUND),  FAULTY(GetAdaptersInfo, ERROR_NO_DATA, ERROR_NO_DATA),
        FAULTY(malloc, nullptr, ERROR_NOT_ENOUGH_MEMORY),
    };
    Inject("GetLocalMachineInfo", functions, [] {
        wchar_t szHostName[256] = {};
        BYTE abyMac[6];
        BYTE abyIP[4];
        const DWORD dwStatus = VelUtility::GetLocalMachineInfo(szHostName, 256, abyMac, abyIP);
        return dwStatus == 0 || dwStatus == 1;
    });
}
