#pragma once
/// The clock of the bench and of the programs that it starts.

#include <windows.h>

/// Nanoseconds since some moment.
inline double NowNanoseconds()
{
    LARGE_INTEGER frequency;
    LARGE_INTEGER now;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&now);
    return static_cast<double>(now.QuadPart) * 1e9 / static_cast<double>(frequency.QuadPart);
}
