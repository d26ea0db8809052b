#include "tools/velhost/sheet/SheetLibrary.h"

#include <algorithm>

namespace VelHost
{
namespace
{

constexpr WORD kInfoVersion = 0x0100;
/// lParam of PROPSHEETUI_REASON_DESTROY once a sheet was shown, whether OK or Cancel ended it.
constexpr LPARAM kWasShown = 1;
/// CPSFUNC_SET_RESULT's answer to a handle that is no page's.
constexpr LONG_PTR kInvalidHandle = -1;

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

/// Callback of a property sheet (PSH_USECALLBACK) that gives it the pages' font size before it is made. Windows
/// measures a sheet in dialog units of its own font; with a smaller one than the pages', it would cut them off.
int CALLBACK UsePagesFont(HWND /*hSheet*/, UINT uiMessage, LPARAM lParam)
{
    if (uiMessage == PSCB_PRECREATE)
    {
        SetTemplateFontSize(reinterpret_cast<void*>(lParam), kPagePoints);
    }
    return 0;
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

SheetLibrary::SheetLibrary(SheetFunction* pfnSheet, LPARAM lParamInit) : m_pfnSheet(pfnSheet), m_lParamInit(lParamInit)
{}

SheetOutcome SheetLibrary::Show(HWND hParent, const std::wstring& strTitle)
{
    m_outcome.lInitReturn = Call(PROPSHEETUI_REASON_INIT, m_lParamInit);
    if (m_outcome.lInitReturn < 1 || m_pages.empty())
    {
        DestroyPages();
        Call(PROPSHEETUI_REASON_DESTROY, 0);
        return m_outcome;
    }
    PROPSHEETUI_INFO_HEADER header = {};
    header.cbSize = sizeof(header);
    header.hWndParent = hParent;
    if (Call(PROPSHEETUI_REASON_GET_INFO_HEADER, reinterpret_cast<LPARAM>(&header)) < 1)
    {
        DestroyPages();
        Call(PROPSHEETUI_REASON_DESTROY, 0);
        return m_outcome;
    }
    ShowSheet(header, strTitle);
    Call(PROPSHEETUI_REASON_DESTROY, kWasShown);
    return m_outcome;
}

LONG SheetLibrary::Call(WORD wReason, LPARAM lParam)
{
    // A fresh structure each time: only UserData and Result last from call to call.
    PROPSHEETUI_INFO info = {};
    info.cbSize = sizeof(info);
    info.Version = kInfoVersion;
    info.Flags = PSUIINFO_UNICODE;
    info.Reason = wReason;
    info.hComPropSheet = this;
    info.pfnComPropSheet = &SheetLibrary::ComPropSheet;
    info.lParamInit = m_lParamInit;
    info.UserData = m_ulUserData;
    info.Result = m_outcome.ulResult;
    const LONG lReturn = m_pfnSheet(&info, lParam);
    m_ulUserData = info.UserData;
    m_outcome.ulResult = info.Result;
    return lReturn;
}

LONG_PTR CALLBACK SheetLibrary::ComPropSheet(HANDLE hComPropSheet, UINT uiFunction, LPARAM lParam1, LPARAM lParam2)
{
    auto* const pLibrary = static_cast<SheetLibrary*>(hComPropSheet);
    switch (uiFunction)
    {
    case CPSFUNC_ADD_HPROPSHEETPAGE:
        return pLibrary->AddPage(reinterpret_cast<HPROPSHEETPAGE>(lParam1));
    case CPSFUNC_ADD_PROPSHEETPAGEW:
        return pLibrary->AddPage(CreatePropertySheetPageW(reinterpret_cast<const PROPSHEETPAGEW*>(lParam1)));
    case CPSFUNC_GET_PAGECOUNT:
        return static_cast<LONG_PTR>(pLibrary->m_pages.size());
    case CPSFUNC_SET_RESULT:
        return pLibrary->SetResult(lParam1, lParam2);
    default:
        pLibrary->m_outcome.refusals.push_back(uiFunction);
        return 0;
    }
}

LONG_PTR SheetLibrary::AddPage(HPROPSHEETPAGE hPage)
{
    if (hPage == nullptr || m_pages.size() == MAXPROPPAGES)
    {
        return 0;
    }
    m_pages.push_back(std::make_unique<Page>(Page{hPage}));
    return reinterpret_cast<LONG_PTR>(m_pages.back().get());
}

LONG_PTR SheetLibrary::SetResult(LPARAM hPage, LPARAM lResult)
{
    const bool bKnown = std::any_of(m_pages.begin(), m_pages.end(), [hPage](const std::unique_ptr<Page>& pPage) {
        return reinterpret_cast<LPARAM>(pPage.get()) == hPage;
    });
    if (hPage != 0 && !bKnown)
    {
        return kInvalidHandle;
    }
    SETRESULT_INFO result = {};
    result.cbSize = sizeof(result);
    result.hSetResult = reinterpret_cast<HANDLE>(hPage);
    result.Result = lResult;
    m_outcome.lDeliveryReturn = Call(PROPSHEETUI_REASON_SET_RESULT, reinterpret_cast<LPARAM>(&result));
    ++m_outcome.uiDeliveries;
    return 1; // functions called: the sheet has one
}

void SheetLibrary::ShowSheet(const PROPSHEETUI_INFO_HEADER& header, const std::wstring& strTitle)
{
    std::vector<HPROPSHEETPAGE> pages;
    for (const auto& pPage : m_pages)
    {
        pages.push_back(pPage->hPage);
    }
    PROPSHEETHEADERW sheet = {};
    sheet.dwSize = sizeof(sheet);
    sheet.dwFlags = PSH_USECALLBACK;
    sheet.pfnCallback = &UsePagesFont;
    sheet.dwFlags |= (header.Flags & PSUIHDRF_NOAPPLYNOW) != 0 ? PSH_NOAPPLYNOW : 0;
    sheet.dwFlags |= (header.Flags & PSUIHDRF_PROPTITLE) != 0 ? PSH_PROPTITLE : 0;
    sheet.hwndParent = header.hWndParent;
    sheet.hInstance = header.hInst;
    sheet.pszCaption = header.pTitle != nullptr ? header.pTitle : strTitle.c_str();
    sheet.nPages = static_cast<UINT>(pages.size());
    sheet.phpage = pages.data();
    m_outcome.iSheetReturn = PropertySheetW(&sheet);
}

void SheetLibrary::DestroyPages()
{
    for (const auto& pPage : m_pages)
    {
        DestroyPropertySheetPage(pPage->hPage);
    }
    m_pages.clear();
}

} // namespace VelHost
