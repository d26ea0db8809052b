// Failing functions while everything is logged. Logging must not show: each run's answer is the one that the same work
// gives without a log, whatever of the log's own work has failed.

#include "diag/Log.h"
#include "diag/LogFilter.h"
#include "diag/OutputSwitches.h"
#include "driver/Module.h"
#include "driver/ResidentClient.h"
#include "tests/common/Handles.h"
#include "tests/faults/LoggedFaultFixture.h"

#include <log4cpp/Category.hh>
#include <log4cpp/HierarchyMaintainer.hh>

#include <filesystem>

namespace
{

std::string AskPapers()
{
    WORD numbers[4] = {};
    const std::string strAnswer =
        Armed([&] { return DrvDeviceCapabilities(nullptr, nullptr, DC_PAPERS, numbers, nullptr); });
    return strAnswer + Hex(numbers, sizeof(numbers));
}

} // namespace

TEST_CASE_METHOD(LoggedFaults, "a log that fails does not show in a capability", "[faults][log]")
{
    Compare("DrvDeviceCapabilities, logged", &AskPapers);
}

TEST_CASE_METHOD(LoggedFaults, "a log that fails while it changes its file does not show in a capability",
                 "[faults][log]")
{
    Compare("DrvDeviceCapabilities, logged in files that change", &AskPapers, RollingLog());
}

TEST_CASE_METHOD(LoggedFaults, "a log that fails does not show in the names for the spooler", "[faults][log]")
{
    Compare("DrvSplDeviceCaps, logged", [] {
        wchar_t szDevice[] = L"VelPrinter";
        wchar_t aszNames[4][64] = {};
        const std::string strAnswer =
            Armed([&] { return DrvSplDeviceCaps(nullptr, szDevice, DC_PAPERNAMES, aszNames, 256, nullptr); });
        return strAnswer + Hex(aszNames, sizeof(aszNames));
    });
}

TEST_CASE_METHOD(LoggedFaults, "a log that fails with its call stacks does not show in short calls", "[faults][log]")
{
    Compare(
        "DevQueryPrintEx, logged", [] { return Armed([] { return DevQueryPrintEx(nullptr); }); }, EverythingLogged());
    Compare(
        "DrvConvertDevMode, logged",
        [] {
            wchar_t szPrinter[] = L"VelPrinter";
            stuDrvDevmode in = PlainRecord();
            stuDrvDevmode out = {};
            out.stuDevmode.dmSize = 220;
            LONG cbNeeded = sizeof(out);
            const std::string strAnswer = Armed(
                [&] { return DrvConvertDevMode(szPrinter, &in.stuDevmode, &out.stuDevmode, &cbNeeded, CDM_CONVERT); });
            return strAnswer + std::to_string(cbNeeded) + " " + Hex(&out, sizeof(out));
        },
        EverythingLogged());
}

TEST_CASE_METHOD(LoggedFaults, "a log that fails does not show in the default record", "[faults][log]")
{
    Compare("DrvConvertDevMode, default, logged", [] {
        stuDrvDevmode out = {};
        LONG cbNeeded = sizeof(out);
        const std::string strAnswer =
            Armed([&] { return DrvConvertDevMode(nullptr, nullptr, &out.stuDevmode, &cbNeeded, CDM_DRIVER_DEFAULT); });
        return strAnswer + std::to_string(cbNeeded) + " " + Hex(&out, sizeof(out));
    });
}

TEST_CASE_METHOD(LoggedFaults, "a log that fails does not show in a record without a sheet", "[faults][log]")
{
    Compare("DrvDocumentPropertySheets, record, logged", [] {
        stuDrvDevmode record = PlainRecord();
        DOCUMENTPROPERTYHEADER header = {};
        header.pdmOut = &record.stuDevmode;
        header.fMode = DM_OUT_BUFFER;
        const std::string strAnswer =
            Armed([&] { return DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header)); });
        return strAnswer + Hex(&record, sizeof(record));
    });
}

