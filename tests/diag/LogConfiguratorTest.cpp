// The configuration's own keys: output switches and filter rules, and the start and stop of logging.

#include "diag/Log.h"
#include "diag/LogConfigurator.h"
#include "diag/OutputSwitches.h"
#include "tests/common/ImportHook.h"
#include "tests/diag/LoggingOn.h"

#include <log4cpp/Category.hh>
#include <log4cpp/LoggingEvent.hh>

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

#include <cerrno>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace
{

/// Reads one file's text with a fresh configurator, and forgets the switches at the end.
class Reading
{
public:
    explicit Reading(const std::string& strText)
    {
        const std::wstring strFile = m_folder.File(L"LogConfig.conf");
        WriteFileBytes(strFile, strText);
        m_configurator.configure(std::string(strFile.begin(), strFile.end()));
        m_pFilter.reset(m_configurator.getFilter());
    }
    ~Reading() { ClearOutputSwitches(); }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    bool HasFilter() const { return m_pFilter != nullptr; }
    /// The chain's decision on a frame: 1, 0 or -1.
    int Decide(const std::string& strFrame) const
    {
        return m_pFilter->decide(log4cpp::LoggingEvent("", strFrame, "", kPriorityDebug));
    }
    /// The four switches of a category in the record's order, as "1010", or "none".
    static std::string Switches(const std::string& strCategory)
    {
        OutputSwitches switches;
        if (GetOutputSwitches(strCategory, switches) != 0)
        {
            return "none";
        }
        std::string strText;
        for (const OutputSwitchName& name : kOutputSwitchNames)
        {
            strText += switches.*name.pSwitch ? '1' : '0';
        }
        return strText;
    }

private:
    TempFolder m_folder;
    LogConfigurator m_configurator;
    std::unique_ptr<LogFilter> m_pFilter;
};

std::string Rule(const std::string& strModule, const std::string& strClass, const std::string& strFunction,
                 const std::string& strPermission)
{
    return "filter.module=" + strModule + "\nfilter.class=" + strClass + "\nfilter.function=" + strFunction +
           "\nfilter.putoutpermission=" + strPermission + "\n";
}

std::string s_strLockSteps;

void WINAPI NoteEnter(CRITICAL_SECTION* pLock)
{
    Platform<void WINAPI(CRITICAL_SECTION*)>(L"kernel32", "EnterCriticalSection")(pLock);
    s_strLockSteps += "enter ";
}

void WINAPI NoteLeave(CRITICAL_SECTION* pLock)
{
    s_strLockSteps += "leave ";
    Platform<void WINAPI(CRITICAL_SECTION*)>(L"kernel32", "LeaveCriticalSection")(pLock);
}

/// What is done to critical sections while pfnCall runs.
std::string LockSteps(void (*pfnCall)())
{
    const ImportHook enter{nullptr, "EnterCriticalSection", &NoteEnter};
    const ImportHook leave{nullptr, "LeaveCriticalSection", &NoteLeave};
    s_strLockSteps.clear();
    pfnCall();
    return s_strLockSteps;
}

} // namespace

TEST_CASE("a switch line gives its category a record", "[diag][config]")
{
    const auto [strLine, strWanted] = GENERATE(table<std::string, std::string>({
        {"OutputParam.VelUI_dll=true", "1000"},
        {"OutputFunBeginInfo.VelUI_dll=true", "0100"},
        {"OutputNTEventLog.VelUI_dll=true", "0010"},
        {"OutputNDCFullmessage.VelUI_dll=true", "0001"},
        {"OutputParam.VelUI_dll = TRUE", "1000"},
        {"OutputParam.VelUI_dll = TRUE\r", "1000"},
        {"  OutputParam . VelUI_dll=t r u e", "1000"},
        {"OutputParam_VelUI_dll=true", "1000"},
        {"OutputParam.VelUI_dll=true # a comment", "1000"},
        {"OutputParam.VelUI_dll=true=", "0000"},
        {"OutputParam.VelUI_dll=\ttrue", "0000"},
        {"OutputParam.VelUI_dll=yes", "0000"},
        {"OutputParam.VelUI_dll=", "0000"},
        {"# OutputParam.VelUI_dll=true", "none"},
        {"Output#Param.VelUI_dll=true", "none"},
        {"OutputParam.VelUI_dll", "none"},
        {"outputparam.VelUI_dll=true", "none"},
        {"OutputParam.velui_dll=true", "none"},
        {"", "none"},
    }));
    const Reading reading(strLine + "\n");
    INFO(strLine);
    CHECK(Reading::Switches("VelUI_dll") == strWanted);
}

TEST_CASE("a switch's category is cut out by the name's length", "[diag][config]")
{
    const Reading reading("x.OutputParam.VelUI_dll=true\nOutputNTEventLog.=true\n");
    // "x.OutputParam.VelUI_dll" without its first 12 characters
    CHECK(Reading::Switches("m.VelUI_dll") == "1000");
    CHECK(Reading::Switches("VelUI_dll") == "none");
    CHECK(Reading::Switches("") == "0010");
}

