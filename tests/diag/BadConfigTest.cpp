// Configurations and sinks that fail: logging may fall silent, and never does more.

#include "diag/Log.h"
#include "diag/LogFilter.h"
#include "diag/LogSite.h"
#include "diag/OutputSwitches.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ChildCase.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/Handles.h"
#include "tests/common/ImportHook.h"
#include "tests/diag/LoggingOn.h"

#include <log4cpp/Category.hh>

#include <catch2/catch_test_macros.hpp>

#include <cerrno>
#include <fcntl.h>
#include <iostream>
#include <sstream>

VELUI_SOURCE_MODULE("Test");

namespace
{

std::string Ansi(const std::wstring& strPath)
{
    return std::string(strPath.begin(), strPath.end());
}

/// A configuration of the test's own text, and the end of logging with the test.
class Configured
{
public:
    explicit Configured(const std::string& strText) : m_strFile(m_folder.File(L"LogConfig.conf"))
    {
        std::string strWhole = strText;
        const std::string strMark = "@log@";
        for (size_t ui = strWhole.find(strMark); ui != std::string::npos; ui = strWhole.find(strMark))
        {
            strWhole.replace(ui, strMark.size(), Ansi(LogFile()));
        }
        WriteFileBytes(m_strFile, strWhole);
    }
    ~Configured()
    {
        StopLogging();
        ClearOutputSwitches();
        delete logFilter;
        logFilter = nullptr;
    }
    Configured(const Configured&) = delete;
    Configured& operator=(const Configured&) = delete;

    std::wstring LogFile() const { return m_folder.File(L"log.txt"); }
    std::string Name() const { return Ansi(m_strFile); }
    /// @return whether logging is on.
    bool Start() const
    {
        CHECK(StartLogging(Name().c_str()) == 0);
        return !loggingDisabled;
    }
    std::string Log() const { return ReadFileBytes(LogFile()); }

private:
    TempFolder m_folder;
    std::wstring m_strFile;
};

constexpr char kGoodConfig[] = "rootCategory=ERROR\n"
                               "category.VelUI_dll=DEBUG, file\n"
                               "appender.file=FileAppender\n"
                               "appender.file.fileName=@log@\n"
                               "appender.file.layout=PatternLayout\n"
                               "appender.file.layout.ConversionPattern=%m%n\n"
                               "OutputParam.VelUI_dll=true\n"
                               "OutputNTEventLog.VelUI_dll=true\n"
                               "filter.module=VelUI_dll\n"
                               "filter.class=\n"
                               "filter.function=Denied\n"
                               "filter.putoutpermission=no\n";

/// Makes one call of each kind and tells whether the error state came through it.
bool LogsQuietly()
{
    SetLastError(5);
    errno = ENOENT;
    _doserrno = 17;
    TraceFunctionBegin(kModuleTag, nullptr, "F");
    IsDebugEnabled();
    LogDebug("debug");
    LogInfo("info");
    LogWarning("warning");
    LogError("error");
    LogFatal("fatal");
    LogParam("param");
    LogBufferDump("title", "ab", 2, LogInfo);
    TraceFunctionEnd();
    return GetLastError() == 5 && errno == ENOENT && _doserrno == 17;
}

int FullDisk(int, const void*, unsigned)
{
    errno = ENOSPC;
    return -1;
}

HANDLE WINAPI NoEventSource(LPCSTR, LPCSTR)
{
    SetLastError(RPC_S_SERVER_UNAVAILABLE);
    return nullptr;
}

LSTATUS WINAPI NoKey(HKEY, LPCSTR, DWORD, LPSTR, DWORD, REGSAM, LPSECURITY_ATTRIBUTES, PHKEY, LPDWORD)
{
    return ERROR_ACCESS_DENIED;
}

int s_iOpens = 0;

/// Lets the first reader of the configuration open it, and not the second.
FILE* OpenOnce(const char* pszName, const char* pszMode)
{
    if (std::string(pszName).find("LogConfig.conf") != std::string::npos && ++s_iOpens == 2)
    {
        errno = ENOENT;
        return nullptr;
    }
    return Platform<FILE*(const char*, const char*)>(L"msvcrt", "fopen")(pszName, pszMode);
}

} // namespace

