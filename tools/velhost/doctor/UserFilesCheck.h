#pragma once
/// The files that the store keeps for the users, in the client's DataDir.

#include "tools/velhost/doctor/Findings.h"

namespace VelHost
{

/// The kinds of this check: USR01 and on.
const std::vector<FindingKind>& UserFilesKinds();

/// Looks at the current user's own files, at the message files of a user and at the machine's serverconfig.ini. Reads
/// only. Throws CommandError when DataDir can't be told.
/// @param strUser whose message files.
void CheckUserFiles(const std::wstring& strUser, Findings& findings);

} // namespace VelHost