namespace
{

/// A user who is looked after, and no client's program.
struct LoggedLauncher : LoggedFaults
{
    LoggedLauncher()
    {
        registry.SetText(L"Software\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir",
                         folder.File(L"Program Files"));
    }
    const UserName user{L"mei"};
};

/// A copy of the module in a driver folder without tools, which the events' code takes for itself.
struct LoggedEvents : LoggedFaults
{
    LoggedEvents()
    {
        const std::wstring strCopy = folder.File(L"VelUI.dll");
        REQUIRE(CopyFileW(ModulePath().c_str(), strCopy.c_str(), FALSE));
        hCopy = LoadLibraryW(strCopy.c_str());
        REQUIRE(hCopy != nullptr);
        g_hModule = hCopy;
    }
    ~LoggedEvents()
    {
        g_hModule = module.handle;
        FreeLibrary(hCopy);
    }
    HMODULE hCopy;
};

/// A client with a log configuration of its own, for the module's start.
struct LoggedStart : FaultFixture
{
    LoggedStart()
    {
        const std::string strLog = std::filesystem::path(LogFile()).string();
        WriteFileBytes(folder.File(L"LogConfig.conf"), "rootCategory=ERROR\n"
                                                       "category.VelUI_dll=DEBUG, file, other\n"
                                                       "appender.file=FileAppender\n"
                                                       "appender.file.fileName=" +
                                                           strLog +
                                                           "\n"
                                                           "appender.file.layout=PatternLayout\n"
                                                           "appender.file.layout.ConversionPattern=%d %m%n\n"
                                                           "appender.other=FileAppender\n"
                                                           "appender.other.fileName=" +
                                                           strLog +
                                                           ".other\n"
                                                           "appender.other.layout=SimpleLayout\n"
                                                           "OutputParam.VelUI_dll=true\n"
                                                           "filter.module=VelUI_dll\n"
                                                           "filter.class=\n"
                                                           "filter.function=Denied\n"
                                                           "filter.putoutpermission=no\n");
    }
    std::wstring LogFile() const { return folder.File(L"log.txt"); }

    /// Starts and ends the module with each function failing in the one or the other.
    /// @param dwReason DllMain's, in whose call the function fails.
    void Inject(const char* pszWork, DWORD dwReason)
    {
        const HMODULE hOld = g_hModule;
        std::map<std::string, int> reached;
        for (const FaultyFunction& function : kLoggedFunctions)
        {
            int iPoints = 0;
            for (const bool bOnwards : {false, true})
            {
                bool bReached = true;
                for (int iFailing = 1; bReached; ++iFailing)
                {
                    CAPTURE(pszWork, function.pszName, iFailing, bOnwards);
                    const size_t uiHandle = NextHandle();
                    {
                        const FaultScope scope(nullptr, function, iFailing, bOnwards);
                        s_faultPlan.bArmed = false;
                        CHECK(Play(DLL_PROCESS_ATTACH, dwReason) == "1 ");
                        const bool bOn = !loggingDisabled;
                        CHECK(Play(DLL_PROCESS_DETACH, dwReason) == "1 ");
                        bReached = FaultScope::Reached();
                        CHECK((bOn || (bReached && dwReason == DLL_PROCESS_ATTACH)));
                        CHECK(loggingDisabled);
                    }
                    CHECK(NextHandle() == uiHandle); // the end has closed the log file
                    Forget();
                    iPoints += bReached ? 1 : 0;
                }
            }
            reached[function.pszName] = iPoints;
        }
        g_hModule = hOld;
        TellRow(pszWork, kLoggedFunctions, reached);
        CheckFaultRow(pszWork, reached);
    }

private:
    static std::string Play(DWORD dwReason, DWORD dwFailingReason)
    {
        const auto call = [=] { return DllMain(reinterpret_cast<HINSTANCE>(0x10000), dwReason, nullptr); };
        return dwReason == dwFailingReason ? Armed(call) : std::to_string(call()) + " ";
    }
    /// Takes back what the end of the process would: the library's state and the filter rules.
    static void Forget()
    {
        log4cpp::Category::shutdownForced();
        log4cpp::HierarchyMaintainer::getDefaultMaintainer().deleteAllCategories();
        ClearOutputSwitches();
        delete logFilter;
        logFilter = nullptr;
    }
};

} // namespace

TEST_CASE_METHOD(LoggedLauncher, "a log that fails does not show in the check of the resident client", "[faults][log]")
{
    // Inside a scope, where the check's own messages are written: the client's file is missing.
    Compare(
        "CheckResidentClient, logged",
        [] {
            return Armed([] {
                const TraceScope scope("Outer");
                CheckResidentClient();
                return 0;
            });
        },
        EverythingLogged());
}

TEST_CASE_METHOD(LoggedEvents, "a log that fails does not show in the answers to printer events", "[faults][log]")
{
    wchar_t szConnection[] = L"\\\\server\\printer";
    Compare("DrvPrinterEvent, added connection, logged",
            [&] { return Armed([&] { return DrvPrinterEvent(szConnection, PRINTER_EVENT_ADD_CONNECTION, 0, 0); }); });
    wchar_t szOwnCopy[] = L"\\\\server\\VelPrinter,LocalsplOnly";
    Compare("DrvPrinterEvent, own copy's end, logged",
            [&] { return Armed([&] { return DrvPrinterEvent(szOwnCopy, PRINTER_EVENT_DELETE, 0, 0); }); });
}

TEST_CASE_METHOD(LoggedStart, "the module's start and end survive each failure", "[faults][log]")
{
    Inject("DllMain, start", DLL_PROCESS_ATTACH);
    Inject("DllMain, end", DLL_PROCESS_DETACH);
}
