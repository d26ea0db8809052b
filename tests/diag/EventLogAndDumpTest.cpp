// The NT event log of fatal messages, and the dump of a buffer.

#include "diag/Log.h"
#include "tests/common/ImportHook.h"
#include "tests/common/PrivateRegistry.h"
#include "tests/diag/LoggingOn.h"

#include <log4cpp/Category.hh>

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

#include <cstdarg>
#include <cstdint>
#include <cstdio>

namespace
{

using Strings = std::vector<std::string>;

Strings s_calls;

/// A level function that keeps what it is called with.
void Keep(const char* pszFormat, ...) noexcept
{
    char szText[256];
    va_list arguments;
    va_start(arguments, pszFormat);
    _vsnprintf_s(szText, sizeof(szText), _TRUNCATE, pszFormat, arguments);
    va_end(arguments);
    s_calls.emplace_back(szText);
}

/// The registry key of an event source, which the appender makes when it opens its source.
bool HasEventSource(const std::string& strSource)
{
    HKEY hKey = nullptr;
    const std::string strKey = "SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\" + strSource;
    const LONG lResult = RegOpenKeyExA(HKEY_LOCAL_MACHINE, strKey.c_str(), 0, KEY_READ, &hKey);
    if (lResult == ERROR_SUCCESS)
    {
        RegCloseKey(hKey);
    }
    return lResult == ERROR_SUCCESS;
}

void ForgetEventSource(const std::string& strSource)
{
    const std::string strKey = "SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\" + strSource;
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, strKey.c_str());
}

Strings s_sources;
Strings s_events;
WORD s_wType = 0;

HANDLE WINAPI KeepSource(LPCSTR, LPCSTR pszSource)
{
    s_sources.emplace_back(pszSource);
    return reinterpret_cast<HANDLE>(0x77);
}

BOOL WINAPI KeepEvent(HANDLE hSource, WORD wType, WORD, DWORD, PSID, WORD wStrings, DWORD, LPCSTR* ppszStrings, LPVOID)
{
    CHECK(hSource == reinterpret_cast<HANDLE>(0x77));
    CHECK(wStrings == 1);
    s_events.emplace_back(ppszStrings[0]);
    s_wType = wType;
    log4cpp::Appender* const pAppender = log4cpp::Appender::getAppender("NTEVENTLog");
    REQUIRE(pAppender != nullptr);
    CHECK(pAppender->getThreshold() == 0);
    return TRUE;
}

BOOL WINAPI LeaveSource(HANDLE hSource)
{
    return hSource == reinterpret_cast<HANDLE>(0x77);
}

/// Keeps what reaches the event log for the length of a scope.
struct EventLog
{
    EventLog()
    {
        s_sources.clear();
        s_events.clear();
        s_wType = 0;
    }
    const ImportHook source{nullptr, "RegisterEventSourceA", &KeepSource};
    const ImportHook event{nullptr, "ReportEventA", &KeepEvent};
    const ImportHook end{nullptr, "DeregisterEventSource", &LeaveSource};
    const PrivateRegistry registry; // where the appender notes its sources
};

std::string ThreadHead()
{
    return "[ThreadID:" + std::to_string(GetCurrentThreadId()) + "] ";
}

} // namespace

TEST_CASE("a fatal message and its call stack reach the event log under the function's name", "[diag][eventlog]")
{
    const LoggingOn logging{"OutputNTEventLog", "OutputNDCFullmessage"};
    const EventLog events;
    TraceFunctionBegin(kModuleTag, "Class", "Method");
    LogFatal("event %d", 7);
    TraceFunctionEnd();
    CHECK(s_sources == Strings{"VelUI_dll_Class_Method"});
    CHECK(s_wType == EVENTLOG_ERROR_TYPE);
    REQUIRE(s_events.size() == 5);
    CHECK(s_events[0] == ThreadHead() + "FATAL - event 7");
    CHECK(s_events[1] == "\t\t\t@_@ ---------\tCall\tStack\t-----------\n");
    CHECK(s_events[3] == "\t\t\t@_@ 1\tVelUI_dll\t\t\tClass\t\t\t\tMethod\n");
    CHECK(s_events[4] == "\t\t\t@_@ ---------\tStack\tEnd\t-----------\n\n\n");
}

TEST_CASE("the event log's switch is that of the frame's module, not of the category", "[diag][eventlog]")
{
    const auto [strSwitch, uiEvents] =
        GENERATE(table<std::string, size_t>({{"OutputNTEventLog.VelUI_dll=true\n", 1},
                                             {"OutputNTEventLog.VelUI_dll.F=true\nOutputParam.VelUI_dll=true\n", 0}}));
    LogSetup setup;
    setup.strMoreLines = "category.VelUI_dll.F=DEBUG\n" + strSwitch;
    const LoggingOn logging(setup);
    const EventLog events;
    {
        const TraceScope scope("F");
        LogFatal("event");
    }
    CAPTURE(strSwitch);
    CHECK(s_events.size() == uiEvents);
    CHECK(logging.Lines() == Strings{"[ThreadID:#] FATAL - event"});
}

