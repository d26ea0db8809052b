#include "state/BaseMutex.h"

#include "diag/LogSite.h"

VELUI_SOURCE_MODULE(".\\BaseMutex");

namespace VelUtility
{

CBaseMutex::CBaseMutex(BOOL bInitialOwner, const wchar_t* pszName) : hMutex(nullptr)
{
    const FunctionScope scope("VelUtility::CBaseMutex::CBaseMutex");
    hMutex = CreateMutexW(nullptr, bInitialOwner, pszName);
    if (hMutex == nullptr)
    {
        LOG_ERROR("GetLastError() = %u", static_cast<unsigned>(GetLastError()));
    }
}

CBaseMutex::~CBaseMutex()
{
    const FunctionScope scope("VelUtility::CBaseMutex::~CBaseMutex");
    if (hMutex != nullptr)
    {
        // Required: a second release, which fails in silence when Unlock has run. It gives back what a caller that left
        // by an exception still held.
        ReleaseMutex(hMutex);
        CloseHandle(hMutex);
    }
}

BOOL CBaseMutex::Lock(DWORD dwMilliseconds)
{
    const FunctionScope scope("VelUtility::CBaseMutex::Lock");
    // Required: WAIT_ABANDONED counts as failure too, although the caller then owns the mutex: the file may have been
    // left half written.
    return WaitForSingleObject(hMutex, dwMilliseconds) == WAIT_OBJECT_0 ? 1 : 0;
}

BOOL CBaseMutex::Unlock()
{
    const FunctionScope scope("VelUtility::CBaseMutex::Unlock");
    return ReleaseMutex(hMutex);
}

} // namespace VelUtility
