#include "tools/velhost/host/GuardedRoom.h"

#include "tools/velhost/report/CommandError.h"

#include <algorithm>
#include <cstring>

namespace VelHost
{
namespace
{

constexpr size_t kPageBytes = 4096;
constexpr BYTE kCanary = 0xC5;

} // namespace

GuardedRoom::GuardedRoom(size_t cbRoom) : m_cbRoom(cbRoom)
{
    const size_t cbRoomPages = (cbRoom + kPageBytes - 1) / kPageBytes * kPageBytes;
    const size_t cbUsable = cbRoomPages + kPageBytes;
    m_pbyPages = static_cast<BYTE*>(VirtualAlloc(nullptr, cbUsable + kPageBytes, MEM_RESERVE, PAGE_NOACCESS));
    // cppcheck-suppress leakReturnValNotUsed ; it commits pages of the reservation that the class owns
    if (m_pbyPages == nullptr || VirtualAlloc(m_pbyPages, cbUsable, MEM_COMMIT, PAGE_READWRITE) == nullptr)
    {
        const DWORD dwError = GetLastError();
        if (m_pbyPages != nullptr)
        {
            VirtualFree(m_pbyPages, 0, MEM_RELEASE);
        }
        ThrowError("no memory for " + std::to_string(cbRoom) + " bytes", dwError);
    }
    // The room ends where the block of known bytes begins.
    m_pbyRoom = m_pbyPages + cbRoomPages - cbRoom;
    std::memset(m_pbyRoom + cbRoom, kCanary, kPageBytes);
}

GuardedRoom::~GuardedRoom()
{
    VirtualFree(m_pbyPages, 0, MEM_RELEASE);
}

void GuardedRoom::FillWithCanary() noexcept
{
    std::memset(m_pbyRoom, kCanary, m_cbRoom);
}

bool GuardedRoom::WasWritten() const noexcept
{
    return std::any_of(m_pbyRoom, m_pbyRoom + m_cbRoom, [](BYTE byValue) { return byValue != kCanary; });
}

size_t GuardedRoom::OverrunBytes() const noexcept
{
    const BYTE* const pbyBehind = m_pbyRoom + m_cbRoom;
    size_t cbOverrun = kPageBytes;
    while (cbOverrun > 0 && pbyBehind[cbOverrun - 1] == kCanary)
    {
        --cbOverrun;
    }
    return cbOverrun;
}

} // namespace VelHost
