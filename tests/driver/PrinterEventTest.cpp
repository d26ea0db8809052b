// Printer events through a copy of the built DLL in a folder of the test's own, with stand-ins for its tools beside it.

#include "driver/PrinterEvent.h"
#include "support/module/PrinterInterface.h"
#include "tests/common/Handles.h"
#include "tests/common/ImportHook.h"
#include "tests/common/LogLines.h"
#include "tests/common/PrivateRegistry.h"
#include "tests/common/StandIns.h"

#include <catch2/catch_test_macros.hpp>

#include <process.h>
#include <vector>

namespace
{

/// A driver folder with the module and, where asked, its two tools.
class DriverFolder
{
public:
    explicit DriverFolder(const std::wstring& strName, bool bTools = true) : m_strFolder(m_temp.File(strName))
    {
        REQUIRE(CreateDirectoryW(m_strFolder.c_str(), nullptr));
        REQUIRE(CopyFileW(ModulePath().c_str(), File(L"VelUI.dll").c_str(), FALSE));
        if (bTools)
        {
            PlaceStandIn(File(L"velup.exe"));
            PlaceStandIn(File(L"veldel.exe"));
        }
        m_hModule = LoadLibraryW(File(L"VelUI.dll").c_str());
        REQUIRE(m_hModule != nullptr);
        const auto pfnEvent = reinterpret_cast<decltype(&DrvPrinterEvent)>(
            reinterpret_cast<void*>(GetProcAddress(m_hModule, "DrvPrinterEvent")));
        REQUIRE(pfnEvent != nullptr);
        m_event = pfnEvent;
    }
    ~DriverFolder() { FreeLibrary(m_hModule); }
    std::wstring File(const std::wstring& strName) const { return m_strFolder + L"\\" + strName; }
    HMODULE Module() const { return m_hModule; }
    BOOL Event(INT iEvent, const wchar_t* pszPrinter, DWORD dwFlags = 0, LPARAM lParam = 0) const
    {
        wchar_t* const pszName = const_cast<wchar_t*>(pszPrinter);
        // A tool that is started leaves its process's handle open, which the checks around a call would see.
        const decltype(&DrvPrinterEvent) pfnBare = m_event;
        const bool bStarts = iEvent == PRINTER_EVENT_ADD_CONNECTION || iEvent == PRINTER_EVENT_DELETE;
        return bStarts ? pfnBare(pszName, iEvent, dwFlags, lParam) : m_event(pszName, iEvent, dwFlags, lParam);
    }
    bool Ran(const wchar_t* pszTool, DWORD dwMilliseconds = 20000) const
    {
        return !WaitForRun(File(pszTool), dwMilliseconds).empty();
    }

private:
    PrivateRegistry m_registry;
    TempFolder m_temp;
    std::wstring m_strFolder;
    HMODULE m_hModule = nullptr;
    CheckedEntry<decltype(&DrvPrinterEvent)> m_event;
};

constexpr wchar_t kOwnCopy[] = L"\\\\host\\VelPrinter,LocalsplOnly";

std::vector<std::wstring> s_files; // what was written or started, in order
int s_iMode = -1;
HANDLE s_hStarted = nullptr;

intptr_t RecordStart(int iMode, const wchar_t* pszProgram, const wchar_t*, ...)
{
    s_iMode = iMode;
    s_files.push_back(pszProgram);
    return reinterpret_cast<intptr_t>(s_hStarted);
}

BOOL WINAPI RecordWrite(LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR pszFile)
{
    s_files.push_back(pszFile);
    return TRUE;
}

/// A driver folder where nothing is really written or started.
struct RecordedFolder : DriverFolder
{
    RecordedFolder() : DriverFolder(L"drv", false)
    {
        s_files.clear();
        s_iMode = -1;
        s_hStarted = nullptr;
    }
    const ImportHook start{Module(), "_wspawnl", &RecordStart};
    const ImportHook write{Module(), "WritePrivateProfileStringW", &RecordWrite};
};

std::wstring s_strModuleFile;
DWORD s_cchModuleFile = 0;

/// Tells s_strModuleFile as a module's path, cut where it does not fit; fails where that is empty.
DWORD WINAPI TellModuleFile(HMODULE, LPWSTR pszFile, DWORD cchFile)
{
    s_cchModuleFile = cchFile;
    if (s_strModuleFile.empty())
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    wcsncpy_s(pszFile, cchFile, s_strModuleFile.c_str(), _TRUNCATE);
    const bool bFits = s_strModuleFile.size() < cchFile;
    SetLastError(bFits ? ERROR_SUCCESS : ERROR_INSUFFICIENT_BUFFER);
    return bFits ? static_cast<DWORD>(s_strModuleFile.size()) : cchFile;
}

} // namespace

