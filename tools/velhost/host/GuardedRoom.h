#pragma once

#include <windows.h>

namespace VelHost
{

/// Zeroed room of an exact size for an entry point that is given no length: behind it lies a block of known bytes, and
/// behind that a page that can't be touched. A small overrun is seen by its traces, a large one ends the process.
class GuardedRoom
{
public:
    /// @param cbRoom bytes; may be 0. Throws CommandError when there is no memory.
    explicit GuardedRoom(size_t cbRoom);
    ~GuardedRoom();
    GuardedRoom(const GuardedRoom&) = delete;
    GuardedRoom& operator=(const GuardedRoom&) = delete;

    /// @return the room; never null. Aligned as far as cbRoom is.
    BYTE* Data() const noexcept { return m_pbyRoom; }
    /// @return bytes of the room.
    size_t Size() const noexcept { return m_cbRoom; }

    /// Fills the room with the known bytes, so that WasWritten can tell whether anything arrives.
    void FillWithCanary() noexcept;
    /// @return whether the room differs from what FillWithCanary wrote.
    bool WasWritten() const noexcept;

    /// @return bytes behind the room up to the last one that was changed; 0 when none was.
    size_t OverrunBytes() const noexcept;

private:
    size_t m_cbRoom;
    BYTE* m_pbyPages; ///< owned
    BYTE* m_pbyRoom;
};

} // namespace VelHost
