#pragma once
/// What a device-mode record asks of a printer, in words.

#include "tools/velhost/host/CapsQuery.h"

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

namespace VelHost
{

/// A setting's name and its choice, both UTF-8.
using Setting = std::pair<std::string, std::string>;

/// The settings of a record in the order in which a person asks for them: paper, orientation, colour, sides, copies,
/// tray, resolution, watermark. A field that the record's dmFields do not name is the printer's choice.
/// @param record a whole record: its declared sizes must lie within its bytes.
/// @param ask    tells the names of papers and trays; a list that is refused leaves the numbers.
std::vector<Setting> ChosenSettings(const std::vector<BYTE>& record, const AskCaps& ask);

/// @return whether a record asks for colour.
bool AsksForColour(const std::vector<BYTE>& record);

/// Throws CommandError when a record's declared sizes reach behind its end, or do not reach the fields that every
/// application reads: whoever gets such a record reads foreign memory.
void RequireHonestSizes(const std::vector<BYTE>& record);

} // namespace VelHost
