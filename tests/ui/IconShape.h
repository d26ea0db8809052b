#pragma once
/// What can be told of an icon's drawing from its pixels.

#include <windows.h>

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <vector>

/// Width and height of what is drawn in an icon of 32 bits a pixel: of all that is not transparent.
inline SIZE DrawnSize(HICON hIcon)
{
    ICONINFO info = {};
    REQUIRE(GetIconInfo(hIcon, &info));
    BITMAP bitmap = {};
    REQUIRE(GetObjectW(info.hbmColor, sizeof(bitmap), &bitmap) != 0);
    BITMAPINFO format = {};
    format.bmiHeader.biSize = sizeof(format.bmiHeader);
    format.bmiHeader.biWidth = bitmap.bmWidth;
    format.bmiHeader.biHeight = -bitmap.bmHeight;
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 32;
    std::vector<DWORD> pixels(static_cast<size_t>(bitmap.bmWidth) * bitmap.bmHeight);
    const HDC hDC = CreateCompatibleDC(nullptr);
    CHECK(GetDIBits(hDC, info.hbmColor, 0, bitmap.bmHeight, pixels.data(), &format, DIB_RGB_COLORS) == bitmap.bmHeight);
    DeleteDC(hDC);
    DeleteObject(info.hbmColor);
    DeleteObject(info.hbmMask);
    RECT drawn = {bitmap.bmWidth, bitmap.bmHeight, 0, 0};
    for (LONG y = 0; y < bitmap.bmHeight; ++y)
    {
        for (LONG x = 0; x < bitmap.bmWidth; ++x)
        {
            if (pixels[static_cast<size_t>(y) * bitmap.bmWidth + x] >> 24 != 0) // alpha
            {
                drawn = {std::min(drawn.left, x), std::min(drawn.top, y), std::max(drawn.right, x + 1),
                         std::max(drawn.bottom, y + 1)};
            }
        }
    }
    REQUIRE(drawn.right > drawn.left);
    return {drawn.right - drawn.left, drawn.bottom - drawn.top};
}
