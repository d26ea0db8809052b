#include "tests/driver/CapsRoute.h"

#include <catch2/catch.hpp>

#include <winspool.h>

namespace
{

class DirectRoute : public CapsRoute
{
public:
    DirectRoute() { REQUIRE(m_module.DeviceCapabilities != nullptr); }
    DWORD Ask(WORD iDevCap, void* pvOutput) const override
    {
        wchar_t szPrinter[] = L"VelPrinter";
        return m_module.DeviceCapabilities(nullptr, szPrinter, iDevCap, pvOutput, nullptr);
    }

private:
    BuiltModule m_module;
};

/// Registers the module as the config file of a driver in the test's own registry view, with a printer of the test's
/// own name, and asks through the spooler's API. The spooler's files go to the driver folder of the prefix, as always.
class SpoolerRoute : public CapsRoute
{
public:
    explicit SpoolerRoute(ClientFixture& client)
    {
        // What the spooler keeps its lists in.
        client.registry.CopyFromMachine(L"System\\CurrentControlSet\\Control\\Print");
        client.registry.CopyFromMachine(L"Software\\Microsoft\\Windows NT\\CurrentVersion\\Ports");

        const std::wstring strSuffix = std::to_wstring(GetCurrentProcessId());
        m_strPrinter = L"VelTestPrinter" + strSuffix;
        m_strDriver = L"VelTestDriver" + strSuffix;
        std::wstring strModule = ModulePath();

        DRIVER_INFO_3W driver = {};
        driver.cVersion = 3;
        driver.pName = m_strDriver.data();
        wchar_t szEnvironment[] = L"Windows x64";
        driver.pEnvironment = szEnvironment;
        driver.pDriverPath = strModule.data();
        driver.pDataFile = strModule.data();
        driver.pConfigFile = strModule.data();
        wchar_t szType[] = L"RAW";
        driver.pDefaultDataType = szType;
        INFO("AddPrinterDriverExW");
        REQUIRE(AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&driver),
                                    APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY));

        PRINTER_INFO_2W printer = {};
        printer.pPrinterName = m_strPrinter.data();
        wchar_t szPort[] = L"FILE:";
        printer.pPortName = szPort;
        printer.pDriverName = m_strDriver.data();
        wchar_t szProcessor[] = L"WinPrint";
        printer.pPrintProcessor = szProcessor;
        printer.pDatatype = szType;
        m_hPrinter = AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&printer));
        INFO("AddPrinterW, last error " << GetLastError());
        REQUIRE(m_hPrinter != nullptr);
    }
    ~SpoolerRoute() override
    {
        DeletePrinter(m_hPrinter);
        ClosePrinter(m_hPrinter);
        DeletePrinterDriverExW(nullptr, nullptr, m_strDriver.data(), DPD_DELETE_UNUSED_FILES, 0);
    }
    DWORD Ask(WORD iDevCap, void* pvOutput) const override
    {
        return static_cast<DWORD>(
            DeviceCapabilitiesW(m_strPrinter.c_str(), L"FILE:", iDevCap, static_cast<wchar_t*>(pvOutput), nullptr));
    }

private:
    std::wstring m_strPrinter;
    std::wstring m_strDriver;
    HANDLE m_hPrinter = nullptr;
};

} // namespace

std::unique_ptr<CapsRoute> OpenRoad(Road road, ClientFixture& client)
{
    if (road == Road::Direct)
    {
        return std::make_unique<DirectRoute>();
    }
    return std::make_unique<SpoolerRoute>(client);
}
