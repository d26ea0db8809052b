#pragma once
/// Config.ini in the client's TempDir, which all users of the machine share: its sections Setting and ServerConfig.
/// (The capability snapshot lies in the same file: CapabilitySnapshot.h.) No entry point of this module reaches these
/// functions: they are kept for the client's programs, which share the file.
///
/// Each call finds the path, reads or writes, and keeps nothing. Statuses are 0 for success and 1 for failure. An
/// absent file or key is no failure for any reader: the defaults come back. Records are passed by address, borrowed,
/// and may not be null.

#include <windows.h>

#include <string>

namespace VelUtility
{

/// Section Setting of Config.ini.
struct ClientSetting
{
    DWORD DisplayProjectSelection; ///< flag; 1 by default
    DWORD CanSelectNoPrinter;      ///< flag; 0 by default
    DWORD CanSelectNoProject;      ///< flag; 0 by default
    std::wstring DefaultPrinter;   ///< at most 255 characters read
    std::wstring DefaultProject;   ///< at most 255 characters read
};

/// Section ServerConfig of Config.ini: four flags, 0 by default.
struct ServerConfigInfo
{
    DWORD WaterPrintInstalled;
    DWORD AuditInstalled;
    DWORD SGIdentifyInstalled;
    DWORD FilterIntalled; ///< spelled so in the file too
};

/// Writes section Setting, without the file's lock. What was written before a failure stays.
DWORD WriteClientSetting(const ClientSetting* pstuSetting);
/// Reads section Setting under the file's lock.
DWORD ReadClientSetting(ClientSetting* pstuSetting);

/// Writes section ServerConfig, without the file's lock.
DWORD MakeServerConfig(const ServerConfigInfo* pstuConfig);
/// Reads section ServerConfig under the file's lock.
DWORD GetServerConfig(ServerConfigInfo* pstuConfig);

/// Whether Config.ini is there.
/// @return 0 when it is, else 1.
DWORD CheckConfigFile();

} // namespace VelUtility
