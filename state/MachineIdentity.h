#pragma once
/// Who the machine is: its name, its first address and the hardware address of its first network adapter. No entry
/// point of this module reaches these functions: they are kept for the client's programs, which name the machine to
/// their server.

#include <windows.h>

#include <array>
#include <list>

namespace VelUtility
{

/// Bytes of a hardware address.
inline constexpr size_t kMacBytes = 6;
using MacAddress = std::array<BYTE, kMacBytes>;

/// Size of the buffer for the machine's name in GetHost, in wide characters; a longer one is cut.
inline constexpr size_t kHostNameUnits = 1024;

/// Fills what the caller hands in; each output may be null and is then left out. The host comes first: when its name
/// can't be resolved, the hardware address is not sought. An output that was filled before a later failure keeps its
/// value.
/// @param szHostName [out] uiHostSize wide characters; without a terminator when the name does not fit.
/// @param pbyMac     [out] 6 bytes.
/// @param pbyIP      [out] 4 bytes, in the order in which they stand in the address.
/// @return 0, or 1 for a failure.
DWORD GetLocalMachineInfo(wchar_t* szHostName, DWORD uiHostSize, BYTE* pbyMac, BYTE* pbyIP);

/// Gets the name from the environment's COMPUTERNAME and the addresses from the socket library's own host name.
/// @param szHostName  [out] kHostNameUnits wide characters; filled also when resolution then fails.
/// @param uiHostSize  not used.
/// @param addresses   [out] each address is added behind what is there, as its four bytes stand.
bool GetHost(wchar_t* szHostName, DWORD uiHostSize, std::list<DWORD>& addresses);

/// Adds the address of each adapter that has one of 6 bytes, in the order of Windows.
bool GetMACaddress(std::list<MacAddress>& addresses);

/// Does nothing.
/// @return 1.
DWORD GetLogonUserInfo(unsigned __int64 uiFirst, DWORD dwSecond, unsigned __int64 uiThird, DWORD dwFourth);

} // namespace VelUtility
