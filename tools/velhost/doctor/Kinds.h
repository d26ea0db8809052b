#pragma once
/// All kinds of findings.

#include "tools/velhost/doctor/Findings.h"

namespace VelHost
{

/// The tables of all checks, one behind the other: what the command can find, and what docs/doctor.md explains.
const std::vector<FindingKind>& AllKinds();

} // namespace VelHost
