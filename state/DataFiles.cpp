// Required in every function here: the lock is given back before the stream is closed. The streams are therefore
// declared in front of the locks.

#include "state/DataFiles.h"

#include "diag/LogSite.h"
#include "state/FileLocker.h"
#include "state/LockedFile.h"
#include "state/StorePaths.h"
#include "state/StoreTypes.h"
#include "support/FileStream.h"
#include "support/Memory.h"

#include <cerrno>
#include <cstring>
#include <cwchar>
#include <io.h>

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

constexpr wchar_t kPassportFile[] = L"passport.dat";

/// Bytes of DevMode.dat: the public part of the driver's record.
constexpr size_t kDevModeBytes = 220;
static_assert(sizeof(DEVMODEW) == kDevModeBytes, "DevMode.dat is a bare DEVMODEW");

} // namespace

DWORD MakeAutoLogonInfo(const BYTE* pbyData, DWORD iDataLen)
{
    const FunctionScope scope("VelUtility::MakeAutoLogonInfo");
    StorePath szPath;
    return MakeLoggedPersonalPath(kPassportFile, szPath) ? WriteItems(szPath, L"wb", pbyData, iDataLen, 1)
                                                         : PSERR_FAILED;
}

DWORD MakeLogonUserName(const wchar_t* pszUserName)
{
    const FunctionScope scope("VelUtility::MakeLogonUserName");
    if (pszUserName == nullptr)
    {
        LOG_ERROR("Invalid parameter.");
        return PSERR_INVALID_PARAMETER;
    }
    StorePath szPath;
    // Required: text mode, so that each byte 0x0A is stored as 0x0D 0x0A; whoever reads the name
    // back must open the file the same way.
    return MakeLoggedPersonalPath(kPassportFile, szPath)
               ? WriteItems(szPath, L"w", pszUserName, 1, sizeof(wchar_t) * (wcslen(pszUserName) + 1))
               : PSERR_FAILED;
}

DWORD GetAutoLogonInfo(BYTE* pbyData, int iDataLen, int* piFileLen)
{
    const FunctionScope scope("VelUtility::GetAutoLogonInfo");
    if (pbyData == nullptr || piFileLen == nullptr)
    {
        LOG_ERROR("pbyData = 0x%08X", LowBits(pbyData));
        LOG_ERROR("piFileLen = 0x%08X", LowBits(piFileLen));
        return PSERR_INVALID_PARAMETER;
    }
    StorePath szPath;
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
    const FunctionScope scope("VelUtility::DelAutoLogonInfo");
    StorePath szPath;
    return MakeLoggedPersonalPath(kPassportFile, szPath) ? DeleteLocked(szPath) : PSERR_FAILED;
}

DWORD SetDevDef(const DEVMODEW* pstuDevmode)
{
    const FunctionScope scope("VelUtility::SetDevDef");
    StorePath szPath;
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
    // Required: the result isn't looked at, so a full disk returns 0: the sheet's OK stands whether or not the user's
    // next document starts from it.
    std::fwrite(abyRecord, kDevModeBytes, 1, stream.Get());
    return PSERR_OK;
}

DWORD GetDevDef(DEVMODEW* pstuDevmode)
{
    const FunctionScope scope("VelUtility::GetDevDef");
    StorePath szPath;
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
