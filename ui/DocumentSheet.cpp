#include "ui/DocumentSheet.h"

#include "diag/LogSite.h"
#include "settings/DefaultRecord.h"
#include "settings/NoWaterPrint.h"
#include "settings/PaperCatalogue.h"
#include "support/Memory.h"
#include "support/module/ModuleTexts.h"
#include "ui/SheetData.h"
#include "ui/SheetPages.h"

#include <cstdlib>
#include <cstring>
#include <string>

VELUI_SOURCE_MODULE("VelUI");

namespace
{

// A sheet's memory is made and freed by hand, in the order and with the leaks that are wanted; each block starts as 0.

PDOCUMENTPROPERTYHEADER HeaderOf(PPROPSHEETUI_INFO pPSUIInfo)
{
    return reinterpret_cast<PDOCUMENTPROPERTYHEADER>(pPSUIInfo->lParamInit);
}

/// The descriptions and titles of a sheet's pages while it opens.
struct OpeningPages
{
    PROPSHEETPAGEW* pSet = nullptr;
    PROPSHEETPAGEW* pSenior = nullptr;
    PROPSHEETPAGEW* pAbout = nullptr;
    std::wstring strAboutTitle;
    std::wstring strSetTitle;
    std::wstring strSeniorTitle;
};

/// Makes the record that the pages start from.
/// Required: whether there was memory for it is not asked: without it the process faults at once, where the cause is
/// still to be seen.
void MakeInRecord(stuPassData* pstuPassData, PPROPSHEETUI_INFO pPSUIInfo)
{
    pstuPassData->pdmIn = AllocateZeroed<stuDrvDevmode>();
    if (HeaderOf(pPSUIInfo)->pdmIn != nullptr)
    {
        LOG_DEBUG("(DEVMODE *)((DOCUMENTPROPERTYHEADER *)(pPSUIInfo->lParamInit))->pdmIn = %s\n",
                  ToLogText(HeaderOf(pPSUIInfo)->pdmIn).c_str());
        // Required: the public part only; the caller's tail is not taken over, since an application may hand in less
        // than a whole record.
        std::memcpy(&pstuPassData->pdmIn->stuDevmode, HeaderOf(pPSUIInfo)->pdmIn, kDevmodeSize);
        return;
    }
    LOG_INFO("SubSetDevMode to pstuPassData->pdmIn");
    SubSetDevMode(pstuPassData->pdmIn);
    LOG_DEBUG("pstuPassData->pdmIn->stuDevmode = %s\n", ToLogText(pstuPassData->pdmIn->stuDevmode).c_str());
}

/// Makes the record that the pages write.
void MakeOutRecord(stuPassData* pstuPassData)
{
    pstuPassData->pdmOut = AllocateZeroed<stuDrvDevmode>();
    // Required: the other record is tested, not this one; this one's own failure faults, as told above.
    if (pstuPassData->pdmIn != nullptr)
    {
        std::memcpy(pstuPassData->pdmOut, pstuPassData->pdmIn, kRecordSize);
        return;
    }
    LOG_INFO("SubSetDevMode to pstuPassData->pdmOut");
    SubSetDevMode(pstuPassData->pdmOut);
    LOG_DEBUG("pstuPassData->pdmOut->stuDevmode = %s\n", ToLogText(pstuPassData->pdmOut->stuDevmode).c_str());
}

/// Gives the working record the user's stored request; 0 when it can't be read, of which nothing is logged here.
void TakeNoWaterPrint(stuPassData* pstuPassData)
{
    pstuPassData->pdmOut->dwNoWaterPrint = ReadNoWaterPrint().value_or(0);
}

/// Loads the pages' titles, in the order of their numbers.
void LoadTitles(OpeningPages& pages)
{
    SubLoadString(kAboutPage.uiTitle, pages.strAboutTitle);
    SubLoadString(kSettingsPage.uiTitle, pages.strSetTitle);
    SubLoadString(kAdvancedPage.uiTitle, pages.strSeniorTitle);
}

/// Describes the three pages; the first has its memory already. @return whether there was memory for them.
bool DescribePages(OpeningPages& pages, stuPassData* pstuPassData)
{
    FillPage(pages.pSet, kSettingsPage, pages.strSetTitle.c_str(), pstuPassData);
    pages.pSenior = AllocateZeroed<PROPSHEETPAGEW>();
    if (pages.pSenior == nullptr)
    {
        return false;
    }
    FillPage(pages.pSenior, kAdvancedPage, pages.strSeniorTitle.c_str(), pstuPassData);
    pages.pAbout = AllocateZeroed<PROPSHEETPAGEW>();
    if (pages.pAbout == nullptr)
    {
        return false;
    }
    FillPage(pages.pAbout, kAboutPage, pages.strAboutTitle.c_str());
    return true;
}

/// All that opens a sheet between its data and its list of papers. @return whether there was memory for the pages.
bool MakePages(OpeningPages& pages, stuPassData* pstuPassData)
{
    pages.pSet = AllocateZeroed<PROPSHEETPAGEW>();
    if (pages.pSet == nullptr)
    {
        return false;
    }
    LoadTitles(pages);
    TakeNoWaterPrint(pstuPassData);
    return DescribePages(pages, pstuPassData);
}

/// Builds the list of papers. @return whether there was memory for it.
bool MakePaperList(stuPassData* pstuPassData)
{
    const DWORD dwPapers = GetPaperInfoList(nullptr); // 0 without a snapshot
    const size_t uiEntries = size_t{dwPapers} + 1;
    // Required: nobody ever frees the list of a sheet; a page that outlives DESTROY may still read it.
    pstuPassData->pstuPaperInfo = AllocateZeroed<stuPaperInfo>(uiEntries);
    if (pstuPassData->pstuPaperInfo == nullptr)
    {
        LOG_ERROR("malloc failed. size = %u", static_cast<unsigned>(uiEntries * sizeof(stuPaperInfo)));
        return false;
    }
    // Required: a failure is not asked for; its 0xFFFFFFFF makes a count of 0, and the sheet opens with an empty list.
    pstuPassData->dwCount = GetPaperInfoList(pstuPassData->pstuPaperInfo, dwPapers) + 1;
    return true;
}

bool AddPages(PPROPSHEETUI_INFO pPSUIInfo, const OpeningPages& pages, stuPassData* pstuPassData)
{
    pstuPassData->pfnComPropSheet = pPSUIInfo->pfnComPropSheet;
    pstuPassData->hComPropSheet = pPSUIInfo->hComPropSheet;
    pstuPassData->bPassResult = 1;
    pstuPassData->hSetPage = AddLoggedPage(pPSUIInfo, pages.pSet);
    if (pstuPassData->hSetPage == 0)
    {
        return false;
    }
    pstuPassData->hSeniorPage = AddLoggedPage(pPSUIInfo, pages.pSenior);
    return pstuPassData->hSeniorPage != 0 && AddLoggedPage(pPSUIInfo, pages.pAbout) != 0;
}

void FreeSheetData(stuPassData* pstuPassData)
{
    std::free(pstuPassData->pdmOut);
    std::free(pstuPassData->pdmIn);
    std::free(pstuPassData);
}

LONG OpenSheet(PPROPSHEETUI_INFO pPSUIInfo)
{
    LOG_INFO("DrvDocumentPropertySheets - pPSUIInfo->Reason = PROPSHEETUI_REASON_INIT");
    auto* const pstuPassData = AllocateZeroed<stuPassData>();
    if (pstuPassData == nullptr)
    {
        return kSheetFailed;
    }
    MakeInRecord(pstuPassData, pPSUIInfo);
    MakeOutRecord(pstuPassData);
    OpeningPages pages;
    if (!MakePages(pages, pstuPassData))
    {
        // Required: what was made so far stays allocated, and the caller's UserData as it was, without
        // memory nothing more is touched.
        return kSheetFailed;
    }
    const bool bOpen = MakePaperList(pstuPassData) && AddPages(pPSUIInfo, pages, pstuPassData);
    // Read before the data goes: the address is handed out even then.
    const auto ulUserData = reinterpret_cast<ULONG_PTR>(pstuPassData);
    if (!bOpen)
    {
        // Required: the list of papers is not freed with the rest, as in a sheet that ends.
        FreeSheetData(pstuPassData);
    }
    std::free(pages.pSet);
    std::free(pages.pSenior);
    std::free(pages.pAbout);
    // Required: after a failure too, and then it is the address of what has just been freed. A
    // DESTROY behind a failed INIT is not provided for.
    pPSUIInfo->UserData = ulUserData;
    pPSUIInfo->Result = 0;
    return bOpen ? 1 : kSheetFailed;
}

LONG EndSheet(PPROPSHEETUI_INFO pPSUIInfo)
{
    LOG_INFO("DrvDocumentPropertySheets - pPSUIInfo->Reason = PROPSHEETUI_REASON_DESTROY");
    // Required: not tested for null: a fault here tells of a DESTROY without an INIT.
    // The list of papers stays allocated.
    FreeSheetData(reinterpret_cast<stuPassData*>(pPSUIInfo->UserData));
    pPSUIInfo->UserData = 0;
    return 1;
}

LONG DeliverResult(PPROPSHEETUI_INFO pPSUIInfo, const SETRESULT_INFO* pResult)
{
    LOG_INFO("DrvDocumentPropertySheets - pPSUIInfo->Reason = PROPSHEETUI_REASON_SET_RESULT");
    if (pResult->Result != CPSUI_OK)
    {
        return 1;
    }
    const auto* const pstuPassData = reinterpret_cast<const stuPassData*>(pPSUIInfo->UserData);
    if (pstuPassData == nullptr)
    {
        return kSheetFailed;
    }
    if (pstuPassData->bPassResult != 0)
    {
        // Required: the whole record, whatever size the caller declared: it was told 232 bytes before.
        std::memcpy(HeaderOf(pPSUIInfo)->pdmOut, pstuPassData->pdmOut, kRecordSize);
    }
    return 1;
}

} // namespace

