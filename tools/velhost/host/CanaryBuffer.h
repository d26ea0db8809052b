#pragma once
/// A buffer that tells when more was written than it holds.

#include <windows.h>

namespace VelHost
{

/// Zeroed buffer of an exact size for an entry point that is given no length: behind it lies a block of known bytes,
/// and behind that a page that can't be touched. A small overrun is seen by its traces, a large one ends the process.
class CanaryBuffer
{
public:
    /// @param cbSize bytes; may be 0. Throws CommandError when there is no memory.
    explicit CanaryBuffer(size_t cbSize);
    ~CanaryBuffer();
    CanaryBuffer(const CanaryBuffer&) = delete;
    CanaryBuffer& operator=(const CanaryBuffer&) = delete;

    /// @return the buffer; never null. Aligned as far as its size is.
    BYTE* Data() const noexcept { return m_pbyData; }
    /// @return bytes of the buffer.
    size_t Size() const noexcept { return m_cbSize; }

    /// Fills the buffer with the known bytes, so that WasWritten can tell whether anything arrives.
    void FillWithCanary() noexcept;
    /// @return whether the buffer differs from what FillWithCanary wrote.
    bool WasWritten() const noexcept;

    /// @return bytes behind the buffer up to the last one that was changed; 0 when none was.
    size_t OverrunBytes() const noexcept;

private:
    size_t m_cbSize;
    BYTE* m_pbyPages; ///< owned
    BYTE* m_pbyData;
};

} // namespace VelHost
