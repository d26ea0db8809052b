#pragma once

#include "state/BaseMutex.h"

#include <memory>

namespace VelUtility
{

/// The cross-process lock of one file, by its path: the mutex's name is the full path in lower case with each backslash
/// replaced by '|'. The file itself is never opened.
class CFileLocker
{
public:
    /// Never lets an exception out; a failed construction leaves an object whose Lock and Unlock return 0.
    /// @param szFilename path of the file, full or relative to the current folder; borrowed.
    explicit CFileLocker(const wchar_t* szFilename) noexcept;
    virtual ~CFileLocker();
    CFileLocker(const CFileLocker&) = delete;
    CFileLocker& operator=(const CFileLocker&) = delete;

    /// @param dwMilliseconds time-out; INFINITE waits without end.
    /// @return 1 with the lock, else 0 (see CBaseMutex::Lock).
    BOOL Lock(DWORD dwMilliseconds);
    /// @return 1 when the lock was given back, else 0.
    BOOL Unlock();

    BOOL bFailed;                       ///< 0 after a good construction; 1 after a failed one and after destruction
    std::unique_ptr<CBaseMutex> pMutex; ///< null after a failed construction
};

/// Holds a file's lock for the length of a scope. It reports nothing: whoever did not get the lock goes on without it.
class CScopeFileLock
{
public:
    /// Waits for the lock without end.
    /// @param pszPath path of the file; borrowed.
    explicit CScopeFileLock(const wchar_t* pszPath);
    ~CScopeFileLock();
    CScopeFileLock(const CScopeFileLock&) = delete;
    CScopeFileLock& operator=(const CScopeFileLock&) = delete;

private:
    CFileLocker m_locker;
};

} // namespace VelUtility
