#pragma once
/// The subjects that are measured, a function each; every one adds its rows to the results.

#include "bench/BenchClient.h"
#include "bench/Measure.h"

/// Loading and unloading the module, which must not be loaded yet.
void BenchLoad(Results& results);

/// What a fresh process waits for when it first touches the module: the load, a query, a sheet.
void BenchFirst(Results& results, const BenchClient& client);

/// DrvDeviceCapabilities, with the resident client known and alive.
void BenchCaps(Results& results, const BenchClient& client, const BenchModule& module, DWORD dwClientPid);

/// DrvConvertDevMode, the merge, and the background form of DrvDocumentPropertySheets.
void BenchRecords(Results& results, const BenchClient& client, const BenchModule& module, DWORD dwClientPid);

/// A document sheet, from its first call to its visible page.
void BenchSheet(Results& results, const BenchClient& client, const BenchModule& module, DWORD dwClientPid);

/// Capability queries on several threads.
void BenchThreads(Results& results, const BenchClient& client, const BenchModule& module, DWORD dwClientPid);

/// The log calls while logging is off, and the memory that they ask for.
void BenchLogOff(Results& results);

/// The log calls while logging is on, which they switch on and off again.
void BenchLogOn(Results& results, const BenchClient& client);
