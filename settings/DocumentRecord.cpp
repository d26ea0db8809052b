#include "settings/DocumentRecord.h"

#include "diag/LogSite.h"
#include "settings/DefaultRecord.h"
#include "settings/DriverDevmode.h"
#include "settings/NoWaterPrint.h"
#include "support/module/EntryAnswer.h"

VELUI_SOURCE_MODULE("VelUI");

namespace
{

/// dmDriverExtra from which on the no-watermark request is written.
/// Required: one word of the tail is enough, although the request is the second: what a caller with a short
/// tail gets must not change.
constexpr WORD kExtraWithRequest = 4;

LONG FillRecord(PDOCUMENTPROPERTYHEADER pDPHdr)
{
    stuDrvDevmode stuDefDev = {};
    if (const int iResult = SubSetDevMode(&stuDefDev); iResult == 0)
    {
        LOG_ERROR("SubSetDevMode returns %d", iResult);
        return kSheetFailed;
    }
    LOG_DEBUG("stuDefDev = %s\n", ToLogText(stuDefDev.stuDevmode).c_str());
    LOG_DEBUG("pDPHdr->pdmIn = %s\n", ToLogText(pDPHdr->pdmIn).c_str());
    LOG_DEBUG("pDPHdr->pdmOut = 0x%08X", LowBits(pDPHdr->pdmOut));
    LOG_DEBUG("pDPHdr->cbOut = %u", static_cast<unsigned>(pDPHdr->cbOut));
    const int iMerged = SubConvertDevmodeOut(stuDefDev.stuDevmode, pDPHdr->pdmIn, pDPHdr->pdmOut);
    LOG_DEBUG("pDPHdr->pdmOut = %s\n", ToLogText(pDPHdr->pdmOut).c_str());
    if (pDPHdr->pdmOut->dmDriverExtra >= kExtraWithRequest)
    {
        reinterpret_cast<stuDrvDevmode*>(pDPHdr->pdmOut)->dwNoWaterPrint = ReadNoWaterPrintOrWarn();
    }
    return iMerged != 0 ? 1 : kSheetFailed;
}

} // namespace

LONG AnswerDocumentRecord(PDOCUMENTPROPERTYHEADER pDPHdr)
{
    LOG_INFO("DrvDocumentPropertySheets - background interactive");
    if (pDPHdr == nullptr)
    {
        LOG_WARNING("NULL == pDPHdr");
        return kSheetFailed;
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
    LOG_WARNING("DrvDocumentPropertySheets - unexpected condition");
    return kSheetFailed;
}
