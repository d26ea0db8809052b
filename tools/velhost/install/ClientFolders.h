#pragma once

#include "tools/velhost/install/InstallRecord.h"

#include <string>
#include <vector>

namespace VelHost
{

/// One of the client's folders.
struct ClientFolder
{
    std::wstring strValue; ///< name of its registry value
    std::wstring strPath;
};

/// The client's folders below a root: InstallDir (the root), DataDir, TempDir, LogDir. Throws CommandError when a path
/// is longer than the module accepts.
/// @param strRoot full path without a separator at its end.
std::vector<ClientFolder> ClientFolders(const std::wstring& strRoot);

/// @return the folder of a registry value's name.
std::wstring FolderOf(const std::vector<ClientFolder>& folders, const wchar_t* pszValue);

/// Makes the folders that are missing, with those above them, adds them to the record, and writes the registry values.
/// Throws CommandError on failure.
void MakeClientFolders(const std::vector<ClientFolder>& folders, InstallRecord& record);

/// Removes the client's registry values, and its key when nothing else is in it.
/// @return whether any value was there.
bool RemoveClientValues();

} // namespace VelHost
