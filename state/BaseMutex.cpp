#include "state/BaseMutex.h"

#include "diag/LogSite.h"

VELUI_SOURCE_MODULE(".\\BaseMutex");

namespace VelUtility
{

CBaseMutex::CBaseMutex(BOOL bInitialOwner, const wchar_t* pszName)
    : hMutex(CreateMutexW(nullptr, bInitialOwner, pszName))
{
    TRACE_FUNCTION("VelUtility::CBaseMutex::CBaseMutex");
    if (hMutex == nullptr)
    {
        LOG_ERROR("GetLastError() = %u", static_cast<unsigned>(GetLastError()));
    }
}

CBaseMutex::~CBaseMutex()
{
    TRACE_FUNCTION("VelUtility::CBaseMutex::~CBaseMutex");
    if (hMutex != nullptr)
    {
        // Required: a second release, which fails in silence when Unlock has run.
        ReleaseMutex(hMutex);
        CloseHandle(hMutex);
    }
}

BOOL CBaseMutex::Lock(DWORD dwMilliseconds)
{
    TRACE_FUNCTION("VelUtility::CBaseMutex::Lock");
    // Required: WAIT_ABANDONED counts as failure too.
    return WaitForSingleObject(hMutex, dwMilliseconds) == WAIT_OBJECT_0 ? 1 : 0;
}

BOOL CBaseMutex::Unlock()
{
    TRACE_FUNCTION("VelUtility::CBaseMutex::Unlock");
    return ReleaseMutex(hMutex);
}

} // namespace VelUtility
