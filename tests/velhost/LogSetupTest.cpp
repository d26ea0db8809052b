// The log configuration that velhost writes, and the log that it follows.

#include "tests/common/BuiltModule.h"
#include "tests/common/ChildProcess.h"
#include "tests/common/TempFolder.h"
#include "tools/velhost/install/LogSetup.h"
#include "tools/velhost/report/CommandError.h"

#include <catch2/catch_test_macros.hpp>

using namespace VelHost;

TEST_CASE("the sample configuration gets the client's log folder", "[velhost][log]")
{
    const TempFolder folder;
    WriteLogConfig(BesideTests(L"sample\\LogConfig.conf"), folder.File(L"LogConfig.conf"), L"D:\\Logs");
    const std::string strText = ReadFileBytes(folder.File(L"LogConfig.conf"));
    CHECK(strText.find("\nappender.velui.fileName=D:\\Logs\\VelUI.log\n") != std::string::npos);
    CHECK(strText.find('@') == std::string::npos);
    CHECK(LogFileOf(folder.File(L"LogConfig.conf")) == L"D:\\Logs\\VelUI.log");
}

TEST_CASE("every line of the sample fits the reader of switches and rules", "[velhost][log]")
{
    const std::string strText = ReadFileBytes(BesideTests(L"sample\\LogConfig.conf"));
    REQUIRE(!strText.empty());
    size_t uiStart = 0;
    for (size_t uiEnd = strText.find('\n'); uiEnd != std::string::npos; uiEnd = strText.find('\n', uiStart))
    {
        CHECK(uiEnd - uiStart < 200); // with room for a long folder
        uiStart = uiEnd + 1;
    }
    CHECK(uiStart == strText.size());
}

TEST_CASE("a folder that the code page lacks is refused, and written under one that has it", "[velhost][log]")
{
    const TempFolder folder;
    const std::wstring strTarget = folder.File(L"LogConfig.conf");
    REQUIRE(GetACP() == 1252);
    CHECK_THROWS_AS(WriteLogConfig(BesideTests(L"sample\\LogConfig.conf"), strTarget, L"D:\\日志"), CommandError);
    CHECK_FALSE(PathExists(strTarget));
}

TEST_CASE("a Chinese log folder comes back under code page 936", "[velhost][log][cp936]")
{
    const TempFolder folder;
    const std::wstring strTarget = folder.File(L"LogConfig.conf");
    REQUIRE(GetACP() == 936);
    WriteLogConfig(BesideTests(L"sample\\LogConfig.conf"), strTarget, L"D:\\日志");
    CHECK(LogFileOf(strTarget) == L"D:\\日志\\VelUI.log");
}

TEST_CASE("a configuration's log file is the first that it names outside a comment", "[velhost][log]")
{
    const TempFolder folder;
    const std::wstring strConfig = folder.File(L"c.conf");
    WriteFileBytes(strConfig, "#appender.a.fileName=C:\\no\r\nappender.b = FileAppender\r\n"
                              " appender.b.fileName = C:\\b\\log.txt \r\nappender.c.fileName=C:\\c\r\n");
    CHECK(LogFileOf(strConfig) == L"C:\\b\\log.txt");
    WriteFileBytes(strConfig, "category.VelUI_dll=DEBUG\n");
    CHECK_THROWS_AS(LogFileOf(strConfig), CommandError);
    CHECK_THROWS_AS(LogFileOf(folder.File(L"absent.conf")), CommandError);
}

TEST_CASE("a growing file is read in whole lines, from the beginning again when it is a new one", "[velhost][log]")
{
    const TempFolder folder;
    const std::wstring strLog = folder.File(L"log.txt");
    GrowingFile log(strLog);
    CHECK(log.ReadNew().empty());
    WriteFileBytes(strLog, "one\ntwo\nthr");
    CHECK(log.ReadNew() == "one\ntwo\n");
    CHECK(log.ReadNew().empty());
    const auto append = [&strLog](const char* pszText) { WriteFileBytes(strLog, ReadFileBytes(strLog) + pszText); };
    append("ee\n");
    CHECK(log.ReadNew() == "three\n");
    WriteFileBytes(strLog, "x\n");
    CHECK(log.ReadNew() == "x\n"); // shorter than what was read
    REQUIRE(MoveFileW(strLog.c_str(), folder.File(L"log.txt.1").c_str()));
    WriteFileBytes(strLog, "a new file\n");
    CHECK(log.ReadNew() == "a new file\n");
}

TEST_CASE("the last lines of a text are whole", "[velhost][log]")
{
    CHECK(LastLines("a\nb\nc\n", 2) == "b\nc\n");
    CHECK(LastLines("a\nb\nc\n", 3) == "a\nb\nc\n");
    CHECK(LastLines("a\nb\nc\n", 9) == "a\nb\nc\n");
    CHECK(LastLines("a\nb\nc\n", 0).empty());
    CHECK(LastLines("", 3).empty());
    CHECK(LastLines("\n\n", 1) == "\n");
}

TEST_CASE("velhost log refuses a wrong call", "[velhost][log][program]")
{
    const auto exitCodeOf = [](const std::vector<std::wstring>& arguments) {
        ChildProcess program(BesideTests(L"velhost.exe"), arguments);
        return program.Wait(30000);
    };
    CHECK(exitCodeOf({L"log"}) == 2);
    CHECK(exitCodeOf({L"log", L"loud"}) == 2);
    CHECK(exitCodeOf({L"log", L"tail", L"--lines", L"x"}) == 2);
}
