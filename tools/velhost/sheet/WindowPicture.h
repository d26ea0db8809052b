#pragma once

#include <windows.h>

#include <string>

namespace VelHost
{

/// Saves what a visible window shows, frame included, as a PNG file, a pixel for a pixel. Throws CommandError on
/// failure.
void WriteWindowPicture(HWND hWindow, const std::wstring& strFile);

} // namespace VelHost
