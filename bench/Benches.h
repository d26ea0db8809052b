#pragma once
/// The subjects that are measured, a function each; every one adds its rows to the table.

#include "bench/BenchClient.h"
#include "bench/Measure.h"

/// Loading and unloading the module, which must not be loaded yet.
void BenchLoad(Table& table);

/// DrvDeviceCapabilities, with the resident client known and alive.
void BenchCaps(Table& table, const BenchClient& client, const BenchModule& module, DWORD dwClientPid);

/// DrvConvertDevMode, the merge, and the background form of DrvDocumentPropertySheets.
void BenchRecords(Table& table, const BenchClient& client, const BenchModule& module, DWORD dwClientPid);

/// A document sheet, from its first call to its visible page.
void BenchSheet(Table& table, const BenchClient& client, const BenchModule& module, DWORD dwClientPid);

/// Capability queries on several threads.
void BenchThreads(Table& table, const BenchClient& client, const BenchModule& module, DWORD dwClientPid);

/// The log calls while logging is off, and the memory that they ask for.
void BenchLogOff(Table& table);

/// The log calls while logging is on, which they switch on and off again.
void BenchLogOn(Table& table, const BenchClient& client);
