#include "diag/LogSite.h"
#include "support/PrinterInterface.h"

VELUI_SOURCE_MODULE("VelUI");

// The sheets have no pages yet. Both entry points stand all the same, since a spooler may call them without a test for
// null, and both give the result of a sheet that can't be shown.

namespace
{

constexpr LONG kSheetFailed = -1;

} // namespace

extern "C" LONG WINAPI DrvDevicePropertySheets(PPROPSHEETUI_INFO /*pPSUIInfo*/, LPARAM /*lParam*/)
{
    TRACE_FUNCTION("DrvDevicePropertySheets");
    LOG_INVOKED();
    const LONG lReturn = kSheetFailed;
    LOG_RESULT(lReturn);
    return lReturn;
}

extern "C" LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO /*pPSUIInfo*/, LPARAM /*lParam*/)
{
    TRACE_FUNCTION("DrvDocumentPropertySheets");
    LOG_INVOKED();
    const LONG lReturn = kSheetFailed;
    LOG_RESULT(lReturn);
    return lReturn;
}