TEST_CASE("a configuration with CR LF line ends works as one with LF", "[diag][config]")
{
    std::string strText = kGoodConfig;
    for (size_t ui = strText.find('\n'); ui != std::string::npos; ui = strText.find('\n', ui + 2))
    {
        strText.replace(ui, 1, "\r\n");
    }
    const Configured configured(strText);
    REQUIRE(configured.Start());
    {
        const FunctionScope scope("F");
        LogParam("param");
    }
    {
        const FunctionScope scope("Denied");
        LogError("error");
    }
    CHECK(configured.Log().find("Param - param") != std::string::npos);
    CHECK(configured.Log().find("error") == std::string::npos);
}

TEST_CASE("a configuration without the root category, an empty one too, leaves logging off", "[diag][config]")
{
    const std::string strWhole = kGoodConfig;
    const std::string strRoot = "rootCategory=ERROR\n";
    REQUIRE(strWhole.compare(0, strRoot.size(), strRoot) == 0);
    for (const std::string& strText : {std::string(), strWhole.substr(strRoot.size())})
    {
        CAPTURE(strText);
        const Configured configured(strText);
        CHECK_FALSE(configured.Start());
        CHECK(LogsQuietly());
        CHECK(configured.Log().empty());
    }
    const Configured configured(strWhole); // and with it logging is on
    CHECK(configured.Start());
    CHECK(LogsQuietly());
    CHECK_FALSE(configured.Log().empty());
}

TEST_CASE("a switch without a category switches logging off for the run", "[diag][config]")
{
    const Configured configured(std::string(kGoodConfig) + "OutputParam=true\n");
    CHECK_FALSE(configured.Start());
    CHECK(LogsQuietly());
    CHECK(configured.Log().empty());
}

TEST_CASE("a configuration that vanishes between its two readers logs without switches and says so", "[diag][config]")
{
    const Configured configured(kGoodConfig);
    std::ostringstream told;
    std::streambuf* const pOld = std::cout.rdbuf(told.rdbuf());
    s_iOpens = 0;
    bool bOn = false;
    {
        const ImportHook hook(nullptr, "fopen", &OpenOnce);
        bOn = configured.Start();
    }
    std::cout.rdbuf(pOld);
    CHECK(s_iOpens == 2);
    CHECK(bOn);
    CHECK(told.str() == "Config File" + configured.Name() + "does not exist or is unreadable\n");
    CHECK(LogsQuietly());
    CHECK(configured.Log().find("ERROR - error") != std::string::npos);
    CHECK(configured.Log().find("Param") == std::string::npos);
    CHECK(configured.Log().find("FATAL") == std::string::npos); // no switches at all: dropped
}

TEST_CASE("a log file that can't be opened makes logging silent", "[diag][sinks]")
{
    const Configured configured(kGoodConfig);
    CreateDirectoryW(configured.LogFile().c_str(), nullptr); // in the file's place
    configured.Start();
    CHECK(LogsQuietly());
    CHECK(LogsQuietly());
}

TEST_CASE("a log file in a folder that is not there makes logging silent", "[diag][sinks]")
{
    std::string strText = kGoodConfig;
    strText.replace(strText.find("@log@"), 5, "C:\\no such folder\\log.txt");
    const Configured configured(strText);
    configured.Start();
    CHECK(LogsQuietly());
}

TEST_CASE("a full disk loses the lines and nothing else, and later lines come again", "[diag][sinks]")
{
    const Configured configured(kGoodConfig);
    REQUIRE(configured.Start());
    {
        const ImportHook hook(nullptr, "_write", &FullDisk);
        CHECK(LogsQuietly());
    }
    CHECK(configured.Log().empty());
    CHECK(LogsQuietly());
    CHECK(configured.Log().find("ERROR - error") != std::string::npos);
}

