// The pages' dialogs and pictures as they lie in the built module.

#include "tests/common/BuiltModule.h"
#include "tests/ui/IconShape.h"

#include <catch2/catch_test_macros.hpp>

#include <commctrl.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{

/// A control as its row in the dialog has it. Positions and sizes are dialog units.
struct Control
{
    int iId; ///< -1 for none
    std::wstring strClass;
    std::wstring strCaption; ///< "#119" for a picture's number
    short nX, nY, nWidth, nHeight;
    DWORD dwStyle; ///< all of it but WS_CHILD and WS_VISIBLE, which each control has
};

struct Dialog
{
    DWORD dwStyle;
    std::wstring strTitle;
    short nX, nY, nWidth, nHeight;
    WORD wPoints;
    std::wstring strFont;
    std::vector<Control> controls;
};

constexpr wchar_t kButton[] = L"#128"; // the platform's numbers of its classes
constexpr wchar_t kEdit[] = L"#129";
constexpr wchar_t kStatic[] = L"#130";
constexpr wchar_t kCombo[] = L"#133";
constexpr wchar_t kSpin[] = UPDOWN_CLASSW;

/// A class by its number as good as by its name. Windows compares the names of classes without case.
std::wstring ClassOf(const std::wstring& strName)
{
    static const std::pair<const wchar_t*, const wchar_t*> kClasses[] = {
        {L"BUTTON", kButton}, {L"EDIT", kEdit}, {L"STATIC", kStatic}, {L"COMBOBOX", kCombo}, {kSpin, kSpin}};
    for (const auto& [pszName, pszClass] : kClasses)
    {
        if (_wcsicmp(strName.c_str(), pszName) == 0)
        {
            return pszClass;
        }
    }
    return strName;
}

/// Reads the extended form of a dialog template, word by word.
class TemplateReader
{
public:
    TemplateReader(HMODULE hModule, int iId)
    {
        const HRSRC hResource = FindResourceW(hModule, MAKEINTRESOURCEW(iId), MAKEINTRESOURCEW(5)); // RT_DIALOG
        REQUIRE(hResource != nullptr);
        m_pwStart = m_pw = static_cast<const WORD*>(LockResource(LoadResource(hModule, hResource)));
    }
    Dialog Read()
    {
        CHECK(Word() == 1);
        CHECK(Word() == 0xFFFF);
        Dword(); // help
        Dword(); // extended style
        Dialog dialog;
        dialog.dwStyle = Dword();
        const WORD wControls = Word();
        dialog.nX = Short();
        dialog.nY = Short();
        dialog.nWidth = Short();
        dialog.nHeight = Short();
        CHECK(Name().empty()); // menu
        CHECK(Name().empty()); // class
        dialog.strTitle = Name();
        dialog.wPoints = Word();
        Word(); // weight
        Word(); // italic, character set
        dialog.strFont = Name();
        for (WORD i = 0; i < wControls; ++i)
        {
            dialog.controls.push_back(ReadControl());
        }
        return dialog;
    }

private:
    WORD Word() { return *m_pw++; }
    short Short() { return static_cast<short>(Word()); }
    DWORD Dword()
    {
        const WORD wLow = Word();
        return MAKELONG(wLow, Word());
    }
    std::wstring Name()
    {
        if (*m_pw == 0xFFFF)
        {
            m_pw += 2;
            return L"#" + std::to_wstring(m_pw[-1]);
        }
        std::wstring strName;
        while (const WORD wUnit = Word())
        {
            strName += static_cast<wchar_t>(wUnit);
        }
        return strName;
    }
    Control ReadControl()
    {
        m_pw += (m_pw - m_pwStart) % 2; // to a 32-bit boundary
        Dword();                        // help
        Dword();                        // extended style
        Control control = {};
        control.dwStyle = Dword();
        control.nX = Short();
        control.nY = Short();
        control.nWidth = Short();
        control.nHeight = Short();
        control.iId = static_cast<int>(Dword());
        control.strClass = ClassOf(Name());
        control.strCaption = Name();
        m_pw = reinterpret_cast<const WORD*>(reinterpret_cast<const BYTE*>(m_pw + 1) + *m_pw); // extra bytes
        return control;
    }

    const WORD* m_pwStart;
    const WORD* m_pw;
};

void CheckDialog(int iId, DWORD dwStyle, const std::wstring& strTitle, const std::vector<Control>& expected)
{
    const BuiltModule module;
    const Dialog dialog = TemplateReader(module.handle, iId).Read();
    CHECK(dialog.dwStyle == dwStyle);
    CHECK(dialog.strTitle == strTitle);
    CHECK(dialog.nWidth == 363);
    CHECK(dialog.nHeight == 287);
    CHECK(dialog.wPoints == 9);
    CHECK(dialog.strFont == L"MS Shell Dlg");
    REQUIRE(dialog.controls.size() == expected.size());
    for (size_t i = 0; i < expected.size(); ++i)
    {
        const Control& is = dialog.controls[i];
        const Control& should = expected[i];
        CAPTURE(i, should.iId);
        CHECK(is.iId == should.iId);
        CHECK(is.strClass == should.strClass);
        CHECK(is.strCaption == should.strCaption);
        CHECK(is.nX == should.nX);
        CHECK(is.nY == should.nY);
        CHECK(is.nWidth == should.nWidth);
        CHECK(is.nHeight == should.nHeight);
        CHECK(is.dwStyle == (should.dwStyle | WS_CHILD | WS_VISIBLE));
    }
}