EntryAnswer<LONG> PlayDocumentSheet(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    LOG_INFO("DrvDocumentPropertySheets - interactive by property pages");
    if (pPSUIInfo->lParamInit == 0)
    {
        LOG_DEBUG("lReturn = %u", static_cast<unsigned>(kSheetFailed));
        LOG_WARNING("DrvDocumentPropertySheets - NULL == (DOCUMENTPROPERTYHEADER *)(pPSUIInfo->lParamInit)");
        return EntryAnswer<LONG>::Silent(kSheetFailed);
    }
    switch (pPSUIInfo->Reason)
    {
    case PROPSHEETUI_REASON_INIT:
        return {OpenSheet(pPSUIInfo)};
    case PROPSHEETUI_REASON_GET_INFO_HEADER:
        // Required: the header is left to the library, which so shows its own title.
        LOG_INFO("DrvDocumentPropertySheets - pPSUIInfo->Reason = PROPSHEETUI_REASON_GET_INFO_HEADER");
        return {1};
    case PROPSHEETUI_REASON_DESTROY:
        return {EndSheet(pPSUIInfo)};
    case PROPSHEETUI_REASON_SET_RESULT:
        return EntryAnswer<LONG>::Silent(DeliverResult(pPSUIInfo, reinterpret_cast<const SETRESULT_INFO*>(lParam)));
    default:
        LOG_WARNING("Unexpected condition. pPSUIInfo->Reason = %d", static_cast<int>(pPSUIInfo->Reason));
        return {kSheetFailed};
    }
}
