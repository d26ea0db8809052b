#pragma once
/// The client's small settings files and their typed records. Each call finds the path, reads or writes, and keeps
/// nothing. Statuses are 0 for success and 1 for failure. An absent file or key is no failure for any reader: the
/// defaults come back. Records are passed by address, borrowed, and may not be null.

#include "state/PrinterCaps.h"

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

/// server.ini of the current user.
struct ServerPlace
{
    std::wstring Server; ///< at most 254 characters read
    BYTE IPAddress[4];   ///< stored as one unsigned 32-bit number
    DWORD Mode;          ///< 1 or 0 after a read
};

/// Writes section Setting, without the file's lock. What was written before a failure stays.
DWORD WriteClientSetting(const ClientSetting* pstuSetting);
/// Reads section Setting under the file's lock.
DWORD ReadClientSetting(ClientSetting* pstuSetting);

/// Writes section ServerConfig, without the file's lock.
DWORD MakeServerConfig(const ServerConfigInfo* pstuConfig);
/// Reads section ServerConfig under the file's lock.
DWORD GetServerConfig(ServerConfigInfo* pstuConfig);

/// Reads section Printer under the file's lock; each text at most 255 characters.
DWORD GetPrinterInfo(PrinterInfo* pstuInfo);

/// @return 0 when Config.ini exists, else 1.
DWORD CheckConfigFile();

/// Reads DefaultNoWaterPrint from the current user's defsetting.ini; 0 by default.
/// @param pdwNoWaterPrint [out] untouched on failure.
DWORD GetDefSetting(DWORD* pdwNoWaterPrint);
/// Writes DefaultNoWaterPrint as a signed number.
/// @return 0 also when the file can't be written; 1 when its path can't be made.
DWORD MakeDefSetting(const DWORD* pdwNoWaterPrint);

/// Writes the current user's server.ini.
DWORD MakeServerPlaceFile(const ServerPlace* pstuPlace);
/// Reads it.
/// @return 0 always; the record stays as it was when the path can't be made.
DWORD GetServerPlaceFile(ServerPlace* pstuPlace);

/// Writes the machine's serverconfig.ini.
DWORD MakeServerPlaceFileNew(std::wstring strServer);
/// Reads it.
/// @return 0 always; the text stays as it was when the path can't be made.
DWORD GetServerPlaceFileNew(std::wstring* pstrServer);

} // namespace VelUtility
