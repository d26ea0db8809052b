#pragma once
/// The resident client's programs.

#include "tools/velhost/doctor/Findings.h"

namespace VelHost
{

/// The kinds of this check: CLI01 and on.
const std::vector<FindingKind>& ClientKinds();

/// Looks at the resident client's program and its processes, and at the tools beside the module. Starts nothing. Throws
/// Language::Exception when the processes can't be walked.
/// @param strClient full path of the program that the launcher starts.
/// @param modules   full paths of the spooler's copies of the module.
void CheckClient(const std::wstring& strClient, const std::vector<std::wstring>& modules, Findings& findings);

/// @return whether a capability query of the current user would start the client, which a look must not do. Throws as
///         CheckClient.
bool WouldStartClient(const std::wstring& strClient);

} // namespace VelHost
