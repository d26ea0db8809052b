#include "diag/Log.h"

#include "diag/CallStack.h"
#include "diag/OutputSwitches.h"
#include "diag/Quietly.h"

#include <log4cpp/NTEventLogAppender.hh>

#include <cstdarg>
#include <cstdio>
#include <memory>

namespace
{

/// Characters of a message, and again of a message with its head; the terminator is one of them. What is longer is cut.
constexpr size_t kMessageChars = 800;

/// A level function's own values.
struct Level
{
    int iPriority;
    const char* pszWord;
    bool bDumpsStack;
};
constexpr Level kDebug = {kPriorityDebug, "DEBUG", true};
constexpr Level kInfo = {kPriorityInfo, "INFO", false};
constexpr Level kWarning = {kPriorityWarn, "WARNING", false};
constexpr Level kError = {kPriorityError, "ERROR", true};

/// A message's own text, from the caller's format.
struct Message
{
    Message(const char* pszFormat, va_list arguments)
    {
        _vsnprintf_s(szText, kMessageChars, _TRUNCATE, pszFormat, arguments);
    }
    char szText[kMessageChars];
};

/// A frame's parts with an underscore between them.
std::string UnderscoredName(const FrameName& frame)
{
    std::string strName(frame.strModule);
    ((strName += '_') += frame.strClass) += '_';
    return strName += frame.strFunction;
}

/// Adds an NT event log appender to a category for one message: its event source bears the name of the function that
/// logs. The category's own appenders are not touched.
class EventLogScope
{
public:
    EventLogScope(log4cpp::Category* pCategory, const FrameName& frame, bool bWanted) : m_pCategory(pCategory)
    {
        if (bWanted)
        {
            auto pAppender = std::make_unique<log4cpp::NTEventLogAppender>("NTEVENTLog", UnderscoredName(frame));
            pAppender->setThreshold(kPriorityFatal);
            m_pCategory->addAppender(pAppender.get());
            m_pAppender = pAppender.release(); // the category owns it now
        }
    }
    ~EventLogScope()
    {
        if (m_pAppender != nullptr)
        {
            m_pCategory->removeAppender(m_pAppender); // deletes it
        }
    }
    EventLogScope(const EventLogScope&) = delete;
    EventLogScope& operator=(const EventLogScope&) = delete;

private:
    log4cpp::Category* m_pCategory;
    log4cpp::Appender* m_pAppender = nullptr;
};

void WriteLevel(const LogTarget& target, const Level& level, const char* pszFormat, va_list arguments)
{
    const Message message(pszFormat, arguments);
    char szLine[kMessageChars];
    _snprintf_s(szLine, kMessageChars, _TRUNCATE, "[ThreadID:%lu] %s - %s", GetCurrentThreadId(), level.pszWord,
                message.szText);
    // Required: the composed line is the format, so that it passes through formatting a second time and a percent sign
    // in it is read as a conversion.
    target.pCategory->log(level.iPriority, szLine);
    if (level.bDumpsStack)
    {
        DumpCallStack(target.frame, level.iPriority);
    }
}

void WriteFatal(const LogTarget& target, const char* pszFormat, va_list arguments)
{
    OutputSwitches switches;
    // Required: the module's switches decide, not those of the category that was found, and without any the message is
    // dropped.
    if (GetOutputSwitches(std::string(target.frame.strModule), switches) != 0)
    {
        return;
    }
    const EventLogScope eventLog(target.pCategory, target.frame, switches.outputNTEventLog);
    const Message message(pszFormat, arguments);
    target.pCategory->fatal("[ThreadID:%lu] FATAL - %s", GetCurrentThreadId(), message.szText);
    DumpCallStack(target.frame, kPriorityFatal);
}

void WriteParam(const LogTarget& target, const char* pszFormat, va_list arguments)
{
    OutputSwitches switches;
    if (GetOutputSwitches(target.pCategory->getName(), switches) != 0 || !switches.outputParam)
    {
        return;
    }
    const Message message(pszFormat, arguments);
    // At the most urgent priority: the switch decides, not the category's priority.
    target.pCategory->log(kPriorityFatal, "[ThreadID:%lu] Param - %s", GetCurrentThreadId(), message.szText);
}

/// What all level functions share: the frame, the filter and the category of the running function in front of the
/// writing. Nothing is written when the thread has no frame or the configuration no category for it.
template <typename Write>
void WithTarget(Write write) noexcept
{
    Quietly([&write] {
        LogTarget target;
        if (FindLogTarget(target) && target.pCategory != nullptr)
        {
            write(target);
        }
    });
}

} // namespace

int IsPriorityEnabled(int iPriority) noexcept
{
    int iEnabled = 0;
    Quietly([&] {
        // Required: the category is used without a test for null; a configuration that loads must name the module's.
        // The filter is not asked.
        iEnabled = FindCategory(ReadCurrentFrame())->isPriorityEnabled(iPriority) ? 1 : 0;
    });
    return iEnabled;
}

// A level function's body. A macro, as only the function itself can reach its own variable arguments.
#define WRITE_WITH_TARGET(...)                                                                                         \
    if (loggingDisabled)                                                                                               \
    {                                                                                                                  \
        return;                                                                                                        \
    }                                                                                                                  \
    va_list arguments;                                                                                                 \
    va_start(arguments, pszFormat);                                                                                    \
    WithTarget([&](const LogTarget& target) { __VA_ARGS__; });                                                         \
    va_end(arguments)

void LogDebug(const char* pszFormat, ...) noexcept
{
    WRITE_WITH_TARGET(WriteLevel(target, kDebug, pszFormat, arguments));
}

void LogInfo(const char* pszFormat, ...) noexcept
{
    WRITE_WITH_TARGET(WriteLevel(target, kInfo, pszFormat, arguments));
}

void LogWarning(const char* pszFormat, ...) noexcept
{
    WRITE_WITH_TARGET(WriteLevel(target, kWarning, pszFormat, arguments));
}

void LogError(const char* pszFormat, ...) noexcept
{
    WRITE_WITH_TARGET(WriteLevel(target, kError, pszFormat, arguments));
}

void LogFatal(const char* pszFormat, ...) noexcept
{
    WRITE_WITH_TARGET(WriteFatal(target, pszFormat, arguments));
}

void LogParam(const char* pszFormat, ...) noexcept
{
    WRITE_WITH_TARGET(WriteParam(target, pszFormat, arguments));
}
