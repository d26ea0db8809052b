#pragma once
/// What a fresh process measures and tells the bench that started it, through memory that both see.

#include "bench/Clock.h"

#include <windows.h>

#include <psapi.h>

/// The figures of one process.
struct FreshReport
{
    double dNanoseconds; ///< what the subject took; 0 when it did not do its work
    double dPrivateKiB;  ///< the process's own memory behind it
};

/// KiB of this process's own memory.
inline double PrivateKiB()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return static_cast<double>(counters.PagefileUsage) / 1024;
}

/// Times one call and tells it.
/// @param pszReport the memory's name, of which the bench has made it.
/// @param subject   does what is timed; whether it did its work.
/// @return the program's exit code.
template <typename Subject>
int TellFigures(const wchar_t* pszReport, Subject subject)
{
    const HANDLE hMapping = OpenFileMappingW(FILE_MAP_WRITE, FALSE, pszReport);
    auto* const pReport = static_cast<FreshReport*>(MapViewOfFile(hMapping, FILE_MAP_WRITE, 0, 0, sizeof(FreshReport)));
    if (pReport == nullptr)
    {
        return 2;
    }
    const double dStart = NowNanoseconds();
    const bool bDone = subject();
    const double dTime = NowNanoseconds() - dStart;
    *pReport = {bDone ? dTime : 0, PrivateKiB()};
    return 0;
}

/// Puts the bench's client in the place of HKEY_LOCAL_MACHINE.
/// @param pszView below HKEY_CURRENT_USER.
inline bool TakeView(const wchar_t* pszView)
{
    HKEY hView = nullptr;
    return RegOpenKeyExW(HKEY_CURRENT_USER, pszView, 0, KEY_ALL_ACCESS, &hView) == ERROR_SUCCESS &&
           RegOverridePredefKey(HKEY_LOCAL_MACHINE, hView) == ERROR_SUCCESS;
}
