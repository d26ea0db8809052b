// The module's exports but DllMain: each opens its trace scope, tells what it was given, lets one function do the work,
// and tells the result. How they are declared and what Windows asks of them: support/module/PrinterInterface.h.

#include "diag/LogSite.h"
#include "driver/DeviceCaps.h"
#include "driver/PrinterEvent.h"
#include "driver/ResidentClient.h"
#include "settings/ConvertDevmode.h"
#include "settings/DocumentRecord.h"
#include "support/module/PrinterInterface.h"
#include "ui/DeviceSheet.h"
#include "ui/DocumentSheet.h"

VELUI_SOURCE_MODULE("VelUI");

/// Answers one capability of the printer: AnswerCapability.
extern "C" DWORD WINAPI DrvDeviceCapabilities(HANDLE hPrinter, PWSTR pDeviceName, WORD iDevCap, PVOID pvOutput,
                                              PDEVMODEW /*pDevMode*/)
{
    // Before anything else, for every code, also for those that are then refused.
    CheckResidentClient();
    const FunctionScope scope("DrvDeviceCapabilities");
    LOG_INVOKED(scope);
    LOG_DEBUG("hPrinter = 0x%08X", LowBits(hPrinter));
    LOG_DEBUG("pDeviceName = %S", pDeviceName);
    LOG_DEBUG("iDevCap = %d", iDevCap);
    LOG_DEBUG("pvOutput = 0x%08X", LowBits(pvOutput));
    const DWORD dwReturn = AnswerCapability(iDevCap, pvOutput);
    LOG_DEBUG("dwReturn = %u", static_cast<unsigned>(dwReturn));
    return dwReturn;
}

/// Gives the spooler the names of papers or loaded media: AnswerNames.
extern "C" DWORD WINAPI DrvSplDeviceCaps(HANDLE hPrinter, PWSTR pwDeviceName, WORD DeviceCap, PVOID pvOutput,
                                         DWORD cchBuf, PDEVMODEW pDM)
{
    FunctionScope scope("DrvSplDeviceCaps");
    TRACE_ARGUMENTS(scope, hPrinter, pwDeviceName, DeviceCap, pvOutput, cchBuf, pDM);
    LOG_INVOKED(scope);
    const DWORD dwReturn = AnswerNames(DeviceCap, pvOutput, cchBuf);
    LOG_RESULT("dwReturn", dwReturn);
    return dwReturn;
}

/// Copies a device-mode record from one form to another, or delivers the default one: ConvertByMode.
/// @param pPrinterName not used.
extern "C" BOOL WINAPI DrvConvertDevMode(LPWSTR pPrinterName, PDEVMODEW pdmIn, PDEVMODEW pdmOut, PLONG pcbNeeded,
                                         DWORD fMode)
{
    FunctionScope scope("DrvConvertDevMode");
    TRACE_ARGUMENTS(scope, pPrinterName, pdmIn, pdmOut, pcbNeeded, fMode);
    LOG_INVOKED(scope);
    LOG_CALL(scope);
    const EntryAnswer<BOOL> answer = ConvertByMode(pdmIn, pdmOut, pcbNeeded, fMode);
    LOG_ANSWER("bReturn", answer);
    return answer.result;
}

/// The settings of a document: a sheet with three pages (PlayDocumentSheet), or, without one, the record's size or the
/// record itself (AnswerDocumentRecord).
/// @param pPSUIInfo the sheet library's call; null asks for a record instead.
/// @param lParam    without pPSUIInfo a DOCUMENTPROPERTYHEADER; else what goes with the reason.
/// @return 1 or -1; the size in bytes, 232, when that was asked for.
extern "C" LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    CheckResidentClient();
    const FunctionScope scope("DrvDocumentPropertySheets");
    LOG_INVOKED(scope);
    if (pPSUIInfo == nullptr)
    {
        LOG_DEBUG("pPSUIInfo = 0x%08X", LowBits(pPSUIInfo));
    }
    const EntryAnswer<LONG> answer =
        pPSUIInfo == nullptr
            ? EntryAnswer<LONG>{AnswerDocumentRecord(reinterpret_cast<PDOCUMENTPROPERTYHEADER>(lParam))}
            : PlayDocumentSheet(pPSUIInfo, lParam);
    LOG_ANSWER("lReturn", answer);
    return answer.result;
}

/// The printer's own properties, a sheet with the about page and no settings: PlayDeviceSheet.
extern "C" LONG WINAPI DrvDevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM /*lParam*/)
{
    const FunctionScope scope("DrvDevicePropertySheets");
    LOG_INVOKED(scope);
    const EntryAnswer<LONG> answer = PlayDeviceSheet(pPSUIInfo);
    LOG_ANSWER("lReturn", answer);
    return answer.result;
}

/// Takes note of an event in the printer's life: HandlePrinterEvent.
/// @param Flags  only gathered for the log; no flag changes anything.
/// @param lParam not looked at.
/// @return 1 always: a printer event can't fail here.
extern "C" BOOL WINAPI DrvPrinterEvent(LPWSTR pPrinterName, INT DriverEvent, DWORD Flags, LPARAM /*lParam*/)
{
    FunctionScope scope("DrvPrinterEvent");
    TRACE_ARGUMENTS(scope, pPrinterName, DriverEvent, Flags);
    LOG_INVOKED(scope);
    HandlePrinterEvent(pPrinterName, DriverEvent);
    const BOOL bReturn = 1;
    LOG_RESULT("bReturn", bReturn);
    return bReturn;
}

/// Tells the spooler whether a job may print: every job may. The argument is not looked at.
extern "C" BOOL WINAPI DevQueryPrintEx(PDEVQUERYPRINT_INFO /*pDQPInfo*/)
{
    const FunctionScope scope("DevQueryPrintEx");
    LOG_INVOKED(scope);
    return 1;
}
