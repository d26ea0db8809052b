#include "ui/PaperControls.h"

#include "diag/LogSite.h"
#include "settings/PaperCatalogue.h"
#include "state/CapabilitySnapshot.h"
#include "support/module/ModuleTexts.h"
#include "support/module/Resource.h"
#include "ui/Controls.h"

#include <string>

VELUI_SOURCE_MODULE("SubVelUi");

DWORD bPaperSync = 1;
DWORD bNoSwap = 1;
int iWidthEditId = IDC_FIRST_SIZE;
int iHeightEditId = IDC_SECOND_SIZE;

namespace
{

constexpr int kMostTyped = 5; ///< characters that a size box takes

/// Buffer, in wide characters, in which a size box is read while it is edited.
/// Required: it cuts a number of five digits, which the box takes, to four. No paper is ten metres long.
constexpr int kEditUnits = 5;

/// Buffer, in wide characters, in which a size box is read for the record: here nothing is cut.
constexpr int kApplyUnits = 64;

constexpr DWORD kCustomFields =
    DM_ORIENTATION | DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH | DM_COPIES | DM_COLOR | DM_DUPLEX;
static_assert(kCustomFields == 0x190F, "what a custom paper sets");

/// Selects the first paper whose name begins so; the rest of the name and case don't matter to Windows.
/// @return its index, or CB_ERR with the selection unchanged.
LRESULT SelectPaper(HWND hDlg, const wchar_t* pszName)
{
    ShowNameFromStart(hDlg);
    return SendDlgItemMessageW(hDlg, IDC_PAPER, CB_SELECTSTRING, static_cast<WPARAM>(-1),
                               reinterpret_cast<LPARAM>(pszName));
}

/// Tells the selected paper.
/// @param szName [out] its name; empty without a selection.
/// @return its index, or CB_ERR without a selection, as when the user typed into the box.
LRESULT SelectedPaper(HWND hDlg, wchar_t (&szName)[kPaperNameUnits])
{
    szName[0] = L'\0';
    const LRESULT lIndex = SendDlgItemMessageW(hDlg, IDC_PAPER, CB_GETCURSEL, 0, 0);
    SendDlgItemMessageW(hDlg, IDC_PAPER, CB_GETLBTEXT, static_cast<WPARAM>(lIndex), reinterpret_cast<LPARAM>(szName));
    return lIndex;
}

void FillPapers(HWND hDlg, const stuPassData* pstuPassData)
{
    for (DWORD i = 0; i < pstuPassData->dwCount; ++i)
    {
        SendDlgItemMessageW(hDlg, IDC_PAPER, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(pstuPassData->pstuPaperInfo[i].aszPaperName));
    }
}

void ExchangeSizes(HWND hDlg)
{
    wchar_t szWidth[kEditUnits] = {};
    wchar_t szHeight[kEditUnits] = {};
    GetDlgItemTextW(hDlg, iWidthEditId, szWidth, kEditUnits);
    GetDlgItemTextW(hDlg, iHeightEditId, szHeight, kEditUnits);
    SetDlgItemTextW(hDlg, iWidthEditId, szHeight);
    SetDlgItemTextW(hDlg, iHeightEditId, szWidth);
}

bool ReadSize(HWND hDlg, int iBox, int& iMillimetres)
{
    wchar_t szNumber[kEditUnits];
    return SubGetEditToINT(GetDlgItem(hDlg, iBox), szNumber, kEditUnits, iMillimetres) != 0;
}

/// Brings a typed size between the printer's limits, for the search alone.
void LimitSize(int& iWidth, int& iHeight)
{
    const DWORD dwMost = VelUtility::GetComputerCaps(DC_MAXEXTENT, nullptr);
    const DWORD dwLeast = VelUtility::GetComputerCaps(DC_MINEXTENT, nullptr);
    if (dwMost == VelUtility::kNoAnswer || dwLeast == VelUtility::kNoAnswer)
    {
        return;
    }
    if (iWidth * 10 < LOWORD(dwLeast))
    {
        iWidth = LOWORD(dwLeast) / 10;
    }
    else if (iWidth * 10 > LOWORD(dwMost))
    {
        iWidth = LOWORD(dwMost) / 10;
    }
    if (iHeight * 10 < HIWORD(dwLeast))
    {
        iHeight = HIWORD(dwLeast) / 10;
    }
    // Required: the width is compared with the greatest height, and set to it. The height has no upper limit. The paper
    // that a typed size finds depends on it, and with it what users have stored.
    else if (iWidth * 10 > HIWORD(dwMost))
    {
        iWidth = HIWORD(dwMost) / 10;
    }
}

/// Selects the paper of that name unless it is selected. @return 0 when there is none.
int SelectFound(HWND hDlg, const wchar_t* pszName)
{
    wchar_t szSelected[kPaperNameUnits];
    SelectedPaper(hDlg, szSelected);
    if (wcscmp(szSelected, pszName) == 0)
    {
        return 1;
    }
    return SelectPaper(hDlg, pszName) == CB_ERR ? 0 : 1;
}

/// Whole millimetres in tenths, cut to the field's 16 bits.
short InTenths(int iMillimetres)
{
    return static_cast<short>(static_cast<unsigned>(iMillimetres) * 10u);
}

/// Writes a custom paper's size. A box that holds no number shows the warning box.
void ReadCustomSize(HWND hDlg, DEVMODEW& stuDevmode)
{
    stuDevmode.dmFields = kCustomFields;
    wchar_t szNumber[kApplyUnits];
    // Required: one variable for both boxes. A height that can't be read is the width's value, so that the record holds
    // a square and never what stood on the stack.
    int iMillimetres = 0;
    SubGetEditToINT(GetDlgItem(hDlg, iWidthEditId), szNumber, kApplyUnits, iMillimetres);
    stuDevmode.dmPaperWidth = InTenths(iMillimetres);
    SubGetEditToINT(GetDlgItem(hDlg, iHeightEditId), szNumber, kApplyUnits, iMillimetres);
    stuDevmode.dmPaperLength = InTenths(iMillimetres);
}

} // namespace

