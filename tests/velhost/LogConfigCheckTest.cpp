// The doctor's look at LogConfig.conf. Each fault is made in the sample's file, which is good, and the module's own
// readers show what becomes of logging with it.

#include "diag/Log.h"
#include "diag/LogFilter.h"
#include "diag/OutputSwitches.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ChildCase.h"
#include "tests/common/ClientFixture.h"
#include "tools/velhost/doctor/Kinds.h"
#include "tools/velhost/doctor/LogConfigCheck.h"
#include "tools/velhost/install/LogSetup.h"
#include "tools/velhost/report/Encoding.h"

#include <catch2/catch_test_macros.hpp>

#include <cstdlib>

using namespace VelHost;

namespace
{

using Codes = std::vector<std::string>;

/// What becomes of logging under a configuration.
enum class Logging
{
    On,
    Off,
    Unasked
};

struct Fault
{
    const char* pszName;
    const char* pszLine; ///< of the sample; null to add the other behind its end
    const char* pszInstead;
    const char* pszCode;
    const char* pszWhere; ///< behind the file's name
    Logging logging;
};

constexpr Fault kFaults[] = {
    {"no root category", "rootCategory=ERROR", "", "LOG11", "rootCategory", Logging::Off},
    {"a root category without a priority", "rootCategory=ERROR", "rootCategory=", "LOG11", "rootCategory",
     Logging::Off},
    {"an appender of an unknown class", "appender.velui=RollingFileAppender", "appender.velui=RolingFileAppender",
     "LOG12", "appender.velui", Logging::Off},
    {"an appender without its first line", "appender.velui=RollingFileAppender", "", "LOG12", "appender.velui.append",
     Logging::Off},
    {"a category's appender that is not there", "category.VelUI_dll=DEBUG, velui", "category.VelUI_dll=DEBUG, velu",
     "LOG12", "category.VelUI_dll", Logging::Off},
    {"an unknown layout", "appender.velui.layout=PatternLayout", "appender.velui.layout=PaternLayout", "LOG13",
     "appender.velui.layout", Logging::Off},
    {"no layout", "appender.velui.layout=PatternLayout", "", "LOG13", "appender.velui.layout", Logging::Off},
    {"a pattern with an unknown letter", "appender.velui.layout.ConversionPattern=%d{%Y-%m-%d %H:%M:%S.%l} %m%n",
     "appender.velui.layout.ConversionPattern=%q%n", "LOG13", "appender.velui.layout.ConversionPattern", Logging::Off},
    {"an unknown priority", "category.VelUI_dll=DEBUG, velui", "category.VelUI_dll=LOUD, velui", "LOG14",
     "category.VelUI_dll", Logging::Off},
    {"an unknown threshold", nullptr, "appender.velui.threshold=debug", "LOG14", "appender.velui.threshold",
     Logging::Off},
    {"a switch without a category", nullptr, "OutputParam=true", "LOG15", "line 70", Logging::Off},
    {"a log file without a folder", nullptr, nullptr, "LOG17", "appender.velui.fileName", Logging::Unasked},
    {"a category without an appender", "category.VelUI_dll=DEBUG, velui", "category.VelUI_dll=DEBUG", "LOG18",
     "category.VelUI_dll", Logging::On},
    {"a switch for a category that is not there", "OutputParam.VelUI_dll=true", "OutputParam.VelUI_dl=true", "LOG20",
     "line 42", Logging::On},
    {"a switch whose name stands inside its key", nullptr, "My.OutputParam.VelUI_dll=true", "LOG20", "line 70",
     Logging::On},
    {"a rule for any module", nullptr, "filter.module=*\nfilter.class=*\nfilter.function=*\nfilter.putoutpermission=no",
     "LOG21", "line 73", Logging::On},
    {"a rule for any class beside a function", nullptr,
     "filter.module=VelUI_dll\nfilter.class=*\nfilter.function=F\nfilter.putoutpermission=no", "LOG21", "line 73",
     Logging::On},
    {"a rule for a class", nullptr,
     "filter.module=VelUI_dll\nfilter.class=Page\nfilter.function=*\nfilter.putoutpermission=no", "LOG21", "line 73",
     Logging::On},
    {"a rule with a blank behind the module", nullptr,
     "filter.module=VelUI_dll \nfilter.class=\nfilter.function=F\nfilter.putoutpermission=no", "LOG21", "line 73",
     Logging::On},
    {"a rule for the module in other letters", nullptr,
     "filter.module=velui_dll\nfilter.class=\nfilter.function=F\nfilter.putoutpermission=no", "LOG21", "line 73",
     Logging::On},
    {"a rule behind one for all", nullptr,
     "filter.module=VelUI_dll\nfilter.class=*\nfilter.function=*\nfilter.putoutpermission=yes\n"
     "filter.module=VelUI_dll\nfilter.class=\nfilter.function=F\nfilter.putoutpermission=no",
     "LOG22", "line 77", Logging::On},
    {"a rule behind one for its class", nullptr,
     "filter.module=VelUI_dll\nfilter.class=\nfilter.function=*\nfilter.putoutpermission=yes\n"
     "filter.module=VelUI_dll\nfilter.class=\nfilter.function=F\nfilter.putoutpermission=no",
     "LOG22", "line 77", Logging::On},
    {"a rule of three lines", nullptr, "filter.module=VelUI_dll\nfilter.class=\nfilter.putoutpermission=no", "LOG23",
     "line 72", Logging::On},
};

/// The sample's configuration in a client of the test's own, and the findings in it.
struct LogFixture : ClientFixture
{
    LogFixture()
    {
        WriteLogConfig(BesideTests(L"sample\\LogConfig.conf"), File(), folder.Path());
        strText = strSample = ReadFileBytes(File());
    }
    ~LogFixture()
    {
        StopLogging();
        ClearOutputSwitches();
        delete logFilter;
        logFilter = nullptr;
    }
    LogFixture(const LogFixture&) = delete;
    LogFixture& operator=(const LogFixture&) = delete;

