#pragma once

#include "state/CurrentUser.h"
#include "state/PsFolder.h"

#include <string>

namespace VelUtility
{

/// Sizes of the buffers for a formed file name and for a joined path, in wide characters. Names that fit the 260 of
/// Windows are the rule; the buffers are larger so that the longest user and domain lose nothing on the way to the
/// refusal of Windows itself.
inline constexpr size_t kStoreNameUnits = kUserNameUnits + kDomainNameUnits + 260;
inline constexpr size_t kStorePathUnits = 260 + kStoreNameUnits;
/// Room for such a path.
using StorePath = wchar_t[kStorePathUnits];

/// The store's folder calls, with the sizes that they have always been called with.
inline constexpr unsigned __int64 kDataDirSize = 260;
inline constexpr unsigned __int64 kTempDirSize = 256;

/// Joins folder and file name, with a backslash between them where the folder doesn't end in one.
/// @param szPath [out] kStorePathUnits wide characters.
void JoinPath(wchar_t* szPath, const wchar_t* pszFolder, const wchar_t* pszFileName);

/// Joins a name with one of the client's folders. Like JoinPath a step of its caller: it runs, and logs, in the
/// caller's trace scope.
/// @param uiSize what GetClientFolder is told.
/// @param szPath [out] kStorePathUnits wide characters; untouched on failure.
bool MakeClientFilePath(FolderId iFolderId, unsigned __int64 uiSize, const wchar_t* pszName, wchar_t* szPath);

/// The path of a file of the current user: "user@domain_name" in the client's DataDir.
/// @param szPath [out] kStorePathUnits wide characters; untouched on failure.
/// @return whether the path was made.
bool MakePersonalFilePath(const wchar_t* szFileName, wchar_t* szPath);
/// The same as a step of its caller: it runs, and logs, in the caller's trace scope.
bool MakePersonalPathInScope(const wchar_t* pszFileName, wchar_t* szPath);
/// MakePersonalFilePath with one more log line for a failure, in the caller's trace scope.
bool MakeLoggedPersonalPath(const wchar_t* szFileName, wchar_t* szPath);

/// The path of a message file: "user_name" in the client's DataDir, for the user given and not the current one. Like
/// MakeServerFilePath it serves functions that are kept for the client's programs.
bool MakeUserMessageFilePath(const wchar_t* szFileName, std::wstring strUser, wchar_t* szPath);

/// The path of a file of the machine in the client's DataDir.
bool MakeServerFilePath(const wchar_t* szFileName, wchar_t* szPath);

/// The path of Config.ini, which all users share, in the client's TempDir. Like JoinPath a step of its caller: it runs,
/// and logs, in the caller's trace scope.
/// @param szPath [out] kStorePathUnits wide characters; untouched on failure.
/// @return whether the path was made.
bool MakeConfigFilePath(wchar_t* szPath);

} // namespace VelUtility
