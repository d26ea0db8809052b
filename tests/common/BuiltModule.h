#pragma once
/// The built DLL, as a host loads it.

#include "support/module/PrinterInterface.h"
#include "tests/common/Invariants.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/HostModule.h"

#include <string>
#include <type_traits>

/// Full path of a file beside the test program.
inline std::wstring BesideTests(const std::wstring& strName)
{
    return VelHost::BesideProgram(strName);
}

/// Full path of the built VelUI.dll.
inline std::wstring ModulePath()
{
    return BesideTests(L"VelUI.dll");
}

/// Loads the DLL and gives it back. Each call of an entry point is checked to leave the caller's state alone. A test
/// fails where the DLL does not load or lacks an entry point.
class BuiltModule
{
public:
    BuiltModule()
    {
        Find(DeviceCapabilities, "DrvDeviceCapabilities");
        Find(SplDeviceCaps, "DrvSplDeviceCaps");
        Find(ConvertDevMode, "DrvConvertDevMode");
        Find(QueryPrintEx, "DevQueryPrintEx");
        Find(DocumentSheets, "DrvDocumentPropertySheets");
        Find(DeviceSheets, "DrvDevicePropertySheets");
    }

private:
    template <typename Entry>
    void Find(Entry& entry, const char* pszName)
    {
        entry = m_module.Get<std::remove_pointer_t<typename Entry::Function>>(pszName);
    }

    VelHost::HostModule m_module{ModulePath()};

public:
    const HMODULE handle = m_module.Handle();
    CheckedEntry<decltype(&DrvDeviceCapabilities)> DeviceCapabilities;
    CheckedEntry<decltype(&DrvSplDeviceCaps)> SplDeviceCaps;
    CheckedEntry<decltype(&DrvConvertDevMode)> ConvertDevMode;
    CheckedEntry<decltype(&DevQueryPrintEx)> QueryPrintEx;
    CheckedEntry<decltype(&DrvDocumentPropertySheets)> DocumentSheets;
    CheckedEntry<decltype(&DrvDevicePropertySheets)> DeviceSheets;
};
