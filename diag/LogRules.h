#pragma once
/// What every call of the log surface rests on: the switch, the priorities, and the two rules that hold for each call.

#include <windows.h>

#include <cerrno>
#include <cstdlib>

/// The tag that every trace scope of this module carries, and the name of its log category.
inline constexpr char kModuleTag[] = "VelUI_dll";

/// True while logging is off: from load until a configuration has been read, and for the whole life of a process that
/// has none. Written only by StartLogging and StopLogging, under the loader's lock; read without a lock.
inline bool loggingDisabled = true;
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

/// Saves the thread's last error, errno and _doserrno, and restores them in the same order when its scope ends.
class ErrorStateGuard
{
public:
    ErrorStateGuard() noexcept : m_dwLastError(GetLastError()), m_iErrno(errno), m_ulDosErrno(_doserrno) {}
    ~ErrorStateGuard()
    {
        SetLastError(m_dwLastError);
        errno = m_iErrno;
        _doserrno = m_ulDosErrno;
    }
    ErrorStateGuard(const ErrorStateGuard&) = delete;
    ErrorStateGuard& operator=(const ErrorStateGuard&) = delete;

private:
    DWORD m_dwLastError;
    int m_iErrno;
    unsigned long m_ulDosErrno;
};

/// Runs work so that it leaves the caller's error state alone and lets no exception out. An exception ends the work
/// without a word: logging must never be the reason for a failure. A hardware fault is no exception and passes through.
template <typename Work>
void Quietly(Work work) noexcept
{
    const ErrorStateGuard guard;
    try
    {
        work();
    }
    catch (...)
    {}
}
