#pragma once

#include <string>

namespace Win32
{

/// The file name of a path, with its extension.
std::wstring PathFileNamePart(const std::wstring& strPath);

/// Whether two paths name one file once made full, whatever the case of their letters (by the global locale).
/// Throws Win32Exception when a path can't be made full.
bool PathsEqual(const std::wstring& strFirst, const std::wstring& strSecond);

} // namespace Win32
