#pragma once
/// The registry as this program uses it.

#include <windows.h>

#include <string>
#include <vector>

namespace VelHost
{

/// A key below HKEY_LOCAL_MACHINE, in the 64-bit view.
class HostKey
{
public:
    /// Opens a key, and makes it if need be. Throws CommandError on failure.
    static HostKey Create(const std::wstring& strPath);
    /// Opens a key for reading and writing; without one the object is empty.
    static HostKey Open(const std::wstring& strPath);

    ~HostKey();
    HostKey(HostKey&& other) noexcept : m_hKey(other.m_hKey) { other.m_hKey = nullptr; }
    HostKey(const HostKey&) = delete;
    HostKey& operator=(const HostKey&) = delete;

    bool IsOpen() const noexcept { return m_hKey != nullptr; }
    /// @return whether the key has neither values nor keys below it; false without a key.
    bool IsEmpty() const;

    /// Writes a REG_SZ value. Throws CommandError on failure.
    void SetText(const wchar_t* pszName, const std::wstring& strText);
    /// Writes a REG_MULTI_SZ value; no text may be empty. Throws CommandError on failure.
    void SetTexts(const wchar_t* pszName, const std::vector<std::wstring>& texts);
    /// @return the texts of a REG_MULTI_SZ value; none when it is missing.
    std::vector<std::wstring> Texts(const wchar_t* pszName) const;
    /// @return whether the value was there.
    bool DeleteValue(const wchar_t* pszName);

private:
    explicit HostKey(HKEY hKey) noexcept : m_hKey(hKey) {}
    void Set(const wchar_t* pszName, DWORD dwType, const std::wstring& strData);

    HKEY m_hKey; ///< owned; null without a key
};

/// Deletes a key when it is empty.
/// @return whether it was deleted.
bool DeleteKeyIfEmpty(const std::wstring& strPath);

} // namespace VelHost
