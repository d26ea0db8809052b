#include "diag/LogSite.h"
#include "support/PrinterInterface.h"

VELUI_SOURCE_MODULE("VelUI");

/// Tells the spooler whether a job may print: every job may. The argument is not looked at.
extern "C" BOOL WINAPI DevQueryPrintEx(PDEVQUERYPRINT_INFO /*pDQPInfo*/)
{
    TRACE_FUNCTION("DevQueryPrintEx");
    LOG_INVOKED();
    return 1;
}
