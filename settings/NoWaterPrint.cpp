#include "settings/NoWaterPrint.h"

#include "diag/LogSite.h"
#include "state/StoreTypes.h"
#include "state/UserIniFiles.h"

VELUI_SOURCE_MODULE("VelUI");

// Neither function opens a trace scope: the lines belong to the function that asks.

std::optional<DWORD> ReadNoWaterPrint()
{
    DWORD dwNoWaterPrint = 0;
    if (VelUtility::GetDefSetting(&dwNoWaterPrint) != VelUtility::PSERR_OK)
    {
        return std::nullopt;
    }
    return dwNoWaterPrint;
}

DWORD ReadNoWaterPrintOrWarn()
{
    const std::optional<DWORD> noWaterPrint = ReadNoWaterPrint();
    if (!noWaterPrint)
    {
        // No dialog is shown: the words are the line's only.
        LOG_WARNING("GetDefSetting failed. Popup confirm dialog.");
    }
    return noWaterPrint.value_or(0);
}
