#include "tests/common/PrivateRegistry.h"

#include <catch2/catch_test_macros.hpp>

PrivateRegistry::PrivateRegistry()
{
    static LONG s_lNext = 0;
    m_strRoot = L"Software\\VelUITests\\" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                std::to_wstring(InterlockedIncrement(&s_lNext));
    // A run that was ended leaves its view behind, and the platform gives process ids out again.
    RegDeleteTreeW(HKEY_CURRENT_USER, m_strRoot.c_str());
    REQUIRE(RegCreateKeyExW(HKEY_CURRENT_USER, m_strRoot.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_hRoot,
                            nullptr) == ERROR_SUCCESS);
    CopyFromMachine(L"System\\CurrentControlSet\\Control\\ComputerName");
    REQUIRE(RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_hRoot) == ERROR_SUCCESS);
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
    REQUIRE(RegOpenKeyExW(HKEY_LOCAL_MACHINE, strKey.c_str(), 0, KEY_READ, &hSource) == ERROR_SUCCESS);
    HKEY hTarget = nullptr;
    REQUIRE(RegCreateKeyExW(m_hRoot, strKey.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &hTarget, nullptr) ==
            ERROR_SUCCESS);
    CHECK(RegCopyTreeW(hSource, nullptr, hTarget) == ERROR_SUCCESS);
    RegCloseKey(hTarget);
    RegCloseKey(hSource);
    REQUIRE(RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_hRoot) == ERROR_SUCCESS);
}

void PrivateRegistry::MakeKey(const std::wstring& strKey)
{
    HKEY hKey = nullptr;
    REQUIRE(RegCreateKeyExW(m_hRoot, strKey.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &hKey, nullptr) ==
            ERROR_SUCCESS);
    RegCloseKey(hKey);
}

void PrivateRegistry::SetText(const std::wstring& strKey, const std::wstring& strValue, const std::wstring& strText)
{
    SetBytes(strKey, strValue, REG_SZ, strText.c_str(), static_cast<DWORD>((strText.size() + 1) * sizeof(wchar_t)));
}

void PrivateRegistry::SetBytes(const std::wstring& strKey, const std::wstring& strValue, DWORD dwType,
                               const void* pData, DWORD cbData)
{
    MakeKey(strKey);
    HKEY hKey = nullptr;
    REQUIRE(RegOpenKeyExW(m_hRoot, strKey.c_str(), 0, KEY_ALL_ACCESS, &hKey) == ERROR_SUCCESS);
    CHECK(RegSetValueExW(hKey, strValue.c_str(), 0, dwType, static_cast<const BYTE*>(pData), cbData) == ERROR_SUCCESS);
    RegCloseKey(hKey);
}

void PrivateRegistry::SetClient(const std::wstring& strValue, const std::wstring& strText)
{
    SetText(L"Software\\Vel-soft\\Client", strValue, strText);
}

void PrivateRegistry::SetServer(const std::wstring& strValue, const std::wstring& strText)
{
    SetText(L"Software\\Vel-soft\\Server", strValue, strText);
}
