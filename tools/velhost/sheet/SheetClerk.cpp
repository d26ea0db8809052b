#include "tools/velhost/sheet/SheetClerk.h"

#include "support/ScopeGuard.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

#include <prsht.h>
#include <commctrl.h>
#include <objidl.h>
#include <gdiplus.h>

#include <utility>

namespace VelHost
{
namespace
{

constexpr UINT kStepMilliseconds = 50;

SheetClerk* g_pClerk = nullptr;

BOOL CALLBACK IsNoSheet(HWND hWindow, LPARAM lParam)
{
    if (!IsWindowVisible(hWindow) || SendMessageW(hWindow, PSM_GETTABCONTROL, 0, 0) == 0)
    {
        return TRUE;
    }
    *reinterpret_cast<HWND*>(lParam) = hWindow;
    return FALSE;
}

size_t PageCount(HWND hSheet)
{
    const auto hTabs = reinterpret_cast<HWND>(SendMessageW(hSheet, PSM_GETTABCONTROL, 0, 0));
    return static_cast<size_t>(SendMessageW(hTabs, TCM_GETITEMCOUNT, 0, 0));
}

CLSID PngEncoder()
{
    UINT uiCount = 0;
    UINT cbEncoders = 0;
    Gdiplus::GetImageEncodersSize(&uiCount, &cbEncoders);
    std::vector<BYTE> encoders(cbEncoders);
    auto* const pEncoders = reinterpret_cast<Gdiplus::ImageCodecInfo*>(encoders.data());
    if (cbEncoders != 0 && Gdiplus::GetImageEncoders(uiCount, cbEncoders, pEncoders) == Gdiplus::Ok)
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

/// Saves what a visible window shows, frame included, as a PNG file, a pixel for a pixel. Throws CommandError on
/// failure.
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

} // namespace

HWND FindSheetOfThread(DWORD dwThread)
{
    HWND hSheet = nullptr;
    EnumThreadWindows(dwThread, IsNoSheet, reinterpret_cast<LPARAM>(&hSheet));
    return hSheet;
}

SheetClerk::SheetClerk(Orders orders) : m_orders(std::move(orders))
{
    g_pClerk = this;
    // A timer's message comes when nothing else is left to do, painting included.
    m_uiTimer = SetTimer(nullptr, 0, kStepMilliseconds, &SheetClerk::OnTimer);
    if (m_uiTimer == 0)
    {
        ThrowCommandError("no timer can be had");
    }
}

SheetClerk::~SheetClerk()
{
    KillTimer(nullptr, m_uiTimer);
    g_pClerk = nullptr;
}

void CALLBACK SheetClerk::OnTimer(HWND, UINT, UINT_PTR, DWORD)
{
    if (g_pClerk != nullptr)
    {
        g_pClerk->Step();
    }
}

template <typename Part>
void SheetClerk::Try(Part part)
{
    try
    {
        part();
    }
    catch (const CommandError& error)
    {
        // No exception may pass through Windows' message loop.
        m_strError = error.what();
    }
}

void SheetClerk::Step()
{
    const HWND hSheet = FindSheetOfThread(GetCurrentThreadId());
    if (hSheet == nullptr || m_bPressed)
    {
        return;
    }
    if (m_bTurned && m_uiPage == 0 && !m_orders.choices.IsEmpty())
    {
        // The picture waits for the next step, when what the choices changed is painted.
        const SheetChoices choices = std::exchange(m_orders.choices, SheetChoices());
        Try([&] { MakeChoices(reinterpret_cast<HWND>(SendMessageW(hSheet, PSM_GETCURRENTPAGEHWND, 0, 0)), choices); });
        return;
    }
    if (m_bTurned)
    {
        Try([&] { KeepPicture(hSheet); });
        ++m_uiPage;
        m_bTurned = false;
    }
    if (m_uiPage < PageCount(hSheet) && m_strError.empty())
    {
        SendMessageW(hSheet, PSM_SETCURSEL, m_uiPage, 0);
        m_bTurned = true;
        return;
    }
    m_bPressed = true;
    PostMessageW(hSheet, PSM_PRESSBUTTON, m_strError.empty() ? m_orders.wButton : WPARAM{PSBTN_CANCEL}, 0);
}

void SheetClerk::KeepPicture(HWND hSheet)
{
    if (m_orders.strFolder.empty())
    {
        return;
    }
    const std::wstring strFile = PathIn(m_orders.strFolder, L"page" + std::to_wstring(m_pictures.size() + 1) + L".png");
    WriteWindowPicture(hSheet, strFile);
    m_pictures.push_back(strFile);
}

} // namespace VelHost
