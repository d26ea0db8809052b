#pragma once
/// The floor of the device-mode record: the bare copies of the modes that copy, and the calls of those that read files.

#include "settings/DriverDevmode.h"

/// The copies of a conversion between whole records: 220 bytes and the tail.
void FloorConvert(const stuDrvDevmode& in, stuDrvDevmode& out);

/// The copies of a merge: the default record's 220 bytes by value, the input's 220 bytes.
void FloorMerge(DEVMODEW stuDefDev, const DEVMODEW& in, DEVMODEW& out);

/// The user's record from DevMode.dat; when there is no such file, the reads of the hard-coded default: the device's
/// name from the string table, the number of papers, the papers.
/// @param hModule whose string table.
void FloorDefaultRecord(HMODULE hModule, stuDrvDevmode& record);

/// The user's stored request from defsetting.ini.
DWORD FloorDefSetting();
