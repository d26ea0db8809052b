// The ini files of the data folder: the current user's defsetting.ini and server.ini, the machine's serverconfig.ini.

#include "state/ClientConfig.h"

#include "diag/LogSite.h"
#include "state/CurrentUser.h"
#include "state/FileLocker.h"
#include "state/LoggedWrite.h"
#include "state/ProfileReader.h"
#include "state/ProfileWriter.h"
#include "state/PsFolder.h"
#include "state/StorePaths.h"
#include "state/StoreTypes.h"

#include <cstdio>
#include <cstring>

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

constexpr wchar_t kPrintSection[] = L"PrintSetting";
constexpr wchar_t kNoWaterPrintKey[] = L"DefaultNoWaterPrint";
constexpr wchar_t kDefSettingFile[] = L"defsetting.ini";
constexpr wchar_t kPlaceSection[] = L"Server";
constexpr wchar_t kServerNameKey[] = L"Server";

/// Room for the decimal text of a 32-bit number with sign and terminator, in wide characters.
constexpr size_t kNumberUnits = 12;
/// Room for a server's name, in wide characters: 254 and a terminator.
constexpr size_t kServerUnits = 255;

static_assert(sizeof(ServerPlace::IPAddress) == sizeof(DWORD), "the address is stored as one 32-bit number");

} // namespace

DWORD GetDefSetting(DWORD* pdwNoWaterPrint)
{
    TRACE_FUNCTION("VelUtility::GetDefSetting");
    wchar_t szPath[kStorePathUnits];
    if (!MakeLoggedPersonalPath(kDefSettingFile, szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    *pdwNoWaterPrint = GetPrivateProfileIntW(kPrintSection, kNoWaterPrintKey, 0, szPath);
    return PSERR_OK;
}

DWORD MakeDefSetting(const DWORD* pdwNoWaterPrint)
{
    TRACE_FUNCTION("VelUtility::MakeDefSetting");
    // Required: the path is made step by step here, so that each failed step has its own line.
    wchar_t szUserName[kUserNameUnits] = {};
    wchar_t szDomainName[kDomainNameUnits] = {};
    if (GetCurrentUsername(szUserName, szDomainName) == 0)
    {
        LOG_ERROR_WORDS("GetCurrentUsername failed.");
        return PSERR_FAILED;
    }
    wchar_t szName[kStoreNameUnits];
    FormatPersonalName(szName, szUserName, szDomainName, kDefSettingFile);
    wchar_t szPath[kStorePathUnits];
    if (!MakeClientPath(kClientDataDir, kDataDirSize, szName, szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    wchar_t szValue[kNumberUnits];
    _snwprintf_s(szValue, kNumberUnits, _TRUNCATE, L"%d", static_cast<int>(*pdwNoWaterPrint));
    // Required: the result of the write is not looked at; a failed write returns success.
    WritePrivateProfileStringW(kPrintSection, kNoWaterPrintKey, szValue, szPath);
    return PSERR_OK;
}

DWORD MakeServerPlaceFile(const ServerPlace* pstuPlace)
{
    TRACE_FUNCTION("VelUtility::MakeServerPlaceFile");
    wchar_t szPath[kStorePathUnits];
    if (!MakeLoggedPersonalPath(L"server.ini", szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    DWORD dwAddress = 0;
    std::memcpy(&dwAddress, pstuPlace->IPAddress, sizeof(dwAddress));
    const bool bWritten =
        LOGGED_WRITE(WritePrivateProfileStringW, kPlaceSection, kServerNameKey, pstuPlace->Server.c_str(), szPath) &&
        LOGGED_WRITE(WritePrivateProfileUINT, kPlaceSection, L"IPAddress", dwAddress, szPath) &&
        LOGGED_WRITE(WritePrivateProfileUINT, kPlaceSection, L"Mode", pstuPlace->Mode, szPath);
    return bWritten ? PSERR_OK : PSERR_FAILED;
}

DWORD GetServerPlaceFile(ServerPlace* pstuPlace)
{
    TRACE_FUNCTION("VelUtility::GetServerPlaceFile");
    wchar_t szPath[kStorePathUnits];
    if (!MakeLoggedPersonalPath(L"server.ini", szPath))
    {
        // Required: a failure shows only in the log and in the untouched record.
        return PSERR_OK;
    }
    const CScopeFileLock lock(szPath);
    pstuPlace->Server = ReadProfileText<kServerUnits>(kPlaceSection, kServerNameKey, szPath);
    const DWORD dwAddress = GetPrivateProfileIntW(kPlaceSection, L"IPAddress", 0, szPath);
    std::memcpy(pstuPlace->IPAddress, &dwAddress, sizeof(dwAddress));
    pstuPlace->Mode = GetPrivateProfileIntW(kPlaceSection, L"Mode", 0, szPath) == 1 ? 1 : 0;
    return PSERR_OK;
}

DWORD MakeServerPlaceFileNew(std::wstring strServer)
{
    TRACE_FUNCTION("VelUtility::MakeServerPlaceFileNew");
    wchar_t szPath[kStorePathUnits];
    if (!MakeServerFilePath(L"serverconfig.ini", szPath))
    {
        LOG_ERROR_WORDS("MakeServerFilePath failed.");
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    return LOGGED_WRITE(WritePrivateProfileStringW, kPlaceSection, kServerNameKey, strServer.c_str(), szPath)
               ? PSERR_OK
               : PSERR_FAILED;
}

DWORD GetServerPlaceFileNew(std::wstring* pstrServer)
{
    TRACE_FUNCTION("VelUtility::GetServerPlaceFileNew");
    wchar_t szPath[kStorePathUnits];
    if (!MakeServerFilePath(L"serverconfig.ini", szPath))
    {
        // Required: a failure shows only here and in the untouched text.
        LOG_ERROR_WORDS("MakeServerFilePath failed.");
        return PSERR_OK;
    }
    const CScopeFileLock lock(szPath);
    *pstrServer = ReadProfileText<kServerUnits>(kPlaceSection, kServerNameKey, szPath);
    return PSERR_OK;
}

} // namespace VelUtility