TEST_CASE("an added connection is recorded and starts its tool without arguments", "[driver][events]")
{
    const DriverFolder driver(L"drv");
    CHECK(driver.Event(PRINTER_EVENT_ADD_CONNECTION, L"\\\\host\\x") == 1);
    CHECK(ReadFileBytes(driver.File(L"velinfo.ini")) == "[PrinterConnection]\r\nPrinterName=\\\\host\\x\r\n");
    CHECK(CommandLineOfRun(driver.File(L"velup.exe")) == driver.File(L"velup.exe"));
    CHECK_FALSE(PathExists(driver.File(L"veldel.exe.ran")));
}

TEST_CASE("each added connection overwrites the one before", "[driver][events]")
{
    const DriverFolder driver(L"drv", false);
    CHECK(driver.Event(PRINTER_EVENT_ADD_CONNECTION, L"\\\\host\\first") == 1);
    CHECK(driver.Event(PRINTER_EVENT_ADD_CONNECTION, L"\\\\host\\second") == 1);
    CHECK(ReadFileBytes(driver.File(L"velinfo.ini")) == "[PrinterConnection]\r\nPrinterName=\\\\host\\second\r\n");
}

TEST_CASE("an added connection is recorded also without its tool", "[driver][events]")
{
    const DriverFolder driver(L"drv", false);
    CHECK(driver.Event(PRINTER_EVENT_ADD_CONNECTION, L"\\\\host\\x") == 1);
    CHECK(PathExists(driver.File(L"velinfo.ini")));
}

TEST_CASE("an added connection starts its tool also when it can't be recorded", "[driver][events]")
{
    const DriverFolder driver(L"drv");
    REQUIRE(CreateDirectoryW(driver.File(L"velinfo.ini").c_str(), nullptr));
    CHECK(driver.Event(PRINTER_EVENT_ADD_CONNECTION, L"\\\\host\\x") == 1);
    CHECK(driver.Ran(L"velup.exe"));
}

TEST_CASE("a driver folder with blanks in its name starts its tool all the same", "[driver][events]")
{
    const DriverFolder driver(L"printer drivers 3");
    CHECK(driver.Event(PRINTER_EVENT_ADD_CONNECTION, L"\\\\host\\x") == 1);
    // The path is not quoted, so the tool sees it as several words.
    CHECK(CommandLineOfRun(driver.File(L"velup.exe")) == driver.File(L"velup.exe"));
}

TEST_CASE("the end of the spooler's own copy starts its tool, in any case and with white space around the name",
          "[driver][events]")
{
    for (const wchar_t* pszName : {L"\\\\host\\VelPrinter,LocalsplOnly", L"  \\\\HOST\\velprinter,localsplonly  ",
                                   L"\\VelPrinter,LocalsplOnly\t"})
    {
        const DriverFolder driver(L"drv");
        CHECK(driver.Event(PRINTER_EVENT_DELETE, pszName) == 1);
        CHECK(CommandLineOfRun(driver.File(L"veldel.exe")) == driver.File(L"veldel.exe"));
        CHECK_FALSE(PathExists(driver.File(L"velinfo.ini")));
    }
}

TEST_CASE("the end of any other printer starts no tool", "[driver][events]")
{
    const DriverFolder driver(L"drv");
    for (const wchar_t* pszName : {L"VelPrinter,LocalsplOnly", L"\\\\host\\VelPrinter", L"VelPrinter", L"",
                                   L"\\VelPrinter,LocalsplOnlyX", L"\\\\host\\VelPrinter ,LocalsplOnly"})
    {
        CHECK(driver.Event(PRINTER_EVENT_DELETE, pszName) == 1);
    }
    CHECK(driver.Event(PRINTER_EVENT_DELETE, nullptr) == 1);
    CHECK_FALSE(driver.Ran(L"veldel.exe", 300));
}

