#pragma once
/// The floor of the log calls: the same finished text through bare log4cpp, and the appenders that both sides write to.

#include <log4cpp/AppenderSkeleton.hh>
#include <log4cpp/Category.hh>
#include <log4cpp/Layout.hh>

#include <memory>
#include <string>

/// An appender that only counts, so that nothing but the way to it is measured.
class CountingAppender : public log4cpp::AppenderSkeleton
{
public:
    explicit CountingAppender(const std::string& strName) : log4cpp::AppenderSkeleton(strName) {}
    void close() override {}
    bool requiresLayout() const override { return false; }
    void setLayout(log4cpp::Layout* pLayout) override { delete pLayout; }

    size_t uiEvents = 0;

protected:
    void _append(const log4cpp::LoggingEvent&) override { ++uiEvents; }
};

/// An appender to a file with the layout that the sample configuration gives it.
std::unique_ptr<log4cpp::Appender> MakeFileAppender(const std::string& strName, const std::string& strFile);

/// The line of an error or debug message with its words.
void FloorWordsLine(log4cpp::Category& category, int iPriority, const char* pszLevel, const char* pszModule, int iLine,
                    const char* pszWords);

/// The line of a debug message with a wide text.
void FloorWideLine(log4cpp::Category& category, const char* pszModule, int iLine, const wchar_t* pszText);

/// The line that an entry point was invoked.
void FloorInvokedLine(log4cpp::Category& category, const char* pszFunction);

/// The line of a result.
void FloorResultLine(log4cpp::Category& category, const char* pszModule, int iLine, int iResult);

/// The frame of a function with its START and its End line.
void FloorTracePair(log4cpp::Category& category, const char* pszFunction);
