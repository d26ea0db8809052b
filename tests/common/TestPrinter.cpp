#include "tests/common/TestPrinter.h"

#include "tests/common/BuiltModule.h"

#include <catch2/catch_test_macros.hpp>

#include <winspool.h>

SpoolerTurn::SpoolerTurn() : m_hMutex(CreateMutexW(nullptr, FALSE, L"VelTestSpooler"))
{
    REQUIRE(m_hMutex != nullptr);
    // A test that was ended in its turn leaves the mutex abandoned, which is a turn too.
    WaitForSingleObject(m_hMutex, INFINITE);
}

SpoolerTurn::~SpoolerTurn()
{
    ReleaseMutex(m_hMutex);
    CloseHandle(m_hMutex);
}

TestPrinter::TestPrinter(ClientFixture& client)
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

TestPrinter::~TestPrinter()
{
    DeletePrinter(m_hPrinter);
    ClosePrinter(m_hPrinter);
    DeletePrinterDriverExW(nullptr, nullptr, m_strDriver.data(), DPD_DELETE_UNUSED_FILES, 0);
}
