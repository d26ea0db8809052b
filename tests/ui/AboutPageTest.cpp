// The about page and its picture.

#include "tests/common/GuardedBuffer.h"
#include "tests/common/LineAtCall.h"
#include "tests/ui/DrivenFixture.h"
#include "tests/ui/SettingsFixture.h"
#include "ui/AboutPage.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

#include <utility>

namespace
{

struct AboutFixture : SheetDataFixture
{
    PageWindow Open() { return PageWindow(module.handle, IDD_ABOUT, &ProAbouPage, 0); }
};

/// The picture that a control shows, in pixels of 0x00RRGGBB from the top.
struct ShownPicture
{
    explicit ShownPicture(HWND hControl)
    {
        const auto hPicture = reinterpret_cast<HBITMAP>(SendMessageW(hControl, STM_GETIMAGE, IMAGE_BITMAP, 0));
        REQUIRE(GetObjectW(hPicture, sizeof(bitmap), &bitmap) != 0);
        BITMAPINFO format = {};
        format.bmiHeader.biSize = sizeof(format.bmiHeader);
        format.bmiHeader.biWidth = bitmap.bmWidth;
        format.bmiHeader.biHeight = -bitmap.bmHeight;
        format.bmiHeader.biPlanes = 1;
        format.bmiHeader.biBitCount = 32;
        pixels.resize(static_cast<size_t>(bitmap.bmWidth) * bitmap.bmHeight);
        const HDC hDC = CreateCompatibleDC(nullptr);
        CHECK(GetDIBits(hDC, hPicture, 0, bitmap.bmHeight, pixels.data(), &format, DIB_RGB_COLORS) == bitmap.bmHeight);
        DeleteDC(hDC);
    }
    /// The pixel at a place that is given in 160ths of the picture, as its drawing is.
    DWORD At(double dX, double dY) const
    {
        const auto uiX = static_cast<size_t>(dX * bitmap.bmWidth / 160);
        const auto uiY = static_cast<size_t>(dY * bitmap.bmHeight / 160);
        return pixels[uiY * bitmap.bmWidth + uiX] & 0xFFFFFF;
    }
    DWORD Corner(int iCorner) const
    {
        const size_t uiX = iCorner % 2 == 0 ? 0 : static_cast<size_t>(bitmap.bmWidth) - 1;
        const size_t uiY = iCorner < 2 ? 0 : static_cast<size_t>(bitmap.bmHeight) - 1;
        return pixels[uiY * bitmap.bmWidth + uiX] & 0xFFFFFF;
    }

