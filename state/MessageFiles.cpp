#include "state/MessageFiles.h"

#include "diag/LogSite.h"
#include "state/FileLocker.h"
#include "state/LockedFile.h"
#include "state/Profile.h"
#include "state/StorePaths.h"
#include "state/StoreTypes.h"

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

constexpr wchar_t kStateFile[] = L"MsgConfig.ini";
constexpr wchar_t kStateSection[] = L"Message";
constexpr wchar_t kMessageIdKey[] = L"MessageId";
constexpr wchar_t kIntervalKey[] = L"Interval";
constexpr wchar_t kSaveDaysKey[] = L"SaveDays";

constexpr wchar_t kMessageFile[] = L"Message.dat";

constexpr int kDefaultInterval = 5000;

// Required: the words of a path that can't be made differ from function to function, and some name the path maker of
// another kind of file. A log is searched by the words that it has always held.
constexpr char kPersonalWords[] = "MakePersonalFilePath failed.";
constexpr char kMessageWords[] = "MakeUserMessageFilePath failed.";

/// The path of one of the user's message files; a failure leaves a line of the given words.
bool MakeMessagePath(const wchar_t* pszFileName, const std::wstring& strUser, const char* pszWords, wchar_t* szPath)
{
    if (!MakeUserMessageFilePath(pszFileName, strUser, szPath))
    {
        LOG_ERROR("%s", pszWords);
        return false;
    }
    return true;
}

/// Reads a number under the file's lock.
/// @param pdwValue [out] untouched on failure.
DWORD ReadNumber(const std::wstring& strUser, const char* pszWords, const wchar_t* pszKey, int iDefault,
                 DWORD* pdwValue)
{
    StorePath szPath;
    if (!MakeMessagePath(kStateFile, strUser, pszWords, szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    *pdwValue = GetPrivateProfileIntW(kStateSection, pszKey, iDefault, szPath);
    return PSERR_OK;
}

} // namespace

DWORD MakeUserMessageID(std::wstring strUser, DWORD dwMessageId)
{
    const FunctionScope scope("VelUtility::MakeUserMessageID");
    StorePath szPath;
    if (!MakeMessagePath(kStateFile, strUser, kPersonalWords, szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    return LOGGED_WRITE(WritePrivateProfileUINT, kStateSection, kMessageIdKey, dwMessageId, szPath) ? PSERR_OK
                                                                                                    : PSERR_FAILED;
}

DWORD GetUserMessageID(std::wstring strUser, DWORD* pdwMessageId)
{
    const FunctionScope scope("VelUtility::GetUserMessageID");
    return ReadNumber(strUser, kMessageWords, kMessageIdKey, 0, pdwMessageId);
}

DWORD GetUserMsgInterval(std::wstring strUser, DWORD* pdwInterval)
{
    const FunctionScope scope("VelUtility::GetUserMsgInterval");
    return ReadNumber(strUser, kMessageWords, kIntervalKey, kDefaultInterval, pdwInterval);
}

DWORD MakeUserMessageDays(std::wstring strUser, int iDays)
{
    const FunctionScope scope("VelUtility::MakeUserMessageDays");
    StorePath szPath;
    if (!MakeMessagePath(kStateFile, strUser, kPersonalWords, szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    return LOGGED_WRITE(WritePrivateProfileINT, kStateSection, kSaveDaysKey, iDays, szPath) ? PSERR_OK : PSERR_FAILED;
}

DWORD GetUserMessageDays(std::wstring strUser, int* piDays)
{
    const FunctionScope scope("VelUtility::GetUserMessageDays");
    DWORD dwDays = 0;
    const DWORD dwStatus = ReadNumber(strUser, kPersonalWords, kSaveDaysKey, -1, &dwDays);
    if (dwStatus == PSERR_OK)
    {
        *piDays = static_cast<int>(dwDays);
    }
    return dwStatus;
}

DWORD AppendUserMessageFile(std::wstring strUser, const BYTE* pbyData, DWORD dwDataLen)
{
    const FunctionScope scope("VelUtility::AppendUserMessageFile");
    StorePath szPath;
    // Required: of all writers this one alone flushes, under the lock. Two appends that wrote their bytes at their
    // close, behind the lock, would find the same end of the file, and one message would be lost: four writers at once
    // lost some in every run.
    return MakeMessagePath(kMessageFile, strUser, kPersonalWords, szPath)
               ? WriteItems(szPath, L"ab", pbyData, dwDataLen, 1, Flush::UnderLock)
               : PSERR_FAILED;
}

// Required: the one function here without a trace scope of its own, so that its lines show under its caller's name.
DWORD GetUserMessageFile(std::wstring strUser, std::wstring* pstrPath)
{
    StorePath szPath = {};
    const bool bMade = MakeMessagePath(kMessageFile, strUser, kPersonalWords, szPath);
    *pstrPath = szPath;
    return bMade ? PSERR_OK : PSERR_FAILED;
}

DWORD DelUserMessageFile(std::wstring strUser)
{
    const FunctionScope scope("VelUtility::DelUserMessageFile");
    StorePath szPath;
    return MakeMessagePath(kMessageFile, strUser, kPersonalWords, szPath) ? DeleteLocked(szPath) : PSERR_FAILED;
}

} // namespace VelUtility
