// The about page: its texts stand in its dialog; its picture is drawn here in the size that the screen's resolution
// gives its control.

#include "ui/AboutPage.h"

#include "diag/LogSite.h"
#include "support/Memory.h"
#include "support/module/ModuleTexts.h"
#include "support/module/Resource.h"

#include <algorithm>
#include <cmath>

VELUI_SOURCE_MODULE("SubVelUi");

namespace
{

/// The radius of the picture's corners, as a part of its shorter side: the logo's.
constexpr double kCornerShare = 0.2;

constexpr int kChannels = 3;    ///< blue, green and red
constexpr int kPixelBytes = 4;  ///< those and one that is not used
constexpr unsigned kFull = 255; ///< a pixel that is wholly inside

/// A picture's pixels of four bytes, from the top.
struct Pixels
{
    SIZE size = {};
    MallocPtr<BYTE[]> pby; ///< null without a picture
};

BITMAPINFO PixelFormat(const SIZE& size)
{
    BITMAPINFO format = {};
    format.bmiHeader.biSize = sizeof(format.bmiHeader);
    format.bmiHeader.biWidth = size.cx;
    format.bmiHeader.biHeight = -size.cy; // from the top
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 8 * kPixelBytes;
    return format;
}

/// The module's picture, in its own size.
Pixels LoadPicture(HDC hDC)
{
    Pixels pixels;
    const HANDLE hPicture = LoadImageW(g_hModule, MAKEINTRESOURCEW(IDB_ABOUT), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION);
    BITMAP bitmap = {};
    if (GetObjectW(hPicture, sizeof(bitmap), &bitmap) != 0)
    {
        pixels.size = {bitmap.bmWidth, bitmap.bmHeight};
        pixels.pby = AllocateArray<BYTE>(size_t{kPixelBytes} * bitmap.bmWidth * bitmap.bmHeight);
        BITMAPINFO format = PixelFormat(pixels.size);
        if (pixels.pby != nullptr && GetDIBits(hDC, static_cast<HBITMAP>(hPicture), 0, bitmap.bmHeight,
                                               pixels.pby.get(), &format, DIB_RGB_COLORS) == 0)
        {
            pixels.pby.reset();
        }
    }
    DeleteObject(hPicture);
    return pixels;
}

/// What two lines of pixels have in common, when both sets of lines divide the same length, of nSource times nTarget
/// parts.
unsigned Overlap(int iSource, int nSource, int iTarget, int nTarget)
{
    const int iFrom = std::max(iSource * nTarget, iTarget * nSource);
    const int iTo = std::min((iSource + 1) * nTarget, (iTarget + 1) * nSource);
    return static_cast<unsigned>(iTo - iFrom);
}

/// The mean of the part of a picture that becomes one pixel of a picture of another size. Windows' own stretching
/// leaves lines out instead, and with them whole strokes of the drawing.
/// @param byMean [out] blue, green, red.
void MeanColour(const Pixels& source, const SIZE& target, int x, int y, BYTE (&byMean)[kChannels])
{
    unsigned uiSums[kChannels] = {};
    for (int iRow = y * source.size.cy / target.cy; iRow * target.cy < (y + 1) * source.size.cy; ++iRow)
    {
        const unsigned uiRow = Overlap(iRow, source.size.cy, y, target.cy);
        for (int iColumn = x * source.size.cx / target.cx; iColumn * target.cx < (x + 1) * source.size.cx; ++iColumn)
        {
            const unsigned uiWeight = uiRow * Overlap(iColumn, source.size.cx, x, target.cx);
            const BYTE* const pby =
                source.pby.get() + kPixelBytes * (static_cast<size_t>(iRow) * source.size.cx + iColumn);
            for (int i = 0; i < kChannels; ++i)
            {
                uiSums[i] += uiWeight * pby[i];
            }
        }
    }
    for (int i = 0; i < kChannels; ++i)
    {
        byMean[i] = static_cast<BYTE>(uiSums[i] / static_cast<unsigned>(source.size.cx * source.size.cy));
    }
}

/// How far a coordinate lies beyond where the round corners begin, of a side of that length.
double IntoCorner(int iPixel, LONG lSide, double dRadius)
{
    const double dMiddle = iPixel + 0.5;
    return std::max({dRadius - dMiddle, dMiddle - (lSide - dRadius), 0.0});
}

/// How much of a pixel lies inside the picture's round corners, of kFull.
unsigned Inside(const SIZE& size, int x, int y)
{
    const double dRadius = kCornerShare * std::min(size.cx, size.cy);
    const double dX = IntoCorner(x, size.cx, dRadius);
    const double dY = IntoCorner(y, size.cy, dRadius);
    const double dInside = dRadius + 0.5 - std::sqrt(dX * dX + dY * dY);
    return static_cast<unsigned>(kFull * std::clamp(dInside, 0.0, 1.0));
}

/// Lays a picture, fitted to a size, over pixels of that size.
void Lay(const Pixels& source, const SIZE& target, BYTE* pbyTarget)
{
    for (int y = 0; y < target.cy; ++y)
    {
        for (int x = 0; x < target.cx; ++x, pbyTarget += kPixelBytes)
        {
            BYTE byMean[kChannels];
            MeanColour(source, target, x, y, byMean);
            const unsigned uiInside = Inside(target, x, y);
            for (int i = 0; i < kChannels; ++i)
            {
                pbyTarget[i] = static_cast<BYTE>((byMean[i] * uiInside + pbyTarget[i] * (kFull - uiInside)) / kFull);
            }
        }
    }
}

/// Draws what the page has behind a control. The page itself draws it: a theme's background is no plain colour.
/// @param hDC the picture's own; its origin stays moved.
void DrawBackground(HWND hDlg, HWND hControl, HDC hDC)
{
    POINT origin = {};
    MapWindowPoints(hControl, hDlg, &origin, 1);
    SetViewportOrgEx(hDC, -origin.x, -origin.y, nullptr);
    SendMessageW(hDlg, WM_ERASEBKGND, reinterpret_cast<WPARAM>(hDC), 0);
}

/// Draws the picture in its control's size, on the page's own background. @return null where something can't be had.
HBITMAP DrawPicture(HWND hDlg, HWND hControl)
{
    RECT place = {};
    GetClientRect(hControl, &place);
    const SIZE size = {place.right, place.bottom};
    const HDC hDC = CreateCompatibleDC(nullptr);
    const Pixels source = LoadPicture(hDC);
    const BITMAPINFO format = PixelFormat(size);
    void* pBits = nullptr;
    const HBITMAP hPicture =
        source.pby != nullptr ? CreateDIBSection(hDC, &format, DIB_RGB_COLORS, &pBits, nullptr, 0) : nullptr;
    if (hPicture != nullptr)
    {
        const HGDIOBJ hOld = SelectObject(hDC, hPicture);
        DrawBackground(hDlg, hControl, hDC);
        GdiFlush();
        Lay(source, size, static_cast<BYTE*>(pBits));
        SelectObject(hDC, hOld);
    }
    DeleteDC(hDC);
    return hPicture;
}

/// Gives the control another picture, or null, and deletes the one that it had: a picture that a control has loaded
/// from the dialog's description is not deleted by every version of Windows.
void ChangePicture(HWND hControl, HBITMAP hPicture)
{
    DeleteObject(reinterpret_cast<HGDIOBJ>(
        SendMessageW(hControl, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(hPicture))));
}

/// Draws the picture whenever the page comes up: only then does the page have its background. Without memory the
/// control goes on with what it has.
void ShowPicture(HWND hDlg)
{
    const HWND hControl = GetDlgItem(hDlg, IDC_ABOUT_PICTURE);
    const HBITMAP hPicture = DrawPicture(hDlg, hControl);
    if (hPicture != nullptr)
    {
        ChangePicture(hControl, hPicture);
    }
}

} // namespace

INT_PTR CALLBACK ProAbouPage(HWND hDlg, UINT uiMessage, WPARAM wParam, LPARAM /*lParam*/)
{
    const FunctionScope scope("ProAbouPage");
    if (uiMessage == WM_SHOWWINDOW && wParam != FALSE)
    {
        ShowPicture(hDlg);
    }
    else if (uiMessage == WM_DESTROY)
    {
        ChangePicture(GetDlgItem(hDlg, IDC_ABOUT_PICTURE), nullptr);
    }
    return uiMessage == WM_INITDIALOG || uiMessage == WM_COMMAND ? 1 : 0;
}
