#pragma once
/// Events in the printer's life, and the tools beside the module that two of them start.

#include <windows.h>

#include <string>

/// Takes note of an event. An added connection is recorded in velinfo.ini and starts velup.exe; the end of the local
/// spooler's own copy starts veldel.exe. Without the module's own path nothing is written or started.
/// @param pPrinterName may be null.
/// @param DriverEvent  PRINTER_EVENT_ code; of any other only the number is logged.
void HandlePrinterEvent(const wchar_t* pPrinterName, INT DriverEvent);

/// The full path of a file in the folder of a module.
/// @param hModule     the module.
/// @param pszFileName name with extension; any folder in it is dropped.
/// @return the bare name when the module's own path can't be had, or has more than 259 characters: not a path to write
///         to or to start.
std::wstring MakeDependsFilePath(HMODULE hModule, const wchar_t* pszFileName);
