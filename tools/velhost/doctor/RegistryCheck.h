#pragma once
/// The client's registry key and the folders that it names.

#include "tools/velhost/doctor/Findings.h"

namespace VelHost
{

/// The kinds of this check: REG01 and on.
const std::vector<FindingKind>& RegistryKinds();

/// Looks at the client's key below HKEY_LOCAL_MACHINE, at each of its four values and at the folder that it names.
/// Reads only. Throws CommandError when the key is there and can't be read.
void CheckRegistry(Findings& findings);

} // namespace VelHost
