#include "driver/PrinterEvent.h"

#include "diag/LogSite.h"
#include "support/module/ModuleTexts.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <cstdlib>
#include <process.h>

VELUI_SOURCE_MODULE("VelUI");

namespace
{

/// Marks the local spooler's own copy of the printer. The backslash is part of it.
constexpr wchar_t kOwnCopySuffix[] = L"\\VelPrinter,LocalsplOnly";

/// The path of a file beside the module.
/// @return empty when it can't be told where that is: a bare name would be a file of the current folder, which anyone
///         may have put there, or of the Windows folder.
std::wstring PathBesideModule(const wchar_t* pszFileName)
{
    const std::wstring strPath = MakeDependsFilePath(g_hModule, pszFileName);
    return strPath != pszFileName ? strPath : std::wstring();
}

/// Starts a tool beside the module, without arguments, and does not wait. A tool that can't start goes unnoticed.
void StartTool(const wchar_t* pszFileName)
{
    const std::wstring strPath = PathBesideModule(pszFileName);
    if (strPath.empty())
    {
        return;
    }
    // Required: the path is not quoted, which the tools' own names and the spooler's driver folder bear, both without a
    // blank. The process handle that the call returns is neither waited on nor closed: the spooler's event must not
    // take as long as the tool, and its end matters to nobody here.
    _wspawnl(_P_NOWAIT, strPath.c_str(), strPath.c_str(), static_cast<const wchar_t*>(nullptr));
}

/// Records the connection's name for the tool, and starts it, also when the name could not be recorded.
void OnAddConnection(const wchar_t* pszPrinterName)
{
    if (const std::wstring strFile = PathBesideModule(L"velinfo.ini"); !strFile.empty())
    {
        // Required: a failure is not even logged: the tool starts all the same, and tells by itself when it finds no
        // name.
        WritePrivateProfileStringW(L"PrinterConnection", L"PrinterName", pszPrinterName, strFile.c_str());
    }
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

// Required: the opposite of an added connection does nothing: what velup.exe has set up stays for the next connection.
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

// No trace scope: the lines belong to the entry point.
void HandlePrinterEvent(const wchar_t* pPrinterName, INT DriverEvent)
{
    LOG_DEBUG("pPrinterName = %S", pPrinterName);
    if (DriverEvent < 0 || DriverEvent >= static_cast<int>(std::size(kEvents)))
    {
        LOG_INFO("DriverEvent = %d", DriverEvent);
        return;
    }
    const EventRow& row = kEvents[DriverEvent];
    LOG_INFO("DriverEvent = %s", row.pszName);
    if (row.pfnAct != nullptr)
    {
        row.pfnAct(pPrinterName);
    }
}

std::wstring MakeDependsFilePath(HMODULE hModule, const wchar_t* pszFileName)
{
    const FunctionScope scope("MakeDependsFilePath");
    wchar_t szModuleFile[MAX_PATH] = {};
    if (GetModuleFileNameW(hModule, szModuleFile, MAX_PATH) >= MAX_PATH)
    {
        szModuleFile[0] = L'\0'; // a path that was cut leads to another folder
    }
    LOG_DEBUG("szModuleFile = %S", szModuleFile);

    wchar_t szDrive[_MAX_DRIVE] = {};
    wchar_t szFolder[MAX_PATH] = {};
    _wsplitpath_s(szModuleFile, szDrive, _MAX_DRIVE, szFolder, MAX_PATH, nullptr, 0, nullptr, 0);
    wchar_t szName[_MAX_FNAME] = {};
    wchar_t szExtension[_MAX_EXT] = {};
    _wsplitpath_s(pszFileName, nullptr, 0, nullptr, 0, szName, _MAX_FNAME, szExtension, _MAX_EXT);

    wchar_t szPath[_MAX_DRIVE + MAX_PATH + _MAX_FNAME + _MAX_EXT] = {};
    _wmakepath(szPath, szDrive, szFolder, szName, szExtension);
    return szPath;
}
