#include "tools/velhost/host/Spooler.h"

#include "settings/DriverDevmode.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

#include <algorithm>
#include <functional>

namespace VelHost
{
namespace
{

/// Calls an asking function of the spooler twice: for the size, and with a buffer of that size.
/// @param ask takes a buffer, its bytes and where to put the bytes needed; returns what Windows returned.
/// @return the filled buffer; empty when there is nothing.
std::vector<BYTE> AskTwice(const std::string& strWhat, const std::function<BOOL(BYTE*, DWORD, DWORD*)>& ask)
{
    std::vector<BYTE> buffer;
    DWORD cbNeeded = 0;
    while (!ask(buffer.data(), static_cast<DWORD>(buffer.size()), &cbNeeded))
    {
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || cbNeeded <= buffer.size())
        {
            ThrowCommandError(strWhat);
        }
        buffer.resize(cbNeeded);
    }
    return buffer;
}

std::wstring OrEmpty(const wchar_t* pszText)
{
    return pszText == nullptr ? std::wstring() : std::wstring(pszText);
}

/// What the spooler knows of a printer, a PRINTER_INFO_2W with what it points to.
std::vector<BYTE> PrinterInfo2(const PrinterHandle& printer)
{
    return AskTwice("can't describe the printer", [&](BYTE* pby, DWORD cb, DWORD* pcbNeeded) {
        return GetPrinterW(printer.Get(), 2, pby, cb, pcbNeeded);
    });
}

} // namespace

bool IsSameName(const std::wstring& strLeft, const std::wstring& strRight)
{
    return lstrcmpiW(strLeft.c_str(), strRight.c_str()) == 0;
}

PrinterHandle::~PrinterHandle()
{
    if (m_hPrinter != nullptr)
    {
        ClosePrinter(m_hPrinter);
    }
}

PrinterHandle OpenInstalledPrinter(const std::wstring& strName, DWORD dwAccess)
{
    std::wstring strWritable = strName;
    PRINTER_DEFAULTSW defaults = {nullptr, nullptr, dwAccess};
    HANDLE hPrinter = nullptr;
    if (strName.empty() || !OpenPrinterW(strWritable.data(), &hPrinter, &defaults))
    {
        const DWORD dwError = strName.empty() ? ERROR_INVALID_PRINTER_NAME : GetLastError();
        if (dwError == ERROR_INVALID_PRINTER_NAME)
        {
            throw CommandError("there is no printer \"" + ToUtf8(strName) + "\"");
        }
        ThrowCommandError("can't open the printer \"" + ToUtf8(strName) + "\"", dwError);
    }
    return PrinterHandle(hPrinter);
}

std::vector<std::wstring> PrinterNames()
{
    DWORD dwCount = 0;
    const std::vector<BYTE> buffer = AskTwice("can't list the printers", [&](BYTE* pby, DWORD cb, DWORD* pcbNeeded) {
        return EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 4, pby, cb, pcbNeeded, &dwCount);
    });
    const auto* const pInfos = reinterpret_cast<const PRINTER_INFO_4W*>(buffer.data());
    std::vector<std::wstring> names;
    std::transform(pInfos, pInfos + dwCount, std::back_inserter(names),
                   [](const PRINTER_INFO_4W& info) { return OrEmpty(info.pPrinterName); });
    return names;
}

bool IsPrinterInstalled(const std::wstring& strName)
{
    const std::vector<std::wstring> names = PrinterNames();
    return std::any_of(names.begin(), names.end(),
                       [&strName](const std::wstring& strOther) { return IsSameName(strOther, strName); });
}

PrinterDescription DescribePrinter(const std::wstring& strName)
{
    const PrinterHandle printer = OpenInstalledPrinter(strName);
    const std::vector<BYTE> buffer = PrinterInfo2(printer);
    const auto& info = *reinterpret_cast<const PRINTER_INFO_2W*>(buffer.data());
    return {OrEmpty(info.pPrinterName), OrEmpty(info.pPortName), OrEmpty(info.pDriverName), OrEmpty(info.pLocation),
            OrEmpty(info.pComment)};
}

std::vector<BYTE> PrinterDefaultRecord(const PrinterHandle& printer)
{
    const std::vector<BYTE> buffer = PrinterInfo2(printer);
    const DEVMODEW* const pRecord = reinterpret_cast<const PRINTER_INFO_2W*>(buffer.data())->pDevMode;
    if (pRecord == nullptr)
    {
        return {};
    }
    const auto* const pbyRecord = reinterpret_cast<const BYTE*>(pRecord);
    return std::vector<BYTE>(pbyRecord, pbyRecord + DeclaredSize(*pRecord));
}

std::vector<BYTE> EmptyRecord(LONG lSize)
{
    std::vector<BYTE> record(static_cast<size_t>(lSize));
    auto& header = *reinterpret_cast<DEVMODEW*>(record.data());
    header.dmSize = kDevmodeSize;
    header.dmDriverExtra = static_cast<WORD>(lSize - kDevmodeSize);
    return record;
}

