#pragma once

#include <string>
#include <vector>

namespace VelHost
{

/// Name of the printer driver that install registers.
inline constexpr wchar_t kDriverName[] = L"VelUI Printer Driver";

/// Registry key above the client's own, which uninstall removes when nothing is left in it.
inline constexpr wchar_t kVendorKey[] = L"Software\\Vel-soft";
/// Registry key of the record, below HKEY_LOCAL_MACHINE.
inline constexpr wchar_t kRecordKey[] = L"Software\\Vel-soft\\VelHost";

/// What install made, kept in the registry for uninstall. Texts are full paths but for the printers' names.
struct InstallRecord
{
    std::vector<std::wstring> printers;
    std::vector<std::wstring> driverFiles;   ///< the module and its rendering half, in the spooler's folder
    std::vector<std::wstring> files;         ///< the copied Config.ini, and the log configuration
    std::vector<std::wstring> dataFolders;   ///< made for the client's data: removed with all that is in them
    std::vector<std::wstring> parentFolders; ///< made on the way, outer ones first: removed when they are empty

    /// @return the record of earlier runs; empty without one.
    static InstallRecord Load();
    /// Writes the record. Throws CommandError on failure.
    void Save() const;
    /// Removes the record.
    static void Erase();
};

/// Adds a text that is not there yet; case does not matter.
void AddOnce(std::vector<std::wstring>& texts, const std::wstring& strText);

} // namespace VelHost
