#include "diag/LogSite.h"
#include "driver/NoWaterPrint.h"
#include "settings/ConvertDevmode.h"
#include "settings/DefaultRecord.h"
#include "settings/DriverDevmode.h"
#include "support/PrinterInterface.h"

#include <cstring>

VELUI_SOURCE_MODULE("VelUI");

namespace
{

/// CDM_CONVERT: into a record whose own header tells its size.
/// Required: a buffer that is too small gets 87 here and not 122, and the caller is not told the size.
BOOL ConvertToDeclared(PDEVMODEW pdmIn, PDEVMODEW pdmOut, PLONG pcbNeeded)
{
    LOG_DEBUG_WORDS("fMode = CDM_CONVERT");
    if (pdmOut == nullptr || *pcbNeeded < static_cast<LONG>(DeclaredSize(*pdmOut)) ||
        ConvertDevmode(pdmIn, pdmOut) != 0)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    *pcbNeeded = static_cast<LONG>(DeclaredSize(*pdmOut));
    return 1;
}

/// CDM_CONVERT351: asks for 200 bytes and reports 200, but copies by the sizes in the output's header.
BOOL Convert351(PDEVMODEW pdmIn, PDEVMODEW pdmOut, PLONG pcbNeeded)
{
    LOG_DEBUG_WORDS("fMode = CDM_CONVERT351");
    if (*pcbNeeded < kConvert351Size || pdmOut == nullptr)
    {
        *pcbNeeded = kConvert351Size;
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    if (ConvertDevmode(pdmIn, pdmOut) != 0)
    {
        // Required: no last error is set.
        LOG_ERROR_WORDS("ConvertDevmode failed.");
        return 0;
    }
    *pcbNeeded = kConvert351Size;
    return 1;
}

/// Whether CDM_DRIVER_DEFAULT can go on; sets the last error, and the size, when not.
bool HasRoomForDefault(PDEVMODEW pdmOut, PLONG pcbNeeded)
{
    if (pcbNeeded == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    // Required: unsigned, on the sign-extended value, so that a negative size counts as a huge buffer.
    const auto uiRoom = static_cast<unsigned __int64>(static_cast<__int64>(*pcbNeeded));
    if (pdmOut == nullptr || uiRoom < kRecordSize)
    {
        *pcbNeeded = kRecordSize;
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return false;
    }
    return true;
}

/// CDM_DRIVER_DEFAULT: the current user's default record, whole.
void DeliverDefault(PDEVMODEW pdmOut, PLONG pcbNeeded)
{
    stuDrvDevmode record = {};
    SubSetDevMode(&record);
    record.dwNoWaterPrint = ReadStoredNoWaterPrint();
    *pcbNeeded = kRecordSize;
    std::memcpy(pdmOut, &record, kRecordSize);
}

BOOL RefuseMode(DWORD fMode)
{
    LOG_ERROR("Unexpected fMode : %u", static_cast<unsigned>(fMode));
    SetLastError(ERROR_INVALID_DATA);
    return 0;
}

BOOL ConvertByMode(PDEVMODEW pdmIn, PDEVMODEW pdmOut, PLONG pcbNeeded, DWORD fMode)
{
    switch (fMode)
    {
    case CDM_CONVERT:
        return ConvertToDeclared(pdmIn, pdmOut, pcbNeeded);
    case CDM_CONVERT351:
        return Convert351(pdmIn, pdmOut, pcbNeeded);
    default:
        return RefuseMode(fMode);
    }
}

} // namespace

/// Copies a device-mode record from one form to another, or delivers the default one.
/// @param pPrinterName not used.
/// @param pdmIn        record of dmSize + dmDriverExtra bytes.
/// @param pdmOut       [in, out] buffer whose own header declares its size in bytes.
/// @param pcbNeeded    [in, out] bytes at pdmOut, compared as a signed value; not tested for null.
///                     In CDM_DRIVER_DEFAULT: tested for null, and compared as an unsigned value.
/// @param fMode        one CDM_ mode; CDM_DRIVER_DEFAULT does not look at pdmIn and delivers 232 bytes.
/// @return 1; or 0 with last error 87 (CDM_CONVERT; a null pcbNeeded), 122 (too small, in the other two modes), 13 (any
///         other mode).
extern "C" BOOL WINAPI DrvConvertDevMode(LPWSTR pPrinterName, PDEVMODEW pdmIn, PDEVMODEW pdmOut, PLONG pcbNeeded,
                                         DWORD fMode)
{
    TRACE_FUNCTION("DrvConvertDevMode");
    if (IsFatalEnabled())
    {
        TRACE_ARGUMENT(pPrinterName);
        TRACE_ARGUMENT(pdmIn);
        TRACE_ARGUMENT(pdmOut);
        TRACE_ARGUMENT(pcbNeeded);
        TRACE_ARGUMENT(fMode);
    }
    LOG_INVOKED();
    // Required: the call line is handed over as the format, with no arguments behind it.
    LOG_PARAM(CallText(functionTrace).c_str());

    BOOL bReturn = 1;
    if (fMode == CDM_DRIVER_DEFAULT)
    {
        LOG_DEBUG_WORDS("fMode = CDM_DRIVER_DEFAULT");
        if (!HasRoomForDefault(pdmOut, pcbNeeded))
        {
            return 0; // Required: without the result line
        }
        DeliverDefault(pdmOut, pcbNeeded);
    }
    else
    {
        bReturn = ConvertByMode(pdmIn, pdmOut, pcbNeeded, fMode);
    }

    LOG_RESULT(bReturn);
    return bReturn;
}
