#include "tools/velhost/print/TestPage.h"

#include "support/ScopeGuard.h"
#include "tools/velhost/report/Encoding.h"

#include <algorithm>

namespace VelHost
{
namespace
{

constexpr double kInch = 25.4; // millimetres
constexpr COLORREF kFine = RGB(215, 215, 215);
constexpr COLORREF kBold = RGB(160, 160, 160);
constexpr COLORREF kInk = RGB(0, 0, 0);
constexpr COLORREF kPaper = RGB(255, 255, 255);
constexpr int kBoldEach = 5; // centimetres

const std::vector<COLORREF> kColours = {RGB(0, 174, 239), RGB(236, 0, 140), RGB(255, 242, 0),  RGB(237, 28, 36),
                                        RGB(0, 166, 81),  RGB(46, 49, 146), RGB(247, 148, 29), RGB(0, 0, 0)};
const std::vector<COLORREF> kGreys = {RGB(235, 235, 235), RGB(205, 205, 205), RGB(170, 170, 170), RGB(140, 140, 140),
                                      RGB(105, 105, 105), RGB(70, 70, 70),    RGB(35, 35, 35),    RGB(0, 0, 0)};

/// A device's page, measured in millimetres from the corner of its printable area.
class Canvas
{
public:
    explicit Canvas(HDC hDevice) : m_hDevice(hDevice)
    {
        SetBkMode(m_hDevice, TRANSPARENT);
        SelectObject(m_hDevice, GetStockObject(NULL_BRUSH));
    }

    double Width() const { return Cap(HORZRES) * kInch / Cap(LOGPIXELSX); }
    double Height() const { return Cap(VERTRES) * kInch / Cap(LOGPIXELSY); }
    /// Where the printable area begins on the paper.
    double Left() const { return Cap(PHYSICALOFFSETX) * kInch / Cap(LOGPIXELSX); }
    double Top() const { return Cap(PHYSICALOFFSETY) * kInch / Cap(LOGPIXELSY); }

    void Line(double dFromX, double dFromY, double dToX, double dToY, double dPen, COLORREF colour) const
    {
        WithPen(dPen, colour, [&] {
            MoveToEx(m_hDevice, X(dFromX), Y(dFromY), nullptr);
            LineTo(m_hDevice, X(dToX), Y(dToY));
        });
    }

    void Frame(double dLeft, double dTop, double dRight, double dBottom, double dPen, COLORREF colour) const
    {
        Line(dLeft, dTop, dRight, dTop, dPen, colour);
        Line(dRight, dTop, dRight, dBottom, dPen, colour);
        Line(dRight, dBottom, dLeft, dBottom, dPen, colour);
        Line(dLeft, dBottom, dLeft, dTop, dPen, colour);
    }

    void Fill(double dLeft, double dTop, double dRight, double dBottom, COLORREF colour) const
    {
        const RECT area = {X(dLeft), Y(dTop), X(dRight), Y(dBottom)};
        const HBRUSH hBrush = CreateSolidBrush(colour);
        FillRect(m_hDevice, &area, hBrush);
        DeleteObject(hBrush);
    }

    /// Writes a line of text whose upper left corner is given. @param dHeight of its letters, roughly.
    void Text(double dLeft, double dTop, double dHeight, bool bHeavy, const std::string& strText) const
    {
        const HFONT hFont =
            CreateFontW(-Y(dHeight), 0, 0, 0, bHeavy ? FW_BOLD : FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                        OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH | FF_SWISS, L"Tahoma");
        const HGDIOBJ hOld = SelectObject(m_hDevice, hFont);
        SetTextColor(m_hDevice, kInk);
        const std::wstring strWide = FromUtf8(strText);
        TextOutW(m_hDevice, X(dLeft), Y(dTop), strWide.c_str(), static_cast<int>(strWide.size()));
        SelectObject(m_hDevice, hOld);
        DeleteObject(hFont);
    }

private:
    int Cap(int iIndex) const { return GetDeviceCaps(m_hDevice, iIndex); }
    int X(double dMillimetres) const { return static_cast<int>(dMillimetres * Cap(LOGPIXELSX) / kInch + 0.5); }
    int Y(double dMillimetres) const { return static_cast<int>(dMillimetres * Cap(LOGPIXELSY) / kInch + 0.5); }

