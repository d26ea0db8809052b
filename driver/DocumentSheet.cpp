#include "driver/DocumentSheet.h"

#include "diag/LogSite.h"
#include "driver/DocumentRecord.h"
#include "driver/ResidentClient.h"
#include "settings/DefaultRecord.h"
#include "settings/PaperCatalogue.h"
#include "settings/SheetData.h"
#include "state/ClientConfig.h"
#include "support/ModuleTexts.h"
#include "support/Resource.h"
#include "ui/AboutPage.h"
#include "ui/AdvancedPage.h"
#include "ui/SettingsPage.h"
#include "ui/SheetPages.h"

#include <cstdlib>
#include <cstring>
#include <string>

VELUI_SOURCE_MODULE("VelUI");

namespace
{

constexpr LONG kFailed = -1;

/// A sheet's memory is made and freed by hand, in the order and with the leaks that are wanted; each block starts as 0.
template <typename T>
T* AllocateZeroed(size_t uiCount = 1)
{
    return static_cast<T*>(std::calloc(uiCount, sizeof(T)));
}

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
/// Required: whether there was memory for it is not asked.
void MakeInRecord(stuPassData* pstuPassData, PPROPSHEETUI_INFO pPSUIInfo)
{
    pstuPassData->pdmIn = AllocateZeroed<stuDrvDevmode>();
    if (HeaderOf(pPSUIInfo)->pdmIn != nullptr)
    {
        LOG_DEBUG("(DEVMODE *)((DOCUMENTPROPERTYHEADER *)(pPSUIInfo->lParamInit))->pdmIn = %s\n",
                  ToLogText(HeaderOf(pPSUIInfo)->pdmIn).c_str());
        // Required: the public part only; the caller's tail is not taken over.
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
    // Required: the other record is tested, not this one.
    if (pstuPassData->pdmIn != nullptr)
    {
        std::memcpy(pstuPassData->pdmOut, pstuPassData->pdmIn, kRecordSize);
        return;
    }
    LOG_INFO("SubSetDevMode to pstuPassData->pdmOut");
    SubSetDevMode(pstuPassData->pdmOut);
    LOG_DEBUG("pstuPassData->pdmOut->stuDevmode = %s\n", ToLogText(pstuPassData->pdmOut->stuDevmode).c_str());
}

void ReadNoWaterPrint(stuPassData* pstuPassData)
{
    DWORD dwNoWaterPrint = 0;
    VelUtility::GetDefSetting(&dwNoWaterPrint); // a failure leaves the 0
    pstuPassData->pdmOut->dwNoWaterPrint = dwNoWaterPrint;
}

/// Describes the three pages. @return whether there was memory for them.
bool DescribePages(OpeningPages& pages, stuPassData* pstuPassData)
{
    pages.pSet = AllocateZeroed<PROPSHEETPAGEW>();
    if (pages.pSet == nullptr)
    {
        return false;
    }
    SubLoadString(IDS_TITLE_ABOUT, pages.strAboutTitle);
    SubLoadString(IDS_TITLE_SETTINGS, pages.strSetTitle);
    SubLoadString(IDS_TITLE_ADVANCED, pages.strSeniorTitle);
    ReadNoWaterPrint(pstuPassData);

    const auto lParam = reinterpret_cast<LPARAM>(pstuPassData);
    FillPage(pages.pSet, IDD_SETTINGS, ProSetPage, pages.strSetTitle.c_str(), lParam);
    pages.pSenior = AllocateZeroed<PROPSHEETPAGEW>();
    if (pages.pSenior == nullptr)
    {
        return false;
    }
    FillPage(pages.pSenior, IDD_ADVANCED, ProSeniorPage, pages.strSeniorTitle.c_str(), lParam);
    pages.pAbout = AllocateZeroed<PROPSHEETPAGEW>();
    if (pages.pAbout == nullptr)
    {
        return false;
    }
    FillPage(pages.pAbout, IDD_ABOUT, ProAbouPage, pages.strAboutTitle.c_str(), 0);
    return true;
}

/// Builds the list of papers. @return whether there was memory for it.
bool MakePaperList(stuPassData* pstuPassData)
{
    const DWORD dwPapers = GetPaperInfoList(nullptr); // 0 without a snapshot
    const size_t uiEntries = size_t{dwPapers} + 1;
    // Required: nobody ever frees the list of a sheet.
    pstuPassData->pstuPaperInfo = dwPapers <= kMostPapers ? AllocateZeroed<stuPaperInfo>(uiEntries) : nullptr;
    if (pstuPassData->pstuPaperInfo == nullptr)
    {
        LOG_ERROR("malloc failed. size = %u", static_cast<unsigned>(uiEntries * sizeof(stuPaperInfo)));
        return false;
    }
    // Required: a failure is not asked for; its 0xFFFFFFFF makes a count of 0.
    pstuPassData->dwCount = GetPaperInfoList(pstuPassData->pstuPaperInfo, dwPapers) + 1;
    return true;
}

/// Adds one page. @return its handle; 0, with a log line, when it was refused.
LONG_PTR AddPage(PPROPSHEETUI_INFO pPSUIInfo, const PROPSHEETPAGEW* pPage)
{
    const LONG_PTR lHandle = SubAddpropertySheet(pPSUIInfo, pPage);
    if (lHandle == 0)
    {
        LOG_ERROR_WORDS("SubAddpropertySheet returns NULL");
    }
    return lHandle;
}

bool AddPages(PPROPSHEETUI_INFO pPSUIInfo, const OpeningPages& pages, stuPassData* pstuPassData)
{
    pstuPassData->pfnComPropSheet = pPSUIInfo->pfnComPropSheet;
    pstuPassData->hComPropSheet = pPSUIInfo->hComPropSheet;
    pstuPassData->bPassResult = 1;
    pstuPassData->hSetPage = AddPage(pPSUIInfo, pages.pSet);
    if (pstuPassData->hSetPage == 0)
    {
        return false;
    }
    pstuPassData->hSeniorPage = AddPage(pPSUIInfo, pages.pSenior);
    return pstuPassData->hSeniorPage != 0 && AddPage(pPSUIInfo, pages.pAbout) != 0;
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
        return kFailed;
    }
    MakeInRecord(pstuPassData, pPSUIInfo);
    MakeOutRecord(pstuPassData);
    OpeningPages pages;
    if (!DescribePages(pages, pstuPassData))
    {
        // Required: what was made so far stays allocated, and the caller's UserData as it was.
        return kFailed;
    }
    const bool bOpen = MakePaperList(pstuPassData) && AddPages(pPSUIInfo, pages, pstuPassData);
    // Read before the data goes: the address is handed out even then.
    const auto ulUserData = reinterpret_cast<ULONG_PTR>(pstuPassData);
    if (!bOpen)
    {
        // Required: the list of papers is not freed with the rest.
        FreeSheetData(pstuPassData);
    }
    std::free(pages.pSet);
    std::free(pages.pSenior);
    std::free(pages.pAbout);
    // Required: after a failure too, and then it is the address of what has just been freed.
    pPSUIInfo->UserData = ulUserData;
    pPSUIInfo->Result = 0;
    return bOpen ? 1 : kFailed;
}

LONG EndSheet(PPROPSHEETUI_INFO pPSUIInfo)
{
    LOG_INFO("DrvDocumentPropertySheets - pPSUIInfo->Reason = PROPSHEETUI_REASON_DESTROY");
    // Required: not tested for null, and the list of papers stays allocated.
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
        return kFailed;
    }
    if (pstuPassData->bPassResult != 0)
    {
        // Required: the whole record, whatever room the caller declared.
        std::memcpy(HeaderOf(pPSUIInfo)->pdmOut, pstuPassData->pdmOut, kRecordSize);
    }
    return 1;
}

} // namespace

