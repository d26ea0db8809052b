#include "diag/LogSite.h"
#include "driver/ResidentClient.h"
#include "settings/DriverDevmode.h"
#include "state/ComputerCaps.h"
#include "state/PrinterCaps.h"
#include "state/StoreTypes.h"
#include "support/PrinterInterface.h"

VELUI_SOURCE_MODULE("VelUI");

namespace
{

/// Required: 0 is never an answer; a printer that can't do a thing and an empty list both look like a failure.
DWORD NeverZero(DWORD dwAnswer)
{
    return dwAnswer != 0 ? dwAnswer : VelUtility::kNoAnswer;
}

/// One capability: a constant of this driver, an answer from the snapshot, or a refusal.
DWORD AnswerCapability(WORD iDevCap, PVOID pvOutput)
{
    switch (iDevCap)
    {
    case DC_SIZE:
        return kDevmodeSize;
    case DC_EXTRA:
        return kDriverExtra;
    case DC_VERSION:
        return kDriverVersion;
    case DC_DRIVER:
    case DC_NUP:
        return 1;
    case DC_TRUETYPE:
        return DCTT_DOWNLOAD;
    case DC_PAPERS:
    case DC_PAPERSIZE:
    case DC_MINEXTENT:
    case DC_MAXEXTENT:
    case DC_BINS:
    case DC_DUPLEX:
    case DC_BINNAMES:
    case DC_ENUMRESOLUTIONS:
    case DC_PAPERNAMES:
    case DC_ORIENTATION:
    case DC_COPIES:
    case DC_COLLATE:
    case DC_PRINTRATE:
    case DC_PRINTRATEUNIT:
    case DC_PRINTERMEM:
    case DC_MEDIAREADY:
    case DC_PRINTRATEPPM:
    case DC_COLORDEVICE:
    case DC_MEDIATYPENAMES:
    case DC_MEDIATYPES:
        return VelUtility::GetComputerCaps(iDevCap, pvOutput);
    default:
        return VelUtility::kNoAnswer;
    }
}

/// The names of papers or media for the spooler, when its buffer is large enough.
DWORD AnswerNames(WORD DeviceCap, PVOID pvOutput, DWORD cchBuf)
{
    if (DeviceCap != DC_PAPERNAMES && DeviceCap != DC_MEDIAREADY)
    {
        return VelUtility::kNoAnswer;
    }
    const DWORD dwCount = VelUtility::GetComputerCaps(DeviceCap, nullptr);
    // Required: the size is compared in bytes although cchBuf counts characters, so callers must offer twice the room.
    // The first product is cut to 32 bits; a failed count gives a size that no cchBuf reaches.
    const DWORD dwUnits = dwCount * static_cast<DWORD>(VelUtility::kWideNameUnits);
    if (cchBuf < static_cast<unsigned __int64>(dwUnits) * 2)
    {
        return VelUtility::kNoAnswer;
    }
    return VelUtility::GetComputerCaps(DeviceCap, pvOutput);
}

} // namespace

/// Answers one capability of the printer; neither the printer nor the settings are looked at.
/// @param pvOutput [out] null, or room for the whole list (see VelUtility::GetComputerCaps).
/// @return the answer; 0xFFFFFFFF for a refused code, anything missing, and an answer of 0.
extern "C" DWORD WINAPI DrvDeviceCapabilities(HANDLE hPrinter, PWSTR pDeviceName, WORD iDevCap, PVOID pvOutput,
                                              PDEVMODEW /*pDevMode*/)
{
    // Before anything else, for every code, also for those that are then refused.
    CheckResidentClient();
    TRACE_FUNCTION("DrvDeviceCapabilities");
    LOG_INVOKED();
    LOG_DEBUG("hPrinter = 0x%08X", LowBits(hPrinter));
    LOG_DEBUG("pDeviceName = %S", pDeviceName);
    LOG_DEBUG("iDevCap = %d", iDevCap);
    LOG_DEBUG("pvOutput = 0x%08X", LowBits(pvOutput));

    const DWORD dwReturn = NeverZero(AnswerCapability(iDevCap, pvOutput));

    LOG_DEBUG("dwReturn = %u", static_cast<unsigned>(dwReturn));
    return dwReturn;
}

/// Gives the spooler the names of papers (DC_PAPERNAMES) or loaded media (DC_MEDIAREADY).
/// @param pvOutput [out] room for cchBuf wide characters; null is refused.
/// @param cchBuf   wide characters at pvOutput; twice as many are asked for as the names need.
/// @return the number of names; 0xFFFFFFFF for anything else.
extern "C" DWORD WINAPI DrvSplDeviceCaps(HANDLE hPrinter, PWSTR pwDeviceName, WORD DeviceCap, PVOID pvOutput,
                                         DWORD cchBuf, PDEVMODEW pDM)
{
    TRACE_FUNCTION("DrvSplDeviceCaps");
    if (IsFatalEnabled())
    {
        TRACE_ARGUMENT(hPrinter);
        TRACE_ARGUMENT(pwDeviceName);
        TRACE_ARGUMENT(DeviceCap);
        TRACE_ARGUMENT(pvOutput);
        TRACE_ARGUMENT(cchBuf);
        TRACE_ARGUMENT(pDM);
    }
    LOG_INVOKED();

    DWORD dwReturn = 0;
    if (cchBuf < VelUtility::kWideNameUnits || pvOutput == nullptr)
    {
        LOG_WARNING("cchBuf = %u", static_cast<unsigned>(cchBuf));
        LOG_WARNING("pvOutput = 0x%08X", LowBits(pvOutput));
        dwReturn = VelUtility::kNoAnswer;
    }
    else
    {
        LOG_DEBUG("DeviceCap = %d", DeviceCap);
        dwReturn = AnswerNames(DeviceCap, pvOutput, cchBuf);
    }
    dwReturn = NeverZero(dwReturn);

    LOG_RESULT(dwReturn);
    return dwReturn;
}
