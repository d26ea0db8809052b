#pragma once
/// The floor of the client's store: its paths, its locks and the check of the resident client by exactly the Windows
/// calls that the contract demands, and nothing else. No result is tested and nothing is logged.

#include <windows.h>

/// Wide characters of a path.
inline constexpr size_t kFloorPathUnits = 520;

/// The check at the head of an entry point, with the resident client known and alive: the user, the process's version.
/// @param dwClientPid 0 when the user is SYSTEM, for whom no process is asked.
void FloorClientCheck(DWORD dwClientPid);

/// The path of Config.ini: the folder from the registry, and the name joined to it.
void FloorConfigPath(wchar_t* szPath);

/// The path of a file of the current user: the user and the domain from the registry, the computer's name, the folder.
void FloorPersonalPath(const wchar_t* pszFile, wchar_t* szPath);

/// The lock of a file by its path: the name, the mutex, the wait; two releases and the close.
class FloorLock
{
public:
    explicit FloorLock(const wchar_t* pszPath);
    ~FloorLock();
    FloorLock(const FloorLock&) = delete;
    FloorLock& operator=(const FloorLock&) = delete;

private:
    HANDLE m_hMutex;
};
