#pragma once
/// The host's own property sheet library: the shortest description of how the module's sheets are driven.

#include "support/module/PrinterInterface.h"

#include <prsht.h>

#include <memory>
#include <string>
#include <vector>

namespace VelHost
{

/// Changes the font size of a dialog template that names a font; leaves any other as it is.
/// @param pTemplate DLGTEMPLATE or its extended form.
/// @param wPoints   points.
void SetTemplateFontSize(void* pTemplate, WORD wPoints);

/// What came of a sheet.
struct SheetOutcome
{
    LONG lInitReturn = 0;       ///< what the module answered to PROPSHEETUI_REASON_INIT; below 1 no sheet was shown
    INT_PTR iSheetReturn = -1;  ///< what PropertySheetW returned; -1 also when no sheet was shown
    unsigned uiDeliveries = 0;  ///< results that the module was given
    LONG lDeliveryReturn = 0;   ///< what it answered to the last
    ULONG_PTR ulResult = 0;     ///< PROPSHEETUI_INFO.Result as the module left it
    std::vector<UINT> refusals; ///< CPSFUNC_ functions that were asked for and are not played
};

/// Plays Windows' common property sheet library for one sheet function of a module: the module adds its pages,
/// the sheet is shown on Windows' own PropertySheetW, a page's CPSFUNC_SET_RESULT becomes
/// PROPSHEETUI_REASON_SET_RESULT, and the end is told. One sheet an object, on one thread.
class SheetLibrary
{
public:
    using SheetFunction = decltype(DrvDocumentPropertySheets);

    /// @param pfnSheet   DrvDocumentPropertySheets or DrvDevicePropertySheets.
    /// @param lParamInit its DOCUMENTPROPERTYHEADER or DEVICEPROPERTYHEADER; outlives this object.
    SheetLibrary(SheetFunction* pfnSheet, LPARAM lParamInit);
    SheetLibrary(const SheetLibrary&) = delete;
    SheetLibrary& operator=(const SheetLibrary&) = delete;

    /// Plays the sheet from its first call to its last; returns when the user has closed it.
    /// @param hParent  null for none.
    /// @param strTitle for a module that gives none.
    SheetOutcome Show(HWND hParent, const std::wstring& strTitle);

private:
    struct Page
    {
        HPROPSHEETPAGE hPage;
    };

    static LONG_PTR CALLBACK ComPropSheet(HANDLE hComPropSheet, UINT uiFunction, LPARAM lParam1, LPARAM lParam2);
    LONG_PTR AddPage(HPROPSHEETPAGE hPage);
    LONG_PTR SetResult(LPARAM hPage, LPARAM lResult);
    LONG Call(WORD wReason, LPARAM lParam);
    void ShowSheet(const PROPSHEETUI_INFO_HEADER& header, const std::wstring& strTitle);
    void DestroyPages();

    SheetFunction* m_pfnSheet;
    LPARAM m_lParamInit;
    ULONG_PTR m_ulUserData = 0;
    std::vector<std::unique_ptr<Page>> m_pages; ///< an element's address is the page's handle for the module
    SheetOutcome m_outcome;
};

} // namespace VelHost