TEST_CASE("every other event is answered with 1 and touches nothing, whatever its flags", "[driver][events]")
{
    const DriverFolder driver(L"drv");
    for (const INT iEvent : {0, 2, 3, 5, 6, 7, 8, 9, -1, 0x7FFFFFFF})
    {
        CAPTURE(iEvent);
        CHECK(driver.Event(iEvent, L"\\\\host\\VelPrinter,LocalsplOnly") == 1);
        CHECK(driver.Event(iEvent, L"\\\\host\\VelPrinter,LocalsplOnly", PRINTER_EVENT_FLAG_NO_UI) == 1);
    }
    CHECK_FALSE(driver.Ran(L"velup.exe", 200));
    CHECK_FALSE(PathExists(driver.File(L"veldel.exe.ran")));
    CHECK_FALSE(PathExists(driver.File(L"velinfo.ini")));
}

TEST_CASE("a flag that forbids windows changes nothing for an added connection", "[driver][events]")
{
    const DriverFolder driver(L"drv");
    CHECK(driver.Event(PRINTER_EVENT_ADD_CONNECTION, L"\\\\host\\x", PRINTER_EVENT_FLAG_NO_UI) == 1);
    CHECK(driver.Ran(L"velup.exe"));
}

TEST_CASE("1,000 events that start nothing lose no handle", "[driver][events][once]")
{
    const DriverFolder driver(L"drv", false);
    driver.Event(PRINTER_EVENT_ADD_CONNECTION, L"\\\\host\\x");
    const size_t uiBefore = NextHandle();
    for (int i = 0; i < 1000; ++i)
    {
        driver.Event(i % 9, L"\\\\host\\VelPrinter,LocalsplOnly");
    }
    CHECK(NextHandle() == uiBefore);
}

TEST_CASE("a Chinese printer and a Chinese folder are served under code page 936", "[driver][events][cp936]")
{
    REQUIRE(GetACP() == 936);
    const DriverFolder driver(L"打印 驱动");
    CHECK(driver.Event(PRINTER_EVENT_ADD_CONNECTION, L"\\\\主机\\打印机") == 1);
    CHECK(ReadFileBytes(driver.File(L"velinfo.ini")) ==
          "[PrinterConnection]\r\nPrinterName=\\\\\xD6\xF7\xBB\xFA\\\xB4\xF2\xD3\xA1\xBB\xFA\r\n");
    CHECK(driver.Ran(L"velup.exe"));
}

TEST_CASE("a file of the module's folder is named without the folder that was given", "[driver][events]")
{
    const DriverFolder driver(L"drv", false);
    const HMODULE hModule = GetModuleHandleW(driver.File(L"VelUI.dll").c_str());
    REQUIRE(hModule != nullptr);
    CHECK(MakeDependsFilePath(hModule, L"x\\y.ini") == driver.File(L"y.ini"));
    CHECK(MakeDependsFilePath(hModule, L"velup.exe") == driver.File(L"velup.exe"));
    CHECK(MakeDependsFilePath(nullptr, L"y.ini") == BesideTests(L"y.ini"));
}

TEST_CASE("the path of a module's file has room for 259 characters", "[driver][events]")
{
    const ImportHook hook(nullptr, "GetModuleFileNameW", &TellModuleFile);
    for (const size_t uiFolder : {100, 252, 253, 254})
    {
        CAPTURE(uiFolder);
        const std::wstring strFolder = L"C:\\" + std::wstring(uiFolder, L'f') + L"\\";
        s_strModuleFile = strFolder + L"m"; // with 254 the longest path that fits
        CHECK(MakeDependsFilePath(nullptr, L"velup.exe") == strFolder + L"velup.exe");
        CHECK(s_cchModuleFile == 260);
    }
}

TEST_CASE("a file has its bare name where the module's path is unknown or was cut", "[driver][events]")
{
    const ImportHook hook(nullptr, "GetModuleFileNameW", &TellModuleFile);
    for (const std::wstring& strFile : {std::wstring(), L"C:\\" + std::wstring(255, L'f') + L"\\m",
                                        L"C:\\folder\\" + std::wstring(300, L'f') + L"\\m.dll"})
    {
        s_strModuleFile = strFile;
        CHECK(MakeDependsFilePath(nullptr, L"x\\velup.exe") == L"velup.exe");
    }
}

