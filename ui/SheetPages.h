#pragma once
/// The pages of both sheets: what each is made of, and how it is described to the sheet library and added.

#include "support/module/PrinterInterface.h"
#include "support/module/Resource.h"
#include "ui/AboutPage.h"
#include "ui/AdvancedPage.h"
#include "ui/SettingsPage.h"

/// What a page is made of.
struct PageRow
{
    UINT uiTemplate;   ///< IDD_ number of the dialog in the module
    UINT uiTitle;      ///< IDS_ number of the title
    DLGPROC pfnDialog; ///< its dialog procedure
    bool bTakesData;   ///< whether it gets the sheet's data
};

inline constexpr PageRow kSettingsPage = {IDD_SETTINGS, IDS_TITLE_SETTINGS, &ProSetPage, true};
inline constexpr PageRow kAdvancedPage = {IDD_ADVANCED, IDS_TITLE_ADVANCED, &ProSeniorPage, true};
inline constexpr PageRow kAboutPage = {IDD_ABOUT, IDS_TITLE_ABOUT, &ProAbouPage, false};

/// Describes a page. All else of the structure becomes 0.
/// @param pPage        [out] the structure.
/// @param pszTitle     borrowed; must live until the page has been added.
/// @param pstuPassData the sheet's data, for a page that takes it; may be null.
void FillPage(PROPSHEETPAGEW* pPage, const PageRow& row, const wchar_t* pszTitle, stuPassData* pstuPassData = nullptr);

/// Makes a page and adds it to the sheet.
/// @param pPSUIInfo the library's call.
/// @param pPage     borrowed; the library copies what it needs.
/// @return the library's handle of the page, or 0 when it could not be made or was refused.
LONG_PTR SubAddpropertySheet(PPROPSHEETUI_INFO pPSUIInfo, const PROPSHEETPAGEW* pPage);

/// The same for the sheets' hosts: a page that was refused leaves a line in the log.
LONG_PTR AddLoggedPage(PPROPSHEETUI_INFO pPSUIInfo, const PROPSHEETPAGEW* pPage);