    template <typename Draw>
    void WithPen(double dPen, COLORREF colour, Draw draw) const
    {
        const HPEN hPen = CreatePen(PS_SOLID, X(dPen), colour);
        const HGDIOBJ hOld = SelectObject(m_hDevice, hPen);
        draw();
        SelectObject(m_hDevice, hOld);
        DeleteObject(hPen);
    }

    HDC m_hDevice;
};

/// The lines at whole centimetres from the paper's edges, and their numbers beside the frame.
void DrawGrid(const Canvas& page)
{
    constexpr double kLetters = 2.4;
    constexpr double kGap = 0.7;
    constexpr double kPen = 0.12;
    const auto colour = [](int iCentimetre) { return iCentimetre % kBoldEach == 0 ? kBold : kFine; };
    for (int i = 1; i * 10 - page.Left() < page.Width(); ++i)
    {
        if (const double dX = i * 10 - page.Left(); dX > 0)
        {
            page.Line(dX, 0, dX, page.Height(), kPen, colour(i));
            // The last line may be too near to the frame for its number.
            if (dX + kGap + 2 * kLetters < page.Width())
            {
                page.Text(dX + kGap, kGap, kLetters, false, std::to_string(i));
            }
        }
    }
    for (int i = 1; i * 10 - page.Top() < page.Height(); ++i)
    {
        if (const double dY = i * 10 - page.Top(); dY > 0)
        {
            page.Line(0, dY, page.Width(), dY, kPen, colour(i));
            if (dY + kGap + 2 * kLetters < page.Height())
            {
                page.Text(kGap, dY + kGap, kLetters, false, std::to_string(i));
            }
        }
    }
}

void DrawPatches(const Canvas& page, double dLeft, double dTop, double dWidth, double dHeight, bool bColour)
{
    const std::vector<COLORREF>& colours = bColour ? kColours : kGreys;
    const double dStep = dWidth / static_cast<double>(colours.size());
    for (size_t ui = 0; ui < colours.size(); ++ui)
    {
        const double dX = dLeft + dStep * static_cast<double>(ui);
        page.Fill(dX, dTop, dX + dStep, dTop + dHeight, colours[ui]);
    }
    page.Frame(dLeft, dTop, dLeft + dWidth, dTop + dHeight, 0.2, kInk);
}

/// The box in the middle: title, settings, patches.
void DrawBox(const Canvas& page, const TestPageContent& content)
{
    // Sizes for a page of 180 mm; others are in proportion.
    constexpr double kSide = 180;
    const double dScale = std::min(std::max(std::min(page.Width(), page.Height()) / kSide, 0.3), 1.6);
    const double dWidth = 156 * dScale;
    const double dMargin = 7 * dScale;
    const double dLine = 7 * dScale;
    const double dLetters = 4.2 * dScale;
    const double dTitle = 7 * dScale;
    const double dPatches = 12 * dScale;
    const double dHeight = 3.5 * dMargin + dTitle + dLine * static_cast<double>(content.settings.size()) + dPatches;
    const double dLeft = (page.Width() - dWidth) / 2;
    double dY = (page.Height() - dHeight) / 2;
    page.Fill(dLeft, dY, dLeft + dWidth, dY + dHeight, kPaper);
    page.Frame(dLeft, dY, dLeft + dWidth, dY + dHeight, 0.3, kInk);
    dY += dMargin;
    page.Text(dLeft + dMargin, dY, dTitle, true, content.strTitle);
    dY += dTitle + dMargin;
    for (const auto& [strName, strChoice] : content.settings)
    {
        page.Text(dLeft + dMargin, dY, dLetters, true, strName);
        page.Text(dLeft + dMargin + 32 * dScale, dY, dLetters, false, strChoice);
        dY += dLine;
    }
    DrawPatches(page, dLeft + dMargin, dY + dMargin / 2, dWidth - 2 * dMargin, dPatches, content.bColour);
}

} // namespace

void DrawTestPage(HDC hDevice, const TestPageContent& content)
{
    const int iState = SaveDC(hDevice);
    const Language::scope_guard restore([=] { RestoreDC(hDevice, iState); });
    const Canvas page(hDevice);
    DrawGrid(page);
    // The frame's outer side is the last that the device can print.
    constexpr double kPen = 0.5;
    page.Frame(kPen / 2, kPen / 2, page.Width() - kPen / 2, page.Height() - kPen / 2, kPen, kInk);
    DrawBox(page, content);
}

} // namespace VelHost
