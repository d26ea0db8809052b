#include "diag/Log.h"

#include "diag/Frame.h"
#include "diag/LogConfigurator.h"
#include "diag/OutputSwitches.h"

#include <log4cpp/Category.hh>
#include <log4cpp/HierarchyMaintainer.hh>
#include <log4cpp/NTEventLogAppender.hh>
#include <log4cpp/PropertyConfigurator.hh>

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <ios>
#include <memory>
#include <new>
#include <string>

namespace
{

/// Whether a start has handed the library anything. A start that failed half way has, and leaves logging off.
bool s_bLibraryUsed = false;

/// Characters of a message, and again of a message with its head; the terminator is one of them. What is longer is cut.
constexpr size_t kMessageChars = 800;

/// A user of the library's set of all appenders, which goes with its last user.
using KeptAppenders = log4cpp::Appender::AppenderMapStorageInitializer;

/// A level function's own values.
struct Level
{
    int iPriority;
    const char* pszWord; ///< behind the thread's number at the head of a message
    void (*pfnWrite)(const LogTarget& target, const Level& level, const char* pszFormat, va_list arguments);
};

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
            Add(pAppender.get());
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
    void Add(log4cpp::Appender* pAppender)
    {
        try
        {
            m_pCategory->addAppender(pAppender);
        }
        catch (...)
        {
            // The category may hold it without a note that it owns it.
            m_pCategory->removeAppender(pAppender);
            throw;
        }
    }

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
    // in it is read as a conversion: a line must look the same whichever version of the module has written it.
    target.pCategory->log(level.iPriority, szLine);
}

void WriteLevelAndDump(const LogTarget& target, const Level& level, const char* pszFormat, va_list arguments)
{
    WriteLevel(target, level, pszFormat, arguments);
    DumpCallStack(target.frame, level.iPriority);
}

void WriteFatal(const LogTarget& target, const Level& level, const char* pszFormat, va_list arguments)
{
    OutputSwitches switches;
    // Required: the module's switches decide, not those of the category that was found, and without any the message is
    // dropped, so that one key of the configuration governs the event log for the whole module.
    if (GetOutputSwitches(std::string(target.frame.strModule), switches) != 0)
    {
        return;
    }
    const EventLogScope eventLog(target.pCategory, target.frame, switches.outputNTEventLog);
    const Message message(pszFormat, arguments);
    target.pCategory->log(level.iPriority, "[ThreadID:%lu] %s - %s", GetCurrentThreadId(), level.pszWord,
                          message.szText);
    DumpCallStack(target.frame, level.iPriority);
}

void WriteParam(const LogTarget& target, const Level& level, const char* pszFormat, va_list arguments)
{
    OutputSwitches switches;
    if (GetOutputSwitches(target.pCategory->getName(), switches) != 0 || !switches.outputParam)
    {
        return;
    }
    const Message message(pszFormat, arguments);
    target.pCategory->log(level.iPriority, "[ThreadID:%lu] %s - %s", GetCurrentThreadId(), level.pszWord,
                          message.szText);
}

constexpr Level kDebug = {kPriorityDebug, "DEBUG", &WriteLevelAndDump};
constexpr Level kInfo = {kPriorityInfo, "INFO", &WriteLevel};
constexpr Level kWarning = {kPriorityWarn, "WARNING", &WriteLevel};
constexpr Level kError = {kPriorityError, "ERROR", &WriteLevelAndDump};
constexpr Level kFatal = {kPriorityFatal, "FATAL", &WriteFatal};
// At the most urgent priority: the switch decides, not the category's priority.
constexpr Level kParam = {kPriorityFatal, "Param", &WriteParam};

/// What all level functions share: the frame, the filter and the category of the running function in front of the
/// writing. Nothing is written when the thread has no frame or the configuration no category for it.
void WriteMessage(const Level& level, const char* pszFormat, va_list arguments) noexcept
{
    Quietly([&] {
        LogTarget target;
        if (FindLogTarget(target) && target.pCategory != nullptr)
        {
            level.pfnWrite(target, level, pszFormat, arguments);
        }
    });
}

constexpr long kBytesPerLine = 16;
/// Characters of a full line, the terminator among them, with some to spare.
constexpr size_t kLineChars = 60;

