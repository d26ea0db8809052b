// A library that looks around while the process ends, from its own end. What it sees goes, a line each, into the file
// that the variable VELUI_LATE names: with VELUI_LATE_ASKS the module's answer to DC_SIZE, and then whether shell32 is
// there. Loaded behind the module it ends before it, and may ask it; loaded in front of it, it ends after it.

#include "support/module/PrinterInterface.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>

namespace
{

void LookAround()
{
    const wchar_t* const pszFile = _wgetenv(L"VELUI_LATE");
    FILE* const pFile = pszFile != nullptr ? _wfopen(pszFile, L"a") : nullptr;
    if (pFile == nullptr)
    {
        return;
    }
    if (_wgetenv(L"VELUI_LATE_ASKS") != nullptr)
    {
        const auto pfnCaps = reinterpret_cast<decltype(&DrvDeviceCapabilities)>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"VelUI.dll"), "DrvDeviceCapabilities")));
        std::fprintf(pFile, "%lu\n", pfnCaps(nullptr, nullptr, DC_SIZE, nullptr, nullptr));
    }
    std::fprintf(pFile, "%s\n", GetModuleHandleW(L"shell32.dll") != nullptr ? "shell32" : "no shell32");
    std::fclose(pFile);
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD fdwReason, LPVOID lpvReserved)
{
    if (fdwReason == DLL_PROCESS_DETACH && lpvReserved != nullptr)
    {
        LookAround();
    }
    return TRUE;
}