void ShowNameFromStart(HWND hDlg)
{
    constexpr WORD kEndOfText = 0x7FFF;
    PostMessageW(GetDlgItem(hDlg, IDC_PAPER), CB_SETEDITSEL, 0, MAKELPARAM(kEndOfText, 0));
}

int SubInitPaperSize(const stuPassData* pstuPassData, HWND hDlg)
{
    const FunctionScope scope("SubInitPaperSize");
    for (const int iSpin : {IDC_FIRST_SPIN, IDC_SECOND_SPIN})
    {
        // A range from 0 to 5, of no further use: the spins' handler works on the boxes' texts.
        SendDlgItemMessageW(hDlg, iSpin, UDM_SETRANGE, 0, 5);
    }
    for (const int iBox : {IDC_FIRST_SIZE, IDC_SECOND_SIZE})
    {
        SendDlgItemMessageW(hDlg, iBox, EM_LIMITTEXT, kMostTyped, 0);
    }
    FillPapers(hDlg, pstuPassData);

    wchar_t szName[kPaperNameUnits] = {};
    if (GetDevDefPaperName(pstuPassData, szName) == 0)
    {
        wcscpy_s(szName, L"A4");
    }
    if (SelectPaper(hDlg, szName) == CB_ERR)
    {
        SelectPaper(hDlg, pstuPassData->pstuPaperInfo[0].aszPaperName);
    }
    return 1;
}

int GetDevDefPaperName(const stuPassData* pstuPassData, wchar_t* aszPaperName)
{
    const FunctionScope scope("GetDevDefPaperName");
    const auto wPaper = static_cast<WORD>(pstuPassData->pdmIn->stuDevmode.dmPaperSize);
    const stuPaperInfo* const pFound = FindPaper(pstuPassData->pstuPaperInfo, pstuPassData->dwCount, wPaper);
    if (pFound != nullptr)
    {
        wcscpy_s(aszPaperName, kPaperNameUnits, pFound->aszPaperName);
        return 1;
    }
    LOG_RESULT("aszPaperName", static_cast<PCWSTR>(aszPaperName));
    return 0;
}