TEST_CASE(
    "a fatal message opens an event source named for its function and leaves the category's appenders as they were",
    "[diag][eventlog]")
{
    ForgetEventSource("VelUI_dll__Fatal");
    ForgetEventSource("VelUI_dll__Mild");
    const LoggingOn logging{"OutputNTEventLog"};
    log4cpp::Category& category = log4cpp::Category::getInstance(kModuleTag);
    const auto before = category.getAllAppenders();
    REQUIRE(before.size() == 1);
    {
        const TraceScope scope("Mild");
        LogError("no event");
    }
    {
        const TraceScope scope("Fatal");
        LogFatal("event");
        LogFatal("event again");
    }
    CHECK(HasEventSource("VelUI_dll__Fatal"));
    CHECK_FALSE(HasEventSource("VelUI_dll__Mild"));
    CHECK(category.getAllAppenders() == before);
    CHECK(log4cpp::Appender::getAppender("NTEVENTLog") == nullptr);
    CHECK(logging.Lines() ==
          Strings{"[ThreadID:#] ERROR - no event", "[ThreadID:#] FATAL - event", "[ThreadID:#] FATAL - event again"});
    ForgetEventSource("VelUI_dll__Fatal");
}

TEST_CASE("without its switch a fatal message opens no event source", "[diag][eventlog]")
{
    ForgetEventSource("VelUI_dll__Quiet");
    const LoggingOn logging{"OutputParam"};
    {
        const TraceScope scope("Quiet");
        LogFatal("m");
    }
    CHECK(logging.Lines() == Strings{"[ThreadID:#] FATAL - m"});
    CHECK_FALSE(HasEventSource("VelUI_dll__Quiet"));
}

TEST_CASE("a buffer is dumped in lines of 16 bytes with a wide gap in the middle", "[diag][dump]")
{
    const auto [lLength, lines] = GENERATE(table<long, Strings>({
        {0, {}},
        {1, {"00\n"}},
        {8, {"00 01 02 03 04 05 06 07\n"}},
        {9, {"00 01 02 03 04 05 06 07  08\n"}},
        {16, {"00 01 02 03 04 05 06 07  08 09 0A 0B 0C 0D 0E 0F\n"}},
        {17, {"00 01 02 03 04 05 06 07  08 09 0A 0B 0C 0D 0E 0F\n", "F0\n"}},
        {20, {"00 01 02 03 04 05 06 07  08 09 0A 0B 0C 0D 0E 0F\n", "F0 F1 F2 F3\n"}},
    }));
    unsigned char aby[20];
    for (int i = 0; i < 20; ++i)
    {
        aby[i] = static_cast<unsigned char>(i < 16 ? i : 0xE0 + i);
    }
    const LoggingOn logging;
    s_calls.clear();
    LogBufferDump("title", aby, lLength, Keep);
    char szAddress[64];
    _snprintf_s(szAddress, sizeof(szAddress), _TRUNCATE, "Address=0X%08X Length=%ld\n",
                static_cast<unsigned>(reinterpret_cast<size_t>(&aby[0])), lLength);
    Strings wanted = {"title", szAddress};
    wanted.insert(wanted.end(), lines.begin(), lines.end());
    INFO("length " << lLength);
    CHECK(s_calls == wanted);
}

TEST_CASE("a buffer above 4 GB shows the low half of its address", "[diag][dump]")
{
    constexpr std::uintptr_t kAddress = 0x1234560000;
    void* const pvBytes = VirtualAlloc(reinterpret_cast<void*>(kAddress), 1, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    REQUIRE(pvBytes == reinterpret_cast<void*>(kAddress));
    const LoggingOn logging;
    s_calls.clear();
    LogBufferDump("title", pvBytes, 1, Keep);
    VirtualFree(pvBytes, 0, MEM_RELEASE);
    CHECK(s_calls == Strings{"title", "Address=0X34560000 Length=1\n", "00\n"});
}

TEST_CASE("a null buffer shows its title and its address only", "[diag][dump]")
{
    const LoggingOn logging;
    s_calls.clear();
    LogBufferDump("title", nullptr, 5, Keep);
    CHECK(s_calls == Strings{"title", "Address=0X00000000 Length=5\n"});
}

TEST_CASE("a buffer's dump goes through a level function into the log", "[diag][dump]")
{
    const LoggingOn logging;
    {
        const TraceScope scope("F");
        LogBufferDump("title", "AB", 2, LogInfo);
    }
    const Strings lines = logging.Lines();
    REQUIRE(lines.size() == 5);
    CHECK(lines[0] == "[ThreadID:#] INFO - title");
    CHECK(lines[3] == "[ThreadID:#] INFO - 41 42");
}

TEST_CASE("a dump while logging is off calls nothing", "[diag][dump][off]")
{
    s_calls.clear();
    LogBufferDump("title", "AB", 2, Keep);
    CHECK(s_calls.empty());
}
