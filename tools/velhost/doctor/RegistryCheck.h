#pragma once
/// The client's registry key and the folders that it names.

#include "tools/velhost/doctor/Findings.h"

namespace VelHost
{

const std::vector<FindingKind>& RegistryKinds();

/// Looks at the client's key in the registry. Reads only.
void CheckRegistry(Findings& findings);

} // namespace VelHost