int Sub_On_Combo(HWND hDlg, const stuPassData* pstuPassData)
{
    const FunctionScope scope("Sub_On_Combo");
    if (bPaperSync == 0)
    {
        return 1;
    }
    bPaperSync = 0;
    const LRESULT lIndex = SendDlgItemMessageW(hDlg, IDC_PAPER, CB_GETCURSEL, 0, 0);
    if (lIndex != CB_ERR)
    {
        const stuPaperInfo& stuInfo = pstuPassData->pstuPaperInfo[lIndex];
        // Required: a custom paper's boxes keep their texts, empty ones too; the record's size is not read. What the
        // user has typed would be gone otherwise as soon as the typed size selects the custom paper.
        if (wcscmp(stuInfo.aszPaperName, kCustomPaper) != 0)
        {
            WriteNumber(GetDlgItem(hDlg, iWidthEditId), stuInfo.stuPaperSize.x / 10);
            WriteNumber(GetDlgItem(hDlg, iHeightEditId), stuInfo.stuPaperSize.y / 10);
        }
        else if (bNoSwap == 0)
        {
            ExchangeSizes(hDlg);
        }
    }
    bPaperSync = 1;
    return 1;
}

int Sub_On_Edit(HWND hDlg, WORD wNotification, const stuPassData* pstuPassData)
{
    const FunctionScope scope("Sub_On_Edit");
    if (wNotification != EN_CHANGE || bPaperSync == 0)
    {
        return 1;
    }
    int iWidth = 0;
    int iHeight = 0;
    if (!ReadSize(hDlg, iWidthEditId, iWidth) || !ReadSize(hDlg, iHeightEditId, iHeight))
    {
        return 0;
    }
    LimitSize(iWidth, iHeight);
    bPaperSync = 0;
    wchar_t szName[kPaperNameUnits];
    SubCheckPaperName(pstuPassData->pstuPaperInfo, pstuPassData->dwCount, szName, iWidth, iHeight);
    const int iReturn = SelectFound(hDlg, szName);
    bPaperSync = 1;
    return iReturn;
}

int Sub_On_Spin(HWND /*hDlg*/, const NMUPDOWN* pUpDown)
{
    const FunctionScope scope("Sub_On_Spin");
    const HWND hBuddy = reinterpret_cast<HWND>(SendMessageW(pUpDown->hdr.hwndFrom, UDM_GETBUDDY, 0, 0));
    wchar_t szNumber[kEditUnits];
    int iValue = 0;
    if (SubGetEditToINT(hBuddy, szNumber, kEditUnits, iValue) == 0)
    {
        return 0;
    }
    iValue += pUpDown->iDelta;
    WriteNumber(hBuddy, iValue < 0 ? 0 : iValue);
    return 1;
}

void TurnSizes(HWND hDlg, const stuPassData* pstuPassData, bool bLandscape)
{
    iWidthEditId = bLandscape ? IDC_SECOND_SIZE : IDC_FIRST_SIZE;
    iHeightEditId = bLandscape ? IDC_FIRST_SIZE : IDC_SECOND_SIZE;
    bNoSwap = 0;
    Sub_On_Combo(hDlg, pstuPassData);
    bNoSwap = 1;
}

void ReadPaper(HWND hDlg, const stuPassData* pstuPassData, DEVMODEW& stuDevmode)
{
    wchar_t szName[kPaperNameUnits];
    const LRESULT lIndex = SelectedPaper(hDlg, szName);
    std::wstring strCustom;
    SubLoadString(IDS_CUSTOM_PAPER, strCustom);
    if (strCustom == szName)
    {
        ReadCustomSize(hDlg, stuDevmode);
    }
    // Required: the index as it is, and without a selection that is -1: a text in the box that is no entry reads in
    // front of the list. Which paper it then is, is decided by nobody.
    stuDevmode.dmPaperSize = static_cast<short>(pstuPassData->pstuPaperInfo[lIndex].wPaper);
}
