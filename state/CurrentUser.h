#pragma once

#include <windows.h>

namespace VelUtility
{

/// Sizes that the buffers szUserName and szDomainName must have, in wide characters. A user name is at most 80
/// characters; a domain stays whole up to its buffer's size.
inline constexpr size_t kUserNameUnits = 81;
inline constexpr size_t kDomainNameUnits = 1024;

/// Tells the current user: the machine's default logon user from the registry, or else the hard-coded one.
/// @param szUserName   [out] kUserNameUnits wide characters.
/// @param szDomainName [out] kDomainNameUnits wide characters.
/// @return 1 always, since the hard-coded user always answers.
DWORD GetCurrentUsername(wchar_t* szUserName, wchar_t* szDomainName);

/// Reads DefaultUserName and DefaultDomainName of the Winlogon key; a domain that begins with this computer's name
/// becomes "localhost". Same arguments.
/// @return 1; 0 when the key can't be opened with full access or a value is missing: the buffers then hold whatever was
///         read until then.
DWORD GetCurrentUsername_Registry(wchar_t* szUserName, wchar_t* szDomainName);

/// Gives the user "QPS" of the domain "VEL". Same arguments.
/// @return 1 always.
DWORD GetCurrentUsername_Hardcode(wchar_t* szUserName, wchar_t* szDomainName);

} // namespace VelUtility