    BITMAP bitmap = {};
    std::vector<DWORD> pixels;
};

constexpr DWORD kGround = 0x1F5FA8; // what the picture's parts are painted with
constexpr DWORD kPaper = 0xFFFFFF;

/// Where a picture's four corners are on the page, in its pixels.
void CornersOnPage(HWND hPage, POINT (&corners)[4])
{
    const HWND hControl = GetDlgItem(hPage, 1011);
    RECT place = {};
    GetClientRect(hControl, &place);
    for (int i = 0; i < 4; ++i)
    {
        corners[i] = {i % 2 == 0 ? 0 : place.right - 1, i < 2 ? 0 : place.bottom - 1};
    }
    MapWindowPoints(hControl, hPage, corners, 4);
}

UINT s_uiLoadFlags = 0;

HANDLE WINAPI NoteLoading(HINSTANCE, LPCWSTR, UINT, int, int, UINT uiFlags)
{
    s_uiLoadFlags = uiFlags;
    return nullptr;
}

constexpr size_t kMiddleOfEdge = 70; // a pixel of the first line, between the round corners
bool s_bDrawn = false;
bool s_bDrawnAtFlush = false;
const DWORD* s_pdwPixels = nullptr; // of the picture that is drawn
DWORD s_dwEdgeAtFlush = 1;

HBITMAP WINAPI NotePixels(HDC hDC, const BITMAPINFO* pFormat, UINT uiUsage, void** ppBits, HANDLE hSection,
                          DWORD dwOffset)
{
    const HBITMAP hPicture = Platform<decltype(CreateDIBSection)>(L"gdi32", "CreateDIBSection")(
        hDC, pFormat, uiUsage, ppBits, hSection, dwOffset);
    s_pdwPixels = static_cast<const DWORD*>(*ppBits);
    return hPicture;
}

BOOL WINAPI NoteFlush()
{
    s_bDrawnAtFlush = s_bDrawn;
    s_dwEdgeAtFlush = s_pdwPixels[kMiddleOfEdge];
    return TRUE;
}

constexpr COLORREF kCornerColours[4] = {RGB(0xC0, 0, 0), RGB(0, 0xC0, 0), RGB(0, 0, 0xC0), RGB(0xC0, 0xC0, 0)};

/// The about page on a background of its own, which has another colour behind each of the picture's corners.
INT_PTR CALLBACK ProColouredPage(HWND hDlg, UINT uiMessage, WPARAM wParam, LPARAM lParam)
{
    if (uiMessage == WM_ERASEBKGND)
    {
        POINT corners[4];
        CornersOnPage(hDlg, corners);
        for (int i = 0; i < 4; ++i)
        {
            SetPixel(reinterpret_cast<HDC>(wParam), corners[i].x, corners[i].y, kCornerColours[i]);
        }
        s_bDrawn = true;
        return 1;
    }
    return ProAbouPage(hDlg, uiMessage, wParam, lParam);
}

constexpr size_t kPictureBytes = 4 * 280 * 276; // of the module's own picture
GuardedBuffer* s_pGuarded = nullptr;

/// Puts the module's picture against a page that can't be touched.
void* GuardPicture(size_t uiCount, size_t cbSize)
{
    if (uiCount * cbSize == kPictureBytes && s_pGuarded == nullptr)
    {
        s_pGuarded = new GuardedBuffer(kPictureBytes, 0);
        return s_pGuarded->Get();
    }
    return Platform<void*(size_t, size_t)>(L"msvcrt", "calloc")(uiCount, cbSize);
}

void FreeUnlessGuarded(void* p)
{
    if (s_pGuarded == nullptr || p != s_pGuarded->Get())
    {
        Platform<void(void*)>(L"msvcrt", "free")(p);
    }
}

/// A colour as pixels hold it.
DWORD AsPixel(COLORREF colour)
{
    return RGB(GetBValue(colour), GetGValue(colour), GetRValue(colour));
}

} // namespace

TEST_CASE_METHOD(AboutFixture, "the about page shows its texts and answers 1 to two messages alone", "[ui][about]")
{
    const PageWindow page = Open();
    CHECK(ProAbouPage(page.Get(), WM_INITDIALOG, 0, 0) == 1);
    CHECK(ProAbouPage(page.Get(), WM_COMMAND, 0, 0) == 1);
    CHECK(ProAbouPage(page.Get(), WM_NOTIFY, 0, 0) == 0);
    CHECK(ProAbouPage(page.Get(), WM_SETFONT, 0, 0) == 0);
    CHECK(ProAbouPage(page.Get(), WM_CLOSE, 0, 0) == 0);
    CHECK(SendMessageW(page.Item(1011), STM_GETIMAGE, IMAGE_BITMAP, 0) != 0);
    CHECK(GetWindowLongPtrW(page.Get(), GWLP_USERDATA) == 0);
}

TEST_CASE_METHOD(AboutFixture, "the about page's procedure leaves its scope in the log, around the picture's drawing",
                 "[ui][about][log]")
{
    const PageWindow page = Open();
    const LoggingOn logging{"OutputFunBeginInfo"};
    ProAbouPage(page.Get(), WM_NOTIFY, 0, 0);
    CHECK(Masked(logging) ==
          std::vector<std::string>{"VelUI_dll__ProAbouPage :START......", "VelUI_dll__ProAbouPage :End  ......"});
    const LineAtCall<decltype(LoadImageW)> line(logging, "LoadImageW");
    ProAbouPage(page.Get(), WM_SHOWWINDOW, TRUE, 0);
    CHECK(line.Text() == "VelUI_dll__ProAbouPage :START......");
}

