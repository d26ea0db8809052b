// The floor of loading and unloading: a module that does nothing at its start but the registry calls that the contract
// demands there. It is compiled and linked like the module itself.

#include <windows.h>

namespace
{

void ReadInstallDir(const char* pszKey)
{
    HKEY hKey = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, pszKey, 0, KEY_READ, &hKey) != ERROR_SUCCESS)
    {
        return;
    }
    char szInstallDir[260];
    DWORD cbInstallDir = sizeof(szInstallDir);
    RegQueryValueExA(hKey, "InstallDir", nullptr, nullptr, reinterpret_cast<BYTE*>(szInstallDir), &cbInstallDir);
    RegCloseKey(hKey);
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
