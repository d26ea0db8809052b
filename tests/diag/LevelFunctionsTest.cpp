// What the level functions and predicates write and answer while logging is on.

#include "diag/LogSite.h"
#include "tests/common/Threads.h"
#include "tests/diag/LoggingOn.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

VELUI_SOURCE_MODULE(".\\Test");

namespace
{

using Strings = std::vector<std::string>;

/// The module's switch record exists, with all switches off.
constexpr char kNoSwitchOn[] = "OutputParam.VelUI_dll=false\n";

LogSetup WithLines(const std::string& strMoreLines)
{
    LogSetup setup;
    setup.strMoreLines = strMoreLines;
    return setup;
}

} // namespace

TEST_CASE("each level function writes its head and the message", "[diag][level]")
{
    const LoggingOn logging{"OutputParam"};
    {
        const TraceScope scope("F");
        LogDebug("%d", 1);
        LogInfo("%s", "two");
        LogWarning("%S", L"three");
        LogError("%s(%d) : %s", ".\\ClientInfo", 1048, "MakePersonalFilePath failed.");
        LogFatal("%I64u", 5ull);
        LogParam("%s", "six");
    }
    CHECK(logging.Lines() == Strings{"[ThreadID:#] DEBUG - 1", "[ThreadID:#] INFO - two",
                                     "[ThreadID:#] WARNING - three",
                                     "[ThreadID:#] ERROR - .\\ClientInfo(1048) : MakePersonalFilePath failed.",
                                     "[ThreadID:#] FATAL - 5", "[ThreadID:#] Param - six"});
}

TEST_CASE("each level function writes at its own priority", "[diag][level]")
{
    LogSetup setup;
    setup.switches = {"OutputParam"};
    setup.strPattern = "%c %p %m%n";
    const LoggingOn logging(setup);
    {
        const TraceScope scope("F");
        LogDebug("m");
        LogInfo("m");
        LogWarning("m");
        LogError("m");
        LogFatal("m");
        LogParam("m");
    }
    CHECK(logging.Lines() == Strings{"VelUI_dll DEBUG [ThreadID:#] DEBUG - m", "VelUI_dll INFO [ThreadID:#] INFO - m",
                                     "VelUI_dll WARN [ThreadID:#] WARNING - m",
                                     "VelUI_dll ERROR [ThreadID:#] ERROR - m", "VelUI_dll FATAL [ThreadID:#] FATAL - m",
                                     "VelUI_dll FATAL [ThreadID:#] Param - m"});
}

TEST_CASE("the predicates answer by the category's priority", "[diag][level]")
{
    const auto [strPriority, strAnswers] = GENERATE(table<std::string, std::string>({{"DEBUG", "111111111"},
                                                                                     {"INFO", "011111111"},
                                                                                     {"NOTICE", "001111111"},
                                                                                     {"WARN", "000111111"},
                                                                                     {"ERROR", "000011111"},
                                                                                     {"CRIT", "000001111"},
                                                                                     {"ALERT", "000000111"},
                                                                                     {"FATAL", "000000011"}}));
    LogSetup setup;
    setup.strPriority = strPriority;
    const LoggingOn logging(setup);
    const TraceScope scope("F");
    std::string strGot;
    for (const int iAnswer : {IsDebugEnabled(), IsInfoEnabled(), IsNoticeEnabled(), IsWarnEnabled(), IsErrorEnabled(),
                              IsCritEnabled(), IsAlertEnabled(), IsEmergEnabled(), IsFatalEnabled()})
    {
        strGot += std::to_string(iAnswer);
    }
    INFO(strPriority);
    CHECK(strGot == strAnswers);
}

TEST_CASE("a message above the category's priority is not written, and a param message is", "[diag][level]")
{
    LogSetup setup;
    setup.strPriority = "FATAL";
    setup.switches = {"OutputParam", "OutputNDCFullmessage"};
    const LoggingOn logging(setup);
    {
        const TraceScope scope("F");
        LogDebug("m");
        LogInfo("m");
        LogWarning("m");
        LogError("m");
        LogParam("m");
    }
    CHECK(logging.Lines() == Strings{"[ThreadID:#] Param - m"});
}

