#pragma once

#include <windows.h>

#include <cstddef>

/// The number of the last of 16 new handles, which take the first free places of the process's table. It grows when a
/// handle is lost, also one that took a later free place than the first.
inline size_t NextHandle()
{
    HANDLE handles[16];
    for (HANDLE& hEvent : handles)
    {
        hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    }
    for (const HANDLE hEvent : handles)
    {
        CloseHandle(hEvent);
    }
    return reinterpret_cast<size_t>(handles[15]);
}
