#include "ui/OtherControls.h"

#include "diag/LogSite.h"
#include "state/CapabilitySnapshot.h"
#include "support/module/Resource.h"
#include "ui/Controls.h"

VELUI_SOURCE_MODULE("SubVelUi");

namespace
{

short DuplexOf(HWND hDlg)
{
    if (IsChecked(hDlg, IDC_SHORT_EDGE))
    {
        return DMDUP_HORIZONTAL;
    }
    return IsChecked(hDlg, IDC_LONG_EDGE) ? DMDUP_VERTICAL : DMDUP_SIMPLEX;
}

} // namespace

int SubInitOther(const stuPassData* pstuPassData, HWND hDlg)
{
    const FunctionScope scope("SubInitOther");
    const DEVMODEW& stuDevmode = pstuPassData->pdmIn->stuDevmode;
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
    FunctionScope scope("On_Check_Duplex");
    TRACE_ARGUMENTS(scope, nDuplex);
    const bool bDuplex = IsChecked(hDlg, IDC_DUPLEX);
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
        // unchecked; both are off here, since the box that is now checked had switched them off.
        Check(hDlg, nDuplex == DMDUP_HORIZONTAL ? IDC_SHORT_EDGE : IDC_LONG_EDGE);
    }
    return 1;
}

void ReadOther(HWND hDlg, DEVMODEW& stuDevmode)
{
    stuDevmode.dmColor = IsChecked(hDlg, IDC_COLOUR) ? DMCOLOR_COLOR : DMCOLOR_MONOCHROME;
    stuDevmode.dmDuplex = DuplexOf(hDlg);
}