TEST_CASE("a function's own category takes its messages, and all others go to the module's", "[diag][level]")
{
    LogSetup setup;
    setup.strPattern = "%c %m%n";
    setup.strMoreLines = "category.VelUI_dll.Own=ERROR\n"
                         "category.VelUI_dll.Class=INFO\n"
                         "category.VelUI_dll.Class.Method=WARN\n";
    const LoggingOn logging(setup);
    const auto WriteIn = [](const char* pszClass, const char* pszFunction) {
        TraceFunctionBegin(kModuleTag, pszClass, pszFunction);
        LogError("%s %d%d%d%d", pszFunction, IsErrorEnabled(), IsWarnEnabled(), IsInfoEnabled(), IsDebugEnabled());
        TraceFunctionEnd();
    };
    WriteIn(nullptr, "Own");
    WriteIn(nullptr, "Other");
    WriteIn("Class", "Method");
    WriteIn("Class", "Sibling");
    WriteIn("Unnamed", "Method");
    CHECK(logging.Lines() ==
          Strings{"VelUI_dll.Own [ThreadID:#] ERROR - Own 1000", "VelUI_dll [ThreadID:#] ERROR - Other 1111",
                  "VelUI_dll.Class.Method [ThreadID:#] ERROR - Method 1100",
                  "VelUI_dll.Class [ThreadID:#] ERROR - Sibling 1110", "VelUI_dll [ThreadID:#] ERROR - Method 1111"});
}

TEST_CASE("a message holds at most 799 characters, its head among them", "[diag][level]")
{
    const int iLength = GENERATE(700, 799, 800, 900, 2000);
    const LoggingOn logging;
    std::string strText(iLength, 'x');
    strText.replace(0, 5, "start");
    {
        const TraceScope scope("F");
        LogError("%s", strText.c_str());
    }
    const std::string strHead = "[ThreadID:" + std::to_string(GetCurrentThreadId()) + "] ERROR - ";
    const Strings lines = logging.Lines();
    REQUIRE(lines.size() == 1);
    const std::string strMasked = "[ThreadID:#] ERROR - ";
    const size_t uiWanted = std::min<size_t>(iLength, 799 - strHead.size());
    INFO("length " << iLength);
    CHECK(lines[0] == strMasked + strText.substr(0, uiWanted));
}

TEST_CASE("a fatal and a param message hold 799 characters besides their head", "[diag][level]")
{
    const LoggingOn logging{"OutputParam"};
    const std::string strText(2000, 'x');
    {
        const TraceScope scope("F");
        LogFatal("%s", strText.c_str());
        LogParam("%s", strText.c_str());
    }
    const std::string strCut(799, 'x');
    CHECK(logging.Lines() == Strings{"[ThreadID:#] FATAL - " + strCut, "[ThreadID:#] Param - " + strCut});
}

TEST_CASE("a percent sign in a message's text is formatted a second time, but not in a fatal or param message",
          "[diag][level]")
{
    const LoggingOn logging{"OutputParam"};
    {
        const TraceScope scope("F");
        LogDebug("%s", "50%% off");
        LogInfo("%s", "50%% off");
        LogWarning("%s", "50%% off");
        LogError("%s", "50%% off");
        LogFatal("%s", "50%% off");
        LogParam("%s", "50%% off");
    }
    CHECK(logging.Lines() == Strings{"[ThreadID:#] DEBUG - 50% off", "[ThreadID:#] INFO - 50% off",
                                     "[ThreadID:#] WARNING - 50% off", "[ThreadID:#] ERROR - 50% off",
                                     "[ThreadID:#] FATAL - 50%% off", "[ThreadID:#] Param - 50%% off"});
}

TEST_CASE("outside every traced function nothing is written and the predicates answer 0", "[diag][level]")
{
    const LoggingOn logging{"OutputParam", "OutputNDCFullmessage", "OutputFunBeginInfo"};
    LogDebug("m");
    LogInfo("m");
    LogWarning("m");
    LogError("m");
    LogFatal("m");
    LogParam("m");
    CHECK(IsDebugEnabled() == 0);
    CHECK(IsFatalEnabled() == 0);
    CHECK(logging.Text().empty());
}

TEST_CASE("a thread does not see another thread's frames", "[diag][level]")
{
    const LoggingOn logging;
    const TraceScope scope("F");
    OnThread([] {
        LogError("without a frame");
        const TraceScope inner("G");
        LogError("with a frame");
    });
    LogError("here");
    const Strings lines = logging.Lines();
    REQUIRE(lines.size() == 2);
    CHECK(lines[0].find(" ERROR - with a frame") != std::string::npos);
    CHECK(lines[0].find("[ThreadID:#]") == std::string::npos);
    CHECK(lines[1] == "[ThreadID:#] ERROR - here");
}

