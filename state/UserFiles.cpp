// The user's data files: passport.dat, Message.dat, DevMode.dat.
//
// Required in every function here: the lock is given back before the stream is closed. The streams are therefore
// declared in front of the locks.

#include "state/UserRecords.h"

#include "diag/LogSite.h"
#include "state/FileLocker.h"
#include "state/StorePaths.h"
#include "state/StoreTypes.h"
#include "support/FileStream.h"
#include "support/FreeDeleter.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <io.h>
#include <memory>
#include <sys/stat.h>

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

constexpr wchar_t kPassportFile[] = L"passport.dat";
constexpr wchar_t kMessageFile[] = L"Message.dat";
constexpr wchar_t kDevModeFile[] = L"DevMode.dat";

/// Bytes of DevMode.dat: the public part of the driver's record.
constexpr size_t kDevModeBytes = 220;
static_assert(sizeof(DEVMODEW) == kDevModeBytes, "DevMode.dat is a bare DEVMODEW");

bool MakeLoggedMessagePath(const std::wstring& strUser, wchar_t* szPath)
{
    if (!MakeUserMessageFilePath(kMessageFile, strUser, szPath))
    {
        // Required: the words name the other path maker.
        LOG_ERROR_WORDS("MakePersonalFilePath failed.");
        return false;
    }
    return true;
}

bool OpenLogged(FileStream& stream, const wchar_t* pszPath, const wchar_t* pszMode)
{
    if (!stream.Open(pszPath, pszMode))
    {
        LOG_ERROR("_wfopen failed. name = %S, err = %s", pszPath, std::strerror(errno));
        return false;
    }
    return true;
}

/// Opens a file and writes items; any count but the whole one is a failure.
/// @param bFlush whether the bytes reach the file under the lock. Appends need it: two that wrote their buffers at
/// their
///               close, outside the lock, would find the same end of the file, and one message would be lost.
DWORD WriteItems(const wchar_t* pszPath, const wchar_t* pszMode, const void* pData, size_t cbItem, size_t uiItems,
                 bool bFlush = false)
{
    FileStream stream;
    const CScopeFileLock lock(pszPath);
    if (!OpenLogged(stream, pszPath, pszMode))
    {
        return PSERR_FAILED;
    }
    // Of a length of 0 nothing is written, which counts as a failure too.
    const size_t uiWritten = std::fwrite(pData, cbItem, uiItems, stream.Get());
    if (uiWritten == 0 || uiWritten != uiItems || (bFlush && std::fflush(stream.Get()) != 0))
    {
        LOG_ERROR("fwrite failed. err = %s", std::strerror(errno));
        return PSERR_FAILED;
    }
    return PSERR_OK;
}

/// Deletes a file, whatever its attributes; a missing one is no failure.
DWORD DeleteLocked(const wchar_t* pszPath)
{
    const CScopeFileLock lock(pszPath);
    _wchmod(pszPath, _S_IREAD | _S_IWRITE);
    DeleteFileW(pszPath);
    return PSERR_OK;
}

} // namespace

DWORD MakeAutoLogonInfo(const BYTE* pbyData, DWORD iDataLen)
{
    TRACE_FUNCTION("VelUtility::MakeAutoLogonInfo");
    wchar_t szPath[kStorePathUnits];
    return MakeLoggedPersonalPath(kPassportFile, szPath) ? WriteItems(szPath, L"wb", pbyData, iDataLen, 1)
                                                         : PSERR_FAILED;
}

DWORD MakeLogonUserName(const wchar_t* pszUserName)
{
    TRACE_FUNCTION("VelUtility::MakeLogonUserName");
    if (pszUserName == nullptr)
    {
        LOG_ERROR_WORDS("Invalid parameter.");
        return PSERR_INVALID_PARAMETER;
    }
    wchar_t szPath[kStorePathUnits];
    // Required: text mode, so that each byte 0x0A is stored as 0x0D 0x0A.
    return MakeLoggedPersonalPath(kPassportFile, szPath)
               ? WriteItems(szPath, L"w", pszUserName, 1, sizeof(wchar_t) * (wcslen(pszUserName) + 1))
               : PSERR_FAILED;
}

