#include "support/TextConversion.h"

#include <cstdlib>
#include <vector>

namespace Language
{

namespace
{

constexpr size_t kLengthLimit = 0x7FFFFFFF;
constexpr size_t kCannotConvert = static_cast<size_t>(-1);

/// Converts in two passes: the first tells the length, the second fills a zeroed buffer of one more.
template <typename To, typename From>
std::basic_string<To> Convert(size_t (*pfnConvert)(To*, const From*, size_t), const std::basic_string<From>& strFrom)
{
    const size_t uiLength = pfnConvert(nullptr, strFrom.c_str(), kLengthLimit);
    std::vector<To> buffer(uiLength + 1); // empty when the length is kCannotConvert
    // Required: no recovery. The access to the empty buffer is out of its bounds, which ends the process: a path that
    // can't be told must not be told wrongly.
    if (uiLength == kCannotConvert || pfnConvert(buffer.data(), strFrom.c_str(), uiLength) == kCannotConvert)
    {
        std::abort();
    }
    return buffer.data();
}

} // namespace

std::string ToNarrow(const std::wstring& strWide)
{
    return Convert<char, wchar_t>(&wcstombs, strWide);
}

std::wstring ToWide(const std::string& strNarrow)
{
    return Convert<wchar_t, char>(&mbstowcs, strNarrow);
}

} // namespace Language
