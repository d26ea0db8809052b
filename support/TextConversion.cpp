#include "support/TextConversion.h"

#include <windows.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace Language
{

namespace
{

/// Ends as a call of the C runtime with an invalid parameter does: the handler that the host has set for that is asked
/// first, and may end the process in its own way. Behind a handler that returns, and without one, stands the abort.
[[noreturn]] void EndWithInvalidParameter()
{
    using InvalidParameter = void __cdecl(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t);
    // The compiler's import libraries lack the function.
    if (auto* const pfnInvalidParameter = reinterpret_cast<InvalidParameter*>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"msvcrt"), "_invalid_parameter"))))
    {
        pfnInvalidParameter(nullptr, nullptr, nullptr, 0, 0);
    }
    std::abort();
}

constexpr size_t kLengthLimit = 0x7FFFFFFF;
constexpr size_t kCannotConvert = static_cast<size_t>(-1);

/// Converts in two passes: the first tells the length, the second fills a zeroed buffer of one more.
template <typename To, typename From>
std::basic_string<To> Convert(size_t (*pfnConvert)(To*, const From*, size_t), const std::basic_string<From>& strFrom)
{
    const size_t uiLength = pfnConvert(nullptr, strFrom.c_str(), kLengthLimit);
    std::vector<To> buffer(uiLength + 1); // empty when the length is kCannotConvert
    // Required: no recovery. The access to the empty buffer is out of its bounds, which is an invalid parameter: a path
    // that can't be told must not be told wrongly.
    if (uiLength == kCannotConvert || pfnConvert(buffer.data(), strFrom.c_str(), uiLength) == kCannotConvert)
    {
        EndWithInvalidParameter();
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
