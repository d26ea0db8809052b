#include "tools/velhost/host/Spooler.h"

#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Utf8.h"

#include <algorithm>
#include <functional>

namespace VelHost
{
namespace
{

/// Calls an asking function of the spooler twice: for the size, and with room of that size.
/// @param ask takes room, its bytes and where to put the bytes needed; returns what the platform returned.
/// @return the filled room; empty when there is nothing.
std::vector<BYTE> Ask(const std::string& strWhat, const std::function<BOOL(BYTE*, DWORD, DWORD*)>& ask)
{
    std::vector<BYTE> room;
    DWORD cbNeeded = 0;
    while (!ask(room.data(), static_cast<DWORD>(room.size()), &cbNeeded))
    {
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || cbNeeded <= room.size())
        {
            ThrowLastError(strWhat);
        }
        room.resize(cbNeeded);
    }
    return room;
}

std::wstring TextOf(const wchar_t* pszText)
{
    return pszText == nullptr ? std::wstring() : std::wstring(pszText);
}

bool IsSameName(const std::wstring& strLeft, const std::wstring& strRight)
{
    return lstrcmpiW(strLeft.c_str(), strRight.c_str()) == 0;
}

} // namespace

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
        ThrowError("can't open the printer \"" + ToUtf8(strName) + "\"", dwError);
    }
    return PrinterHandle(hPrinter);
}

bool IsPrinterInstalled(const std::wstring& strName)
{
    DWORD dwCount = 0;
    const std::vector<BYTE> room = Ask("can't list the printers", [&](BYTE* pby, DWORD cb, DWORD* pcbNeeded) {
        return EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 4, pby, cb, pcbNeeded, &dwCount);
    });
    const auto* const pInfos = reinterpret_cast<const PRINTER_INFO_4W*>(room.data());
    return std::any_of(pInfos, pInfos + dwCount, [&strName](const PRINTER_INFO_4W& info) {
        return IsSameName(TextOf(info.pPrinterName), strName);
    });
}

PrinterDescription DescribePrinter(const std::wstring& strName)
{
    const PrinterHandle printer = OpenInstalledPrinter(strName);
    const std::vector<BYTE> room = Ask("can't describe the printer", [&](BYTE* pby, DWORD cb, DWORD* pcbNeeded) {
        return GetPrinterW(printer.Get(), 2, pby, cb, pcbNeeded);
    });
    const auto& info = *reinterpret_cast<const PRINTER_INFO_2W*>(room.data());
    return {TextOf(info.pPrinterName), TextOf(info.pPortName), TextOf(info.pDriverName), TextOf(info.pLocation),
            TextOf(info.pComment)};
}

std::optional<DriverDescription> FindDriver(const std::wstring& strName)
{
    DWORD dwCount = 0;
    const std::vector<BYTE> room = Ask("can't list the drivers", [&](BYTE* pby, DWORD cb, DWORD* pcbNeeded) {
        return EnumPrinterDriversW(nullptr, nullptr, 3, pby, cb, pcbNeeded, &dwCount);
    });
    const auto* const pInfos = reinterpret_cast<const DRIVER_INFO_3W*>(room.data());
    const auto* const pFound = std::find_if(pInfos, pInfos + dwCount, [&strName](const DRIVER_INFO_3W& info) {
        return IsSameName(TextOf(info.pName), strName);
    });
    if (pFound == pInfos + dwCount)
    {
        return std::nullopt;
    }
    return DriverDescription{TextOf(pFound->pName), TextOf(pFound->pDriverPath), TextOf(pFound->pConfigFile),
                             TextOf(pFound->pDataFile)};
}

std::vector<std::wstring> PortNames()
{
    DWORD dwCount = 0;
    const std::vector<BYTE> room = Ask("can't list the ports", [&](BYTE* pby, DWORD cb, DWORD* pcbNeeded) {
        return EnumPortsW(nullptr, 1, pby, cb, pcbNeeded, &dwCount);
    });
    const auto* const pInfos = reinterpret_cast<const PORT_INFO_1W*>(room.data());
    std::vector<std::wstring> names;
    std::transform(pInfos, pInfos + dwCount, std::back_inserter(names),
                   [](const PORT_INFO_1W& info) { return TextOf(info.pName); });
    return names;
}

} // namespace VelHost
