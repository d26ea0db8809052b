#pragma once
/// The ini files of the client's DataDir: the current user's defsetting.ini and server.ini, and the machine's
/// serverconfig.ini. Each call forms the path, holds the file's lock for its work, and keeps nothing. Statuses are 0
/// for success and 1 for failure. An absent file or key is no failure for any reader: the defaults come back. Records
/// are passed by address, borrowed, and may not be null.

#include <windows.h>

#include <string>

namespace VelUtility
{

/// Reads DefaultNoWaterPrint from the current user's defsetting.ini; 0 by default.
/// @param pdwNoWaterPrint [out] untouched on failure.
DWORD GetDefSetting(DWORD* pdwNoWaterPrint);
/// Writes DefaultNoWaterPrint as a signed number.
/// @return 0 also when the file can't be written; 1 when its path can't be made.
DWORD MakeDefSetting(const DWORD* pdwNoWaterPrint);

// server.ini and serverconfig.ini tell the client's programs which server they belong to. No entry point of this module
// reaches these functions: they are kept for those programs.

/// server.ini of the current user.
struct ServerPlace
{
    std::wstring Server; ///< at most 254 characters read
    BYTE IPAddress[4];   ///< stored as one unsigned 32-bit number
    DWORD Mode;          ///< 1 or 0 after a read
};

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
