#include "ui/OrientationControls.h"

#include "diag/LogSite.h"
#include "state/CapabilitySnapshot.h"
#include "support/module/ModuleTexts.h"
#include "support/module/Resource.h"
#include "ui/Controls.h"
#include "ui/PaperControls.h"

VELUI_SOURCE_MODULE("SubVelUi");

namespace
{

constexpr int kOrientationPictureSize = 64; ///< pixels, each way

void ShowOrientation(HWND hDlg, UINT uiIcon)
{
    // Shared: the system keeps one picture of each for the module, and pages that come and go lose none.
    const HANDLE hIcon = LoadImageW(g_hModule, MAKEINTRESOURCEW(uiIcon), IMAGE_ICON, kOrientationPictureSize,
                                    kOrientationPictureSize, LR_SHARED);
    SendDlgItemMessageW(hDlg, IDC_ORIENTATION_PICTURE, STM_SETICON, reinterpret_cast<WPARAM>(hIcon), 0);
}

} // namespace

int SubInitOrientation(const stuPassData* pstuPassData, HWND hDlg)
{
    const FunctionScope scope("SubInitOrientation");
    const DWORD dwDegrees = VelUtility::GetComputerCaps(DC_ORIENTATION, nullptr);
    const bool bTurns = dwDegrees == 90 || dwDegrees == 270;
    if (!bTurns)
    {
        Disable(hDlg, IDC_LANDSCAPE);
    }
    const bool bLandscape = bTurns && pstuPassData->pdmIn->stuDevmode.dmOrientation == DMORIENT_LANDSCAPE;
    Check(hDlg, bLandscape ? IDC_LANDSCAPE : IDC_PORTRAIT);
    return On_Radio_Stand(hDlg, pstuPassData);
}

int On_Radio_Stand(HWND hDlg, const stuPassData* pstuPassData)
{
    const FunctionScope scope("On_Radio_Stand");
    const bool bLandscape = IsChecked(hDlg, IDC_LANDSCAPE);
    ShowOrientation(hDlg, bLandscape ? IDI_LANDSCAPE : IDI_PORTRAIT);
    TurnSizes(hDlg, pstuPassData, bLandscape);
    return 1;
}

void ReadOrientation(HWND hDlg, DEVMODEW& stuDevmode)
{
    stuDevmode.dmOrientation = IsChecked(hDlg, IDC_LANDSCAPE) ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
}