/// A page of a sheet: disabled until the sheet shows it.
constexpr DWORD kPage = DS_SETFONT | WS_CHILD | WS_DISABLED;

Control Group(const wchar_t* pszCaption, short nX, short nY, short nWidth, short nHeight)
{
    return {-1, kButton, pszCaption, nX, nY, nWidth, nHeight, BS_GROUPBOX};
}

// A text begins a group of its own, so that the arrow keys do not lead from the controls in front of it to those
// behind.

Control Label(const wchar_t* pszCaption, short nX, short nY, short nWidth, short nHeight)
{
    return {-1, kStatic, pszCaption, nX, nY, nWidth, nHeight, SS_LEFT | WS_GROUP};
}

Control Centred(const wchar_t* pszCaption, short nX, short nY, short nWidth, short nHeight)
{
    return {-1, kStatic, pszCaption, nX, nY, nWidth, nHeight, SS_CENTER | WS_GROUP};
}

/// A radio button: no tab stop, which comes with the check mark.
Control Radio(int iId, const wchar_t* pszCaption, short nX, short nY, short nWidth, bool bFirst)
{
    const DWORD dwFirst = bFirst ? WS_GROUP : 0;
    return {iId, kButton, pszCaption, nX, nY, nWidth, 10, BS_AUTORADIOBUTTON | dwFirst};
}

/// A text of the module's version resource.
std::wstring FileText(const std::wstring& strName)
{
    DWORD dwIgnored = 0;
    std::vector<BYTE> info(GetFileVersionInfoSizeW(ModulePath().c_str(), &dwIgnored));
    REQUIRE(GetFileVersionInfoW(ModulePath().c_str(), 0, static_cast<DWORD>(info.size()), info.data()));
    wchar_t* pszText = nullptr;
    UINT cchText = 0;
    REQUIRE(VerQueryValueW(info.data(), (L"\\StringFileInfo\\040904b0\\" + strName).c_str(),
                           reinterpret_cast<void**>(&pszText), &cchText));
    return pszText;
}

} // namespace

TEST_CASE("the settings page's dialog is the one that users know", "[ui][resources]")
{
    constexpr DWORD kEditStyle = ES_RIGHT | ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP;
    constexpr DWORD kSpinStyle = UDS_ALIGNRIGHT | UDS_AUTOBUDDY | UDS_ARROWKEYS;
    CheckDialog(102, kPage | WS_CAPTION, L"SetPage",
                {Group(L"纸张大小", 33, 18, 299, 78),
                 Label(L"尺寸：", 74, 35, 28, 8),
                 {1006, kCombo, L"", 106, 33, 183, 98, CBS_DROPDOWN | WS_VSCROLL | WS_TABSTOP},
                 Label(L"宽度(毫米)：", 74, 69, 42, 8),
                 {1007, kEdit, L"", 124, 67, 40, 14, kEditStyle},
                 {1004, kSpin, L"", 162, 67, 11, 14, kSpinStyle},
                 Label(L"高度(毫米)：", 193, 69, 42, 8),
                 {1008, kEdit, L"", 239, 67, 40, 14, kEditStyle},
                 {1005, kSpin, L"", 280, 67, 7, 14, kSpinStyle},
                 Group(L"方向", 33, 103, 299, 75),
                 Radio(1011, L"纵向", 74, 123, 32, true),
                 Radio(1012, L"横向", 74, 153, 32, false),
                 {1015, kStatic, L"", 235, 121, 18, 18, SS_ICON},
                 Group(L"其他", 32, 188, 299, 55),
                 Label(L"色彩选择", 74, 203, 70, 8),
                 Radio(1002, L"黑白", 159, 202, 32, true),
                 Radio(1003, L"彩色", 253, 201, 32, false),
                 {1016, kButton, L"双面打印", 63, 225, 48, 10, BS_AUTOCHECKBOX | WS_GROUP | WS_TABSTOP},
                 Radio(1013, L"短边装订", 159, 225, 48, true),
                 Radio(1014, L"长边装订", 253, 225, 48, false),
                 {1017, kStatic, L"#119", 21, 255, 18, 18, SS_ICON},
                 {1018, kButton, L"帮助", 317, 256, 28, 20, BS_PUSHBUTTON | WS_GROUP | WS_TABSTOP}});
}

