#include "ui/SettingsPage.h"

#include "diag/LogSite.h"
#include "settings/PaperCatalogue.h"
#include "state/ComputerCaps.h"
#include "support/Resource.h"
#include "ui/PaperSelection.h"

VELUI_SOURCE_MODULE("SubVelUi");

namespace
{

constexpr int kMostTyped = 5; ///< characters that a size box takes

void Disable(HWND hDlg, int iControl)
{
    EnableWindow(GetDlgItem(hDlg, iControl), FALSE);
}

void Check(HWND hDlg, int iControl)
{
    CheckDlgButton(hDlg, iControl, BST_CHECKED);
}

void FillPapers(HWND hDlg, const stuPassData* stuPassData)
{
    for (DWORD i = 0; i < stuPassData->dwCount; ++i)
    {
        SendDlgItemMessageW(hDlg, IDC_PAPER, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(stuPassData->pstuPaperInfo[i].aszPaperName));
    }
}

} // namespace

int SubInitPaperSize(const stuPassData* stuPassData, HWND hDlg)
{
    TRACE_FUNCTION("SubInitPaperSize");
    for (const int iSpin : {IDC_FIRST_SPIN, IDC_SECOND_SPIN})
    {
        // A range from 0 to 5, of no further use: the spins' handler works on the boxes' texts.
        SendDlgItemMessageW(hDlg, iSpin, UDM_SETRANGE, 0, 5);
    }
    for (const int iBox : {IDC_FIRST_SIZE, IDC_SECOND_SIZE})
    {
        SendDlgItemMessageW(hDlg, iBox, EM_LIMITTEXT, kMostTyped, 0);
    }
    FillPapers(hDlg, stuPassData);

    wchar_t szName[kPaperNameUnits] = {};
    if (GetDevDefPaperName(stuPassData, szName) == 0)
    {
        wcscpy_s(szName, L"A4");
    }
    if (SelectPaper(hDlg, szName) == CB_ERR)
    {
        SelectPaper(hDlg, stuPassData->pstuPaperInfo[0].aszPaperName);
    }
    return 1;
}

int SubInitOrientation(const stuPassData* stuPassData, HWND hDlg)
{
    TRACE_FUNCTION("SubInitOrientation");
    const DWORD dwDegrees = VelUtility::GetComputerCaps(DC_ORIENTATION, nullptr);
    const bool bTurns = dwDegrees == 90 || dwDegrees == 270;
    if (!bTurns)
    {
        Disable(hDlg, IDC_LANDSCAPE);
    }
    const bool bLandscape = bTurns && stuPassData->pdmIn->stuDevmode.dmOrientation == DMORIENT_LANDSCAPE;
    Check(hDlg, bLandscape ? IDC_LANDSCAPE : IDC_PORTRAIT);
    return On_Radio_Stand(hDlg, stuPassData);
}

int SubInitOther(const stuPassData* stuPassData, HWND hDlg)
{
    TRACE_FUNCTION("SubInitOther");
    const DEVMODEW& stuDevmode = stuPassData->pdmIn->stuDevmode;
    const bool bHasColour = VelUtility::GetComputerCaps(DC_COLORDEVICE, nullptr) == 1;
    if (!bHasColour)
    {
        Disable(hDlg, IDC_COLOUR);
    }
    Check(hDlg, bHasColour && stuDevmode.dmColor == DMCOLOR_COLOR ? IDC_COLOUR : IDC_MONOCHROME);

    Disable(hDlg, IDC_SHORT_EDGE);
    Disable(hDlg, IDC_LONG_EDGE);
    if (VelUtility::GetComputerCaps(DC_DUPLEX, nullptr) != 1)
    {
        Disable(hDlg, IDC_DUPLEX);
    }
    else if (stuDevmode.dmDuplex == DMDUP_VERTICAL || stuDevmode.dmDuplex == DMDUP_HORIZONTAL)
    {
        Check(hDlg, IDC_DUPLEX);
    }
    return On_Check_Duplex(hDlg, stuDevmode.dmDuplex);
}

int On_Check_Duplex(HWND hDlg, short nDuplex)
{
    TRACE_FUNCTION("On_Check_Duplex");
    if (IsFatalEnabled())
    {
        TRACE_ARGUMENT(nDuplex);
    }
    const bool bDuplex = IsDlgButtonChecked(hDlg, IDC_DUPLEX) == BST_CHECKED;
    for (const int iButton : {IDC_LONG_EDGE, IDC_SHORT_EDGE})
    {
        EnableWindow(GetDlgItem(hDlg, iButton), bDuplex);
        if (!bDuplex)
        {
            CheckDlgButton(hDlg, iButton, BST_UNCHECKED);
        }
    }
    if (bDuplex)
    {
        // Required: what was applied last comes back, whatever was clicked since, and the pair's other button is not
        // unchecked.
        Check(hDlg, nDuplex == DMDUP_HORIZONTAL ? IDC_SHORT_EDGE : IDC_LONG_EDGE);
    }
    return 1;
}