DWORD GetAutoLogonInfo(BYTE* pbyData, int iDataLen, int* piFileLen)
{
    TRACE_FUNCTION("VelUtility::GetAutoLogonInfo");
    if (pbyData == nullptr || piFileLen == nullptr)
    {
        LOG_ERROR("pbyData = 0x%08X", LowBits(pbyData));
        LOG_ERROR("piFileLen = 0x%08X", LowBits(piFileLen));
        return PSERR_INVALID_PARAMETER;
    }
    wchar_t szPath[kStorePathUnits];
    if (!MakeLoggedPersonalPath(kPassportFile, szPath))
    {
        return PSERR_FAILED;
    }
    FileStream stream;
    const CScopeFileLock lock(szPath);
    if (!OpenLogged(stream, szPath, L"rb"))
    {
        return PSERR_FAILED;
    }
    const long lFileLen = _filelength(_fileno(stream.Get()));
    if (iDataLen < lFileLen)
    {
        LOG_ERROR("iDataLen = %u", static_cast<unsigned>(iDataLen));
        LOG_ERROR("lFileLen = %u", static_cast<unsigned>(lFileLen));
        return PSERR_INVALID_PARAMETER;
    }
    if (std::fread(pbyData, static_cast<size_t>(lFileLen), 1, stream.Get()) == 0)
    {
        LOG_ERROR("fread failed. err = %s", std::strerror(errno));
        return PSERR_FAILED;
    }
    *piFileLen = lFileLen;
    return PSERR_OK;
}

DWORD DelAutoLogonInfo()
{
    TRACE_FUNCTION("VelUtility::DelAutoLogonInfo");
    wchar_t szPath[kStorePathUnits];
    return MakeLoggedPersonalPath(kPassportFile, szPath) ? DeleteLocked(szPath) : PSERR_FAILED;
}

DWORD AppendUserMessageFile(std::wstring strUser, const BYTE* pbyData, DWORD dwDataLen)
{
    TRACE_FUNCTION("VelUtility::AppendUserMessageFile");
    wchar_t szPath[kStorePathUnits];
    return MakeLoggedMessagePath(strUser, szPath) ? WriteItems(szPath, L"ab", pbyData, dwDataLen, 1, true)
                                                  : PSERR_FAILED;
}

// Required: the one function here without a trace scope of its own.
DWORD GetUserMessageFile(std::wstring strUser, std::wstring* pstrPath)
{
    wchar_t szPath[kStorePathUnits] = {};
    const bool bMade = MakeLoggedMessagePath(strUser, szPath);
    *pstrPath = szPath;
    return bMade ? PSERR_OK : PSERR_FAILED;
}

DWORD DelUserMessageFile(std::wstring strUser)
{
    TRACE_FUNCTION("VelUtility::DelUserMessageFile");
    wchar_t szPath[kStorePathUnits];
    return MakeLoggedMessagePath(strUser, szPath) ? DeleteLocked(szPath) : PSERR_FAILED;
}

DWORD SetDevDef(const DEVMODEW* pstuDevmode)
{
    TRACE_FUNCTION("VelUtility::SetDevDef");
    wchar_t szPath[kStorePathUnits];
    if (!MakeLoggedPersonalPath(kDevModeFile, szPath))
    {
        return PSERR_FAILED;
    }
    FileStream stream;
    const CScopeFileLock lock(szPath);
    BYTE abyRecord[kDevModeBytes];
    std::memcpy(abyRecord, pstuDevmode, kDevModeBytes);
    if (!OpenLogged(stream, szPath, L"wb"))
    {
        return PSERR_FAILED;
    }
    // Required: the result isn't looked at, so a full disk returns 0.
    std::fwrite(abyRecord, kDevModeBytes, 1, stream.Get());
    return PSERR_OK;
}

DWORD GetDevDef(DEVMODEW* pstuDevmode)
{
    TRACE_FUNCTION("VelUtility::GetDevDef");
    wchar_t szPath[kStorePathUnits];
    if (!MakeLoggedPersonalPath(kDevModeFile, szPath))
    {
        return PSERR_FAILED;
    }
    FileStream stream;
    const MallocPtr<BYTE[]> pbyRecord(static_cast<BYTE*>(std::malloc(kDevModeBytes)));
    if (!pbyRecord)
    {
        LOG_ERROR("malloc failed. size = %u", static_cast<unsigned>(kDevModeBytes));
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    if (!OpenLogged(stream, szPath, L"rb"))
    {
        return PSERR_FAILED;
    }
    if (std::fread(pbyRecord.get(), kDevModeBytes, 1, stream.Get()) == 0)
    {
        LOG_ERROR("fread failed. err = %s", std::strerror(errno));
        return PSERR_FAILED;
    }
    std::memcpy(pstuDevmode, pbyRecord.get(), kDevModeBytes);
    return PSERR_OK;
}

} // namespace VelUtility
