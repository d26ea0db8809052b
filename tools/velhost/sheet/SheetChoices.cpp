#include "tools/velhost/sheet/SheetChoices.h"

#include "support/module/Resource.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

namespace VelHost
{
namespace
{

/// A word and the button that stands for it.
struct WordButton
{
    const char* pszWord;
    int iButton;
};

constexpr WordButton kOrientations[] = {{"portrait", IDC_PORTRAIT}, {"landscape", IDC_LANDSCAPE}};
constexpr WordButton kColours[] = {{"mono", IDC_MONOCHROME}, {"colour", IDC_COLOUR}};
constexpr WordButton kEdges[] = {{"long", IDC_LONG_EDGE}, {"short", IDC_SHORT_EDGE}};

HWND Control(HWND hPage, int iControl, const std::string& strWord)
{
    const HWND hControl = GetDlgItem(hPage, iControl);
    if (hControl == nullptr)
    {
        throw CommandError("the sheet's first page has nothing to choose \"" + strWord + "\" with");
    }
    if (!IsWindowEnabled(hControl))
    {
        throw CommandError("the printer does not offer \"" + strWord + "\"");
    }
    return hControl;
}

template <size_t uiCount>
void PressButton(HWND hPage, const WordButton (&buttons)[uiCount], const std::string& strWord)
{
    for (const WordButton& button : buttons)
    {
        if (strWord == button.pszWord)
        {
            SendMessageW(Control(hPage, button.iButton, strWord), BM_CLICK, 0, 0);
        }
    }
}

void ChoosePaper(HWND hPage, const std::string& strPaper)
{
    const HWND hList = Control(hPage, IDC_PAPER, strPaper);
    const std::wstring strName = FromUtf8(strPaper);
    const LRESULT lIndex =
        SendMessageW(hList, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(strName.c_str()));
    if (lIndex == CB_ERR)
    {
        throw CommandError("the printer has no paper \"" + strPaper + "\"");
    }
    SendMessageW(hList, CB_SETCURSEL, static_cast<WPARAM>(lIndex), 0);
    // The list tells of a person's choice alone.
    SendMessageW(hPage, WM_COMMAND, MAKEWPARAM(IDC_PAPER, CBN_SELCHANGE), reinterpret_cast<LPARAM>(hList));
}

void ChooseSides(HWND hPage, const std::string& strSides)
{
    const bool bBoth = strSides != "one";
    const bool bNow = IsDlgButtonChecked(hPage, IDC_DUPLEX) == BST_CHECKED;
    if (bBoth != bNow)
    {
        SendMessageW(Control(hPage, IDC_DUPLEX, strSides), BM_CLICK, 0, 0);
    }
    PressButton(hPage, kEdges, strSides);
}

} // namespace

void MakeChoices(HWND hPage, const SheetChoices& choices)
{
    if (!choices.strPaper.empty())
    {
        ChoosePaper(hPage, choices.strPaper);
    }
    PressButton(hPage, kOrientations, choices.strOrientation);
    PressButton(hPage, kColours, choices.strColour);
    if (!choices.strSides.empty())
    {
        ChooseSides(hPage, choices.strSides);
    }
}

} // namespace VelHost
