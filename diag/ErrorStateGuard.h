#pragma once
/// ErrorStateGuard: keeps a log call from changing the caller's error state.

#include <windows.h>

#include <cstdlib>

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
