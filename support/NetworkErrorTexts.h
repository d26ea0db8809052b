#pragma once

#include <windows.h>

#include <cstddef>

namespace Win32
{

/// The text of one network-management error code.
struct NetworkErrorText
{
    DWORD code;
    const wchar_t* text;
};

inline constexpr std::size_t kNetworkErrorTextCount = 311;

/// Code 0 first, then the published NERR_ codes (lmerr.h, base 2100) in rising order with that header's descriptions,
/// and code 5 last; no end marker. Constant data that nothing in the module reads: texts at run time are the system's.
extern const NetworkErrorText kNetworkErrorTexts[kNetworkErrorTextCount];

} // namespace Win32
