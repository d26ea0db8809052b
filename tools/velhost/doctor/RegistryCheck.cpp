#include "tools/velhost/doctor/RegistryCheck.h"

#include "state/PsFolder.h"
#include "state/StorePaths.h"
#include "support/RegistryKey.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

#include <cwctype>

namespace VelHost
{
namespace
{

constexpr char kArea[] = "registry";
constexpr wchar_t kKey32[] = L"Software\\WOW6432Node\\Vel-soft\\Client";

/// Characters of the longest InstallDir whose LogConfig.conf can be opened: 259 of a path without the name and the
/// backslash in front of it.
constexpr size_t kMostInstallDirUnits = MAX_PATH - 1 - (sizeof("\\LogConfig.conf") - 1);
/// Bytes that the folder readers take of a value at most; a program of the client's may ask with any size up to it.
constexpr size_t kMostValueBytes = MAX_PATH * sizeof(wchar_t);

/// One of the client's folders: what its value may be, and what the store does there.
struct FolderRow
{
    const wchar_t* pszValue;
    size_t cbMost;  ///< bytes of the value at most, its terminator included
    bool bCodePage; ///< read as text of the system's code page
    DWORD dwRights; ///< what the current user needs there
    const char* pszUse;
};

constexpr FolderRow kFolders[] = {
    {VelUtility::kInstallDir, (kMostInstallDirUnits + 1) * sizeof(wchar_t), true, FILE_TRAVERSE,
     "LogConfig.conf is read from it"},
    {L"DataDir", VelUtility::kDataDirSize, false, FILE_ADD_FILE, "the users' files are written there"},
    {L"TempDir", VelUtility::kTempDirSize, false, FILE_TRAVERSE, "Config.ini is read from it"},
    {L"LogDir", kMostValueBytes, false, FILE_ADD_FILE, "logs are written there"},
};

/// A registry value as it is stored.
struct StoredValue
{
    LSTATUS lStatus = ERROR_SUCCESS;
    DWORD dwType = REG_NONE;
    DWORD cbData = 0;     ///< bytes, a terminator among them where one was stored
    std::wstring strText; ///< the data as text, up to its terminator
};

StoredValue ReadValue(HKEY hKey, const wchar_t* pszValue)
{
    StoredValue value;
    value.lStatus = RegQueryValueExW(hKey, pszValue, nullptr, &value.dwType, nullptr, &value.cbData);
    if (value.lStatus == ERROR_SUCCESS)
    {
        std::vector<wchar_t> data(value.cbData / sizeof(wchar_t) + 2);
        value.lStatus = RegQueryValueExW(hKey, pszValue, nullptr, &value.dwType, reinterpret_cast<BYTE*>(data.data()),
                                         &value.cbData);
        value.strText = data.data();
    }
    return value;
}

bool IsFullPath(const std::wstring& strPath)
{
    const auto isSeparator = [](wchar_t ch) { return ch == L'\\' || ch == L'/'; };
    const bool bDrive =
        strPath.size() >= 3 && std::iswalpha(strPath[0]) && strPath[1] == L':' && isSeparator(strPath[2]);
    const bool bShare = strPath.size() >= 3 && isSeparator(strPath[0]) && isSeparator(strPath[1]);
    return bDrive || bShare;
}

/// Looks at the form of a value's text.
/// @return whether it names a folder that can be looked for.
bool CheckText(const FolderRow& row, const StoredValue& value, const std::wstring& strWhere, Findings& findings)
{
    if (value.dwType != REG_SZ)
    {
        findings.Add("REG04", strWhere,
                     L"its type is " + std::to_wstring(value.dwType) +
                         L"; the module takes the bytes as they are, and expands nothing");
        return false;
    }
    if (value.cbData > row.cbMost)
    {
        findings.Add("REG05", strWhere,
                     std::to_wstring(value.strText.size()) + L" characters; at most " +
                         std::to_wstring(row.cbMost / sizeof(wchar_t) - 1) + L" are accepted");
        return false;
    }
    if (!IsFullPath(value.strText))
    {
        findings.Add("REG06", strWhere, L"\"" + value.strText + L"\"");
        return false;
    }
    if (row.bCodePage && !ToCodePage(value.strText))
    {
        findings.Add("REG07", strWhere, L"\"" + value.strText + L"\" under code page " + std::to_wstring(GetACP()));
        return false;
    }
    return true;
}

void CheckFolder(const FolderRow& row, const std::wstring& strFolder, const std::wstring& strWhere, Findings& findings)
{
    if (IsFile(strFolder))
    {
        findings.Add("REG09", strFolder, L"named by " + strWhere);
        return;
    }
    const DWORD dwError = OpenError(strFolder, row.dwRights, FILE_FLAG_BACKUP_SEMANTICS);
    if (dwError == ERROR_ACCESS_DENIED)
    {
        findings.Add("REG10", strFolder, FromUtf8(row.pszUse));
    }
    else if (dwError != ERROR_SUCCESS)
    {
        findings.Add("REG08", strFolder,
                     L"named by " + strWhere + L"; " + FromUtf8(Win32ErrorText("Windows", dwError)));
    }
    else
    {
        findings.Good(kArea, std::wstring(row.pszValue) + L" is " + strFolder);
    }
}

} // namespace

const std::vector<FindingKind>& RegistryKinds()
{
    static const std::vector<FindingKind> s_kinds = {
        {"REG01", "The client's registry key is missing", "Install the client, or run velhost install."},
        {"REG02", "The client's registry key is only in the 32-bit view",
         "Write the key and its values to the 64-bit view, which the 64-bit module reads."},
        {"REG03", "A folder's value is missing in the client's key",
         "Add the value as text (REG_SZ) with the folder's full path, or run velhost install again."},
        {"REG04", "A folder's value is no plain text", "Store the value anew as REG_SZ, with the path written out."},
        {"REG05", "A folder's value is too long for the module", "Move the client to a folder with a shorter path."},
        {"REG06", "A folder's value is no full path",
         "Store the full path, from the drive's letter or the share on, without quotation marks and variables."},
        {"REG07", "InstallDir has characters that the system's code page lacks",
         "Move the client to a folder whose path the code page can write; plain Latin letters always do."},
        {"REG08", "A folder of the client's is missing", "Make the folder, or set the value to the folder there is."},
        {"REG09", "A file stands in the place of a folder of the client's",
         "Move the file away and make the folder, or set the value to the folder there is."},
        {"REG10", "The current user lacks a right in a folder of the client's",
         "Give users the right to read in InstallDir and TempDir, and to add and change files in DataDir and LogDir."},
    };
    return s_kinds;
}

void CheckRegistry(Findings& findings)
{
    const std::wstring strKey = std::wstring(L"HKEY_LOCAL_MACHINE\\") + VelUtility::kClientKey;
    RegistryKey key;
    const LONG lStatus = key.Open(HKEY_LOCAL_MACHINE, VelUtility::kClientKey, KEY_READ);
    if (lStatus == ERROR_FILE_NOT_FOUND)
    {
        RegistryKey key32;
        const bool b32 = key32.Open(HKEY_LOCAL_MACHINE, kKey32, KEY_READ) == ERROR_SUCCESS;
        findings.Add(b32 ? "REG02" : "REG01", strKey, b32 ? std::wstring(L"there is ") + kKey32 : std::wstring());
        return;
    }
    if (lStatus != ERROR_SUCCESS)
    {
        ThrowCommandError("can't read the registry key " + ToUtf8(strKey), static_cast<DWORD>(lStatus));
    }
    for (const FolderRow& row : kFolders)
    {
        const std::wstring strWhere = PathIn(strKey, row.pszValue);
        const StoredValue value = ReadValue(key.Get(), row.pszValue);
        if (value.lStatus == ERROR_FILE_NOT_FOUND)
        {
            findings.Add("REG03", strWhere, FromUtf8(row.pszUse));
        }
        else if (value.lStatus != ERROR_SUCCESS)
        {
            ThrowCommandError("can't read the registry value " + ToUtf8(strWhere), static_cast<DWORD>(value.lStatus));
        }
        else if (CheckText(row, value, strWhere, findings))
        {
            CheckFolder(row, value.strText, strWhere, findings);
        }
    }
}

} // namespace VelHost