TEST_CASE_METHOD(RecordedFolder, "where the module's path is unknown or was cut nothing is written or started",
                 "[driver][events]")
{
    for (const std::wstring& strFile : {std::wstring(), L"C:\\folder\\" + std::wstring(300, L'f') + L"\\m.dll"})
    {
        s_strModuleFile = strFile;
        const ImportHook hook(Module(), "GetModuleFileNameW", &TellModuleFile);
        CHECK(Event(PRINTER_EVENT_ADD_CONNECTION, L"\\\\host\\x") == 1);
        CHECK(Event(PRINTER_EVENT_DELETE, kOwnCopy) == 1);
        CHECK(s_files.empty());
    }
    Event(PRINTER_EVENT_DELETE, kOwnCopy); // with its path again
    CHECK(s_files == std::vector<std::wstring>{File(L"veldel.exe")});
}

TEST_CASE_METHOD(RecordedFolder, "a connection is recorded before its tool starts, whose process's handle stays open",
                 "[driver][events]")
{
    s_hStarted = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    DWORD dwFlags = 0;
    CHECK(Event(PRINTER_EVENT_ADD_CONNECTION, L"\\\\host\\x") == 1);
    CHECK(s_files == std::vector<std::wstring>{File(L"velinfo.ini"), File(L"velup.exe")});
    CHECK(s_iMode == _P_NOWAIT);
    CHECK(GetHandleInformation(s_hStarted, &dwFlags));
    CHECK(Event(PRINTER_EVENT_DELETE, kOwnCopy) == 1);
    CHECK(s_files.back() == File(L"veldel.exe"));
    CHECK(s_iMode == _P_NOWAIT);
    CHECK(GetHandleInformation(s_hStarted, &dwFlags));
    CloseHandle(s_hStarted);
}

TEST_CASE("a tool that goes on is not waited for", "[driver][events]")
{
    const DriverFolder driver(L"drv");
    for (const wchar_t* pszTool : {L"velup.exe", L"veldel.exe"})
    {
        WriteFileBytes(driver.File(pszTool) + L".stay", "");
    }
    CHECK(driver.Event(PRINTER_EVENT_ADD_CONNECTION, L"\\\\host\\x") == 1);
    CHECK(driver.Ran(L"velup.exe"));
    CHECK(StopStandIn(driver.File(L"velup.exe"))); // it was still going on when the event was answered
    CHECK(driver.Event(PRINTER_EVENT_DELETE, kOwnCopy) == 1);
    CHECK(driver.Ran(L"veldel.exe"));
    CHECK(StopStandIn(driver.File(L"veldel.exe")));
}

TEST_CASE_METHOD(RecordedFolder, "the last argument of an event is not looked at", "[driver][events]")
{
    for (const LPARAM lParam : {LPARAM{1}, LPARAM{-1}}) // neither is an address
    {
        for (INT iEvent = -1; iEvent <= 8; ++iEvent)
        {
            s_files.clear();
            CHECK(Event(iEvent, kOwnCopy, 0, lParam) == 1);
            const size_t uiExpected = iEvent == PRINTER_EVENT_ADD_CONNECTION ? 2
                                      : iEvent == PRINTER_EVENT_DELETE       ? 1
                                                                             : 0;
            CHECK(s_files.size() == uiExpected);
        }
    }
}

TEST_CASE("the module's own path is told in the log", "[driver][events][log]")
{
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    const std::wstring strPath = BesideTests(L"veltests.exe");
    MakeDependsFilePath(nullptr, L"y.ini");
    CHECK(OwnLines(logging, "MakeDependsFilePath") ==
          std::vector<std::string>{"VelUI_dll__MakeDependsFilePath :START......",
                                   "DEBUG - VelUI(#) : szModuleFile = " + std::string(strPath.begin(), strPath.end()),
                                   "VelUI_dll__MakeDependsFilePath :End  ......"});
}

