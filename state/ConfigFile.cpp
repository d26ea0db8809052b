#include "state/ConfigFile.h"

#include "diag/LogSite.h"
#include "state/FileLocker.h"
#include "state/Profile.h"
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

constexpr TextRow<ClientSetting> kSettingTexts[] = {
    {L"DefaultPrinter", &ClientSetting::DefaultPrinter},
    {L"DefaultProject", &ClientSetting::DefaultProject},
};

/// Writes the texts of section Setting; a failure has words of its own.
bool WriteTexts(const ClientSetting& setting, const wchar_t* pszFile)
{
    for (const TextRow<ClientSetting>& row : kSettingTexts)
    {
        if (WritePrivateProfileStringW(kSettingSection, row.pszKey, (setting.*row.pText).c_str(), pszFile) == 0)
        {
            LOG_ERROR("WritePrivateProfileString failed.");
            return false;
        }
    }
    return true;
}

} // namespace

// Required: the two writers of Config.ini below run without the file's lock, their readers with it: a writer never
// waits for a query, and a query may see a section half written.

DWORD WriteClientSetting(const ClientSetting* pstuSetting)
{
    const FunctionScope scope("VelUtility::WriteClientSetting");
    StorePath szPath;
    const bool bWritten = MakeConfigFilePath(szPath) &&
                          WriteFlags(kSettingSection, kSettingFlags, *pstuSetting, szPath) &&
                          WriteTexts(*pstuSetting, szPath);
    return bWritten ? PSERR_OK : PSERR_FAILED;
}

DWORD ReadClientSetting(ClientSetting* pstuSetting)
{
    const FunctionScope scope("VelUtility::ReadClientSetting");
    StorePath szPath;
    if (!MakeConfigFilePath(szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    ReadFlags(kSettingSection, kSettingFlags, *pstuSetting, szPath);
    ReadTexts(kSettingSection, kSettingTexts, *pstuSetting, szPath);
    return PSERR_OK;
}

DWORD MakeServerConfig(const ServerConfigInfo* pstuConfig)
{
    const FunctionScope scope("VelUtility::MakeServerConfig");
    StorePath szPath;
    const bool bWritten = MakeConfigFilePath(szPath) && WriteFlags(kServerSection, kServerFlags, *pstuConfig, szPath);
    return bWritten ? PSERR_OK : PSERR_FAILED;
}

DWORD GetServerConfig(ServerConfigInfo* pstuConfig)
{
    const FunctionScope scope("VelUtility::GetServerConfig");
    StorePath szPath;
    if (!MakeConfigFilePath(szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    ReadFlags(kServerSection, kServerFlags, *pstuConfig, szPath);
    return PSERR_OK;
}

DWORD CheckConfigFile()
{
    const FunctionScope scope("VelUtility::CheckConfigFile");
    StorePath szPath;
    if (!MakeConfigFilePath(szPath))
    {
        return PSERR_FAILED;
    }
    if (_waccess(szPath, 0) != 0)
    {
        // Required: at the debug level; an absent file is an ordinary thing before the client has run.
        LOG_DEBUG("_waccess failed. err = %s", std::strerror(errno));
        return PSERR_FAILED;
    }
    return PSERR_OK;
}

} // namespace VelUtility
