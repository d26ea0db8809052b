#pragma once
/// A buffer whose end lies at a page that can't be touched.

#include <windows.h>

#include <cstring>

/// Bytes that end exactly at a guard page: one byte read or written past them faults. In front of them the rest of the
/// page holds a pattern, which Intact checks.
class GuardedBuffer
{
public:
    /// @param cbSize bytes.
    /// @param byFill what every byte starts as.
    explicit GuardedBuffer(size_t cbSize, BYTE byFill = 0xCD) : m_cbSize(cbSize)
    {
        m_cbPages = (cbSize + kPage - 1) / kPage * kPage + kPage;
        m_pbyBase = static_cast<BYTE*>(VirtualAlloc(nullptr, m_cbPages + kPage, MEM_RESERVE, PAGE_NOACCESS));
        VirtualAlloc(m_pbyBase, m_cbPages, MEM_COMMIT, PAGE_READWRITE);
        std::memset(m_pbyBase, kPattern, m_cbPages);
        std::memset(Get(), byFill, cbSize);
    }
    ~GuardedBuffer() { VirtualFree(m_pbyBase, 0, MEM_RELEASE); }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    BYTE* Get() const { return m_pbyBase + m_cbPages - m_cbSize; }
    size_t Size() const { return m_cbSize; }
    template <typename T>
    T* As() const
    {
        return reinterpret_cast<T*>(Get());
    }
    /// Whether nothing was written in front of the buffer.
    bool Intact() const
    {
        for (const BYTE* p = m_pbyBase; p < Get(); ++p)
        {
            if (*p != kPattern)
            {
                return false;
            }
        }
        return true;
    }

private:
    static constexpr size_t kPage = 4096;
    static constexpr BYTE kPattern = 0xA5;
    size_t m_cbSize;
    size_t m_cbPages;
    BYTE* m_pbyBase;
};
