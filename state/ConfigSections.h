#pragma once
/// Sections of Config.ini that more than one file reads or writes.

namespace VelUtility
{

inline constexpr wchar_t kPrinterSection[] = L"Printer";
inline constexpr wchar_t kCapsSection[] = L"DeviceCapabilities";

} // namespace VelUtility
