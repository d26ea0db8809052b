#include "ui/SettingsPage.h"

#include "diag/LogSite.h"
#include "state/UserRecords.h"
#include "support/ModuleTexts.h"
#include "support/Resource.h"
#include "ui/NumberBox.h"
#include "ui/PaperSelection.h"

#include <cstring>
#include <string>

VELUI_SOURCE_MODULE("SubVelUi");

namespace
{

/// Room, in wide characters, in which a size box is read for the record: here nothing is cut.
constexpr int kApplyRoom = 64;

constexpr DWORD kCustomFields =
    DM_ORIENTATION | DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH | DM_COPIES | DM_COLOR | DM_DUPLEX;
static_assert(kCustomFields == 0x190F, "what a custom paper sets");

bool IsChecked(HWND hDlg, int iControl)
{
    return IsDlgButtonChecked(hDlg, iControl) == BST_CHECKED;
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
    wchar_t szNumber[kApplyRoom];
    // Required: one variable for both boxes. A height that can't be read is the width's value.
    int iMillimetres = 0;
    SubGetEditToINT(GetDlgItem(hDlg, iWidthEditId), szNumber, kApplyRoom, iMillimetres);
    stuDevmode.dmPaperWidth = InTenths(iMillimetres);
    SubGetEditToINT(GetDlgItem(hDlg, iHeightEditId), szNumber, kApplyRoom, iMillimetres);
    stuDevmode.dmPaperLength = InTenths(iMillimetres);
}

void ReadPaper(HWND hDlg, const stuPassData* stuPassData, DEVMODEW& stuDevmode)
{
    wchar_t szName[kPaperNameUnits];
    const LRESULT lIndex = SelectedPaper(hDlg, szName);
    std::wstring strCustom;
    SubLoadString(IDS_CUSTOM_PAPER, strCustom);
    if (strCustom == szName)
    {
        ReadCustomSize(hDlg, stuDevmode);
    }
    // Required: the index as it is, and without a selection that is -1.
    stuDevmode.dmPaperSize = static_cast<short>(stuPassData->pstuPaperInfo[lIndex].wPaper);
}

short DuplexOf(HWND hDlg)
{
    if (IsChecked(hDlg, IDC_SHORT_EDGE))
    {
        return DMDUP_HORIZONTAL;
    }
    return IsChecked(hDlg, IDC_LONG_EDGE) ? DMDUP_VERTICAL : DMDUP_SIMPLEX;
}

} // namespace

int SubSetDlgData(HWND hDlg, stuPassData* stuPassData)
{
    TRACE_FUNCTION("SubSetDlgData");
    DEVMODEW& stuDevmode = stuPassData->pdmOut->stuDevmode;
    ReadPaper(hDlg, stuPassData, stuDevmode);
    stuDevmode.dmOrientation = IsChecked(hDlg, IDC_LANDSCAPE) ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
    stuDevmode.dmColor = IsChecked(hDlg, IDC_COLOUR) ? DMCOLOR_COLOR : DMCOLOR_MONOCHROME;
    stuDevmode.dmDuplex = DuplexOf(hDlg);
    std::memcpy(&stuPassData->pdmIn->stuDevmode, &stuDevmode, sizeof(stuDevmode));
    // Required: behind the copy, so that pdmIn does not get these two.
    stuDevmode.dmFields |= DM_COLOR | DM_DUPLEX;
    // A failure is not shown: the sheet's result is good all the same.
    const DEVMODEW stuCopy = stuDevmode;
    VelUtility::SetDevDef(&stuCopy);
    return 1;
}
