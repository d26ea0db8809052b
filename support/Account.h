#pragma once
/// Who runs this process, and what it may do.

#include <windows.h>

#include <string>

namespace Win32
{

/// The current user's name. Throws Win32Exception.
std::wstring GetUserNameString();

/// Whether the user is "SYSTEM", with case. Throws as GetUserNameString.
bool IsSystemUser();

/// The Program Files folder without a separator at its end; looked for until it is found once, and empty until then.
const std::wstring& GetProgramFilesFolder();

/// Enables the right to debug in a process's token, or removes it from the token for good.
/// @param pszPrivilege not read: the right is always "SeDebugPrivilege".
/// Throws Win32Exception. A user who does not hold the right passes without notice.
void EnableDebugPrivilege(HANDLE hProcess, const wchar_t* pszPrivilege, bool bEnable);

/// The same; answers whether it came back without an exception.
bool TryEnableDebugPrivilege(HANDLE hProcess, const wchar_t* pszPrivilege, bool bEnable) noexcept;

} // namespace Win32
