#include "diag/LogSite.h"
#include "driver/DependsFile.h"
#include "support/ModuleTexts.h"
#include "support/PrinterInterface.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <process.h>

VELUI_SOURCE_MODULE("VelUI");

namespace
{

/// Marks the local spooler's own copy of the printer. The backslash is part of it.
constexpr wchar_t kOwnCopySuffix[] = L"\\VelPrinter,LocalsplOnly";

/// Starts a tool beside the module, without arguments, and does not wait. A tool that can't start goes unnoticed.
void StartTool(const wchar_t* pszFileName)
{
    const std::wstring strPath = MakeDependsFilePath(g_hModule, pszFileName);
    // Required: the path is not quoted, and the process handle that the call returns is neither waited on nor closed.
    _wspawnl(_P_NOWAIT, strPath.c_str(), strPath.c_str(), static_cast<const wchar_t*>(nullptr));
}

/// Records the connection's name for the tool, and starts it, also when the name could not be recorded.
void OnAddConnection(const wchar_t* pszPrinterName)
{
    const std::wstring strFile = MakeDependsFilePath(g_hModule, L"velinfo.ini");
    // Required: a failure is not even logged.
    WritePrivateProfileStringW(L"PrinterConnection", L"PrinterName", pszPrinterName, strFile.c_str());
    StartTool(L"velup.exe");
}

void OnDelete(const wchar_t* pszPrinterName)
{
    LOG_DEBUG("pPrinterName = %S", pszPrinterName);
    std::wstring strName = pszPrinterName != nullptr ? pszPrinterName : L"";
    boost::trim(strName);
    if (boost::iends_with(strName, kOwnCopySuffix))
    {
        StartTool(L"veldel.exe");
    }
}

/// An event by its code: its name in the log, and what is done about it.
struct EventRow
{
    const char* pszName;
    void (*pfnAct)(const wchar_t* pszPrinterName); ///< null for an event that is only logged
};

// Required: the opposite of an added connection does nothing.
constexpr EventRow kEvents[] = {
    {"PRINTER_EVENT_CONFIGURATION_CHANGE", nullptr},
    {"PRINTER_EVENT_ADD_CONNECTION", &OnAddConnection},
    {"PRINTER_EVENT_DELETE_CONNECTION", nullptr},
    {"PRINTER_EVENT_INITIALIZE", nullptr},
    {"PRINTER_EVENT_DELETE", &OnDelete},
    {"PRINTER_EVENT_CACHE_REFRESH", nullptr},
    {"PRINTER_EVENT_CACHE_DELETE", nullptr},
    {"PRINTER_EVENT_ATTRIBUTES_CHANGED", nullptr},
};

} // namespace

/// Takes note of an event in the printer's life. An added connection is recorded in velinfo.ini and starts velup.exe;
/// the end of the local spooler's own copy starts veldel.exe.
/// @param Flags  only gathered for the log; no flag changes anything.
/// @param lParam not looked at.
/// @return 1 always: a printer event can't fail here.
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
    if (DriverEvent >= 0 && DriverEvent < static_cast<int>(sizeof(kEvents) / sizeof(kEvents[0])))
    {
        const EventRow& row = kEvents[DriverEvent];
        LOG_INFO("DriverEvent = %s", row.pszName);
        if (row.pfnAct != nullptr)
        {
            row.pfnAct(pPrinterName);
        }
    }
    else
    {
        LOG_INFO("DriverEvent = %d", DriverEvent);
    }

    LOG_RESULT(bReturn);
    return bReturn;
}