TEST_CASE("without an event log a fatal message goes to the file alone", "[diag][sinks]")
{
    const Configured configured(kGoodConfig);
    REQUIRE(configured.Start());
    {
        const ImportHook source(nullptr, "RegisterEventSourceA", &NoEventSource);
        const ImportHook key(nullptr, "RegCreateKeyExA", &NoKey);
        CHECK(LogsQuietly());
    }
    CHECK(configured.Log().find("FATAL - fatal") != std::string::npos);
}

TEST_CASE("a failed start behind one that worked switches logging off", "[diag][start]")
{
    const Configured configured(kGoodConfig);
    REQUIRE(configured.Start());
    CHECK(StartLogging("") == 0);
    CHECK(loggingDisabled);
    REQUIRE(configured.Start());
    CHECK(StartLogging((configured.Name() + ".absent").c_str()) == 0);
    CHECK(loggingDisabled);
    CHECK(LogsQuietly());
    CHECK(configured.Log().empty());
}

TEST_CASE("the end of logging leaves no category and no appender", "[diag][start]")
{
    const Configured configured(kGoodConfig);
    REQUIRE(configured.Start());
    REQUIRE(log4cpp::Category::exists("VelUI_dll") != nullptr);
    REQUIRE(log4cpp::Appender::getAppender("file") != nullptr);
    StopLogging();
    CHECK(log4cpp::Category::exists("VelUI_dll") == nullptr);
    CHECK(log4cpp::Appender::getAppender("file") == nullptr);
}

TEST_CASE("the end of a start that failed half way closes the log file", "[diag][start]")
{
    const Configured configured(std::string(kGoodConfig) + "OutputParam=true\n");
    const size_t uiBefore = NextHandle();
    CHECK_FALSE(configured.Start());
    StopLogging();
    CHECK(NextHandle() == uiBefore);
    CHECK(DeleteFileW(configured.LogFile().c_str()));
}

TEST_CASE_METHOD(ClientFixture, "a module whose start failed half way gives its log file back when it goes",
                 "[diag][start]")
{
    std::string strText = std::string(kGoodConfig) + "OutputParam=true\n";
    strText.replace(strText.find("@log@"), 5, Ansi(folder.File(L"log.txt")));
    WriteFileBytes(folder.File(L"LogConfig.conf"), strText);
    {
        const BuiltModule first;
    }
    const size_t uiBefore = NextHandle();
    for (int i = 0; i < 20; ++i)
    {
        const BuiltModule module;
        REQUIRE(module.handle != nullptr);
    }
    CHECK(NextHandle() == uiBefore);
    CHECK(DeleteFileW(folder.File(L"log.txt").c_str()));
}

namespace
{

/// A log without the module's category.
constexpr char kStrangerConfig[] = "rootCategory=ERROR\n"
                                   "category.Another=DEBUG, file\n"
                                   "appender.file=FileAppender\n"
                                   "appender.file.fileName=@log@\n"
                                   "appender.file.layout=PatternLayout\n";

} // namespace

// Each of the following two is run by the next case in a process of its own.
TEST_CASE("child: a predicate without the module's category", "[.child]")
{
    const Configured configured(kStrangerConfig);
    REQUIRE(configured.Start());
    TraceFunctionBegin(kModuleTag, nullptr, "F");
    IsErrorEnabled();
}

TEST_CASE("child: the end of a function without the module's category", "[.child]")
{
    const Configured configured(kStrangerConfig);
    REQUIRE(configured.Start());
    const FunctionScope scope("F");
}

TEST_CASE("a log without the module's category stops the process", "[diag][config]")
{
    CHECK(IsFault(ExitCodeOfCase(L"child: a predicate without the module's category")));
    CHECK(IsFault(ExitCodeOfCase(L"child: the end of a function without the module's category")));
}
