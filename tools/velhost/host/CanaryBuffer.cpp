#include "tools/velhost/host/CanaryBuffer.h"

#include "tools/velhost/report/CommandError.h"

#include <algorithm>
#include <cstring>

namespace VelHost
{
namespace
{

constexpr size_t kMemoryPageBytes = 4096;
constexpr BYTE kCanary = 0xC5;

} // namespace

CanaryBuffer::CanaryBuffer(size_t cbSize) : m_cbSize(cbSize)
{
    const size_t cbDataPages = (cbSize + kMemoryPageBytes - 1) / kMemoryPageBytes * kMemoryPageBytes;
    const size_t cbUsable = cbDataPages + kMemoryPageBytes;
    m_pbyPages = static_cast<BYTE*>(VirtualAlloc(nullptr, cbUsable + kMemoryPageBytes, MEM_RESERVE, PAGE_NOACCESS));
    // cppcheck-suppress leakReturnValNotUsed ; it commits pages of the reservation that the class owns
    if (m_pbyPages == nullptr || VirtualAlloc(m_pbyPages, cbUsable, MEM_COMMIT, PAGE_READWRITE) == nullptr)
    {
        const DWORD dwError = GetLastError();
        if (m_pbyPages != nullptr)
        {
            VirtualFree(m_pbyPages, 0, MEM_RELEASE);
        }
        ThrowCommandError("no memory for " + std::to_string(cbSize) + " bytes", dwError);
    }
    // The buffer ends where the block of known bytes begins.
    m_pbyData = m_pbyPages + cbDataPages - cbSize;
    std::memset(m_pbyData + cbSize, kCanary, kMemoryPageBytes);
}

CanaryBuffer::~CanaryBuffer()
{
    VirtualFree(m_pbyPages, 0, MEM_RELEASE);
}

void CanaryBuffer::FillWithCanary() noexcept
{
    std::memset(m_pbyData, kCanary, m_cbSize);
}

bool CanaryBuffer::WasWritten() const noexcept
{
    return std::any_of(m_pbyData, m_pbyData + m_cbSize, [](BYTE byValue) { return byValue != kCanary; });
}

size_t CanaryBuffer::OverrunBytes() const noexcept
{
    const BYTE* const pbyBehind = m_pbyData + m_cbSize;
    size_t cbOverrun = kMemoryPageBytes;
    while (cbOverrun > 0 && pbyBehind[cbOverrun - 1] == kCanary)
    {
        --cbOverrun;
    }
    return cbOverrun;
}

} // namespace VelHost
