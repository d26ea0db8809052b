#pragma once

#include <windows.h>

#include <cstddef>
#include <malloc.h>

/// Bytes that Wine 10's heap may take for stocks of its own while a program repeats itself.
inline constexpr size_t kHeapsStock = 128 * 1024;

/// Bytes of a heap that are in use.
inline size_t HeapInUse(HANDLE hHeap)
{
    size_t cbUsed = 0;
    PROCESS_HEAP_ENTRY entry = {};
    HeapLock(hHeap);
    while (HeapWalk(hHeap, &entry))
    {
        cbUsed += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
    }
    HeapUnlock(hHeap);
    return cbUsed;
}

/// The same for the heap that the C runtime gives the module and the tests their memory from.
inline size_t HeapInUse()
{
    return HeapInUse(reinterpret_cast<HANDLE>(_get_heap_handle()));
}
