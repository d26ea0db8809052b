// A library that calls the module while the process ends, from its own end. What it sees goes, a line each, into the
// file that the variable VELUI_LATE names: the module's answer to DC_SIZE, and whether shell32 is there behind it.

#include "support/module/PrinterInterface.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>

namespace
{

void CallLate()
{
    const HMODULE hModule = GetModuleHandleW(L"VelUI.dll");
    const wchar_t* const pszFile = _wgetenv(L"VELUI_LATE");
    FILE* const pFile = hModule != nullptr && pszFile != nullptr ? _wfopen(pszFile, L"a") : nullptr;
    if (pFile == nullptr)
    {
        return;
    }
    const auto pfnCaps = reinterpret_cast<decltype(&DrvDeviceCapabilities)>(
        reinterpret_cast<void*>(GetProcAddress(hModule, "DrvDeviceCapabilities")));
    std::fprintf(pFile, "%lu\n", pfnCaps(nullptr, nullptr, DC_SIZE, nullptr, nullptr));
    std::fprintf(pFile, "%s\n", GetModuleHandleW(L"shell32.dll") != nullptr ? "shell32" : "no shell32");
    std::fclose(pFile);
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD fdwReason, LPVOID lpvReserved)
{
    if (fdwReason == DLL_PROCESS_DETACH && lpvReserved != nullptr)
    {
        CallLate();
    }
    return TRUE;
}
