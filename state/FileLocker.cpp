#include "state/FileLocker.h"

#include "diag/LogSite.h"

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <new>
#include <stdexcept>

VELUI_SOURCE_MODULE(".\\FileLocker");

namespace VelUtility
{

namespace
{

constexpr size_t kPathUnits = 260;

// Required: a constructor that fails throws, inside itself, and keeps the exception. Both failures meet in one handler
// with what can really be thrown in between, and leave the same object behind.
[[noreturn]] void ThrowLockerFailure()
{
    throw std::runtime_error("CFileLocker");
}

} // namespace

CFileLocker::CFileLocker(const wchar_t* szFilename) noexcept : bFailed(0), pMutex(nullptr)
{
    const FunctionScope scope("VelUtility::CFileLocker::CFileLocker");
    try
    {
        if (szFilename == nullptr)
        {
            LOG_ERROR("szFilename = 0x%08X", LowBits(szFilename));
            ThrowLockerFailure();
        }
        wchar_t szName[kPathUnits] = {};
        // A path that does not fit leaves the name empty, which is no name for a lock.
        if (_wfullpath(szName, szFilename, kPathUnits) == nullptr)
        {
            szName[0] = L'\0';
        }
        _wcslwr(szName);
        std::replace(szName, szName + wcslen(szName), L'\\', L'|');
        if (szName[0] == L'\0')
        {
            LOG_ERROR("szName = %S", szName);
            ThrowLockerFailure();
        }
        pMutex.reset(new (std::nothrow) CBaseMutex(FALSE, szName));
    }
    catch (...)
    {
        bFailed = 1;
        pMutex = nullptr;
    }
}

CFileLocker::~CFileLocker()
{
    const FunctionScope scope("VelUtility::CFileLocker::~CFileLocker");
    pMutex.reset();
    bFailed = 1;
}

BOOL CFileLocker::Lock(DWORD dwMilliseconds)
{
    const FunctionScope scope("VelUtility::CFileLocker::Lock");
    return pMutex ? pMutex->Lock(dwMilliseconds) : 0;
}

BOOL CFileLocker::Unlock()
{
    const FunctionScope scope("VelUtility::CFileLocker::Unlock");
    return pMutex ? pMutex->Unlock() : 0;
}

CScopeFileLock::CScopeFileLock(const wchar_t* pszPath) : m_locker(pszPath)
{
    const FunctionScope scope("VelUtility::CScopeFileLock::CScopeFileLock");
    // Required: the result isn't looked at. A lock that can't be had never stops the work that it guards: a person
    // would rather print from a file that is being written than not at all.
    m_locker.Lock(INFINITE);
}

CScopeFileLock::~CScopeFileLock()
{
    const FunctionScope scope("VelUtility::CScopeFileLock::~CScopeFileLock");
    m_locker.Unlock(); // Required: nor here; without the lock there is nothing to give back
}

} // namespace VelUtility
