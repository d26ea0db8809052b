#pragma once
/// The data files of the current user in the client's DataDir: passport.dat, the stored logon, and DevMode.dat, the
/// default device mode. Every call forms the path, holds the file's lock for its work, and keeps nothing. Statuses are
/// 0 for success, 1 for failure and 16 for arguments that can't be served. Sizes are bytes.

#include <windows.h>

namespace VelUtility
{

/// The default device mode's name, without the user in front of it.
inline constexpr wchar_t kDevModeFile[] = L"DevMode.dat";

/// Stores the 220 bytes of a device mode as the current user's DevMode.dat; nothing of a private tail.
/// @return 0 also when the disk is full.
DWORD SetDevDef(const DEVMODEW* pstuDevmode);

/// Reads the first 220 bytes of DevMode.dat.
/// @param pstuDevmode [out] untouched unless 0 is returned.
/// @return 1 for an absent file and for one of fewer than 220 bytes.
DWORD GetDevDef(DEVMODEW* pstuDevmode);

// passport.dat belongs to the client's programs. No entry point of this module reaches these functions: they are kept
// for those programs, which share the file.

/// Stores a block of bytes as the current user's passport.dat, in the place of what was there.
/// @param pbyData iDataLen bytes; borrowed. A length of 0 empties the file and returns 1.
DWORD MakeAutoLogonInfo(const BYTE* pbyData, DWORD iDataLen);

/// Stores a name with its terminator as passport.dat, through a text-mode stream: each byte 0x0A becomes 0x0D 0x0A.
/// @return 16 for a null name.
DWORD MakeLogonUserName(const wchar_t* pszUserName);

/// Reads passport.dat whole.
/// @param pbyData  [out] iDataLen bytes.
/// @param piFileLen [out] the file's length in bytes; untouched unless 0 is returned.
/// @return 16 for a null argument and for a file longer than the buffer; 1 for an absent or empty file.
DWORD GetAutoLogonInfo(BYTE* pbyData, int iDataLen, int* piFileLen);

/// Deletes passport.dat, a read-only one too.
/// @return 0 also when there was none.
DWORD DelAutoLogonInfo();

} // namespace VelUtility
