#include "state/UserIniFiles.h"

#include "diag/LogSite.h"
#include "state/FileLocker.h"
#include "state/Profile.h"
#include "state/StorePaths.h"
#include "state/StoreTypes.h"

#include <cstring>

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

constexpr wchar_t kDefSettingFile[] = L"defsetting.ini";
constexpr wchar_t kPrintSection[] = L"PrintSetting";
constexpr wchar_t kNoWaterPrintKey[] = L"DefaultNoWaterPrint";

constexpr wchar_t kPlaceFile[] = L"server.ini";
constexpr wchar_t kMachinePlaceFile[] = L"serverconfig.ini";
constexpr wchar_t kPlaceSection[] = L"Server";
constexpr wchar_t kServerNameKey[] = L"Server";
constexpr wchar_t kAddressKey[] = L"IPAddress";
constexpr wchar_t kModeKey[] = L"Mode";

/// Buffer for a server's name, in wide characters: 254 and a terminator.
constexpr size_t kServerUnits = 255;

static_assert(sizeof(ServerPlace::IPAddress) == sizeof(DWORD), "the address is stored as one 32-bit number");

/// The path of serverconfig.ini, with a line for a failure.
bool MakeMachinePlacePath(wchar_t* szPath)
{
    if (!MakeServerFilePath(kMachinePlaceFile, szPath))
    {
        LOG_ERROR("MakeServerFilePath failed.");
        return false;
    }
    return true;
}

} // namespace

DWORD GetDefSetting(DWORD* pdwNoWaterPrint)
{
    const FunctionScope scope("VelUtility::GetDefSetting");
    StorePath szPath;
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
    const FunctionScope scope("VelUtility::MakeDefSetting");
    // Required: the path is made in this function's own scope, so that each failed step shows under its name.
    StorePath szPath;
    if (!MakePersonalPathInScope(kDefSettingFile, szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    // Required: the result of the write is not looked at, so a failed write returns success: the page reports OK to
    // its sheet whether or not the file took the choice.
    WritePrivateProfileStringW(kPrintSection, kNoWaterPrintKey, NumberText(L"%d", static_cast<int>(*pdwNoWaterPrint)),
                               szPath);
    return PSERR_OK;
}

DWORD MakeServerPlaceFile(const ServerPlace* pstuPlace)
{
    const FunctionScope scope("VelUtility::MakeServerPlaceFile");
    StorePath szPath;
    if (!MakeLoggedPersonalPath(kPlaceFile, szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    DWORD dwAddress = 0;
    std::memcpy(&dwAddress, pstuPlace->IPAddress, sizeof(dwAddress));
    const bool bWritten =
        LOGGED_WRITE(WritePrivateProfileStringW, kPlaceSection, kServerNameKey, pstuPlace->Server.c_str(), szPath) &&
        LOGGED_WRITE(WritePrivateProfileUINT, kPlaceSection, kAddressKey, dwAddress, szPath) &&
        LOGGED_WRITE(WritePrivateProfileUINT, kPlaceSection, kModeKey, pstuPlace->Mode, szPath);
    return bWritten ? PSERR_OK : PSERR_FAILED;
}

DWORD GetServerPlaceFile(ServerPlace* pstuPlace)
{
    const FunctionScope scope("VelUtility::GetServerPlaceFile");
    StorePath szPath;
    if (!MakeLoggedPersonalPath(kPlaceFile, szPath))
    {
        // Required: a failure shows only in the log and in the untouched record, so that a caller fills it with its
        // defaults before it asks.
        return PSERR_OK;
    }
    const CScopeFileLock lock(szPath);
    pstuPlace->Server = ReadProfileText<kServerUnits>(kPlaceSection, kServerNameKey, szPath);
    const DWORD dwAddress = GetPrivateProfileIntW(kPlaceSection, kAddressKey, 0, szPath);
    std::memcpy(pstuPlace->IPAddress, &dwAddress, sizeof(dwAddress));
    // Required: only exactly 1 counts as set; any other number reads as 0, and would be written back so.
    pstuPlace->Mode = GetPrivateProfileIntW(kPlaceSection, kModeKey, 0, szPath) == 1 ? 1 : 0;
    return PSERR_OK;
}

DWORD MakeServerPlaceFileNew(std::wstring strServer)
{
    const FunctionScope scope("VelUtility::MakeServerPlaceFileNew");
    StorePath szPath;
    if (!MakeMachinePlacePath(szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    return LOGGED_WRITE(WritePrivateProfileStringW, kPlaceSection, kServerNameKey, strServer.c_str(), szPath)
               ? PSERR_OK
               : PSERR_FAILED;
}

DWORD GetServerPlaceFileNew(std::wstring* pstrServer)
{
    const FunctionScope scope("VelUtility::GetServerPlaceFileNew");
    StorePath szPath;
    if (!MakeMachinePlacePath(szPath))
    {
        return PSERR_OK; // Required: as in GetServerPlaceFile
    }
    const CScopeFileLock lock(szPath);
    *pstrServer = ReadProfileText<kServerUnits>(kPlaceSection, kServerNameKey, szPath);
    return PSERR_OK;
}

} // namespace VelUtility
