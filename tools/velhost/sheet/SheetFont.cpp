#include "tools/velhost/sheet/SheetFont.h"

namespace VelHost
{
namespace
{

/// The font size of the module's pages.
constexpr WORD kPagePoints = 9;

// Words of the two forms in front of the menu's name (DLGTEMPLATE; dlgVer to cy of the extended form), and the place of
// the style in them.
constexpr size_t kPlainWords = 9;
constexpr size_t kPlainStyle = 0;
constexpr size_t kExtendedWords = 13;
constexpr size_t kExtendedStyle = 6;

constexpr WORD kExtendedMark = 0xFFFF; ///< second word of the extended form
constexpr WORD kOrdinalMark = 0xFFFF;  ///< a number and not a name follows

/// @return what lies behind a name or number.
WORD* SkipName(WORD* pwName)
{
    if (*pwName == kOrdinalMark)
    {
        return pwName + 2;
    }
    while (*pwName != 0)
    {
        ++pwName;
    }
    return pwName + 1;
}

} // namespace

void SetTemplateFontSize(void* pTemplate, WORD wPoints)
{
    auto* pwWords = static_cast<WORD*>(pTemplate);
    const bool bExtended = pwWords[1] == kExtendedMark;
    const WORD* const pwStyle = pwWords + (bExtended ? kExtendedStyle : kPlainStyle);
    if ((MAKELONG(pwStyle[0], pwStyle[1]) & DS_SETFONT) == 0)
    {
        return;
    }
    pwWords += bExtended ? kExtendedWords : kPlainWords;
    for (int i = 0; i < 3; ++i) // menu, class, title
    {
        pwWords = SkipName(pwWords);
    }
    *pwWords = wPoints;
}

int CALLBACK UsePagesFont(HWND /*hSheet*/, UINT uiMessage, LPARAM lParam)
{
    if (uiMessage == PSCB_PRECREATE)
    {
        SetTemplateFontSize(reinterpret_cast<void*>(lParam), kPagePoints);
    }
    return 0;
}

} // namespace VelHost