TEST_CASE("a fatal message of a module without any output switch is dropped", "[diag][level]")
{
    const LoggingOn logging;
    {
        const TraceScope scope("F");
        LogFatal("dropped");
        LogError("kept");
    }
    CHECK(logging.Lines() == Strings{"[ThreadID:#] ERROR - kept"});
}

TEST_CASE("a fatal message looks for the module's switches and not for those of its category", "[diag][level]")
{
    const std::string strCategories = "category.VelUI_dll.F=DEBUG\n";
    const auto [strSwitch, bWritten] = GENERATE(
        table<std::string, bool>({{"OutputParam.VelUI_dll=false\n", true}, {"OutputParam.VelUI_dll.F=true\n", false}}));
    const LoggingOn logging(WithLines(strCategories + strSwitch));
    {
        const TraceScope scope("F");
        LogFatal("m");
    }
    INFO(strSwitch);
    CHECK(logging.Lines() == (bWritten ? Strings{"[ThreadID:#] FATAL - m"} : Strings{}));
}

TEST_CASE("a param message needs its own switch", "[diag][level]")
{
    const auto [strSwitch, bWritten] = GENERATE(table<std::string, bool>({{"", false},
                                                                          {"OutputParam.VelUI_dll=false\n", false},
                                                                          {"OutputNTEventLog.VelUI_dll=true\n", false},
                                                                          {"OutputParam.VelUI_dll=true\n", true}}));
    const LoggingOn logging(WithLines(strSwitch));
    {
        const TraceScope scope("F");
        LogParam("m");
    }
    INFO(strSwitch);
    CHECK(logging.Lines() == (bWritten ? Strings{"[ThreadID:#] Param - m"} : Strings{}));
}

TEST_CASE("a param message looks for the switches of the category that was found", "[diag][level]")
{
    const LoggingOn logging(WithLines("category.VelUI_dll.F=DEBUG\nOutputParam.VelUI_dll.F=true\n"));
    {
        const TraceScope scope("F");
        LogParam("own category");
    }
    {
        const TraceScope scope("G");
        LogParam("module");
    }
    CHECK(logging.Lines() == Strings{"[ThreadID:#] Param - own category"});
}

TEST_CASE("a call leaves the error state alone while logging is on", "[diag][level]")
{
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo", "OutputNTEventLog", "OutputNDCFullmessage"};
    SetLastError(5);
    errno = ENOENT;
    _doserrno = 17;
    TraceFunctionBegin(kModuleTag, nullptr, "F");
    const int iEnabled = IsFatalEnabled();
    LogDebug("m");
    LogError("m");
    LogFatal("m");
    LogParam("m");
    LogBufferDump("title", "bytes", 5, LogError);
    TraceFunctionEnd();
    LogError("outside");
    const DWORD dwLastError = GetLastError();
    const int iErrno = errno;
    const unsigned long ulDosErrno = _doserrno;
    CHECK(iEnabled == 1);
    CHECK(dwLastError == 5);
    CHECK(iErrno == ENOENT);
    CHECK(ulDosErrno == 17);
    CHECK(logging.Has("FATAL - m"));
}

TEST_CASE("a call site's line names the source module and the line", "[diag][level]")
{
    const LoggingOn logging{"OutputParam"};
    const int iLine = __LINE__ + 3;
    {
        const FunctionScope scope("F");
        LOG_ERROR("GetClientFolder failed.");
        LOG_INVOKED(scope);
    }
    CHECK(logging.Lines() ==
          Strings{"[ThreadID:#] ERROR - .\\Test(" + std::to_string(iLine) + ") : GetClientFolder failed.",
                  "[ThreadID:#] INFO - F was invoked."});
}

TEST_CASE("a class's name may be longer than all the rest of a frame's", "[diag][level]")
{
    LogSetup setup;
    setup.strCategory = "M";
    const LoggingOn logging(setup);
    const std::string strClass(100, 'c');
    TraceFunctionBegin("M", strClass.c_str(), "F");
    LogInfo("here");
    TraceFunctionEnd();
    CHECK(logging.Has("INFO - here"));
}

TEST_CASE("without a category for the module a message is silent", "[diag][level]")
{
    LogSetup setup;
    setup.strCategory = "Another";
    const LoggingOn logging(setup);
    OnThread([] {
        TraceFunctionBegin(kModuleTag, nullptr, "F");
        LogError("m");
        LogFatal("m");
        LogParam("m");
    });
    CHECK(logging.Text().empty());
}
