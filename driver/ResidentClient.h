#pragma once
/// The resident client process, VelprintD.exe, and its start on demand.

#include <windows.h>

#include <string>

/// Makes sure that the resident client runs under this user's account: finds it, or starts it and does not wait. Does
/// nothing for the user "SYSTEM". Stands at the very head of the entry points that it serves, before their trace scope,
/// and lets no exception out; a failure reaches nobody but the log.
///
/// In the steady state a check costs one GetUserNameW and one GetProcessVersion. What it remembers is this process's
/// own and is not locked: two threads that check at once may both start a client, which the client bears.
void CheckResidentClient() noexcept;

/// Whether a process with that id can still be asked for its version. An id that has gone to another process counts as
/// alive.
bool IsClientProcessAlive(DWORD dwPid);

/// Full path of the client's program below the Program Files folder; when that folder can't be had, the same without
/// it, which is a path from the root of the current drive.
std::wstring MakeClientPath();

/// Walks the processes for one that runs the program at strClientPath; a process of the same name from another folder
/// does not count.
/// @return its id, or 0 when there is none. Throws Win32::Win32Exception when the walk fails.
DWORD FindClientProcess(const std::wstring& strClientPath);