std::vector<BYTE> UserDefaultRecord(const std::wstring& strPrinter)
{
    const PrinterHandle printer = OpenInstalledPrinter(strPrinter);
    std::wstring strName = strPrinter;
    const LONG lSize = DocumentPropertiesW(nullptr, printer.Get(), strName.data(), nullptr, nullptr, 0);
    if (lSize < static_cast<LONG>(sizeof(DEVMODEW)))
    {
        throw CommandError("the spooler tells no record size: " + std::to_string(lSize));
    }
    std::vector<BYTE> record = EmptyRecord(lSize);
    const LONG lReturn = DocumentPropertiesW(nullptr, printer.Get(), strName.data(),
                                             reinterpret_cast<DEVMODEW*>(record.data()), nullptr, DM_OUT_BUFFER);
    if (lReturn < 0)
    {
        throw CommandError("the driver refuses the user's default record: " + std::to_string(lReturn));
    }
    return record;
}

std::vector<DriverDescription> ListDrivers()
{
    DWORD dwCount = 0;
    const std::vector<BYTE> buffer = AskTwice("can't list the drivers", [&](BYTE* pby, DWORD cb, DWORD* pcbNeeded) {
        return EnumPrinterDriversW(nullptr, nullptr, 3, pby, cb, pcbNeeded, &dwCount);
    });
    const auto* const pInfos = reinterpret_cast<const DRIVER_INFO_3W*>(buffer.data());
    std::vector<DriverDescription> drivers;
    std::transform(pInfos, pInfos + dwCount, std::back_inserter(drivers), [](const DRIVER_INFO_3W& info) {
        return DriverDescription{OrEmpty(info.pName), OrEmpty(info.pDriverPath), OrEmpty(info.pConfigFile),
                                 OrEmpty(info.pDataFile)};
    });
    return drivers;
}

std::optional<DriverDescription> FindDriver(const std::wstring& strName)
{
    const std::vector<DriverDescription> drivers = ListDrivers();
    const auto found = std::find_if(drivers.begin(), drivers.end(), [&strName](const DriverDescription& driver) {
        return IsSameName(driver.strName, strName);
    });
    return found == drivers.end() ? std::nullopt : std::make_optional(*found);
}

bool IsDriverFile(const std::wstring& strFile)
{
    const std::vector<DriverDescription> drivers = ListDrivers();
    return std::any_of(drivers.begin(), drivers.end(), [&strFile](const DriverDescription& driver) {
        return IsSameName(driver.strDriverFile, strFile) || IsSameName(driver.strConfigFile, strFile) ||
               IsSameName(driver.strDataFile, strFile);
    });
}

std::wstring SpoolerDriverFolder()
{
    const std::vector<BYTE> buffer = AskTwice("can't ask for the drivers' folder", [](BYTE* pby, DWORD cb, DWORD* pcb) {
        return GetPrinterDriverDirectoryW(nullptr, nullptr, 1, pby, cb, pcb);
    });
    return std::wstring(reinterpret_cast<const wchar_t*>(buffer.data())) + L"\\3";
}

std::optional<std::pair<WORD, WORD>> StoredRecordSizes(const std::wstring& strPrinter, StoredRecord which)
{
    const PrinterHandle printer = OpenInstalledPrinter(strPrinter);
    const DWORD dwLevel = static_cast<DWORD>(which);
    const std::vector<BYTE> buffer = AskTwice("can't read the printer's record", [&](BYTE* pby, DWORD cb, DWORD* pcb) {
        return GetPrinterW(printer.Get(), dwLevel, pby, cb, pcb);
    });
    const DEVMODEW* const pRecord = which == StoredRecord::OfPrinter
                                        ? reinterpret_cast<const PRINTER_INFO_2W*>(buffer.data())->pDevMode
                                        : reinterpret_cast<const PRINTER_INFO_9W*>(buffer.data())->pDevMode;
    return pRecord == nullptr ? std::nullopt : std::optional(std::pair(pRecord->dmSize, pRecord->dmDriverExtra));
}

bool HasPrintProcessor(const std::wstring& strName)
{
    DWORD dwCount = 0;
    const std::vector<BYTE> buffer = AskTwice("can't list the print processors", [&](BYTE* pby, DWORD cb, DWORD* pcb) {
        return EnumPrintProcessorsW(nullptr, nullptr, 1, pby, cb, pcb, &dwCount);
    });
    const auto* const pInfos = reinterpret_cast<const PRINTPROCESSOR_INFO_1W*>(buffer.data());
    return std::any_of(pInfos, pInfos + dwCount, [&strName](const PRINTPROCESSOR_INFO_1W& info) {
        return IsSameName(OrEmpty(info.pName), strName);
    });
}

std::vector<std::wstring> PortNames()
{
    DWORD dwCount = 0;
    const std::vector<BYTE> buffer = AskTwice("can't list the ports", [&](BYTE* pby, DWORD cb, DWORD* pcbNeeded) {
        return EnumPortsW(nullptr, 1, pby, cb, pcbNeeded, &dwCount);
    });
    const auto* const pInfos = reinterpret_cast<const PORT_INFO_1W*>(buffer.data());
    std::vector<std::wstring> names;
    std::transform(pInfos, pInfos + dwCount, std::back_inserter(names),
                   [](const PORT_INFO_1W& info) { return OrEmpty(info.pName); });
    return names;
}

} // namespace VelHost
