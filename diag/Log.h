#pragma once
/// The log call surface: what every other subsystem calls to trace a function and to write a log line.
///
/// Rules that hold for every call here, logging on or off:
///  - it leaves the thread's last error, errno and _doserrno as it found them;
///  - no exception leaves it;
///  - it is safe before StartLogging has succeeded and after StopLogging, on any thread.
///
/// Formats are msvcrt's (%S for wide text, %p, %I64u), and everything is narrow.

#include "diag/CallStack.h"
#include "diag/LogRules.h"

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

/// Prints bytes through a level function: the title, the address and length, then lines of 16 bytes. No code of this
/// module calls it: it is kept for whoever must see a record's bytes while looking for a fault.
/// @param pBuffer  borrowed; may be null.
/// @param lLength  bytes at pBuffer.
void LogBufferDump(const char* pszTitle, const void* pBuffer, long lLength, LogFunction pfnLog) noexcept;