TEST_CASE("the two events that start a tool leave their names in the log, and a deleted printer its name twice",
          "[driver][events][log]")
{
    using Lines = std::vector<std::string>;
    s_strModuleFile.clear(); // so that nothing is written or started beside the tests
    const ImportHook hook(nullptr, "GetModuleFileNameW", &TellModuleFile);
    const Lines begin = {"VelUI_dll__DrvPrinterEvent :START......", "INFO - DrvPrinterEvent was invoked.",
                         "DEBUG - VelUI(#) : pPrinterName = P"};
    const Lines end = {"Param - VelUI(#) : bReturn = 1", "VelUI_dll__DrvPrinterEvent :End  ......"};
    const auto own = [](INT iEvent) {
        wchar_t szName[] = L"P";
        const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
        CHECK(DrvPrinterEvent(szName, iEvent, 0, 0) == 1);
        return OwnLines(logging, "DrvPrinterEvent");
    };
    const auto expected = [&](const Lines& middle) {
        Lines lines = begin;
        lines.insert(lines.end(), middle.begin(), middle.end());
        lines.insert(lines.end(), end.begin(), end.end());
        return lines;
    };
    CHECK(own(PRINTER_EVENT_ADD_CONNECTION) == expected({"INFO - DriverEvent = PRINTER_EVENT_ADD_CONNECTION"}));
    CHECK(own(PRINTER_EVENT_DELETE) ==
          expected({"INFO - DriverEvent = PRINTER_EVENT_DELETE", "DEBUG - VelUI(#) : pPrinterName = P"}));
}

TEST_CASE("what an event does stands behind its name in the log, and before its result", "[driver][events][log]")
{
    using Lines = std::vector<std::string>;
    s_strModuleFile.clear();
    const ImportHook hook(nullptr, "GetModuleFileNameW", &TellModuleFile);
    const auto outline = [](INT iEvent, std::wstring strName) {
        const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
        CHECK(DrvPrinterEvent(strName.data(), iEvent, 0, 0) == 1);
        return Outline(logging, "DrvPrinterEvent");
    };
    CHECK(outline(PRINTER_EVENT_ADD_CONNECTION, L"P") ==
          Lines{"INFO - DrvPrinterEvent was invoked.", "DEBUG - VelUI(#) : pPrinterName", "INFO - DriverEvent",
                "> MakeDependsFilePath", "> MakeDependsFilePath", "Param - VelUI(#) : bReturn"});
    CHECK(outline(PRINTER_EVENT_DELETE, kOwnCopy) ==
          Lines{"INFO - DrvPrinterEvent was invoked.", "DEBUG - VelUI(#) : pPrinterName", "INFO - DriverEvent",
                "DEBUG - VelUI(#) : pPrinterName", "> MakeDependsFilePath", "Param - VelUI(#) : bReturn"});
}

TEST_CASE("each event leaves its name in the log, an unknown one its number", "[driver][events][log]")
{
    const char* const names[] = {"PRINTER_EVENT_CONFIGURATION_CHANGE",
                                 nullptr,
                                 "PRINTER_EVENT_DELETE_CONNECTION",
                                 "PRINTER_EVENT_INITIALIZE",
                                 nullptr,
                                 "PRINTER_EVENT_CACHE_REFRESH",
                                 "PRINTER_EVENT_CACHE_DELETE",
                                 "PRINTER_EVENT_ATTRIBUTES_CHANGED"};
    wchar_t szName[] = L"P";
    for (int iEvent = 0; iEvent < 8; ++iEvent)
    {
        if (names[iEvent] != nullptr)
        {
            const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
            CHECK(DrvPrinterEvent(szName, iEvent, 0, 0) == 1);
            CHECK(Masked(logging) == std::vector<std::string>{
                                         "VelUI_dll__DrvPrinterEvent :START......",
                                         "INFO - DrvPrinterEvent was invoked.", "DEBUG - VelUI(#) : pPrinterName = P",
                                         std::string("INFO - DriverEvent = ") + names[iEvent],
                                         "Param - VelUI(#) : bReturn = 1", "VelUI_dll__DrvPrinterEvent :End  ......"});
        }
    }
    const LoggingOn logging{"OutputParam"};
    DrvPrinterEvent(szName, 8, 0, 0);
    CHECK(logging.Has("INFO - DriverEvent = 8\n"));
    DrvPrinterEvent(szName, -1, 0, 0);
    CHECK(logging.Has("INFO - DriverEvent = -1\n"));
    DrvPrinterEvent(szName, PRINTER_EVENT_DELETE, 0, 0);
    CHECK(logging.Has("INFO - DriverEvent = PRINTER_EVENT_DELETE\n"));
    const std::vector<std::string> lines = Masked(logging);
    CHECK(std::count(lines.begin(), lines.end(), "DEBUG - VelUI(#) : pPrinterName = P") == 4);
}
