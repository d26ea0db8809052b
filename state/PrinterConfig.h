#pragma once

#include "state/PrinterCaps.h"

namespace VelUtility
{

/// Writes a snapshot: the sections Printer and DeviceCapabilities of Config.ini in the client's TempDir, under the
/// file's lock.
/// @param pstuInfo, pstuCaps borrowed; neither may be null.
/// @return 0 always, also after a failed write, which only the log shows; what was written until then stays.
DWORD MakePrinterConfig(const PrinterInfo* pstuInfo, const PrinterCaps* pstuCaps);

} // namespace VelUtility
