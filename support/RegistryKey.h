#pragma once
/// Owner of an open registry key.

#include <windows.h>

/// Closes its key at the end of its scope. Move-free and copy-free: it serves one function.
class RegistryKey
{
public:
    RegistryKey() noexcept = default;
    ~RegistryKey() { Close(); }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    /// Opens a key below a root for the given access (KEY_ bits).
    /// @return the error code of Windows, 0 for success.
    LONG Open(HKEY hRoot, const wchar_t* pszKey, REGSAM samDesired) noexcept
    {
        Close();
        return RegOpenKeyExW(hRoot, pszKey, 0, samDesired, &m_hKey);
    }
    /// The same with the key's name in the system's code page.
    LONG Open(HKEY hRoot, const char* pszKey, REGSAM samDesired) noexcept
    {
        Close();
        return RegOpenKeyExA(hRoot, pszKey, 0, samDesired, &m_hKey);
    }
    HKEY Get() const noexcept { return m_hKey; }

private:
    void Close() noexcept
    {
        if (m_hKey != nullptr)
        {
            RegCloseKey(m_hKey);
            m_hKey = nullptr;
        }
    }

    HKEY m_hKey = nullptr;
};
