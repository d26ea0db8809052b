#pragma once

#include <string>

namespace Language
{

/// Converts through the C runtime's current locale, which this module never sets. The result ends at the first NUL.
/// A text that the locale can't represent has no way back: the process ends with the C runtime's abort.
std::string ToNarrow(const std::wstring& strWide);

/// The other way round, with the same end for bytes that the locale does not know.
std::wstring ToWide(const std::string& strNarrow);

} // namespace Language
