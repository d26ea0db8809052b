// The floor of loading and unloading: a module that does nothing at its start but the registry calls that the contract
// demands there. It is compiled and linked like the module itself.

#include <windows.h>

#include <cstdio>
#include <io.h>

namespace
{

/// Looks for the log's configuration in a folder, which is no registry call and so in a floor of its own.
void LookIn([[maybe_unused]] const char* pszInstallDir)
{
#ifdef LOOK_FOR_CONFIGURATION
    char szFile[300];
    _snprintf_s(szFile, sizeof(szFile), _TRUNCATE, "%s\\LogConfig.conf", pszInstallDir);
    _access(szFile, 0);
#endif
}

void ReadInstallDir(const char* pszKey)
{
    HKEY hKey = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, pszKey, 0, KEY_READ, &hKey) != ERROR_SUCCESS)
    {
        return;
    }
    char szInstallDir[260];
    DWORD cbInstallDir = sizeof(szInstallDir);
    const LSTATUS lStatus =
        RegQueryValueExA(hKey, "InstallDir", nullptr, nullptr, reinterpret_cast<BYTE*>(szInstallDir), &cbInstallDir);
    RegCloseKey(hKey);
    if (lStatus == ERROR_SUCCESS)
    {
        LookIn(szInstallDir);
    }
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD fdwReason, LPVOID)
{
    if (fdwReason == DLL_PROCESS_ATTACH)
    {
        ReadInstallDir("Software\\Vel-soft\\Client");
        ReadInstallDir("Software\\Vel-soft\\Server");
    }
    return 1;
}