    std::wstring File() const { return folder.File(L"LogConfig.conf"); }
    /// Puts a text in the place of a whole line, or behind the end.
    void Replace(const char* pszLine, const std::string& strInstead)
    {
        if (pszLine == nullptr)
        {
            strText += strInstead + "\n";
            return;
        }
        const std::string strLine = std::string("\n") + pszLine + "\n";
        const size_t uiAt = strText.find(strLine);
        REQUIRE(uiAt != std::string::npos);
        strText.replace(uiAt + 1, strLine.size() - 2, strInstead);
    }
    /// The line of the log file's name, with another in its place.
    void NameLog(const std::string& strName)
    {
        Replace(("appender.velui.fileName=" + ToUtf8(folder.File(L"VelUI.log"))).c_str(),
                "appender.velui.fileName=" + strName);
    }
    Findings Look()
    {
        WriteFileBytes(File(), strText);
        Findings findings(AllKinds());
        CheckLogConfig(folder.Path(), findings);
        return findings;
    }
    /// @return whether the module has a log with the configuration.
    bool Start() const
    {
        StartLogging(ToUtf8(File()).c_str());
        return !loggingDisabled;
    }

    std::string strSample;
    std::string strText; ///< what Look writes
};

/// Whether the rules let a function of the module write.
bool MayWrite(const char* pszFunction)
{
    return IsLogAllowed(std::string("VelUI_dll..") + pszFunction);
}

} // namespace

TEST_CASE_METHOD(LogFixture, "the doctor is silent about the sample's log, and tells what it costs",
                 "[velhost][doctor]")
{
    const Findings findings = Look();
    CHECK(findings.Codes() == Codes());
    REQUIRE(findings.GoodList().size() == 1);
    CHECK(findings.GoodList()[0].strText ==
          File() +
              L": logging is on for each process that starts: 1 category, the module's at DEBUG, results on, START "
              L"and End lines on, 0 filter rules; as measured, a line to a file takes 16.1 us (1.169 times the bare "
              L"library's), each function's START and End 30.8 us (1.063 times)");
    CHECK_FALSE(PathExists(folder.File(L"VelUI.log"))); // looking makes none
    CHECK(Start());
}

TEST_CASE_METHOD(LogFixture, "the doctor counts categories and rules, and sees what is switched off",
                 "[velhost][doctor]")
{
    Replace("category.VelUI_dll=DEBUG, velui", "category.VelUI_dll=WARN, velui\ncategory.VelUI_dll.F=ERROR");
    Replace("OutputParam.VelUI_dll=true", "OutputParam.VelUI_dll = no");
    Replace("OutputFunBeginInfo.VelUI_dll=true", "OutputFunBeginInfo.VelUI_dll=false");
    Replace(nullptr, "filter.module=VelUI_dll\nfilter.class=\nfilter.function=F\nfilter.putoutpermission=no\n"
                     "filter.class=*\nfilter.function=*\nfilter.module=VelUI_dll\nfilter.putoutpermission=yes");
    const Findings findings = Look();
    CHECK(findings.Codes() == Codes());
    REQUIRE(findings.GoodList().size() == 1);
    CHECK(findings.GoodList()[0].strText.find(
              L"2 categories, the module's at WARN, results off, START and End lines off, 2 filter rules;") !=
          std::wstring::npos);
    CHECK(findings.GoodList()[0].strText.find(L"each function's") == std::wstring::npos);
    REQUIRE(Start());
    CHECK_FALSE(MayWrite("F"));
    CHECK(MayWrite("G"));
}

