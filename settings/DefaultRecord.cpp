#include "settings/DefaultRecord.h"

#include "diag/LogSite.h"
#include "settings/PaperInfo.h"
#include "state/CapabilitySnapshot.h"
#include "state/DataFiles.h"
#include "support/Memory.h"
#include "support/module/ModuleTexts.h"
#include "support/module/Resource.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>

VELUI_SOURCE_MODULE("SubVelUi");

namespace
{

void SetHardcodedDefault(DEVMODEW& stuDevmode)
{
    stuDevmode = {};
    std::wstring strName;
    SubLoadString(IDS_DEVICE_NAME, strName);
    wcsncpy_s(stuDevmode.dmDeviceName, strName.c_str(), _TRUNCATE);
    stuDevmode.dmSpecVersion = kSpecVersion;
    stuDevmode.dmDriverVersion = kDriverVersion;
    stuDevmode.dmSize = kDevmodeSize;
    stuDevmode.dmDriverExtra = kDriverExtra;
    stuDevmode.dmFields = DM_ORIENTATION | DM_PAPERSIZE | DM_COPIES | DM_COLOR | DM_DUPLEX | DM_COLLATE;
    stuDevmode.dmOrientation = DMORIENT_PORTRAIT;
    stuDevmode.dmPaperSize = SubSetDefPaperSize();
    stuDevmode.dmCopies = 1;
    stuDevmode.dmColor = DMCOLOR_MONOCHROME;
    stuDevmode.dmDuplex = DMDUP_SIMPLEX;
    stuDevmode.dmCollate = DMCOLLATE_FALSE;
}

} // namespace

int SubSetDevMode(stuDrvDevmode* stuDefDev)
{
    FunctionScope scope("SubSetDevMode");
    TRACE_ARGUMENT_AS(scope, "stuDefDev", &stuDefDev->stuDevmode);
    if (VelUtility::GetDevDef(&stuDefDev->stuDevmode) == VelUtility::PSERR_OK)
    {
        // The file's bytes as they stand: nothing in them is forced.
        LOG_DEBUG("Set default DEVMODE read from file.");
        return 1;
    }
    LOG_DEBUG("Set hardcode default DEVMODE");
    SetHardcodedDefault(stuDefDev->stuDevmode);
    return 1;
}

short SubSetDefPaperSize()
{
    const FunctionScope scope("SubSetDefPaperSize");
    const DWORD dwListed = VelUtility::GetComputerCaps(DC_PAPERS, nullptr);
    if (dwListed == VelUtility::kNoAnswer || dwListed == 0)
    {
        return DMPAPER_A4;
    }
    const DWORD dwCount = std::min(dwListed, kMostPapers);
    const MallocPtr<WORD[]> pPapers(static_cast<WORD*>(std::malloc(sizeof(WORD) * dwCount)));
    if (!pPapers || VelUtility::GetComputerCaps(DC_PAPERS, pPapers.get(), dwCount) == VelUtility::kNoAnswer)
    {
        return DMPAPER_A4;
    }
    const WORD* const pEnd = pPapers.get() + dwCount;
    const bool bHasA4 = std::find(pPapers.get(), const_cast<WORD*>(pEnd), WORD{DMPAPER_A4}) != pEnd;
    return bHasA4 ? short{DMPAPER_A4} : static_cast<short>(pPapers[0]);
}

int SubConvertDevmodeOut(DEVMODEW stuDefDev, const DEVMODEW* pstuDevIn, DEVMODEW* pstuDevOut)
{
    FunctionScope scope("SubConvertDevmodeOut");
    TRACE_ARGUMENTS(scope, stuDefDev, pstuDevIn, pstuDevOut);
    if (pstuDevOut == nullptr)
    {
        LOG_ERROR("NULL == pstuDevOut");
        return 0;
    }
    if (pstuDevIn == nullptr)
    {
        LOG_INFO("SubConvertDevmodeOut - Input DEVMODE is null, copy default devmode to output buffer.");
        // A default from a file may declare more bytes than it has here.
        std::memcpy(pstuDevOut, &stuDefDev, std::min<size_t>(stuDefDev.dmSize, sizeof(stuDefDev)));
        return 1;
    }
    LOG_INFO("SubConvertDevmodeOut - Merge DEVMODE");

    // Required: the two tie-breaks differ. With equal sizes the input's version stands, with equal extras the
    // default's: the public part is the application's, the tail the driver's.
    const bool bSizeOfInput = pstuDevIn->dmSize <= stuDefDev.dmSize;
    const bool bExtraOfInput = pstuDevIn->dmDriverExtra < stuDefDev.dmDriverExtra;
    const WORD wSpec = bSizeOfInput ? pstuDevIn->dmSpecVersion : stuDefDev.dmSpecVersion;
    const WORD wSize = bSizeOfInput ? pstuDevIn->dmSize : stuDefDev.dmSize;
    const WORD wVersion = bExtraOfInput ? pstuDevIn->dmDriverVersion : stuDefDev.dmDriverVersion;
    const WORD wExtra = bExtraOfInput ? pstuDevIn->dmDriverExtra : stuDefDev.dmDriverExtra;

    std::memmove(pstuDevOut, pstuDevIn, std::min(pstuDevIn->dmSize, stuDefDev.dmSize));
    pstuDevOut->dmSize = std::min(pstuDevOut->dmSize, wSize);
    pstuDevOut->dmSpecVersion = wSpec;
    pstuDevOut->dmDriverExtra = std::min(pstuDevOut->dmDriverExtra, wExtra);
    pstuDevOut->dmDriverVersion = wVersion;
    return 1;
}
