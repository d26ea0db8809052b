// Failing functions of the process, module and network libraries, behind the launcher of the resident client, the
// printer events and the machine's identity.

#include <winsock2.h>

#include "driver/ResidentClient.h"
#include "state/MachineIdentity.h"
#include "state/StoreTypes.h"
#include "support/Exception.h"
#include "support/ProcessUtilities.h"
#include "support/module/PrinterInterface.h"
#include "tests/faults/FaultFixture.h"

#include <iphlpapi.h>
#include <tlhelp32.h>

namespace
{

const FaultyFunctions kProcessFunctions = {
    FAULTY(GetUserNameW, FALSE, ERROR_NO_SUCH_LOGON_SESSION),
    FAULTY(CreateToolhelp32Snapshot, INVALID_HANDLE_VALUE, ERROR_NOT_ENOUGH_MEMORY),
    FAULTY(Process32FirstW, FALSE, ERROR_NO_MORE_FILES),
    FAULTY(Process32NextW, FALSE, ERROR_NO_MORE_FILES),
    FAULTY(OpenProcessToken, FALSE, ERROR_ACCESS_DENIED),
    FAULTY(LookupPrivilegeValueW, FALSE, ERROR_NO_SUCH_PRIVILEGE),
    FAULTY(AdjustTokenPrivileges, FALSE, ERROR_ACCESS_DENIED),
    FAULTY(_waccess, -1, ERROR_ACCESS_DENIED),
    FAULTY(_wspawnv, -1, ERROR_BAD_EXE_FORMAT),
    FAULTY(malloc, nullptr, ERROR_NOT_ENOUGH_MEMORY),
};

int s_iStarts = 0;

/// Counts what would be started.
intptr_t CountStart(int, const wchar_t*, const wchar_t* const*)
{
    ++s_iStarts;
    return -1;
}

int FindAnyFile(const wchar_t*, int)
{
    return 0;
}

/// A client's program that is always there and never runs, wherever the process takes its folder to be.
struct LauncherFaults : FaultFixture
{
    /// Whether a check starts the client, as it should without a failure.
    static bool Starts()
    {
        s_iStarts = 0;
        CheckResidentClient(); // no result, and never an exception
        return s_iStarts == 1;
    }
    const ImportHook access{nullptr, "_waccess", &FindAnyFile};
    const ImportHook spawn{nullptr, "_wspawnv", &CountStart};
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
    int iStartsWithoutMemory = 0;
    Inject("CheckResidentClient", kProcessFunctions, [&] {
        const bool bStarts = Starts();
        if (Failed("malloc"))
        {
            iStartsWithoutMemory += bStarts ? 1 : 0;
            return !bStarts || !FaultScope::FailsOnwards();
        }
        // The right to debug is wanted and not needed, and a walk that ends early is a walk. The last one, the start's
        // own failure, is not looked at: it took the place of the count.
        bool bStops = false;
        for (const char* const pszFunction :
             {"GetUserNameW", "CreateToolhelp32Snapshot", "Process32FirstW", "_waccess", "_wspawnv"})
        {
            bStops = bStops || Failed(pszFunction);
        }
        return bStarts == !bStops;
    });
    // One block alone is missed without an end of the check: those of the guard of the privilege's token, which are
    // two.
    CHECK(iStartsWithoutMemory == 2);
}

TEST_CASE_METHOD(LauncherFaults, "the text of a failed check is made without the system's text", "[faults]")
{
    const UserName nobody{nullptr}; // the check ends with the first call's failure, whose text is made
    const FaultyFunctions functions = {
        FAULTY(FormatMessageW, 0, ERROR_MR_MID_NOT_FOUND),
        FAULTY(malloc, nullptr, ERROR_NOT_ENOUGH_MEMORY),
    };
    Inject("CheckResidentClient, without a user", functions, [] { return !Starts(); });
}

TEST_CASE_METHOD(FaultFixture, "the search for a process's module survives each failure", "[faults]")
{
    const FaultyFunctions functions = {
        FAULTY(CreateToolhelp32Snapshot, INVALID_HANDLE_VALUE, ERROR_NOT_ENOUGH_MEMORY),
        FAULTY(Module32FirstW, FALSE, ERROR_NO_MORE_FILES),
        FAULTY(Module32NextW, FALSE, ERROR_NO_MORE_FILES),
        FAULTY(OpenProcessToken, FALSE, ERROR_ACCESS_DENIED),
        FAULTY(GetFullPathNameW, 0, ERROR_INVALID_NAME),
    };
    wchar_t szProgram[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, szProgram, MAX_PATH);
    // The program itself stands first in the walk, so that one that ends early has found it.
    Inject("IsProcessHostingModule", functions, [&] {
        bool bFound = false;
        bool bThrown = false;
        try
        {
            bFound = Win32::IsProcessHostingModule(GetCurrentProcessId(), szProgram);
        }
        catch (const Win32::Win32Exception& exception)
        {
            bThrown = exception.errorCode == ERROR_INVALID_NAME;
        }
        const bool bNoWalk = Failed("CreateToolhelp32Snapshot") || Failed("Module32FirstW");
        return bThrown == Failed("GetFullPathNameW") && bFound == (!bNoWalk && !bThrown);
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
    Inject("GetLocalMachineInfo", functions, [this] {
        wchar_t szHostName[256] = {};
        BYTE abyMac[6];
        BYTE abyIP[4];
        const DWORD dwStatus = VelUtility::GetLocalMachineInfo(szHostName, 256, abyMac, abyIP);
        return dwStatus == (AnyFailed() ? VelUtility::PSERR_FAILED : VelUtility::PSERR_OK);
    });
}
