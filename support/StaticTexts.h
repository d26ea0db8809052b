#pragma once
/// Two static text tables. Nothing in the module reads them; they are kept for the client's programs that use this
/// library.

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
/// and code 5 last; no end marker. Texts at run time are the system's
/// own.
extern const NetworkErrorText kNetworkErrorTexts[kNetworkErrorTextCount];

/// Seven names and the closing null.
inline constexpr std::size_t kPrintEnvironmentCount = 8;

/// The environment names of the print spooler of Windows, closed by a null pointer.
extern const wchar_t* const kPrintEnvironments[kPrintEnvironmentCount];

} // namespace Win32
