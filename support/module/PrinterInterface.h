#pragma once
/// What Windows publishes about printer interface modules and MinGW's winddiui.h lacks: entry points, structures and
/// numbers, from Microsoft's driver documentation (winddiui.h and wingdi.h reference pages). Data only; any
/// folder may include it.

#include <windows.h>
#include <winspool.h>
#include <compstui.h>
#include <winddiui.h>

#include <cstddef>

// DrvConvertDevMode, fMode.
#ifndef CDM_CONVERT
#define CDM_CONVERT 1
#define CDM_CONVERT351 2
#define CDM_DRIVER_DEFAULT 4
#endif

// DrvPrinterEvent, events that winddiui.h does not name.
#ifndef PRINTER_EVENT_CONFIGURATION_CHANGE
#define PRINTER_EVENT_CONFIGURATION_CHANGE 0
#endif

// DEVICEPROPERTYHEADER, Flags.
#ifndef DPS_NOPERMISSION
#define DPS_NOPERMISSION 0x0001
#endif

// DOCUMENTPROPERTYHEADER, fMode.
#ifndef DM_ADVANCED
#define DM_ADVANCED 0x00000010
#define DM_NOPERMISSION 0x00000020
#endif

#ifndef PROPSHEETUI_REASON_BEFORE_INIT
#define PROPSHEETUI_REASON_BEFORE_INIT 5
#endif

/// The document sheet's call: what to show, the record to start from and the buffer for the result.
typedef struct _DOCUMENTPROPERTYHEADER
{
    WORD cbSize;   ///< bytes of this structure
    WORD Reserved; ///< 0
    HANDLE hPrinter;
    LPWSTR pszPrinterName;
    PDEVMODEW pdmIn;  ///< borrowed; null without DM_IN_BUFFER
    PDEVMODEW pdmOut; ///< borrowed; null without DM_OUT_BUFFER
    DWORD cbOut;      ///< out: bytes of a whole record
    DWORD fMode;      ///< DM_ bits
} DOCUMENTPROPERTYHEADER, *PDOCUMENTPROPERTYHEADER;
static_assert(sizeof(DOCUMENTPROPERTYHEADER) == 48 && offsetof(DOCUMENTPROPERTYHEADER, fMode) == 44,
              "published layout, 64 bit");

/// The device sheet's call.
typedef struct _DEVICEPROPERTYHEADER
{
    WORD cbSize; ///< bytes of this structure
    WORD Flags;  ///< DPS_NOPERMISSION or 0
    HANDLE hPrinter;
    LPWSTR pszPrinterName;
} DEVICEPROPERTYHEADER, *PDEVICEPROPERTYHEADER;
static_assert(sizeof(DEVICEPROPERTYHEADER) == 24, "published layout, 64 bit");

/// The question whether a job may print.
typedef struct _DEVQUERYPRINT_INFO
{
    WORD cbSize; ///< bytes of this structure
    WORD Level;  ///< 1
    HANDLE hPrinter;
    DEVMODEW* pDevMode;
    LPWSTR pszErrorStr; ///< out: why the job is held
    DWORD cchErrorStr;  ///< size of pszErrorStr
    DWORD cchNeeded;    ///< out: size that the whole text needs
} DEVQUERYPRINT_INFO, *PDEVQUERYPRINT_INFO;
static_assert(sizeof(DEVQUERYPRINT_INFO) == 40, "published layout, 64 bit");

static_assert(sizeof(DEVMODEW) == 220, "published layout");
static_assert(sizeof(PROPSHEETUI_INFO) == 48, "published layout, 64 bit");

extern "C" {
DWORD WINAPI DrvDeviceCapabilities(HANDLE hPrinter, PWSTR pDeviceName, WORD iDevCap, PVOID pvOutput,
                                   PDEVMODEW pDevMode);
/// Ordinal 254, by the contract of Windows.
DWORD WINAPI DrvSplDeviceCaps(HANDLE hPrinter, PWSTR pwDeviceName, WORD DeviceCap, PVOID pvOutput, DWORD cchBuf,
                              PDEVMODEW pDM);
BOOL WINAPI DrvConvertDevMode(LPWSTR pPrinterName, PDEVMODEW pdmIn, PDEVMODEW pdmOut, PLONG pcbNeeded, DWORD fMode);
LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam);
LONG WINAPI DrvDevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam);
BOOL WINAPI DevQueryPrintEx(PDEVQUERYPRINT_INFO pDQPInfo);
}
