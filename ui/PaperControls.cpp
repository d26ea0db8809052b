#include "ui/SettingsPage.h"

#include "diag/LogSite.h"
#include "settings/PaperCatalogue.h"
#include "state/ComputerCaps.h"
#include "support/ModuleTexts.h"
#include "support/Resource.h"
#include "ui/NumberBox.h"
#include "ui/PaperSelection.h"

VELUI_SOURCE_MODULE("SubVelUi");

namespace
{

/// Room, in wide characters, in which a size box is read while it is edited. Required: it cuts a number of five digits,
/// which the box takes, to four.
constexpr int kEditRoom = 5;

constexpr int kOrientationPictureSize = 64; ///< pixels, each way

/// The custom paper's name as the page knows it. Required: this text and not the string table's.
constexpr wchar_t kCustomPaper[] = L"自定义";

void ShowOrientation(HWND hDlg, UINT uiIcon)
{
    // Shared: the system keeps one picture of each for the module, and pages that come and go lose none.
    const HANDLE hIcon = LoadImageW(g_hModule, MAKEINTRESOURCEW(uiIcon), IMAGE_ICON, kOrientationPictureSize,
                                    kOrientationPictureSize, LR_SHARED);
    SendDlgItemMessageW(hDlg, IDC_ORIENTATION_PICTURE, STM_SETICON, reinterpret_cast<WPARAM>(hIcon), 0);
}

void ExchangeSizes(HWND hDlg)
{
    wchar_t szWidth[kEditRoom] = {};
    wchar_t szHeight[kEditRoom] = {};
    GetDlgItemTextW(hDlg, iWidthEditId, szWidth, kEditRoom);
    GetDlgItemTextW(hDlg, iHeightEditId, szHeight, kEditRoom);
    SetDlgItemTextW(hDlg, iWidthEditId, szHeight);
    SetDlgItemTextW(hDlg, iHeightEditId, szWidth);
}

void WriteNumber(HWND hEdit, int iValue)
{
    wchar_t szNumber[12];
    swprintf_s(szNumber, L"%d", iValue);
    SetWindowTextW(hEdit, szNumber);
}

bool ReadSize(HWND hDlg, int iBox, int& iMillimetres)
{
    wchar_t szNumber[kEditRoom];
    return SubGetEditToINT(GetDlgItem(hDlg, iBox), szNumber, kEditRoom, iMillimetres) != 0;
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
    // Required: the width is compared with the greatest height, and set to it. The height has no upper limit.
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

} // namespace

int On_Radio_Stand(HWND hDlg, const stuPassData* stuPassData)
{
    TRACE_FUNCTION("On_Radio_Stand");
    const bool bLandscape = IsDlgButtonChecked(hDlg, IDC_LANDSCAPE) == BST_CHECKED;
    ShowOrientation(hDlg, bLandscape ? IDI_LANDSCAPE : IDI_PORTRAIT);
    iWidthEditId = bLandscape ? IDC_SECOND_SIZE : IDC_FIRST_SIZE;
    iHeightEditId = bLandscape ? IDC_FIRST_SIZE : IDC_SECOND_SIZE;
    bNoSwap = 0;
    Sub_On_Combo(hDlg, stuPassData);
    bNoSwap = 1;
    return 1;
}

int Sub_On_Combo(HWND hDlg, const stuPassData* stuPassData)
{
    TRACE_FUNCTION("Sub_On_Combo");
    if (bPaperSync == 0)
    {
        return 1;
    }
    bPaperSync = 0;
    const LRESULT lIndex = SendDlgItemMessageW(hDlg, IDC_PAPER, CB_GETCURSEL, 0, 0);
    if (lIndex != CB_ERR)
    {
        const stuPaperInfo& stuInfo = stuPassData->pstuPaperInfo[lIndex];
        // Required: a custom paper's boxes keep their texts, empty ones too; the record's size is not read.
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

int Sub_On_Edit(HWND hDlg, WORD wNotification, const stuPassData* stuPassData)
{
    TRACE_FUNCTION("Sub_On_Edit");
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
    SubCheckPaperName(stuPassData->pstuPaperInfo, stuPassData->dwCount, szName, iWidth, iHeight);
    const int iReturn = SelectFound(hDlg, szName);
    bPaperSync = 1;
    return iReturn;
}

int Sub_On_Spin(HWND /*hDlg*/, const NMUPDOWN* pUpDown)
{
    TRACE_FUNCTION("Sub_On_Spin");
    const HWND hBuddy = reinterpret_cast<HWND>(SendMessageW(pUpDown->hdr.hwndFrom, UDM_GETBUDDY, 0, 0));
    wchar_t szNumber[kEditRoom];
    int iValue = 0;
    if (SubGetEditToINT(hBuddy, szNumber, kEditRoom, iValue) == 0)
    {
        return 0;
    }
    iValue += pUpDown->iDelta;
    WriteNumber(hBuddy, iValue < 0 ? 0 : iValue);
    return 1;
}
