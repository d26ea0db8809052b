#pragma once
/// The built DLL, as a host loads it.

#include "support/module/PrinterInterface.h"
#include "tests/common/Invariants.h"

#include <string>

/// Full path of a file beside the test program.
inline std::wstring BesideTests(const std::wstring& strName)
{
    wchar_t szPath[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, szPath, MAX_PATH);
    std::wstring strPath = szPath;
    return strPath.substr(0, strPath.rfind(L'\\') + 1) + strName;
}

/// Full path of the built VelUI.dll.
inline std::wstring ModulePath()
{
    return BesideTests(L"VelUI.dll");
}

/// Loads the DLL and gives it back. Each call of an entry point is checked to leave the caller's state alone. The entry
/// points are null when the DLL did not load.
class BuiltModule
{
public:
    BuiltModule() : handle(LoadLibraryW(ModulePath().c_str()))
    {
        Find(DeviceCapabilities, "DrvDeviceCapabilities");
        Find(SplDeviceCaps, "DrvSplDeviceCaps");
        Find(ConvertDevMode, "DrvConvertDevMode");
        Find(QueryPrintEx, "DevQueryPrintEx");
        Find(DocumentSheets, "DrvDocumentPropertySheets");
        Find(DeviceSheets, "DrvDevicePropertySheets");
    }
    ~BuiltModule()
    {
        if (handle != nullptr)
        {
            FreeLibrary(handle);
        }
    }
    BuiltModule(const BuiltModule&) = delete;
    BuiltModule& operator=(const BuiltModule&) = delete;

    HMODULE handle;
    CheckedEntry<decltype(&DrvDeviceCapabilities)> DeviceCapabilities;
    CheckedEntry<decltype(&DrvSplDeviceCaps)> SplDeviceCaps;
    CheckedEntry<decltype(&DrvConvertDevMode)> ConvertDevMode;
    CheckedEntry<decltype(&DevQueryPrintEx)> QueryPrintEx;
    CheckedEntry<decltype(&DrvDocumentPropertySheets)> DocumentSheets;
    CheckedEntry<decltype(&DrvDevicePropertySheets)> DeviceSheets;

private:
    template <typename Function>
    void Find(Function& pfn, const char* pszName)
    {
        using Bare = typename Function::Function;
        pfn = handle != nullptr ? reinterpret_cast<Bare>(reinterpret_cast<void*>(GetProcAddress(handle, pszName)))
                                : nullptr;
    }
};
