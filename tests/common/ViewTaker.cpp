// A library that a test puts into another program: it takes the test's registry view there, whose key below
// HKEY_CURRENT_USER the variable VELUI_VIEW names, so that the program finds the test's printer and no other.

#include <windows.h>

#include <cstdlib>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD dwReason, LPVOID)
{
    HKEY hView = nullptr;
    const wchar_t* const pszView = _wgetenv(L"VELUI_VIEW");
    return dwReason != DLL_PROCESS_ATTACH ||
           (pszView != nullptr &&
            RegOpenKeyExW(HKEY_CURRENT_USER, pszView, 0, KEY_ALL_ACCESS, &hView) == ERROR_SUCCESS &&
            RegOverridePredefKey(HKEY_LOCAL_MACHINE, hView) == ERROR_SUCCESS);
}
