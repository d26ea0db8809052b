#include "diag/ThreadNdc.h"

#include <windows.h>

#include <log4cpp/NDC.hh>

#include <atomic>

namespace
{

/// Thread-local places that a process can have: the platform's 64 and 1,024 more.
constexpr DWORD kTlsPlaces = TLS_MINIMUM_AVAILABLE + 1024;

/// Where log4cpp keeps its NDC on every thread; kTlsPlaces until it was found.
std::atomic<DWORD> s_dwPlace{kTlsPlaces};

bool HoldsAt(DWORD dwPlace, const void* pObject)
{
    return dwPlace < kTlsPlaces && TlsGetValue(dwPlace) == pObject;
}

/// @return the thread-local place that holds an object on this thread, or kTlsPlaces when none does.
DWORD FindPlace(const void* pObject)
{
    DWORD dwPlace = 0;
    while (dwPlace < kTlsPlaces && !HoldsAt(dwPlace, pObject))
    {
        ++dwPlace;
    }
    return dwPlace;
}

} // namespace

void FreeThreadNdc()
{
    log4cpp::NDC* const pNdc = &log4cpp::NDC::getNDC();
    pNdc->clear();
    if (!HoldsAt(s_dwPlace, pNdc))
    {
        s_dwPlace = FindPlace(pNdc);
    }
    // A library that keeps it elsewhere is left alone: an empty NDC is a few words.
    if (HoldsAt(s_dwPlace, pNdc) && TlsSetValue(s_dwPlace, nullptr))
    {
        delete pNdc;
    }
}
