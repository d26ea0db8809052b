#include "driver/NoWaterPrint.h"

#include "diag/LogSite.h"
#include "state/ClientConfig.h"
#include "state/StoreTypes.h"

VELUI_SOURCE_MODULE("VelUI");

// No trace scope: the warning belongs to the entry point that asks.
DWORD ReadStoredNoWaterPrint()
{
    DWORD dwNoWaterPrint = 0;
    if (VelUtility::GetDefSetting(&dwNoWaterPrint) != VelUtility::PSERR_OK)
    {
        // No dialog is shown: the words are the line's only.
        LOG_WARNING_WORDS("GetDefSetting failed. Popup confirm dialog.");
        return 0;
    }
    return dwNoWaterPrint;
}
