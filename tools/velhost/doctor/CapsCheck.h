#pragma once
/// What a snapshot says of the printer, held against what the module makes of it.

#include "tools/velhost/doctor/Findings.h"
#include "tools/velhost/doctor/SnapshotView.h"

#include <windows.h>

#include <vector>

namespace VelHost
{

const std::vector<FindingKind>& CapsKinds();

/// Lists by their DC_ codes, of which an entry means something only together with those at its place in the others of
/// its group.
const std::vector<std::vector<WORD>>& ListGroups();

/// Looks at all keys of the capability table.
/// @param strFile the snapshot's place, for the findings.
/// @return whether there was nothing to find.
bool CheckCaps(const SnapshotView& snapshot, const std::wstring& strFile, Findings& findings);

} // namespace VelHost
