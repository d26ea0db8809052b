#pragma once
/// A device-mode record as it is shown to people.

#include "tools/velhost/report/Output.h"

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

namespace VelHost
{

/// Bytes that a record must have before its sizes can be read: up to dmDriverExtra.
inline constexpr size_t kDevmodeHeaderBytes = offsetof(DEVMODEW, dmFields);

/// A record read field by field from its bytes. Fields that the record's declared public size does not hold are left
/// out.
struct DevmodeReport
{
    std::vector<std::pair<std::string, Json>> fields; ///< names as in DEVMODEW, in their order
    std::vector<std::string> fieldNames;              ///< DM_ names of dmFields; unknown bits as one number
    std::vector<DWORD> tailWords;                     ///< the driver's own part, whole 32-bit words
};

/// Reads a record.
/// @param pbyRecord, cbRecord the bytes there are, at least kDevmodeHeaderBytes; nothing behind them is read.
DevmodeReport ReadDevmode(const BYTE* pbyRecord, size_t cbRecord);

/// Throws CommandError when a record is shorter than kDevmodeHeaderBytes.
/// @param strFile where it comes from.
void RequireDevmodeHeader(const std::vector<BYTE>& record, const std::string& strFile);

/// @return dmSize + dmDriverExtra of a record with at least kDevmodeHeaderBytes.
size_t DevmodeDeclaredBytes(const BYTE* pbyRecord);

Json DevmodeToJson(const DevmodeReport& report);

/// @return the record as a table of field and value.
std::string DevmodeTable(const DevmodeReport& report);

} // namespace VelHost
