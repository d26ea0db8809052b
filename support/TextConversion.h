#pragma once

#include <string>

namespace Language
{

/// Converts through the C runtime's current locale, which this module never sets. The result ends at the first NUL.
/// A text that the locale can't represent has no way back: it ends in the C runtime's invalid-parameter handling, which
/// asks the host's own handler, and, when that returns or there is none, ends the process.
std::string ToNarrow(const std::wstring& strWide);

/// The other way round, with the same end for bytes that the locale does not know.
std::wstring ToWide(const std::string& strNarrow);

} // namespace Language
