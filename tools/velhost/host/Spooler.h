#pragma once
/// What the commands ask of Windows' spooler, with errors as CommandError.

#include <windows.h>
#include <winspool.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace VelHost
{

/// An open printer; closed at the end of the object's life.
class PrinterHandle
{
public:
    /// @param hPrinter owned; may be null.
    explicit PrinterHandle(HANDLE hPrinter) noexcept : m_hPrinter(hPrinter) {}
    ~PrinterHandle();
    PrinterHandle(PrinterHandle&& other) noexcept : m_hPrinter(other.m_hPrinter) { other.m_hPrinter = nullptr; }
    PrinterHandle(const PrinterHandle&) = delete;
    PrinterHandle& operator=(const PrinterHandle&) = delete;

    HANDLE Get() const noexcept { return m_hPrinter; }

private:
    HANDLE m_hPrinter;
};

/// @return whether two names of printers, drivers, ports or files are one, whatever the case of their letters.
bool IsSameName(const std::wstring& strLeft, const std::wstring& strRight);

/// What is known of an installed printer.
struct PrinterDescription
{
    std::wstring strName;
    std::wstring strPort;
    std::wstring strDriver;
    std::wstring strLocation;
    std::wstring strComment;
};

/// What is known of an installed driver.
struct DriverDescription
{
    std::wstring strName;
    std::wstring strDriverFile; ///< full paths
    std::wstring strConfigFile;
    std::wstring strDataFile;
};

/// Opens a printer with a right. Throws CommandError "there is no printer ..." for an unknown name.
/// @param dwAccess PRINTER_ACCESS_USE or PRINTER_ALL_ACCESS.
PrinterHandle OpenInstalledPrinter(const std::wstring& strName, DWORD dwAccess = PRINTER_ACCESS_USE);

/// @return whether a local printer of that name is installed.
bool IsPrinterInstalled(const std::wstring& strName);

/// Throws CommandError for an unknown name.
PrinterDescription DescribePrinter(const std::wstring& strName);

/// The default record that the spooler keeps for a printer, for all its users; empty when it keeps none. Throws
/// CommandError on failure.
std::vector<BYTE> PrinterDefaultRecord(const PrinterHandle& printer);

/// A record of a size, all 0 but for that size in its header: the module goes by what the header says.
/// @param lSize bytes, at least those of a DEVMODEW.
std::vector<BYTE> EmptyRecord(LONG lSize);

/// The user's default record of a printer, as an application gets it from Windows before it prints. Throws CommandError
/// for an unknown printer, and when the driver refuses to tell the size or to fill the record.
std::vector<BYTE> UserDefaultRecord(const std::wstring& strPrinter);

/// @return all drivers for 64-bit Windows.
std::vector<DriverDescription> ListDrivers();

/// @return the driver of that name for 64-bit Windows, or nothing.
std::optional<DriverDescription> FindDriver(const std::wstring& strName);

/// @return whether any driver for 64-bit Windows has this file, by its full path, as one of its three.
bool IsDriverFile(const std::wstring& strFile);

/// The folder in which the spooler keeps the files of 64-bit drivers of its version 3, without a separator at its end.
/// Throws CommandError on failure.
std::wstring SpoolerDriverFolder();

/// @return names of the local printers.
std::vector<std::wstring> PrinterNames();

/// A printer's stored device mode record.
enum class StoredRecord : DWORD
{
    OfPrinter = 2, ///< the levels of GetPrinterW
    OfUser = 9,
};

/// @return the sizes that a stored record declares: dmSize and dmDriverExtra; nothing where there is no record.
std::optional<std::pair<WORD, WORD>> StoredRecordSizes(const std::wstring& strPrinter, StoredRecord which);

/// @return whether the spooler has a print processor of that name.
bool HasPrintProcessor(const std::wstring& strName);

/// @return names of the local ports.
std::vector<std::wstring> PortNames();

} // namespace VelHost
