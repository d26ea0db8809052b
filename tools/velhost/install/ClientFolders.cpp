#include "tools/velhost/install/ClientFolders.h"

#include "state/PsFolder.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/HostKey.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

#include <algorithm>

namespace VelHost
{
namespace
{

// The module compares a folder's bytes, terminator included, with a size of 256.
constexpr size_t kMostFolderUnits = 127;

const wchar_t* const kFolderValues[] = {L"InstallDir", L"DataDir", L"TempDir", L"LogDir"};

/// Makes a folder and those above it.
/// @param made [out] gets the full paths of the folders above it that were made, outer ones first.
/// @return whether the folder itself was made.
bool MakeFolder(const std::wstring& strFolder, std::vector<std::wstring>& made)
{
    if (IsFolder(strFolder))
    {
        return false;
    }
    const size_t separator = strFolder.find_last_of(L'\\');
    if (separator != std::wstring::npos && separator > 2)
    {
        const std::wstring strParent = strFolder.substr(0, separator);
        if (MakeFolder(strParent, made))
        {
            made.push_back(strParent);
        }
    }
    if (!CreateDirectoryW(strFolder.c_str(), nullptr))
    {
        ThrowCommandError("can't make the folder " + ToUtf8(strFolder));
    }
    return true;
}

} // namespace

std::vector<ClientFolder> ClientFolders(const std::wstring& strRoot)
{
    const std::vector<ClientFolder> folders = {{kFolderValues[0], strRoot},
                                               {kFolderValues[1], PathIn(strRoot, L"Data")},
                                               {kFolderValues[2], PathIn(strRoot, L"Temp")},
                                               {kFolderValues[3], PathIn(strRoot, L"Log")}};
    for (const ClientFolder& folder : folders)
    {
        if (folder.strPath.size() > kMostFolderUnits)
        {
            throw CommandError("the folder " + ToUtf8(folder.strPath) + " has " +
                               std::to_string(folder.strPath.size()) + " characters; the module accepts at most " +
                               std::to_string(kMostFolderUnits));
        }
    }
    return folders;
}

std::wstring FolderOf(const std::vector<ClientFolder>& folders, const wchar_t* pszValue)
{
    const auto found = std::find_if(folders.begin(), folders.end(),
                                    [pszValue](const ClientFolder& folder) { return folder.strValue == pszValue; });
    return found == folders.end() ? std::wstring() : found->strPath;
}

void MakeClientFolders(const std::vector<ClientFolder>& folders, InstallRecord& record)
{
    for (const ClientFolder& folder : folders)
    {
        std::vector<std::wstring> made;
        const bool bMade = MakeFolder(folder.strPath, made);
        for (const std::wstring& strParent : made)
        {
            AddOnce(record.parentFolders, strParent);
        }
        if (bMade)
        {
            // Only the folders below the root hold nothing but the client's data.
            const bool bRoot = folder.strValue == kFolderValues[0];
            AddOnce(bRoot ? record.parentFolders : record.dataFolders, folder.strPath);
        }
    }
    HostKey key = HostKey::Create(VelUtility::kClientKey);
    for (const ClientFolder& folder : folders)
    {
        key.SetText(folder.strValue.c_str(), folder.strPath);
    }
}

bool RemoveClientValues()
{
    bool bThere = false;
    {
        HostKey key = HostKey::Open(VelUtility::kClientKey);
        for (const wchar_t* pszValue : kFolderValues)
        {
            bThere = key.DeleteValue(pszValue) || bThere;
        }
    }
    DeleteKeyIfEmpty(VelUtility::kClientKey);
    return bThere;
}

} // namespace VelHost
