#include "tools/velhost/sheet/WindowPicture.h"

#include "support/ScopeGuard.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Utf8.h"

#include <objidl.h>
#include <gdiplus.h>

#include <vector>

namespace VelHost
{
namespace
{

CLSID PngEncoder()
{
    UINT uiCount = 0;
    UINT cbRoom = 0;
    Gdiplus::GetImageEncodersSize(&uiCount, &cbRoom);
    std::vector<BYTE> room(cbRoom);
    auto* const pEncoders = reinterpret_cast<Gdiplus::ImageCodecInfo*>(room.data());
    if (cbRoom != 0 && Gdiplus::GetImageEncoders(uiCount, cbRoom, pEncoders) == Gdiplus::Ok)
    {
        for (UINT i = 0; i < uiCount; ++i)
        {
            if (pEncoders[i].FormatID == Gdiplus::ImageFormatPNG)
            {
                return pEncoders[i].Clsid;
            }
        }
    }
    throw CommandError("the platform can't write PNG files");
}

/// Copies a window's pixels. @return a bitmap that the caller owns; null on failure.
HBITMAP CopyWindow(HWND hWindow)
{
    RECT place = {};
    GetWindowRect(hWindow, &place);
    const int iWidth = place.right - place.left;
    const int iHeight = place.bottom - place.top;
    const HDC hFrom = GetWindowDC(hWindow);
    const HDC hTo = CreateCompatibleDC(hFrom);
    const HBITMAP hPicture = CreateCompatibleBitmap(hFrom, iWidth, iHeight);
    const HGDIOBJ hOld = SelectObject(hTo, hPicture);
    BitBlt(hTo, 0, 0, iWidth, iHeight, hFrom, 0, 0, SRCCOPY);
    SelectObject(hTo, hOld);
    DeleteDC(hTo);
    ReleaseDC(hWindow, hFrom);
    return hPicture;
}

} // namespace

void WriteWindowPicture(HWND hWindow, const std::wstring& strFile)
{
    const Gdiplus::GdiplusStartupInput input;
    ULONG_PTR ulToken = 0;
    if (Gdiplus::GdiplusStartup(&ulToken, &input, nullptr) != Gdiplus::Ok)
    {
        throw CommandError("the platform's picture library did not start");
    }
    const Language::scope_guard shutDown([ulToken] { Gdiplus::GdiplusShutdown(ulToken); });
    const HBITMAP hPicture = CopyWindow(hWindow);
    const Language::scope_guard deletePicture([hPicture] { DeleteObject(hPicture); });
    const CLSID encoder = PngEncoder();
    Gdiplus::Bitmap bitmap(hPicture, nullptr);
    if (bitmap.Save(strFile.c_str(), &encoder, nullptr) != Gdiplus::Ok)
    {
        throw CommandError("can't write " + ToUtf8(strFile));
    }
}

} // namespace VelHost
