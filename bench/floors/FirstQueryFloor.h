#pragma once
/// The floor of a person's first capability query in a process: what the contract demands until the resident client is
/// found. No library is used but kernel32 and advapi32, and shell32 from its first call on.

/// The user's name, the Program Files folder, the right to debug, the walk over the processes, and over the modules of
/// each that has the client's name.
/// @param pszClient the client's full path, to compare the modules' with.
/// @return whether the client was found.
bool FloorFirstQuery(const wchar_t* pszClient);
