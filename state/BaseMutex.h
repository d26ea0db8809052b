#pragma once

#include <windows.h>

namespace VelUtility
{

/// A named system mutex. Recursive for the thread that owns it.
class CBaseMutex
{
public:
    /// Creates or opens the mutex by name in the session's own namespace.
    /// @param bInitialOwner non-zero asks for ownership at once.
    /// @param pszName       wide text; borrowed.
    /// When Windows refuses, a line is logged and the object exists without a mutex.
    CBaseMutex(BOOL bInitialOwner, const wchar_t* pszName);
    /// Releases and closes the mutex.
    virtual ~CBaseMutex();
    CBaseMutex(const CBaseMutex&) = delete;
    CBaseMutex& operator=(const CBaseMutex&) = delete;

    /// Waits for ownership.
    /// @param dwMilliseconds time-out; INFINITE waits without end.
    /// @return 1 when the wait ended with ownership in the ordinary way; 0 otherwise, also after an owner that ended
    ///         without releasing, although the caller then owns the mutex.
    BOOL Lock(DWORD dwMilliseconds);
    /// @return what ReleaseMutex returns: 0 when the caller isn't the owner.
    BOOL Unlock();

    HANDLE hMutex; ///< null when creation failed
};

} // namespace VelUtility