TEST_CASE("several lines fill one record, a later line wins, and the last line needs no line feed", "[diag][config]")
{
    const Reading reading("OutputParam.A=true\nOutputNTEventLog.A=true\nOutputParam.A=false\nOutputParam.B=true");
    CHECK(Reading::Switches("A") == "0010");
    CHECK(Reading::Switches("B") == "1000");
}

TEST_CASE("a switch name with nothing behind it raises out_of_range", "[diag][config]")
{
    CHECK_THROWS_AS(Reading("OutputParam=true\n"), std::out_of_range);
    ClearOutputSwitches();
}

TEST_CASE("a line that does not fit its buffer ends the reading", "[diag][config]")
{
    const auto [iLength, bReadOn] =
        GENERATE(table<int, bool>({{1000, true}, {1023, true}, {1024, false}, {2000, false}}));
    const std::string strLong = "x=" + std::string(iLength - 2, 'y');
    const Reading reading("OutputParam.A=true\nOutputParam.B=true\n" + strLong + "\nOutputParam.C=true\n");
    INFO("length " << iLength);
    CHECK(Reading::Switches("A") == "1000");
    CHECK(Reading::Switches("B") == "1000");
    CHECK(Reading::Switches("C") == (bReadOn ? "1000" : "none"));
}

TEST_CASE("a file that can't be read sets nothing and is told on standard output", "[diag][config]")
{
    std::ostringstream told;
    std::streambuf* const pOld = std::cout.rdbuf(told.rdbuf());
    LogConfigurator configurator;
    CHECK_NOTHROW(configurator.configure("C:\\absent\\LogConfig.conf"));
    std::cout.rdbuf(pOld);
    CHECK(told.str() == "Config FileC:\\absent\\LogConfig.confdoes not exist or is unreadable\n");
    CHECK(configurator.getFilter() == nullptr);
}

TEST_CASE("an unknown switch name still makes a record, and a record can be removed", "[diag][config]")
{
    SetOutputSwitch("C", "OutputNothing", true);
    CHECK(Reading::Switches("C") == "0000");
    SetOutputSwitch("D", "OutputParam", true);
    RemoveOutputSwitches("C");
    CHECK(Reading::Switches("C") == "none");
    CHECK(Reading::Switches("D") == "1000");
    ClearOutputSwitches();
    CHECK(Reading::Switches("D") == "none");
}

TEST_CASE("the switches are set, read and removed under their lock", "[diag][config]")
{
    CHECK(LockSteps([] { SetOutputSwitch("C", "OutputParam", true); }) == "enter leave ");
    CHECK(LockSteps([] {
              OutputSwitches switches;
              GetOutputSwitches("C", switches);
          }) == "enter leave ");
    CHECK(LockSteps([] { RemoveOutputSwitches("C"); }) == "enter leave ");
    CHECK(LockSteps([] { ClearOutputSwitches(); }) == "enter leave ");
}

TEST_CASE("a rule applies in three shapes only", "[diag][filter]")
{
    const auto [strRule, strFrame, iWanted] = GENERATE(table<std::string, std::string, int>({
        {Rule("M", "*", "*", "no"), "M..F", -1},  {Rule("M", "*", "*", "no"), "M.C.F", -1},
        {Rule("M", "*", "*", "yes"), "M.C.F", 1}, {Rule("M", "*", "*", "no"), "m.C.F", 0},
        {Rule("M", "C", "*", "no"), "M.C.F", -1}, {Rule("M", "C", "*", "no"), "M.D.F", 0},
        {Rule("M", "C", "F", "no"), "M.C.F", -1}, {Rule("M", "C", "F", "yes"), "M.C.F", 1},
        {Rule("M", "C", "F", "no"), "M.C.G", 0},  {Rule("M", "", "F", "no"), "M..F", -1},
        {Rule("M", "", "*", "no"), "M..F", -1},   {Rule("M", "*", "F", "no"), "M..F", 0},
        {Rule("*", "*", "*", "no"), "M..F", 0},   {Rule("*", "C", "F", "no"), "M.C.F", 0},
        {Rule("*", "*", "*", "no"), "*..F", 0},   {Rule("M", "C", "D.F", "no"), "M.C.D.F", -1},
        {Rule("M", "*", "*", "no"), "M", 0},      {Rule("", "*", "*", "no"), "M", -1},
        {Rule("M", "C", "", "no"), "M.C", -1},    {Rule("M", "*", "*", "maybe"), "M..F", 1},
        {Rule("M", "*", "*", "no "), "M..F", 1},  {Rule("M", "*", "*", "No"), "M..F", 1},
        {Rule(" M", "*", "*", "no"), "M..F", 0},
    }));
    const Reading reading(strRule);
    REQUIRE(reading.HasFilter());
    INFO(strRule << strFrame);
    CHECK(reading.Decide(strFrame) == iWanted);
}

TEST_CASE("the first rule that applies decides", "[diag][filter]")
{
    const Reading reading(Rule("M", "", "F", "yes") + Rule("M", "*", "*", "no") + Rule("M", "", "G", "yes"));
    CHECK(reading.Decide("M..F") == 1);
    CHECK(reading.Decide("M..G") == -1);
    CHECK(reading.Decide("N..F") == 0);
}

