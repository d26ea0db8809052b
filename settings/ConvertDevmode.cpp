#include "settings/ConvertDevmode.h"

#include "diag/LogSite.h"
#include "settings/DefaultRecord.h"
#include "settings/DriverDevmode.h"
#include "settings/NoWaterPrint.h"
#include "support/module/PrinterInterface.h"

#include <algorithm>
#include <cstring>

VELUI_SOURCE_MODULE("VelUI");

namespace
{

/// CDM_CONVERT: into a record whose own header tells its size.
/// Required: a buffer that is too small gets 87 here and not 122, and the caller is not told the size. A caller of this
/// mode has declared the size itself.
BOOL ConvertToDeclared(PDEVMODEW pdmIn, PDEVMODEW pdmOut, PLONG pcbNeeded)
{
    LOG_DEBUG("fMode = CDM_CONVERT");
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
    LOG_DEBUG("fMode = CDM_CONVERT351");
    if (*pcbNeeded < kConvert351Size || pdmOut == nullptr)
    {
        *pcbNeeded = kConvert351Size;
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    if (ConvertDevmode(pdmIn, pdmOut) != 0)
    {
        // Required: no last error is set; the caller's own stays, and only the log tells.
        LOG_ERROR("ConvertDevmode failed.");
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
    // Required: unsigned, on the sign-extended value, so that a negative size counts as a huge buffer: a caller that
    // passes -1 for "large enough" gets its record.
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
    record.dwNoWaterPrint = ReadNoWaterPrintOrWarn();
    *pcbNeeded = kRecordSize;
    std::memcpy(pdmOut, &record, kRecordSize);
}

BOOL RefuseMode(DWORD fMode)
{
    LOG_ERROR("Unexpected fMode : %u", static_cast<unsigned>(fMode));
    SetLastError(ERROR_INVALID_DATA);
    return 0;
}

} // namespace

int ConvertDevmode(DEVMODEW* pstuIn, DEVMODEW* pstuOut)
{
    FunctionScope scope("ConvertDevmode");
    TRACE_ARGUMENTS(scope, pstuIn, pstuOut);

    if (pstuIn == nullptr || pstuOut == nullptr)
    {
        return 1;
    }

    const WORD wSpecVersion = pstuOut->dmSpecVersion;
    const WORD wDriverVersion = pstuOut->dmDriverVersion;
    const WORD wSize = pstuOut->dmSize;
    const WORD wDriverExtra = pstuOut->dmDriverExtra;

    // The input's words are read before the copy, which may overwrite them when both pointers name one record.
    const WORD wInSize = pstuIn->dmSize;
    const WORD wInDriverExtra = pstuIn->dmDriverExtra;

    const size_t cbPublic = std::min(wSize, wInSize);
    std::memmove(pstuOut, pstuIn, cbPublic);

    // The output keeps its own header. Field by field, since a declared size may end within the header.
    pstuOut->dmSpecVersion = wSpecVersion;
    pstuOut->dmDriverVersion = wDriverVersion;
    pstuOut->dmSize = wSize;
    pstuOut->dmDriverExtra = wDriverExtra;

    // Tails are matched by position from their own start, whatever the public sizes are.
    const size_t cbTail = std::min(wDriverExtra, wInDriverExtra);
    std::memmove(reinterpret_cast<BYTE*>(pstuOut) + wSize, reinterpret_cast<BYTE*>(pstuIn) + wInSize, cbTail);

    return cbPublic + cbTail > 0 ? 0 : 1;
}

EntryAnswer<BOOL> ConvertByMode(PDEVMODEW pdmIn, PDEVMODEW pdmOut, PLONG pcbNeeded, DWORD fMode)
{
    switch (fMode)
    {
    case CDM_CONVERT:
        return {ConvertToDeclared(pdmIn, pdmOut, pcbNeeded)};
    case CDM_CONVERT351:
        return {Convert351(pdmIn, pdmOut, pcbNeeded)};
    case CDM_DRIVER_DEFAULT:
        LOG_DEBUG("fMode = CDM_DRIVER_DEFAULT");
        if (!HasRoomForDefault(pdmOut, pcbNeeded))
        {
            // Required: without the result line. It is the spooler's question for the size, which is no failure.
            return EntryAnswer<BOOL>::Silent(0);
        }
        DeliverDefault(pdmOut, pcbNeeded);
        return {1};
    default:
        return {RefuseMode(fMode)};
    }
}