TEST_CASE_METHOD(AboutFixture,
                 "the about picture is drawn in its control's size at each resolution, and none of its "
                 "strokes is lost",
                 "[ui][about]")
{
    const PageWindow page = Open();
    // The control's 80 by 79 units at 96, 144 and 192 dpi, at a size between, and beyond the picture's own.
    const SIZE size = GENERATE(SIZE{140, 138}, SIZE{210, 207}, SIZE{280, 276}, SIZE{177, 171}, SIZE{420, 414});
    CAPTURE(size.cx);
    ShowWindow(page.Get(), SW_HIDE);
    SetWindowPos(page.Item(1011), nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER);
    ShowWindow(page.Get(), SW_SHOW);
    const ShownPicture picture(page.Item(1011));
    CHECK(picture.bitmap.bmWidth == size.cx);
    CHECK(picture.bitmap.bmHeight == size.cy);
    CHECK(picture.At(80, 8) == kGround);
    CHECK(picture.At(12, 80) == kGround);
    CHECK(picture.At(80, 26) == kPaper);
    CHECK(picture.At(105, 140) == kPaper);
    // Each of the three written lines is the darkest where the drawing has it, and the paper is white between them.
    const auto red = [&picture](double dY) { return static_cast<int>(picture.At(70, dY) >> 16); };
    for (const double dLine : {116.0, 126.0, 136.0})
    {
        CAPTURE(dLine);
        CHECK(red(dLine) < 0xB8); // 9D at its middle
        CHECK(red(dLine - 4) > 0xF0);
    }
}

TEST_CASE_METHOD(AboutFixture, "at half its size each pixel of the about picture is the mean of four", "[ui][about]")
{
    const PageWindow page = Open();
    ShowWindow(page.Get(), SW_HIDE);
    SetWindowPos(page.Item(1011), nullptr, 0, 0, 140, 138, SWP_NOMOVE | SWP_NOZORDER);
    ShowWindow(page.Get(), SW_SHOW);
    const ShownPicture small(page.Item(1011));
    const PageWindow plain(module.handle, IDD_ABOUT, &NoPage, 0); // shows what the module holds
    const ShownPicture whole(plain.Item(1011));
    REQUIRE(whole.bitmap.bmWidth == 280);
    REQUIRE(whole.bitmap.bmHeight == 276);
    size_t uiWrong = 0;
    for (size_t y = 28; y < 110; ++y) // between the round corners
    {
        for (size_t x = 0; x < 140; ++x)
        {
            const size_t uiAt = 2 * y * 280 + 2 * x;
            for (const int iShift : {0, 8, 16})
            {
                DWORD dwSum = 0;
                for (const size_t uiNext : {uiAt, uiAt + 1, uiAt + 280, uiAt + 281})
                {
                    dwSum += whole.pixels[uiNext] >> iShift & 0xFF;
                }
                uiWrong += (small.pixels[y * 140 + x] >> iShift & 0xFF) != dwSum / 4 ? 1 : 0;
            }
        }
    }
    CHECK(uiWrong == 0);
}

TEST_CASE_METHOD(AboutFixture, "the about picture has round corners on the page's own background", "[ui][about]")
{
    const PageWindow page = Open();
    const ShownPicture picture(page.Item(1011));
    const DWORD dwPage = AsPixel(GetSysColor(COLOR_3DFACE)); // there is no sheet, and so no theme of one
    REQUIRE(dwPage != kGround);
    for (int i = 0; i < 4; ++i)
    {
        CAPTURE(i);
        CHECK(picture.Corner(i) == dwPage);
    }
    // A corner's radius is a fifth of the shorter side, like the logo's: the arc crosses the diagonal at 0.0586 of it.
    const double dArc = 160 * 0.0586;
    CHECK(picture.At(dArc - 3, dArc - 3) == dwPage);
    CHECK(picture.At(dArc + 3, dArc + 3) == kGround);
    // The edges between the corners are whole.
    CHECK(picture.At(80, 0) == kGround);
    CHECK(picture.At(0, 80) == kGround);
    CHECK(picture.At(80, 159.5) == kGround);
    CHECK(picture.At(159.5, 80) == kGround);
}

