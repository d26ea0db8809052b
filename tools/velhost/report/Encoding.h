#pragma once
/// Texts of Windows (UTF-16) and the forms in which they come and go: UTF-8 for what this program reads and prints, the
/// system's code page for the module's log and its configuration.

#include <optional>
#include <string>
#include <string_view>

namespace VelHost
{

/// UTF-16 to UTF-8; what is not valid becomes U+FFFD.
std::string ToUtf8(std::wstring_view strText);
/// UTF-8 to UTF-16; what is not valid becomes U+FFFD.
std::wstring FromUtf8(std::string_view strText);

/// UTF-16 to the system's code page.
/// @return nothing for a text that is empty or has a character that the code page lacks.
std::optional<std::string> ToCodePage(std::wstring_view strText);
/// The system's code page to UTF-16.
std::wstring FromCodePage(std::string_view strText);

/// A text in a cell of fixed width, which need not be terminated.
/// @param cchCell wide characters of the cell.
std::wstring CellText(const wchar_t* pszCell, size_t cchCell);

} // namespace VelHost
