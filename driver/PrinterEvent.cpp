#include "diag/LogSite.h"
#include "support/PrinterInterface.h"

VELUI_SOURCE_MODULE("VelUI");

/// Takes note of an event in the printer's life. No event is acted on yet.
/// @return 1 always: a printer event can't fail here, and the spooler would drop a new printer whose event did.
extern "C" BOOL WINAPI DrvPrinterEvent(LPWSTR pPrinterName, INT DriverEvent, DWORD Flags, LPARAM /*lParam*/)
{
    TRACE_FUNCTION("DrvPrinterEvent");
    if (IsFatalEnabled())
    {
        TRACE_ARGUMENT(pPrinterName);
        TRACE_ARGUMENT(DriverEvent);
        TRACE_ARGUMENT(Flags);
    }
    LOG_INVOKED();
    LOG_DEBUG("pPrinterName = %S", pPrinterName);
    const BOOL bReturn = 1;
    LOG_RESULT(bReturn);
    return bReturn;
}
