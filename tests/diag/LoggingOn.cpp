#include "tests/diag/LoggingOn.h"

#include "diag/Log.h"
#include "diag/LogFilter.h"
#include "diag/OutputSwitches.h"

#include <log4cpp/Category.hh>
#include <log4cpp/HierarchyMaintainer.hh>
#include <log4cpp/NDC.hh>

#include <catch2/catch_test_macros.hpp>

#include <algorithm>

namespace
{

std::string Narrow(const std::wstring& strWide)
{
    std::string strNarrow(WideCharToMultiByte(CP_ACP, 0, strWide.c_str(), -1, nullptr, 0, nullptr, nullptr), '\0');
    WideCharToMultiByte(CP_ACP, 0, strWide.c_str(), -1, strNarrow.data(), static_cast<int>(strNarrow.size()), nullptr,
                        nullptr);
    strNarrow.pop_back();
    return strNarrow;
}

} // namespace

LoggingOn::LoggingOn(const LogSetup& setup) : m_strLog(m_folder.File(L"log.txt"))
{
    Start(setup);
}

LoggingOn::LoggingOn(std::initializer_list<const char*> switches) : m_strLog(m_folder.File(L"log.txt"))
{
    LogSetup setup;
    setup.switches.assign(switches.begin(), switches.end());
    Start(setup);
}

void LoggingOn::Start(const LogSetup& setup)
{
    REQUIRE(loggingDisabled);
    std::string strText = "rootCategory=DEBUG\n"
                          "category." +
                          setup.strCategory + "=" + setup.strPriority +
                          ", logFile\n"
                          "appender.logFile=" +
                          setup.strAppender +
                          "\n"
                          "appender.logFile.fileName=" +
                          Narrow(m_strLog) +
                          "\n"
                          "appender.logFile.layout=PatternLayout\n"
                          "appender.logFile.layout.ConversionPattern=" +
                          setup.strPattern + "\n";
    for (const std::string& strSwitch : setup.switches)
    {
        strText += strSwitch + "." + setup.strCategory + "=true\n";
    }
    const std::wstring strFile = m_folder.File(L"LogConfig.conf");
    WriteFileBytes(strFile, strText + setup.strMoreLines);
    CHECK(StartLogging(Narrow(strFile).c_str()) == 0);
    CHECK(loggingDisabled != setup.bStarts);
}

LoggingOn::~LoggingOn()
{
    StopLogging();
    // For a test that has stopped logging itself and used the library since.
    log4cpp::Category::shutdownForced();
    log4cpp::HierarchyMaintainer::getDefaultMaintainer().deleteAllCategories();
    log4cpp::NDC::clear();
    ClearOutputSwitches();
    delete logFilter;
    logFilter = nullptr;
}

std::string LoggingOn::Text() const
{
    std::string strText = ReadFileBytes(m_strLog);
    strText.erase(std::remove(strText.begin(), strText.end(), '\r'), strText.end());
    const std::string strHead = "[ThreadID:" + std::to_string(GetCurrentThreadId()) + "]";
    for (size_t uiAt = strText.find(strHead); uiAt != std::string::npos; uiAt = strText.find(strHead, uiAt))
    {
        strText.replace(uiAt, strHead.size(), "[ThreadID:#]");
    }
    return strText;
}

std::vector<std::string> LoggingOn::Lines() const
{
    std::vector<std::string> lines;
    const std::string strText = Text();
    size_t uiStart = 0;
    for (size_t uiEnd = strText.find('\n'); uiEnd != std::string::npos; uiEnd = strText.find('\n', uiStart))
    {
        lines.push_back(strText.substr(uiStart, uiEnd - uiStart));
        uiStart = uiEnd + 1;
    }
    if (uiStart < strText.size())
    {
        lines.push_back(strText.substr(uiStart));
    }
    return lines;
}
