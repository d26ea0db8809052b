#pragma once
/// The log call surface: what every other subsystem calls to trace a function and to write a log line.
///
/// Rules that hold for every call here, logging on or off:
///  - it leaves the thread's last error, errno and _doserrno as it found them;
///  - no exception leaves it;
///  - it is safe before StartLogging has succeeded and after StopLogging, on any thread.
///
/// Formats are msvcrt's (%S for wide text, %p, %I64u), and everything is narrow.

#include <string>

/// The tag that every trace scope of this module carries, and the name of its log category.
inline constexpr char kModuleTag[] = "VelUI_dll";

/// True while logging is off: from load until a configuration has been read, and for the whole life of a process that
/// has none. Written only by StartLogging and StopLogging, under the loader's lock; read without a lock.
extern bool loggingDisabled;
static_assert(sizeof(bool) == 1, "loggingDisabled is one byte");

/// Priorities, in log4cpp's numbers: the lower, the more urgent.
enum LogPriority : int
{
    kPriorityFatal = 0,
    kPriorityEmerg = 0,
    kPriorityAlert = 100,
    kPriorityCrit = 200,
    kPriorityError = 300,
    kPriorityWarn = 400,
    kPriorityNotice = 500,
    kPriorityInfo = 600,
    kPriorityDebug = 700,
};

/// Reads the log configuration and switches logging on.
/// @param pszConfigFile full name of the configuration file in the system's code page; may be empty or null, and then,
///                      as with any file that can't be used, logging stays off.
/// @return 0 always.
int StartLogging(const char* pszConfigFile) noexcept;

/// Switches logging off for good. With logging off already nothing happens to the library underneath.
void StopLogging() noexcept;

/// Whether the category of the running function takes messages of a priority; asked only while logging is on.
/// @return 1 or 0.
int IsPriorityEnabled(int iPriority) noexcept;

/// The level predicates: 1 when a message of the level would be taken, else 0. While logging is off each costs a load
/// and a branch.
inline int IsDebugEnabled() noexcept
{
    return loggingDisabled ? 0 : IsPriorityEnabled(kPriorityDebug);
}
inline int IsInfoEnabled() noexcept
{
    return loggingDisabled ? 0 : IsPriorityEnabled(kPriorityInfo);
}
inline int IsNoticeEnabled() noexcept
{
    return loggingDisabled ? 0 : IsPriorityEnabled(kPriorityNotice);
}
inline int IsWarnEnabled() noexcept
{
    return loggingDisabled ? 0 : IsPriorityEnabled(kPriorityWarn);
}
inline int IsErrorEnabled() noexcept
{
    return loggingDisabled ? 0 : IsPriorityEnabled(kPriorityError);
}
inline int IsCritEnabled() noexcept
{
    return loggingDisabled ? 0 : IsPriorityEnabled(kPriorityCrit);
}
inline int IsAlertEnabled() noexcept
{
    return loggingDisabled ? 0 : IsPriorityEnabled(kPriorityAlert);
}
inline int IsEmergEnabled() noexcept
{
    return loggingDisabled ? 0 : IsPriorityEnabled(kPriorityEmerg);
}
inline int IsFatalEnabled() noexcept
{
    return loggingDisabled ? 0 : IsPriorityEnabled(kPriorityFatal);
}

/// Lets the compiler check a call's arguments against its format, as msvcrt reads it.
#define VELUI_LOG_FORMAT __attribute__((format(ms_printf, 1, 2)))

/// The level functions: each formats its arguments and writes one message of its level.
void LogDebug(const char* pszFormat, ...) noexcept VELUI_LOG_FORMAT;
void LogInfo(const char* pszFormat, ...) noexcept VELUI_LOG_FORMAT;
void LogWarning(const char* pszFormat, ...) noexcept VELUI_LOG_FORMAT;
void LogError(const char* pszFormat, ...) noexcept VELUI_LOG_FORMAT;
void LogFatal(const char* pszFormat, ...) noexcept VELUI_LOG_FORMAT;
/// Writes the text of a function's arguments or result. It filters by itself, so no predicate stands in front of it.
void LogParam(const char* pszFormat, ...) noexcept VELUI_LOG_FORMAT;

/// The shape of a level function.
using LogFunction = void (*)(const char* pszFormat, ...) noexcept;

/// Prints bytes through a level function: the title, the address and length, then lines of 16 bytes.
/// @param pBuffer  borrowed; may be null.
/// @param lLength  bytes at pBuffer.
void LogBufferDump(const char* pszTitle, const void* pBuffer, long lLength, LogFunction pfnLog) noexcept;

/// Opens and closes a frame of the thread's call stack; called only while logging is on.
void PushTraceFrame(const char* pszModuleTag, const char* pszClassName, const char* pszFunctionName) noexcept;
void PopTraceFrame() noexcept;

/// Marks the entry of a function. Each string may be null, which counts as empty.
inline void TraceFunctionBegin(const char* pszModuleTag, const char* pszClassName, const char* pszFunctionName) noexcept
{
    if (!loggingDisabled)
    {
        PushTraceFrame(pszModuleTag, pszClassName, pszFunctionName);
    }
}

/// Marks the end of the function that was entered last.
inline void TraceFunctionEnd() noexcept
{
    if (!loggingDisabled)
    {
        PopTraceFrame();
    }
}

/// Keeps TraceFunctionBegin and TraceFunctionEnd paired on every way out of a scope, an exception included.
class TraceScope
{
public:
    /// @param pszFunctionName literal; the scope's name in the call stack.
    explicit TraceScope(const char* pszFunctionName) noexcept
    {
        TraceFunctionBegin(kModuleTag, nullptr, pszFunctionName);
    }
    ~TraceScope() { TraceFunctionEnd(); }
    TraceScope(const TraceScope&) = delete;
    TraceScope& operator=(const TraceScope&) = delete;
};
