#pragma once

#include <cstddef>

namespace Win32
{

/// Seven names and the closing null.
inline constexpr std::size_t kPrintEnvironmentCount = 8;

/// The environment names of the platform's print spooler, closed by a null pointer. Constant data that nothing in the
/// module reads.
extern const wchar_t* const kPrintEnvironments[kPrintEnvironmentCount];

} // namespace Win32
