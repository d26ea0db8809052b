#pragma once
/// The module's start and stop, and the log configuration that it starts with.

#include <windows.h>

#include <string>

/// Called by the loader. At process attach it reads the log configuration; at process detach it closes logging.
/// @return 1 always.
extern "C" BOOL WINAPI DllMain(HINSTANCE hinstDLL, DWORD fdwReason, LPVOID lpvReserved);

/// Finds the log configuration: LogConfig.conf in the client's InstallDir, or else in the server's.
/// @return its full name in the system's code page, or an empty string when neither can be opened.
std::string GetLogConfigFile();

/// Finds LogConfig.conf in the InstallDir of one registry key.
/// @param pszKey the key's name, relative to HKEY_LOCAL_MACHINE, in the system's code page.
/// @return the file's full name, or empty when the key, the value or a readable file is missing.
std::string GetLogConfigFromKey(const char* pszKey);