TEST_CASE("each of many rules counts, in the order of the file", "[diag][filter]")
{
    const Reading reading(Rule("M", "", "F", "yes") + Rule("M", "", "G", "no") + Rule("M", "", "F", "no") +
                          Rule("M", "", "G", "yes") + Rule("M", "", "H", "no") + Rule("M", "*", "*", "yes"));
    CHECK(reading.Decide("M..F") == 1);
    CHECK(reading.Decide("M..G") == -1);
    CHECK(reading.Decide("M..H") == -1);
    CHECK(reading.Decide("M..I") == 1);
    CHECK(reading.Decide("N..F") == 0);
}

TEST_CASE("four lines with a rule's key make a rule, whichever they are", "[diag][filter]")
{
    const auto [strText, bFilter] = GENERATE(table<std::string, bool>({
        {"filter.module=M\nfilter.class=*\nfilter.function=*\n", false},
        {"filter.module=M\nfilter.module=M\nfilter.module=M\nfilter.module=M\n", true},
        {"filter.module =M\nfilter.class=*\nfilter.function=*\nfilter.putoutpermission=no\n", false},
        {"filter.Module=M\nfilter.class=*\nfilter.function=*\nfilter.putoutpermission=no\n", false},
        {"module=filter\nclass=filter\nfunction=filter\nputoutpermission=filter\n", true},
        {"x.module=filter\nx.class=filter\nx.function=filter\nx.putoutpermission=filter\n", false},
        {"module=M\nclass=*\nfunction=*\nputoutpermission=no\n", false},
        {"x.filter.module=M\nfilter.class=*\nfilter.function=*\nfilter.putoutpermission=no\n", false},
        {"# filter.module=M\nfilter.class=*\nfilter.function=*\nfilter.putoutpermission=no\n", false},
    }));
    const Reading reading(strText);
    INFO(strText);
    CHECK(reading.HasFilter() == bFilter);
}

TEST_CASE("what a rule does not set it takes from the rule before", "[diag][filter]")
{
    const Reading reading(Rule("M", "", "F", "no") +
                          "filter.function=G\nfilter.function=G\nfilter.function=G\nfilter.function=H\n");
    CHECK(reading.Decide("M..F") == -1);
    CHECK(reading.Decide("M..G") == 0);
    CHECK(reading.Decide("M..H") == -1);
}

TEST_CASE("without a complete rule every message is let through", "[diag][filter]")
{
    LogSetup setup;
    setup.strMoreLines = "filter.module=VelUI_dll\nfilter.class=*\nfilter.function=*\n";
    const LoggingOn logging(setup);
    CHECK(logFilter == nullptr);
    {
        const TraceScope scope("F");
        LogInfo("m");
    }
    CHECK(logging.Has("INFO - m"));
}

TEST_CASE("a configuration that fails half way leaves logging off", "[diag][start]")
{
    LogSetup setup;
    setup.bStarts = false;
    setup.strMoreLines = GENERATE("OutputParam=true\n", "category.VelUI_dll.F=DEBUG, noSuchAppender\n",
                                  "category.VelUI_dll.F=NOSUCHPRIORITY\n");
    const LoggingOn logging(setup);
    {
        const TraceScope scope("F");
        CHECK(IsFatalEnabled() == 0);
        LogError("m");
    }
    CHECK(logging.Text().empty());
}

TEST_CASE("the start of logging leaves the error state alone", "[diag][start]")
{
    SetLastError(5);
    errno = ENOENT;
    const int iResult = StartLogging("C:\\absent\\LogConfig.conf");
    const DWORD dwLastError = GetLastError();
    const int iErrno = errno;
    CHECK(iResult == 0);
    CHECK(dwLastError == 5);
    CHECK(iErrno == ENOENT);
}

TEST_CASE("the end of logging closes the log file, and later calls are silent", "[diag][start]")
{
    const LoggingOn logging{"OutputFunBeginInfo"};
    {
        const TraceScope scope("F");
        LogInfo("before");
    }
    const std::string strBefore = logging.Text();
    SetLastError(5);
    errno = ENOENT;
    StopLogging();
    const DWORD dwLastError = GetLastError();
    const int iErrno = errno;
    CHECK(dwLastError == 5);
    CHECK(iErrno == ENOENT);
    CHECK(loggingDisabled);
    CHECK(log4cpp::Appender::getAppender("logFile") == nullptr);
    {
        const TraceScope scope("F");
        CHECK(IsFatalEnabled() == 0);
        LogInfo("after");
    }
    StopLogging();
    CHECK(logging.Text() == strBefore);
    CHECK(strBefore.find("INFO - before") != std::string::npos);
}

TEST_CASE("the end of logging does nothing to the library while logging is off", "[diag][start]")
{
    REQUIRE(loggingDisabled);
    StopLogging(); // what an earlier start that failed half way has left in the process
    log4cpp::Category& category = log4cpp::Category::getInstance("kept");
    StopLogging();
    CHECK(log4cpp::Category::exists("kept") == &category);
}
