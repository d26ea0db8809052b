// The sections of Config.ini that all users of the machine share.

#include "state/ClientConfig.h"

#include "diag/LogSite.h"
#include "state/ConfigSections.h"
#include "state/FileLocker.h"
#include "state/LoggedWrite.h"
#include "state/ProfileReader.h"
#include "state/ProfileWriter.h"
#include "state/StorePaths.h"
#include "state/StoreTypes.h"

#include <cerrno>
#include <cstring>
#include <io.h>

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

constexpr wchar_t kSettingSection[] = L"Setting";
constexpr wchar_t kServerSection[] = L"ServerConfig";

/// Room for a text of Config.ini, in wide characters: 255 and a terminator.
constexpr size_t kTextUnits = 256;

/// One flag of a record: its key, its place and its default.
template <typename Record>
struct FlagRow
{
    const wchar_t* pszKey;
    DWORD Record::*pFlag;
    DWORD dwDefault;
};

constexpr FlagRow<ClientSetting> kSettingFlags[] = {
    {L"DisplayProjectSelection", &ClientSetting::DisplayProjectSelection, 1},
    {L"CanSelectNoPrinter", &ClientSetting::CanSelectNoPrinter, 0},
    {L"CanSelectNoProject", &ClientSetting::CanSelectNoProject, 0},
};

constexpr FlagRow<ServerConfigInfo> kServerFlags[] = {
    {L"WaterPrintInstalled", &ServerConfigInfo::WaterPrintInstalled, 0},
    {L"AuditInstalled", &ServerConfigInfo::AuditInstalled, 0},
    {L"SGIdentifyInstalled", &ServerConfigInfo::SGIdentifyInstalled, 0},
    // Required: the key's spelling, which other programs of the client read and write.
    {L"FilterIntalled", &ServerConfigInfo::FilterIntalled, 0},
};

template <typename Record, size_t uiRows>
bool WriteFlags(const wchar_t* pszSection, const FlagRow<Record> (&rows)[uiRows], const Record& record,
                const wchar_t* pszFile)
{
    for (const FlagRow<Record>& row : rows)
    {
        if (!LOGGED_WRITE(WritePrivateProfileBOOL, pszSection, row.pszKey, static_cast<BOOL>(record.*row.pFlag),
                          pszFile))
        {
            return false;
        }
    }
    return true;
}

template <typename Record, size_t uiRows>
void ReadFlags(const wchar_t* pszSection, const FlagRow<Record> (&rows)[uiRows], Record& record, const wchar_t* pszFile)
{
    for (const FlagRow<Record>& row : rows)
    {
        record.*row.pFlag = GetPrivateProfileIntW(pszSection, row.pszKey, static_cast<int>(row.dwDefault), pszFile);
    }
}

/// Writes a text of Config.ini; its failure has words of its own.
bool WriteSettingText(const wchar_t* pszKey, const std::wstring& strText, const wchar_t* pszFile)
{
    if (WritePrivateProfileStringW(kSettingSection, pszKey, strText.c_str(), pszFile) == 0)
    {
        LOG_ERROR_WORDS("WritePrivateProfileString failed.");
        return false;
    }
    return true;
}

} // namespace

// Required: the two writers of Config.ini below run without the file's lock, their readers with it.

DWORD WriteClientSetting(const ClientSetting* pstuSetting)
{
    TRACE_FUNCTION("VelUtility::WriteClientSetting");
    wchar_t szPath[kStorePathUnits];
    const bool bWritten = MakeConfigFilePath(szPath) &&
                          WriteFlags(kSettingSection, kSettingFlags, *pstuSetting, szPath) &&
                          WriteSettingText(L"DefaultPrinter", pstuSetting->DefaultPrinter, szPath) &&
                          WriteSettingText(L"DefaultProject", pstuSetting->DefaultProject, szPath);
    return bWritten ? PSERR_OK : PSERR_FAILED;
}

DWORD ReadClientSetting(ClientSetting* pstuSetting)
{
    TRACE_FUNCTION("VelUtility::ReadClientSetting");
    wchar_t szPath[kStorePathUnits];
    if (!MakeConfigFilePath(szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    ReadFlags(kSettingSection, kSettingFlags, *pstuSetting, szPath);
    pstuSetting->DefaultPrinter = ReadProfileText<kTextUnits>(kSettingSection, L"DefaultPrinter", szPath);
    pstuSetting->DefaultProject = ReadProfileText<kTextUnits>(kSettingSection, L"DefaultProject", szPath);
    return PSERR_OK;
}

DWORD MakeServerConfig(const ServerConfigInfo* pstuConfig)
{
    TRACE_FUNCTION("VelUtility::MakeServerConfig");
    wchar_t szPath[kStorePathUnits];
    const bool bWritten = MakeConfigFilePath(szPath) && WriteFlags(kServerSection, kServerFlags, *pstuConfig, szPath);
    return bWritten ? PSERR_OK : PSERR_FAILED;
}

DWORD GetServerConfig(ServerConfigInfo* pstuConfig)
{
    TRACE_FUNCTION("VelUtility::GetServerConfig");
    wchar_t szPath[kStorePathUnits];
    if (!MakeConfigFilePath(szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    ReadFlags(kServerSection, kServerFlags, *pstuConfig, szPath);
    return PSERR_OK;
}

DWORD GetPrinterInfo(PrinterInfo* pstuInfo)
{
    TRACE_FUNCTION("VelUtility::GetPrinterInfo");
    wchar_t szPath[kStorePathUnits];
    if (!MakeConfigFilePath(szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    pstuInfo->PrinterName = ReadProfileText<kTextUnits>(kPrinterSection, L"PrinterName", szPath);
    pstuInfo->Location = ReadProfileText<kTextUnits>(kPrinterSection, L"Location", szPath);
    pstuInfo->Description = ReadProfileText<kTextUnits>(kPrinterSection, L"Description", szPath);
    return PSERR_OK;
}

DWORD CheckConfigFile()
{
    TRACE_FUNCTION("VelUtility::CheckConfigFile");
    wchar_t szPath[kStorePathUnits];
    if (!MakeConfigFilePath(szPath))
    {
        return PSERR_FAILED;
    }
    if (_waccess(szPath, 0) != 0)
    {
        // Required: at the debug level; an absent file is an ordinary thing.
        LOG_DEBUG("_waccess failed. err = %s", std::strerror(errno));
        return PSERR_FAILED;
    }
    return PSERR_OK;
}

} // namespace VelUtility
