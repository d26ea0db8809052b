#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace VelHost
{

/// UTF-16 to UTF-8; what is not valid becomes U+FFFD.
std::string ToUtf8(std::wstring_view strText);
/// UTF-8 to UTF-16; what is not valid becomes U+FFFD.
std::wstring FromUtf8(std::string_view strText);

/// A text in a cell of fixed width, which need not be terminated.
/// @param cchCell wide characters of the cell.
std::wstring CellText(const wchar_t* pszCell, size_t cchCell);

/// @return the process's arguments in UTF-8, the program's name first.
std::vector<std::string> CommandLineUtf8();

} // namespace VelHost
