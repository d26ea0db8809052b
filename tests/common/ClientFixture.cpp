#include "tests/common/ClientFixture.h"

namespace
{

constexpr wchar_t kUserVariable[] = L"WINEUSERNAME";

} // namespace

UserName::UserName(const wchar_t* pszName)
{
    wchar_t szOld[257] = {};
    m_strOld.assign(szOld, GetEnvironmentVariableW(kUserVariable, szOld, 257));
    SetEnvironmentVariableW(kUserVariable, pszName);
}

UserName::~UserName()
{
    SetEnvironmentVariableW(kUserVariable, m_strOld.c_str());
}

ScratchClient::ScratchClient()
{
    for (const wchar_t* pszValue : {L"InstallDir", L"DataDir", L"TempDir", L"LogDir"})
    {
        registry.SetClient(pszValue, folder.Path());
    }
}

void ScratchClient::WriteCaps(const std::vector<std::pair<std::wstring, std::wstring>>& keys) const
{
    std::wstring strText = L"\xFEFF[DeviceCapabilities]\r\n";
    for (const auto& [strKey, strValue] : keys)
    {
        strText += strKey + L"=" + strValue + L"\r\n";
    }
    WriteFileBytes(ConfigFile(),
                   std::string(reinterpret_cast<const char*>(strText.data()), strText.size() * sizeof(wchar_t)));
}
