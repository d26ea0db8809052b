#pragma once

#include <windows.h>

#include <cstring>

/// Room for one buffer at a time, of any size up to kMost, whose end lies at a page that can't be touched.
class GuardedArena
{
public:
    static constexpr size_t kMost = 0x21000; ///< bytes; two 16-bit sizes and more

    GuardedArena()
    {
        constexpr size_t kPage = 4096;
        m_pbyBase = static_cast<BYTE*>(VirtualAlloc(nullptr, kMost + kPage, MEM_RESERVE, PAGE_NOACCESS));
        VirtualAlloc(m_pbyBase, kMost, MEM_COMMIT, PAGE_READWRITE);
    }
    ~GuardedArena() { VirtualFree(m_pbyBase, 0, MEM_RELEASE); }
    GuardedArena(const GuardedArena&) = delete;
    GuardedArena& operator=(const GuardedArena&) = delete;

    /// The buffer of a size; what an earlier one held is still in it.
    BYTE* Of(size_t cbSize) const { return m_pbyBase + kMost - cbSize; }

private:
    BYTE* m_pbyBase;
};
