#include "tests/common/ClientFixture.h"

ClientFixture::ClientFixture()
{
    for (const wchar_t* pszValue : {L"InstallDir", L"DataDir", L"TempDir", L"LogDir"})
    {
        registry.SetClient(pszValue, folder.Path());
    }
}

void ClientFixture::WriteCaps(const std::vector<std::pair<std::wstring, std::wstring>>& keys) const
{
    std::wstring strText = L"\xFEFF[DeviceCapabilities]\r\n";
    for (const auto& [strKey, strValue] : keys)
    {
        strText += strKey + L"=" + strValue + L"\r\n";
    }
    WriteFileBytes(ConfigFile(),
                   std::string(reinterpret_cast<const char*>(strText.data()), strText.size() * sizeof(wchar_t)));
}
