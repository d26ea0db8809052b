#include "state/StorePaths.h"

#include "diag/LogSite.h"
#include "state/PsFolder.h"
#include "state/StoreTypes.h"

#include <cstdlib>
#include <cwchar>

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

void JoinPath(wchar_t* szPath, const wchar_t* pszFolder, const wchar_t* pszFileName)
{
    _wmakepath_s(szPath, kStorePathUnits, nullptr, pszFolder, pszFileName, nullptr);
}

bool MakeClientFilePath(FolderId iFolderId, unsigned __int64 uiSize, const wchar_t* pszName, wchar_t* szPath)
{
    wchar_t szFolder[kFolderUnits] = {};
    if (GetClientFolder(iFolderId, szFolder, uiSize) != PSERR_OK)
    {
        LOG_ERROR("GetClientFolder failed.");
        return false;
    }
    JoinPath(szPath, szFolder, pszName);
    return true;
}

bool MakePersonalPathInScope(const wchar_t* pszFileName, wchar_t* szPath)
{
    wchar_t szUserName[kUserNameUnits] = {};
    wchar_t szDomainName[kDomainNameUnits] = {};
    if (GetCurrentUsername(szUserName, szDomainName) == 0)
    {
        LOG_ERROR("GetCurrentUsername failed.");
        return false;
    }
    wchar_t szName[kStoreNameUnits] = {};
    _snwprintf_s(szName, kStoreNameUnits, _TRUNCATE, L"%ls@%ls_%ls", szUserName, szDomainName, pszFileName);
    return MakeClientFilePath(kClientDataDir, kDataDirSize, szName, szPath);
}

bool MakePersonalFilePath(const wchar_t* szFileName, wchar_t* szPath)
{
    const FunctionScope scope("VelUtility::MakePersonalFilePath");
    return MakePersonalPathInScope(szFileName, szPath);
}

bool MakeLoggedPersonalPath(const wchar_t* szFileName, wchar_t* szPath)
{
    if (!MakePersonalFilePath(szFileName, szPath))
    {
        LOG_ERROR("MakePersonalFilePath failed.");
        return false;
    }
    return true;
}

bool MakeUserMessageFilePath(const wchar_t* szFileName, std::wstring strUser, wchar_t* szPath)
{
    const FunctionScope scope("VelUtility::MakeUserMessageFilePath");
    wchar_t szName[kStoreNameUnits] = {};
    _snwprintf_s(szName, kStoreNameUnits, _TRUNCATE, L"%ls_%ls", strUser.c_str(), szFileName);
    return MakeClientFilePath(kClientDataDir, kDataDirSize, szName, szPath);
}

bool MakeServerFilePath(const wchar_t* szFileName, wchar_t* szPath)
{
    const FunctionScope scope("VelUtility::MakeServerFilePath");
    return MakeClientFilePath(kClientDataDir, kDataDirSize, szFileName, szPath);
}

bool MakeConfigFilePath(wchar_t* szPath)
{
    return MakeClientFilePath(kClientTempDir, kTempDirSize, L"Config.ini", szPath);
}

} // namespace VelUtility