TEST_CASE_METHOD(LogFixture, "the doctor finds each fault of a log's configuration and no other", "[velhost][doctor]")
{
    for (const Fault& fault : kFaults)
    {
        DYNAMIC_SECTION(fault.pszName)
        {
            if (fault.pszInstead == nullptr)
            {
                NameLog("VelUI.log");
            }
            else
            {
                Replace(fault.pszLine, fault.pszInstead);
            }
            const Findings findings = Look();
            CHECK(findings.Codes() == Codes{fault.pszCode});
            REQUIRE_FALSE(findings.List().empty());
            CHECK(findings.List()[0].strWhere == File() + L" " + FromUtf8(fault.pszWhere));
            CHECK(findings.GoodList().empty() == (fault.logging == Logging::Off));
            if (fault.logging != Logging::Unasked)
            {
                CHECK(Start() == (fault.logging == Logging::On));
            }
            if (fault.logging == Logging::On && fault.pszCode[3] == '2')
            {
                CHECK(MayWrite("F")); // each of the rules would have kept it back, or a switch is nobody's
            }
        }
    }
}

TEST_CASE("child: a query under a log without the module's category", "[.child]")
{
    LogFixture client;
    client.Replace("category.VelUI_dll=DEBUG, velui", "category.Another=DEBUG, velui");
    client.Replace("OutputParam.VelUI_dll=true", "");
    client.Replace("OutputFunBeginInfo.VelUI_dll=true", "");
    client.Replace("OutputNTEventLog.VelUI_dll=false", "");
    client.Replace("OutputNDCFullmessage.VelUI_dll=false", "");
    CHECK(client.Look().Codes() == Codes{"LOG10"});
    CHECK(client.Look().GoodList().empty());
    if (client.Look().Codes() == Codes{"LOG10"})
    {
        const BuiltModule module;
        module.DeviceCapabilities(nullptr, nullptr, DC_SIZE, nullptr, nullptr);
    }
}

TEST_CASE("the doctor finds the log without the module's category, and a query under it ends the process",
          "[velhost][doctor]")
{
    CHECK(IsFault(ExitCodeOfCase(L"child: a query under a log without the module's category")));
}

TEST_CASE_METHOD(LogFixture, "a function's own category makes the module's", "[velhost][doctor]")
{
    Replace("category.VelUI_dll=DEBUG, velui", "category.VelUI_dll.F=DEBUG, velui\n");
    Replace("rootCategory=ERROR", "rootCategory=ERROR, velui");
    CHECK(Look().Codes() == Codes{"LOG18"}); // the root's appender gets nothing of it
    Replace("additivity.VelUI_dll=false", "");
    CHECK(Look().Codes() == Codes());
    REQUIRE(Start());
    TraceFunctionBegin(kModuleTag, nullptr, "G");
    CHECK(IsErrorEnabled() == 1); // and does not end here
    CHECK(IsDebugEnabled() == 0);
    TraceFunctionEnd();
}

TEST_CASE_METHOD(LogFixture, "a log file that can't be written is told, and one that is there is good",
                 "[velhost][doctor]")
{
    const auto codeOf = [this](const std::string& strName) {
        strText = strSample;
        NameLog(strName);
        return Look().Codes();
    };
    const std::string strFolder = ToUtf8(folder.Path());
    CHECK(codeOf(strFolder) == Codes{"LOG16"}); // a folder
    CHECK(codeOf(strFolder + "\\none\\VelUI.log") == Codes{"LOG16"});
    const std::string strLog = strFolder + "\\old.log";
    WriteFileBytes(FromUtf8(strLog), "a line\n");
    CHECK(codeOf(strLog) == Codes());
    CHECK(ReadFileBytes(FromUtf8(strLog)) == "a line\n");
    {
        const FileHandle held(FromUtf8(strLog), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING); // lets nobody write
        REQUIRE(held.IsOpen());
        CHECK(codeOf(strLog) == Codes{"LOG16"});
    }
    _putenv_s("VELTEST_LOGS", strFolder.c_str());
    CHECK(codeOf("${VELTEST_LOGS}\\old.log") == Codes());
    _putenv_s("VELTEST_LOGS", "");
    CHECK(codeOf("${VELTEST_LOGS}\\old.log") == Codes{"LOG17"});
}

