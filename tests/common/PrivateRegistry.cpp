#include "tests/common/PrivateRegistry.h"

#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

namespace
{

/// Throws when a registry call failed.
/// @param pszWork what it was to do with the key.
void Need(LSTATUS lStatus, const char* pszWork, const std::wstring& strKey)
{
    if (lStatus != ERROR_SUCCESS)
    {
        VelHost::ThrowCommandError(std::string("can't ") + pszWork + " the registry key " + VelHost::ToUtf8(strKey),
                                   static_cast<DWORD>(lStatus));
    }
}

HKEY MadeKey(HKEY hParent, const std::wstring& strKey)
{
    HKEY hKey = nullptr;
    Need(RegCreateKeyExW(hParent, strKey.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &hKey, nullptr), "make",
         strKey);
    return hKey;
}

} // namespace

PrivateRegistry::PrivateRegistry()
{
    static LONG s_lNext = 0;
    m_strRoot = L"Software\\VelUITests\\" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                std::to_wstring(InterlockedIncrement(&s_lNext));
    // A run that was ended leaves its view behind, and Windows gives process ids out again.
    RegDeleteTreeW(HKEY_CURRENT_USER, m_strRoot.c_str());
    m_hRoot = MadeKey(HKEY_CURRENT_USER, m_strRoot);
    CopyFromMachine(L"System\\CurrentControlSet\\Control\\ComputerName");
}

PrivateRegistry::~PrivateRegistry()
{
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegCloseKey(m_hRoot);
    RegDeleteTreeW(HKEY_CURRENT_USER, m_strRoot.c_str());
}

void PrivateRegistry::CopyFromMachine(const std::wstring& strKey)
{
    // Outside the view for a moment when it stands already.
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    HKEY hSource = nullptr;
    Need(RegOpenKeyExW(HKEY_LOCAL_MACHINE, strKey.c_str(), 0, KEY_READ, &hSource), "open", strKey);
    const HKEY hTarget = MadeKey(m_hRoot, strKey);
    const LSTATUS lStatus = RegCopyTreeW(hSource, nullptr, hTarget);
    RegCloseKey(hTarget);
    RegCloseKey(hSource);
    Need(lStatus, "copy", strKey);
    Need(RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_hRoot), "put in the place of HKEY_LOCAL_MACHINE", m_strRoot);
}

void PrivateRegistry::MakeKey(const std::wstring& strKey)
{
    RegCloseKey(MadeKey(m_hRoot, strKey));
}

void PrivateRegistry::SetText(const std::wstring& strKey, const std::wstring& strValue, const std::wstring& strText)
{
    SetBytes(strKey, strValue, REG_SZ, strText.c_str(), static_cast<DWORD>((strText.size() + 1) * sizeof(wchar_t)));
}

void PrivateRegistry::SetBytes(const std::wstring& strKey, const std::wstring& strValue, DWORD dwType,
                               const void* pData, DWORD cbData)
{
    const HKEY hKey = MadeKey(m_hRoot, strKey);
    const LSTATUS lStatus = RegSetValueExW(hKey, strValue.c_str(), 0, dwType, static_cast<const BYTE*>(pData), cbData);
    RegCloseKey(hKey);
    Need(lStatus, "write to", strKey);
}

void PrivateRegistry::SetClient(const std::wstring& strValue, const std::wstring& strText)
{
    SetText(L"Software\\Vel-soft\\Client", strValue, strText);
}

void PrivateRegistry::SetServer(const std::wstring& strValue, const std::wstring& strText)
{
    SetText(L"Software\\Vel-soft\\Server", strValue, strText);
}
