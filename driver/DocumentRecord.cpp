#include "driver/DocumentRecord.h"

#include "diag/LogSite.h"
#include "settings/DefaultRecord.h"
#include "settings/DriverDevmode.h"
#include "state/ClientConfig.h"
#include "state/StoreTypes.h"

VELUI_SOURCE_MODULE("VelUI");

namespace
{

constexpr LONG kFailed = -1;

/// dmDriverExtra from which on the no-watermark request is written.
/// Required: one word of the tail is enough, although the request is the second.
constexpr WORD kExtraWithRequest = 4;

/// Puts the user's stored request into a record.
void WriteNoWaterPrint(DEVMODEW* pdmOut)
{
    DWORD dwNoWaterPrint = 0;
    if (VelUtility::GetDefSetting(&dwNoWaterPrint) != VelUtility::PSERR_OK)
    {
        // No dialog is shown: the words are the line's only.
        LOG_WARNING_WORDS("GetDefSetting failed. Popup confirm dialog.");
    }
    reinterpret_cast<stuDrvDevmode*>(pdmOut)->dwNoWaterPrint = dwNoWaterPrint;
}

LONG FillRecord(PDOCUMENTPROPERTYHEADER pDPHdr)
{
    stuDrvDevmode stuDefDev = {};
    if (const int iResult = SubSetDevMode(&stuDefDev); iResult == 0)
    {
        LOG_ERROR("SubSetDevMode returns %d", iResult);
        return kFailed;
    }
    LOG_DEBUG("stuDefDev = %s\n", ToLogText(stuDefDev.stuDevmode).c_str());
    LOG_DEBUG("pDPHdr->pdmIn = %s\n", ToLogText(pDPHdr->pdmIn).c_str());
    LOG_DEBUG("pDPHdr->pdmOut = 0x%08X", LowBits(pDPHdr->pdmOut));
    LOG_DEBUG("pDPHdr->cbOut = %u", static_cast<unsigned>(pDPHdr->cbOut));
    const int iMerged = SubConvertDevmodeOut(stuDefDev.stuDevmode, pDPHdr->pdmIn, pDPHdr->pdmOut);
    LOG_DEBUG("pDPHdr->pdmOut = %s\n", ToLogText(pDPHdr->pdmOut).c_str());
    if (pDPHdr->pdmOut->dmDriverExtra >= kExtraWithRequest)
    {
        WriteNoWaterPrint(pDPHdr->pdmOut);
    }
    return iMerged != 0 ? 1 : kFailed;
}

} // namespace

LONG AnswerDocumentRecord(PDOCUMENTPROPERTYHEADER pDPHdr)
{
    LOG_INFO("DrvDocumentPropertySheets - background interactive");
    if (pDPHdr == nullptr)
    {
        LOG_WARNING_WORDS("NULL == pDPHdr");
        return kFailed;
    }
    if (pDPHdr->fMode == 0 || pDPHdr->pdmOut == nullptr)
    {
        pDPHdr->cbOut = kRecordSize;
        LOG_INFO("DrvDocumentPropertySheets - Get devmode size : %u", static_cast<unsigned>(kRecordSize));
        return kRecordSize;
    }
    if ((pDPHdr->fMode & (DM_UPDATE | DM_COPY)) != 0 && (pDPHdr->fMode & DM_NOPERMISSION) == 0)
    {
        return FillRecord(pDPHdr);
    }
    LOG_WARNING_WORDS("DrvDocumentPropertySheets - unexpected condition");
    return kFailed;
}
