#include "diag/Log.h"

#include "diag/Quietly.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace
{

constexpr long kBytesPerLine = 16;
/// Characters of a full line, the terminator among them, with room to spare.
constexpr size_t kLineChars = 60;

/// Writes bytes as hexadecimal digits, a blank between two of them and two blanks in the middle of a full line.
/// @param lCount 1 to 16.
void FormatHexLine(char (&szLine)[kLineChars], const unsigned char* pbyBytes, long lCount)
{
    size_t uiUsed = 0;
    for (long lIndex = 0; lIndex < lCount; ++lIndex)
    {
        const char* const pszGap = lIndex == 0 ? "" : lIndex == kBytesPerLine / 2 ? "  " : " ";
        uiUsed +=
            _snprintf_s(szLine + uiUsed, kLineChars - uiUsed, _TRUNCATE, "%s%02X", pszGap, unsigned{pbyBytes[lIndex]});
    }
}

} // namespace

void LogBufferDump(const char* pszTitle, const void* pBuffer, long lLength, LogFunction pfnLog) noexcept
{
    if (loggingDisabled)
    {
        return;
    }
    Quietly([=] {
        pfnLog(pszTitle);
        const auto uiLowBits = static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pBuffer));
        pfnLog("Address=0X%08X Length=%ld\n", uiLowBits, lLength);
        if (pBuffer == nullptr)
        {
            return;
        }
        const auto* const pbyBytes = static_cast<const unsigned char*>(pBuffer);
        for (long lDone = 0; lDone < lLength; lDone += kBytesPerLine)
        {
            char szLine[kLineChars] = {};
            FormatHexLine(szLine, pbyBytes + lDone, std::min(kBytesPerLine, lLength - lDone));
            pfnLog("%s\n", szLine);
        }
    });
}
