#include "diag/LogSite.h"
#include "support/ModuleTexts.h"
#include "support/PrinterInterface.h"
#include "support/Resource.h"
#include "ui/AboutPage.h"
#include "ui/SheetPages.h"

#include <cstdlib>
#include <string>

VELUI_SOURCE_MODULE("VelUI");

namespace
{

constexpr LONG kFailed = -1;

LONG OpenDeviceSheet(PPROPSHEETUI_INFO pPSUIInfo)
{
    LOG_DEBUG_WORDS("pPSUIInfo->Reason = PROPSHEETUI_REASON_INIT");
    auto* const pPage = static_cast<PROPSHEETPAGEW*>(std::malloc(sizeof(PROPSHEETPAGEW)));
    if (pPage == nullptr)
    {
        LOG_ERROR("malloc failed. size = %u", static_cast<unsigned>(sizeof(PROPSHEETPAGEW)));
        return kFailed;
    }
    std::wstring strTitle;
    SubLoadString(IDS_TITLE_ABOUT, strTitle);
    FillPage(pPage, IDD_ABOUT, ProAbouPage, strTitle.c_str(), 0);
    if (SubAddpropertySheet(pPSUIInfo, pPage) == 0)
    {
        LOG_ERROR_WORDS("SubAddpropertySheet returns NULL");
        std::free(pPage);
        return kFailed;
    }
    // Required: the page's description is neither freed nor remembered.
    return 1;
}

LONG PlayDeviceSheet(PPROPSHEETUI_INFO pPSUIInfo)
{
    switch (pPSUIInfo->Reason)
    {
    case PROPSHEETUI_REASON_INIT:
        return OpenDeviceSheet(pPSUIInfo);
    case PROPSHEETUI_REASON_GET_INFO_HEADER:
        LOG_DEBUG_WORDS("pPSUIInfo->Reason = PROPSHEETUI_REASON_GET_INFO_HEADER");
        return 1;
    case PROPSHEETUI_REASON_DESTROY:
        LOG_DEBUG_WORDS("pPSUIInfo->Reason = PROPSHEETUI_REASON_DESTROY");
        return 1;
    case PROPSHEETUI_REASON_SET_RESULT:
        LOG_DEBUG_WORDS("pPSUIInfo->Reason = PROPSHEETUI_REASON_SET_RESULT");
        return 1;
    default:
        LOG_DEBUG("Unexpected value : %d", static_cast<int>(pPSUIInfo->Reason));
        return kFailed;
    }
}

} // namespace

/// The printer's own properties: a sheet with the about page and no settings.
/// @param pPSUIInfo the sheet library's call. Neither its DEVICEPROPERTYHEADER nor its UserData is used.
/// @return 1; -1 for a failure, with last error 13 when pPSUIInfo or its lParamInit is null.
extern "C" LONG WINAPI DrvDevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM /*lParam*/)
{
    TRACE_FUNCTION("DrvDevicePropertySheets");
    LOG_INVOKED();
    if (pPSUIInfo == nullptr || pPSUIInfo->lParamInit == 0)
    {
        LOG_ERROR("pPSUIInfo = 0x%08X", LowBits(pPSUIInfo));
        // Required: no guard against the null pointer stands before this read, which so faults while errors are logged.
        LOG_ERROR("(PDEVICEPROPERTYHEADER)pPSUIInfo->lParamInit = 0x%08X",
                  static_cast<unsigned>(pPSUIInfo->lParamInit));
        SetLastError(ERROR_INVALID_DATA);
        return kFailed;
    }
    const LONG lReturn = PlayDeviceSheet(pPSUIInfo);
    LOG_RESULT(lReturn);
    return lReturn;
}
