#include "ui/DeviceSheet.h"

#include "diag/LogSite.h"
#include "support/module/ModuleTexts.h"
#include "ui/SheetPages.h"

#include <cstdlib>
#include <string>

VELUI_SOURCE_MODULE("VelUI");

namespace
{

LONG OpenSheet(PPROPSHEETUI_INFO pPSUIInfo)
{
    LOG_DEBUG("pPSUIInfo->Reason = PROPSHEETUI_REASON_INIT");
    auto* const pPage = static_cast<PROPSHEETPAGEW*>(std::malloc(sizeof(PROPSHEETPAGEW)));
    if (pPage == nullptr)
    {
        LOG_ERROR("malloc failed. size = %u", static_cast<unsigned>(sizeof(PROPSHEETPAGEW)));
        return kSheetFailed;
    }
    std::wstring strTitle;
    SubLoadString(kAboutPage.uiTitle, strTitle);
    FillPage(pPage, kAboutPage, strTitle.c_str());
    if (AddLoggedPage(pPSUIInfo, pPage) == 0)
    {
        std::free(pPage);
        return kSheetFailed;
    }
    // Required: the page's description is neither freed nor remembered: a small leak a sheet, which leaves the
    // library's use of it out of question.
    return 1;
}

} // namespace

EntryAnswer<LONG> PlayDeviceSheet(PPROPSHEETUI_INFO pPSUIInfo)
{
    if (pPSUIInfo == nullptr || pPSUIInfo->lParamInit == 0)
    {
        LOG_ERROR("pPSUIInfo = 0x%08X", LowBits(pPSUIInfo));
        // Required: no guard against the null pointer stands before this read, so that a host that passes none is told
        // of by a fault as soon as the category lets errors through (a filter is asked only behind the read).
        LOG_ERROR("(PDEVICEPROPERTYHEADER)pPSUIInfo->lParamInit = 0x%08X",
                  static_cast<unsigned>(pPSUIInfo->lParamInit));
        SetLastError(ERROR_INVALID_DATA);
        return EntryAnswer<LONG>::Silent(kSheetFailed);
    }
    switch (pPSUIInfo->Reason)
    {
    case PROPSHEETUI_REASON_INIT:
        return {OpenSheet(pPSUIInfo)};
    case PROPSHEETUI_REASON_GET_INFO_HEADER:
        LOG_DEBUG("pPSUIInfo->Reason = PROPSHEETUI_REASON_GET_INFO_HEADER");
        return {1};
    case PROPSHEETUI_REASON_DESTROY:
        LOG_DEBUG("pPSUIInfo->Reason = PROPSHEETUI_REASON_DESTROY");
        return {1};
    case PROPSHEETUI_REASON_SET_RESULT:
        LOG_DEBUG("pPSUIInfo->Reason = PROPSHEETUI_REASON_SET_RESULT");
        return {1};
    default:
        LOG_DEBUG("Unexpected value : %d", static_cast<int>(pPSUIInfo->Reason));
        return {kSheetFailed};
    }
}
