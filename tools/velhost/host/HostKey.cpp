#include "tools/velhost/host/HostKey.h"

#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

namespace VelHost
{
namespace
{

constexpr REGSAM kAccess = KEY_READ | KEY_WRITE | KEY_WOW64_64KEY;

} // namespace

HostKey HostKey::Create(const std::wstring& strPath)
{
    HKEY hKey = nullptr;
    const LSTATUS lStatus =
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, strPath.c_str(), 0, nullptr, 0, kAccess, nullptr, &hKey, nullptr);
    if (lStatus != ERROR_SUCCESS)
    {
        ThrowCommandError("can't make the registry key " + ToUtf8(strPath), static_cast<DWORD>(lStatus));
    }
    return HostKey(hKey);
}

HostKey HostKey::Open(const std::wstring& strPath)
{
    HKEY hKey = nullptr;
    const LSTATUS lStatus = RegOpenKeyExW(HKEY_LOCAL_MACHINE, strPath.c_str(), 0, kAccess, &hKey);
    if (lStatus != ERROR_SUCCESS && lStatus != ERROR_FILE_NOT_FOUND)
    {
        ThrowCommandError("can't open the registry key " + ToUtf8(strPath), static_cast<DWORD>(lStatus));
    }
    return HostKey(lStatus == ERROR_SUCCESS ? hKey : nullptr);
}

HostKey::~HostKey()
{
    if (m_hKey != nullptr)
    {
        RegCloseKey(m_hKey);
    }
}

bool HostKey::IsEmpty() const
{
    DWORD dwKeys = 0;
    DWORD dwValues = 0;
    return IsOpen() &&
           RegQueryInfoKeyW(m_hKey, nullptr, nullptr, nullptr, &dwKeys, nullptr, nullptr, &dwValues, nullptr, nullptr,
                            nullptr, nullptr) == ERROR_SUCCESS &&
           dwKeys == 0 && dwValues == 0;
}

void HostKey::SetText(const wchar_t* pszName, const std::wstring& strText)
{
    Set(pszName, REG_SZ, strText);
}

void HostKey::SetTexts(const wchar_t* pszName, const std::vector<std::wstring>& texts)
{
    std::wstring strData;
    for (const std::wstring& strText : texts)
    {
        strData += strText;
        strData += L'\0';
    }
    Set(pszName, REG_MULTI_SZ, strData);
}

std::vector<std::wstring> HostKey::Texts(const wchar_t* pszName) const
{
    std::vector<std::wstring> texts;
    DWORD cbData = 0;
    if (!IsOpen() ||
        RegGetValueW(m_hKey, nullptr, pszName, RRF_RT_REG_MULTI_SZ, nullptr, nullptr, &cbData) != ERROR_SUCCESS)
    {
        return texts;
    }
    std::vector<wchar_t> data(cbData / sizeof(wchar_t) + 2);
    cbData = static_cast<DWORD>(data.size() * sizeof(wchar_t));
    if (RegGetValueW(m_hKey, nullptr, pszName, RRF_RT_REG_MULTI_SZ, nullptr, data.data(), &cbData) != ERROR_SUCCESS)
    {
        return texts;
    }
    for (const wchar_t* pszText = data.data(); *pszText != L'\0'; pszText += texts.back().size() + 1)
    {
        texts.emplace_back(pszText);
    }
    return texts;
}

bool HostKey::DeleteValue(const wchar_t* pszName)
{
    return IsOpen() && RegDeleteValueW(m_hKey, pszName) == ERROR_SUCCESS;
}

void HostKey::Set(const wchar_t* pszName, DWORD dwType, const std::wstring& strData)
{
    const auto cbData = static_cast<DWORD>((strData.size() + 1) * sizeof(wchar_t));
    const LSTATUS lStatus =
        RegSetValueExW(m_hKey, pszName, 0, dwType, reinterpret_cast<const BYTE*>(strData.c_str()), cbData);
    if (lStatus != ERROR_SUCCESS)
    {
        ThrowCommandError("can't write the registry value " + ToUtf8(pszName), static_cast<DWORD>(lStatus));
    }
}

bool DeleteKeyIfEmpty(const std::wstring& strPath)
{
    return HostKey::Open(strPath).IsEmpty() &&
           RegDeleteKeyExW(HKEY_LOCAL_MACHINE, strPath.c_str(), KEY_WOW64_64KEY, 0) == ERROR_SUCCESS;
}

} // namespace VelHost
