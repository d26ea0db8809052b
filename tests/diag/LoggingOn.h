#pragma once
/// Logging that is on for the length of a test.
///
///     LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
///     { const FunctionScope scope("F"); LogParam("%s", "x"); }
///     CHECK(logging.Lines() == std::vector<std::string>{"[ThreadID:#] VelUI_dll__F :START......", ...});

#include "tests/common/TempFolder.h"

#include <initializer_list>
#include <string>
#include <vector>

/// What a test's log configuration holds.
struct LogSetup
{
    std::vector<std::string> switches; ///< output switches that are on for the module's category
    std::string strPriority = "DEBUG"; ///< the priority of the module's category
    std::string strPattern = "%m%n";   ///< the layout of the log file
    std::string strAppender = "FileAppender";
    std::string strMoreLines;              ///< lines behind all others, each with its line feed
    std::string strCategory = "VelUI_dll"; ///< the one category that writes to the log file
    bool bStarts = true;                   ///< whether logging is to be on afterwards; checked
};

/// Writes a configuration and its log file into a folder of its own and calls StartLogging. The end calls StopLogging
/// and forgets the output switches, the filter and log4cpp's categories, so that logging can start anew in the same
/// process. One at a time; it must outlive the trace scopes of the test.
class LoggingOn
{
public:
    explicit LoggingOn(const LogSetup& setup = LogSetup());
    /// Default values but for the output switches.
    LoggingOn(std::initializer_list<const char*> switches);
    ~LoggingOn();
    LoggingOn(const LoggingOn&) = delete;
    LoggingOn& operator=(const LoggingOn&) = delete;

    /// The lines of the log file so far, without line ends; "[ThreadID:n]" reads "[ThreadID:#]" when n is the calling
    /// thread. A message with line feeds of its own makes several lines, some of them empty.
    std::vector<std::string> Lines() const;
    /// The same text in one piece, each line with "\n".
    std::string Text() const;
    /// Bytes of the log file so far: for a log that is too long to be read again and again.
    size_t Bytes() const { return ReadFileBytes(m_strLog).size(); }
    /// Whether some line holds the text.
    bool Has(const std::string& strText) const { return Text().find(strText) != std::string::npos; }

private:
    void Start(const LogSetup& setup);

    TempFolder m_folder;
    std::wstring m_strLog;
};
