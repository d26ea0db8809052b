#pragma once

#include <windows.h>

#include <cstddef>

/// The number that a new handle gets: the first free place of the process's table. It grows when a handle is lost.
inline size_t NextHandle()
{
    const HANDLE hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    CloseHandle(hEvent);
    return reinterpret_cast<size_t>(hEvent);
}