SheetAnswer PlayDocumentSheet(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    LOG_INFO("DrvDocumentPropertySheets - interactive by property pages");
    if (pPSUIInfo->lParamInit == 0)
    {
        const LONG lReturn = kFailed;
        LOG_DEBUG("lReturn = %u", static_cast<unsigned>(lReturn));
        LOG_WARNING_WORDS("DrvDocumentPropertySheets - NULL == (DOCUMENTPROPERTYHEADER *)(pPSUIInfo->lParamInit)");
        return {lReturn, false};
    }
    switch (pPSUIInfo->Reason)
    {
    case PROPSHEETUI_REASON_INIT:
        return {OpenSheet(pPSUIInfo)};
    case PROPSHEETUI_REASON_GET_INFO_HEADER:
        // Required: the header is left to the library.
        LOG_INFO("DrvDocumentPropertySheets - pPSUIInfo->Reason = PROPSHEETUI_REASON_GET_INFO_HEADER");
        return {1};
    case PROPSHEETUI_REASON_DESTROY:
        return {EndSheet(pPSUIInfo)};
    case PROPSHEETUI_REASON_SET_RESULT:
        return {DeliverResult(pPSUIInfo, reinterpret_cast<const SETRESULT_INFO*>(lParam)), false};
    default:
        LOG_WARNING("Unexpected condition. pPSUIInfo->Reason = %d", static_cast<int>(pPSUIInfo->Reason));
        return {kFailed};
    }
}

/// The settings of a document: a sheet with three pages, or, without one, the record's size or the record itself.
/// @param pPSUIInfo the sheet library's call; null asks for a record instead.
/// @param lParam    without pPSUIInfo a DOCUMENTPROPERTYHEADER; else what goes with the reason.
/// @return 1 or -1; the size in bytes, 232, when that was asked for.
extern "C" LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    CheckResidentClient();
    TRACE_FUNCTION("DrvDocumentPropertySheets");
    LOG_INVOKED();
    SheetAnswer answer{1};
    if (pPSUIInfo == nullptr)
    {
        LOG_DEBUG("pPSUIInfo = 0x%08X", LowBits(pPSUIInfo));
        answer.lReturn = AnswerDocumentRecord(reinterpret_cast<PDOCUMENTPROPERTYHEADER>(lParam));
    }
    else
    {
        answer = PlayDocumentSheet(pPSUIInfo, lParam);
    }
    if (answer.bLogged)
    {
        const LONG lReturn = answer.lReturn;
        LOG_RESULT(lReturn);
    }
    return answer.lReturn;
}
