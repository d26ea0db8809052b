// MsgConfig.ini: the state of a user's message stream.

#include "state/UserRecords.h"

#include "diag/LogSite.h"
#include "state/FileLocker.h"
#include "state/LoggedWrite.h"
#include "state/ProfileWriter.h"
#include "state/StorePaths.h"
#include "state/StoreTypes.h"

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

constexpr wchar_t kMessageSection[] = L"Message";
constexpr wchar_t kConfigFile[] = L"MsgConfig.ini";

// Required: the words of a path that can't be made differ from function to function.
constexpr char kPersonalWords[] = "MakePersonalFilePath failed.";
constexpr char kMessageWords[] = "MakeUserMessageFilePath failed.";

bool MakeConfigPath(const std::wstring& strUser, const char* pszWords, wchar_t* szPath)
{
    if (!MakeUserMessageFilePath(kConfigFile, strUser, szPath))
    {
        LOG_ERROR_WORDS(pszWords);
        return false;
    }
    return true;
}

/// Reads a number under the file's lock.
/// @param pdwValue [out] untouched on failure.
DWORD ReadNumber(const std::wstring& strUser, const char* pszWords, const wchar_t* pszKey, int iDefault,
                 DWORD* pdwValue)
{
    wchar_t szPath[kStorePathUnits];
    if (!MakeConfigPath(strUser, pszWords, szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    *pdwValue = GetPrivateProfileIntW(kMessageSection, pszKey, iDefault, szPath);
    return PSERR_OK;
}

} // namespace

DWORD MakeUserMessageID(std::wstring strUser, DWORD dwMessageId)
{
    TRACE_FUNCTION("VelUtility::MakeUserMessageID");
    wchar_t szPath[kStorePathUnits];
    if (!MakeConfigPath(strUser, kPersonalWords, szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    return LOGGED_WRITE(WritePrivateProfileUINT, kMessageSection, L"MessageId", dwMessageId, szPath) ? PSERR_OK
                                                                                                     : PSERR_FAILED;
}

DWORD GetUserMessageID(std::wstring strUser, DWORD* pdwMessageId)
{
    TRACE_FUNCTION("VelUtility::GetUserMessageID");
    return ReadNumber(strUser, kMessageWords, L"MessageId", 0, pdwMessageId);
}

DWORD GetUserMsgInterval(std::wstring strUser, DWORD* pdwInterval)
{
    TRACE_FUNCTION("VelUtility::GetUserMsgInterval");
    return ReadNumber(strUser, kMessageWords, L"Interval", 5000, pdwInterval);
}

DWORD MakeUserMessageDays(std::wstring strUser, int iDays)
{
    TRACE_FUNCTION("VelUtility::MakeUserMessageDays");
    wchar_t szPath[kStorePathUnits];
    if (!MakeConfigPath(strUser, kPersonalWords, szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    return LOGGED_WRITE(WritePrivateProfileINT, kMessageSection, L"SaveDays", iDays, szPath) ? PSERR_OK : PSERR_FAILED;
}

DWORD GetUserMessageDays(std::wstring strUser, int* piDays)
{
    TRACE_FUNCTION("VelUtility::GetUserMessageDays");
    DWORD dwDays = 0;
    const DWORD dwStatus = ReadNumber(strUser, kPersonalWords, L"SaveDays", -1, &dwDays);
    if (dwStatus == PSERR_OK)
    {
        *piDays = static_cast<int>(dwDays);
    }
    return dwStatus;
}

} // namespace VelUtility