TEST_CASE_METHOD(LogFixture, "a line that is too long is told, with what it hides", "[velhost][doctor]")
{
    const std::string strLong = "#" + std::string(1023, 'x');
    strText = strLong.substr(1) + "\n" + strText; // 1,023 characters are read
    CHECK(Look().Codes() == Codes());
    strText = strLong + "\n" + strText;
    const Findings findings = Look();
    CHECK(findings.Codes() == Codes{"LOG24"});
    CHECK(findings.List().at(0).strWhere == File() + L" line 1");
    REQUIRE(Start());
    OutputSwitches switches;
    CHECK(GetOutputSwitches("VelUI_dll", switches) == -1);
}

TEST_CASE_METHOD(LogFixture, "what is no LogConfig.conf is one clear finding, and none at all is good",
                 "[velhost][doctor]")
{
    const auto look = [this] {
        Findings findings(AllKinds());
        CheckLogConfig(folder.Path(), findings);
        return findings;
    };
    SECTION("no file")
    {
        REQUIRE(DeleteFileW(File().c_str()));
        const Findings findings = look();
        CHECK(findings.Codes() == Codes());
        REQUIRE(findings.GoodList().size() == 1);
        CHECK(findings.GoodList()[0].strText.find(L"logging is off") != std::wstring::npos);
    }
    SECTION("a folder in its place")
    {
        REQUIRE(DeleteFileW(File().c_str()));
        REQUIRE(CreateDirectoryW(File().c_str(), nullptr));
        CHECK(look().Codes() == Codes{"LOG01"});
    }
    SECTION("a file that someone keeps for himself")
    {
        const FileHandle held(File(), GENERIC_READ, 0, OPEN_EXISTING);
        REQUIRE(held.IsOpen());
        CHECK(look().Codes() == Codes{"LOG01"});
        CHECK_FALSE(Start());
    }
    SECTION("0 bytes")
    {
        WriteFileBytes(File(), "");
        CHECK(look().Codes() == Codes{"LOG03"});
        CHECK_FALSE(Start());
    }
    SECTION("100 MB")
    {
        {
            const FileHandle file(File(), GENERIC_WRITE, 0, OPEN_EXISTING);
            REQUIRE(file.IsOpen());
            SetFilePointer(file.Get(), 100 * 1024 * 1024, nullptr, FILE_BEGIN);
            REQUIRE(SetEndOfFile(file.Get()));
        }
        const Findings findings = look();
        CHECK(findings.Codes() == Codes{"LOG04"});
        CHECK(findings.List().at(0).strDetail == L"104857600 bytes");
    }
    SECTION("UTF-16")
    {
        const std::wstring strWide = L"\xFEFF" + FromUtf8(strText);
        WriteFileBytes(File(), std::string(reinterpret_cast<const char*>(strWide.data()), strWide.size() * 2));
        CHECK(look().Codes() == Codes{"LOG05"});
        CHECK_FALSE(Start());
    }
}

TEST_CASE("a log configuration's path of 300 characters is one clear finding", "[velhost][doctor]")
{
    Findings findings(AllKinds());
    CheckLogConfig(L"C:\\" + std::wstring(282, L'd'), findings);
    CHECK(findings.Codes() == Codes{"LOG02"});
    CHECK(findings.List().at(0).strDetail == L"300 characters");
}

TEST_CASE("the doctor's figures for a log are those of the measurements", "[velhost][doctor]")
{
    const std::string strPage = ReadFileBytes(BesideTests(L"performance.md"));
    for (const LogCost& cost : {kLineCost, kTracePairCost})
    {
        CAPTURE(cost.pszMeasure);
        const size_t uiRow = strPage.find(cost.pszMeasure);
        REQUIRE(uiRow != std::string::npos);
        const std::string strRow = strPage.substr(uiRow, strPage.find('\n', uiRow) - uiRow);
        CHECK(strRow.find(std::string(" ") + cost.pszNanoseconds + " ns ") != std::string::npos);
        CHECK(strRow.find(std::string(" ") + cost.pszFactor + " x ") != std::string::npos);
    }
}
