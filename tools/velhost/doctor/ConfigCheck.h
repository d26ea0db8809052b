#pragma once
/// The client's Config.ini: the file, its lock, and the snapshot in it.

#include "tools/velhost/doctor/Findings.h"

#include <string>

namespace VelHost
{

/// The kinds of what is wrong with the file itself; those of the snapshot are CapsKinds.
const std::vector<FindingKind>& ConfigKinds();

/// Looks at a Config.ini. Reads only. The file's lock is taken for a moment and given back at once; the rest is read
/// without it.
/// @param strFile full path.
void CheckConfigFile(const std::wstring& strFile, Findings& findings);

} // namespace VelHost