/// Writes bytes as hexadecimal digits, a blank between two of them and two blanks in the middle of a full line.
/// @param lCount 1 to 16.
void FormatHexLine(char (&szLine)[kLineChars], const unsigned char* pbyBytes, long lCount)
{
    size_t uiUsed = 0;
    for (long lIndex = 0; lIndex < lCount; ++lIndex)
    {
        const char* const pszGap = lIndex == 0 ? "" : lIndex == kBytesPerLine / 2 ? "  " : " ";
        uiUsed +=
            _snprintf_s(szLine + uiUsed, kLineChars - uiUsed, _TRUNCATE, "%s%02X", pszGap, unsigned{pbyBytes[lIndex]});
    }
}

/// Takes the appenders off all categories and deletes them.
void ShutDownAppenders()
{
    try
    {
        log4cpp::Category::shutdownForced();
    }
    catch (...)
    {
        // There was no memory for the library's list of what it has to delete. Its static destructor would need the
        // same list, and an exception there ends the process: one more user, which never leaves, keeps the destructor
        // from running. The appenders stay, with their files closed.
        alignas(KeptAppenders) static char s_abyStorage[sizeof(KeptAppenders)];
        new (s_abyStorage) KeptAppenders;
        log4cpp::Appender::closeAll();
    }
}

} // namespace

int StartLogging(const char* pszConfigFile) noexcept
{
    const ErrorStateGuard guard;
    try
    {
        const std::string strConfigFile = pszConfigFile != nullptr ? pszConfigFile : "";
        if (strConfigFile.empty())
        {
            // The library would fail to open it. At the module's start its exception costs more than all the rest.
            loggingDisabled = true;
            return 0;
        }
        // The library writes to the standard streams where a configuration says so. The module makes them here, once,
        // and not already at load (support/runtime/LateStreams.cpp).
        static const std::ios_base::Init s_streams;
        LogConfigurator configurator;
        s_bLibraryUsed = true;
        log4cpp::PropertyConfigurator::configure(strConfigFile);
        configurator.configure(strConfigFile);
        logFilter = configurator.getFilter();
        loggingDisabled = false;
    }
    catch (...)
    {
        loggingDisabled = true;
    }
    return 0;
}

void StopLogging() noexcept
{
    if (!s_bLibraryUsed)
    {
        return;
    }
    Quietly([] {
        const bool bWasOn = !loggingDisabled;
        // Off first: a call that comes from now on must not meet a library that is being taken down.
        loggingDisabled = true;
        s_bLibraryUsed = false;
        // Takes the appenders off the categories and deletes them, then the categories themselves; also those of a
        // start that failed half way, whose log file would stay open.
        ShutDownAppenders();
        log4cpp::HierarchyMaintainer::getDefaultMaintainer().deleteAllCategories();
        if (bWasOn)
        {
            FreeThreadNdc();
        }
    });
}

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
#define WRITE_MESSAGE(level)                                                                                           \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!loggingDisabled)                                                                                          \
        {                                                                                                              \
            va_list arguments;                                                                                         \
            va_start(arguments, pszFormat);                                                                            \
            WriteMessage(level, pszFormat, arguments);                                                                 \
            va_end(arguments);                                                                                         \
        }                                                                                                              \
    } while (false)

void LogDebug(const char* pszFormat, ...) noexcept
{
    WRITE_MESSAGE(kDebug);
}

void LogInfo(const char* pszFormat, ...) noexcept
{
    WRITE_MESSAGE(kInfo);
}

void LogWarning(const char* pszFormat, ...) noexcept
{
    WRITE_MESSAGE(kWarning);
}

void LogError(const char* pszFormat, ...) noexcept
{
    WRITE_MESSAGE(kError);
}

void LogFatal(const char* pszFormat, ...) noexcept
{
    WRITE_MESSAGE(kFatal);
}

void LogParam(const char* pszFormat, ...) noexcept
{
    WRITE_MESSAGE(kParam);
}

void LogBufferDump(const char* pszTitle, const void* pBuffer, long lLength, LogFunction pfnLog) noexcept
{
    if (loggingDisabled)
    {
        return;
    }
    Quietly([=] {
        pfnLog(pszTitle);
        const auto uiLowBits = static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pBuffer));
        pfnLog("Address=0X%08X Length=%ld\n", uiLowBits, lLength);
        if (pBuffer == nullptr)
        {
            return;
        }
        const auto* const pbyBytes = static_cast<const unsigned char*>(pBuffer);
        for (long lDone = 0; lDone < lLength; lDone += kBytesPerLine)
        {
            char szLine[kLineChars] = {};
            FormatHexLine(szLine, pbyBytes + lDone, std::min(kBytesPerLine, lLength - lDone));
            pfnLog("%s\n", szLine);
        }
    });
}