TEST_CASE_METHOD(AboutFixture, "each corner of the about picture shows what the page has behind it", "[ui][about]")
{
    const PageWindow page(module.handle, IDD_ABOUT, &ProColouredPage, 0);
    const ShownPicture picture(page.Item(1011));
    for (int i = 0; i < 4; ++i)
    {
        CAPTURE(i);
        CHECK(picture.Corner(i) == AsPixel(kCornerColours[i]));
    }
}

TEST_CASE_METHOD(AboutFixture,
                 "what Windows keeps back of the page's drawing is drawn before the picture is laid over it",
                 "[ui][about]")
{
    s_bDrawn = s_bDrawnAtFlush = false;
    const ImportHook pixelsHook(nullptr, "CreateDIBSection", &NotePixels);
    const ImportHook flushHook(nullptr, "GdiFlush", &NoteFlush);
    const PageWindow page(module.handle, IDD_ABOUT, &ProColouredPage, 0);
    CHECK(s_bDrawnAtFlush);
    CHECK(s_dwEdgeAtFlush == 0);
    CHECK(s_pdwPixels[kMiddleOfEdge] == kGround);
}

TEST_CASE_METHOD(AboutFixture, "the module's picture is loaded as it is, for this page alone", "[ui][about]")
{
    const ImportHook hook(nullptr, "LoadImageW", &NoteLoading);
    const PageWindow page = Open();
    CHECK(s_uiLoadFlags == LR_CREATEDIBSECTION);                              // neither in black and white nor shared
    CHECK(SendMessageW(page.Item(1011), STM_GETIMAGE, IMAGE_BITMAP, 0) != 0); // what the dialog's description names
}

TEST_CASE_METHOD(AboutFixture, "a picture whose pixels can't be had leaves the dialog's own one", "[ui][about]")
{
    const auto open = [this] {
        const ImportHook hook(
            nullptr, "GetDIBits", +[](HDC, HBITMAP, UINT, UINT, LPVOID, LPBITMAPINFO, UINT) { return 0; });
        return Open();
    };
    const PageWindow page = open();
    CHECK(ShownPicture(page.Item(1011)).At(80, 8) == kGround);
}

TEST_CASE_METHOD(AboutFixture, "nothing is read behind the about picture's last pixel", "[ui][about]")
{
    const PageWindow page = Open();
    ShowWindow(page.Get(), SW_HIDE);
    const SIZE size = GENERATE(SIZE{140, 138}, SIZE{177, 171}, SIZE{420, 414});
    CAPTURE(size.cx);
    SetWindowPos(page.Item(1011), nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER);
    {
        const ImportHook callocHook(nullptr, "calloc", &GuardPicture);
        const ImportHook freeHook(nullptr, "free", &FreeUnlessGuarded);
        ShowWindow(page.Get(), SW_SHOW);
    }
    const bool bReached = s_pGuarded != nullptr;
    delete std::exchange(s_pGuarded, nullptr);
    REQUIRE(bReached);
    const ShownPicture picture(page.Item(1011));
    CHECK(picture.bitmap.bmWidth == size.cx);
    CHECK(picture.At(80, 159.5) == kGround);
}

TEST_CASE_METHOD(DrivenFixture, "in a sheet the about picture's corners cannot be told from the page",
                 "[ui][about][driven]")
{
    const OpenSheet sheet = Open(Road::Hosted);
    const HWND hPage = sheet.TurnTo(2);
    UpdateWindow(hPage);
    const HWND hControl = GetDlgItem(hPage, 1011);
    POINT beside = {-3, -3};
    MapWindowPoints(hControl, hPage, &beside, 1);
    const HDC hDC = GetDC(hPage);
    const DWORD dwPage = AsPixel(GetPixel(hDC, beside.x, beside.y));
    ReleaseDC(hPage, hDC);
    const ShownPicture picture(hControl);
    for (int i = 0; i < 4; ++i)
    {
        CAPTURE(i);
        CHECK(picture.Corner(i) == dwPage);
    }
}
