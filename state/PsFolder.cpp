#include "state/PsFolder.h"

#include "diag/LogSite.h"
#include "state/StoreTypes.h"
#include "support/RegistryKey.h"

#include <cwchar>

VELUI_SOURCE_MODULE(".\\PsFolder");

namespace VelUtility
{

namespace
{

constexpr const wchar_t* kClientValues[] = {kInstallDir, L"DataDir", L"TempDir", L"LogDir"};
constexpr const wchar_t* kServerValues[] = {kInstallDir,  L"DatabaseDir", L"TaskDir", L"LogDir",
                                            L"BackupDir", L"SGPlugin",    L"TempDir"};

/// Where one reader finds its folders.
struct FolderTable
{
    const wchar_t* pszKey;
    DWORD dwFirstId;
    DWORD dwCount;
    const wchar_t* const* ppszValues;
    bool bLogBadId; ///< whether an id outside the table leaves a line
};

constexpr FolderTable kClientFolders = {kClientKey, kClientInstallDir, 4, kClientValues, true};
constexpr FolderTable kServerFolders = {kServerKey, kServerInstallDir, 7, kServerValues, false};

DWORD ReadFolder(const FolderTable& table, DWORD iFolderId, wchar_t* szFolder, unsigned __int64 uiSize)
{
    // Required: one character more than is read, so that a value that was stored without a terminator is a folder too;
    // Windows lets it be stored so.
    wchar_t szValue[kFolderUnits + 1] = {};
    // Required: the name's spelling, which the log line below shows. In bytes.
    DWORD dwDateLen = kFolderUnits * sizeof(wchar_t);
    DWORD dwType = REG_SZ; // what the registry reports back is not looked at

    if (szFolder == nullptr)
    {
        LOG_ERROR("szFolder = 0x%08X", LowBits(szFolder));
        return PSERR_INVALID_PARAMETER;
    }

    // Required: the key is opened before the id is looked at, so that with a missing key even a bad id gives 1: without
    // an installation every folder is missing, whatever was asked for.
    RegistryKey key;
    LONG lRet = key.Open(HKEY_LOCAL_MACHINE, table.pszKey, KEY_READ);
    if (lRet != ERROR_SUCCESS)
    {
        LOG_ERROR("lRet = %u", static_cast<unsigned>(lRet));
        return PSERR_FAILED;
    }

    const DWORD dwIndex = iFolderId - table.dwFirstId; // an id below the first wraps round and is out of range too
    if (dwIndex >= table.dwCount)
    {
        if (table.bLogBadId)
        {
            LOG_ERROR("PSERR_INVALID_PARAMETER");
        }
        return PSERR_INVALID_PARAMETER;
    }

    lRet = RegQueryValueExW(key.Get(), table.ppszValues[dwIndex], nullptr, &dwType, reinterpret_cast<BYTE*>(szValue),
                            &dwDateLen);
    if (lRet != ERROR_SUCCESS)
    {
        LOG_ERROR("lRet = %u", static_cast<unsigned>(lRet));
        return PSERR_FAILED;
    }

    // Required: bytes are compared with a size that callers give in characters, which halves the limit: a folder of
    // 128 characters is refused at size 256, one of 130 at size 260. A longer folder that were accepted would move the
    // files of installations that run without it.
    if (dwDateLen > uiSize)
    {
        LOG_ERROR("dwDateLen = %u", static_cast<unsigned>(dwDateLen));
        LOG_ERROR("uiSize = %u", static_cast<unsigned>(uiSize));
        return PSERR_INVALID_PARAMETER;
    }

    wcscpy(szFolder, szValue);
    return PSERR_OK;
}

} // namespace

DWORD GetClientFolder(DWORD iFolderId, wchar_t* szFolder, unsigned __int64 uiSize)
{
    const FunctionScope scope("VelUtility::GetClientFolder");
    LOG_DEBUG("iFolderId = %u", static_cast<unsigned>(iFolderId));
    LOG_DEBUG("uiSize = %u", static_cast<unsigned>(uiSize));
    const DWORD dwStatus = ReadFolder(kClientFolders, iFolderId, szFolder, uiSize);
    if (dwStatus == PSERR_OK)
    {
        LOG_DEBUG("szFolder = %S", szFolder);
    }
    return dwStatus;
}

DWORD GetServerFolder(DWORD iFolderId, wchar_t* szFolder, unsigned __int64 uiSize)
{
    const FunctionScope scope("VelUtility::GetServerFolder");
    return ReadFolder(kServerFolders, iFolderId, szFolder, uiSize);
}

} // namespace VelUtility