TEST_CASE("the advanced page's dialog is the one that users know", "[ui][resources]")
{
    CheckDialog(
        103, kPage | WS_CAPTION, L"SenioPage",
        {{1017, kStatic, L"#119", 21, 255, 18, 18, SS_ICON},
         {1018, kButton, L"帮助", 317, 256, 28, 20, BS_PUSHBUTTON | WS_TABSTOP},
         Group(L"打印高级设置", 32, 25, 301, 90),
         {1006, kButton, L"申请不插入水印", 63, 46, 162, 17, BS_AUTOCHECKBOX | WS_TABSTOP},
         Label(L"使用此设置时请先向系统管理员确认您是否具有不插入水印的权限。在系统设置了打印参数的情况下，如果您"
               L"不具有该权限并使用了此选项，您的打印任务将不被处理。",
               95, 73, 202, 27),
         Label(L"注意：", 64, 73, 29, 8)});
}

TEST_CASE("the about page's dialog tells the product, its maker and its version", "[ui][resources]")
{
    // The version and the copyright are the file's own.
    CheckDialog(104, kPage, L"",
                {Centred(L"Vel通用打印机", 109, 27, 144, 8),
                 Centred(FileText(L"LegalCopyright").c_str(), 84, 64, 196, 8),
                 Centred(L"Vel-soft 打印管理", 123, 230, 117, 8),
                 Centred((L"版本 " + FileText(L"FileVersion")).c_str(), 138, 45, 89, 8),
                 Centred(L"保留所有权利", 129, 83, 106, 8),
                 {1011, kStatic, L"#116", 142, 111, 80, 79, SS_BITMAP | SS_REALSIZECONTROL}});
    CHECK(FileText(L"LegalCopyright") == L"版权所有 © 2026 Vel-soft");
}

TEST_CASE("each icon comes in seven sizes from 16 to 256 pixels", "[ui][resources]")
{
    const BuiltModule module;
    for (const int iIcon : {111, 112, 119})
    {
        CAPTURE(iIcon);
        const HRSRC hGroup =
            FindResourceW(module.handle, MAKEINTRESOURCEW(iIcon), MAKEINTRESOURCEW(14)); // RT_GROUP_ICON
        REQUIRE(hGroup != nullptr);
        const auto* const pby = static_cast<const BYTE*>(LockResource(LoadResource(module.handle, hGroup)));
        std::set<int> sizes;
        const int iEntries = pby[4];
        for (int i = 0; i < iEntries; ++i)
        {
            const BYTE byWidth = pby[6 + i * 14];
            sizes.insert(byWidth == 0 ? 256 : byWidth); // 0 stands for 256
        }
        CHECK(sizes == std::set<int>{16, 24, 32, 48, 64, 128, 256});
        for (const int iSize : sizes)
        {
            CAPTURE(iSize);
            const auto hIcon = static_cast<HICON>(
                LoadImageW(module.handle, MAKEINTRESOURCEW(iIcon), IMAGE_ICON, iSize, iSize, LR_DEFAULTCOLOR));
            CHECK(hIcon != nullptr);
            DestroyIcon(hIcon);
        }
    }
}

TEST_CASE("the orientations' pictures show a sheet that stands and one that lies", "[ui][resources]")
{
    const BuiltModule module;
    for (const int iSize : {16, 24, 32, 48, 64, 128, 256})
    {
        CAPTURE(iSize);
        const auto drawn = [&module, iSize](int iIcon) {
            const auto hIcon = static_cast<HICON>(
                LoadImageW(module.handle, MAKEINTRESOURCEW(iIcon), IMAGE_ICON, iSize, iSize, LR_DEFAULTCOLOR));
            const SIZE size = DrawnSize(hIcon);
            DestroyIcon(hIcon);
            return size;
        };
        const SIZE portrait = drawn(111);
        const SIZE landscape = drawn(112);
        CHECK(portrait.cy * 4 >= portrait.cx * 5);
        CHECK(landscape.cx * 4 >= landscape.cy * 5);
    }
}

TEST_CASE("the about page's picture has at least twice the size that the page shows at 96 dpi, and its colours",
          "[ui][resources]")
{
    const BuiltModule module;
    const auto hBitmap =
        static_cast<HBITMAP>(LoadImageW(module.handle, MAKEINTRESOURCEW(116), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
    BITMAP bitmap = {};
    REQUIRE(GetObjectW(hBitmap, sizeof(bitmap), &bitmap) != 0);
    // The control's 80 by 79 units, of a quarter of 7 and an eighth of 14 pixels.
    CHECK(bitmap.bmWidth >= 2 * 140);
    CHECK(bitmap.bmHeight >= 2 * 138);
    CHECK(bitmap.bmBitsPixel >= 8);
    const HDC hDC = CreateCompatibleDC(nullptr);
    const HGDIOBJ hOld = SelectObject(hDC, hBitmap);
    CHECK(GetPixel(hDC, bitmap.bmWidth / 2, 2) == RGB(0x1F, 0x5F, 0xA8));                       // the ground
    CHECK(GetPixel(hDC, bitmap.bmWidth / 2, bitmap.bmHeight * 26 / 160) == RGB(255, 255, 255)); // the sheet of paper
    SelectObject(hDC, hOld);
    DeleteDC(hDC);
    DeleteObject(hBitmap);
}
