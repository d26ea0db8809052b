#pragma once
/// A registry view of a scratch client.

#include <windows.h>

#include <string>

/// Puts an empty key in the place of this process's HKEY_LOCAL_MACHINE, and takes it away again with all that it holds.
/// Only the computer's name is copied into it, since Windows itself looks for that there. What
/// can't be done throws VelHost::CommandError.
class PrivateRegistry
{
public:
    PrivateRegistry();
    ~PrivateRegistry();
    PrivateRegistry(const PrivateRegistry&) = delete;
    PrivateRegistry& operator=(const PrivateRegistry&) = delete;

    /// Copies a tree of the real HKEY_LOCAL_MACHINE to the same place in the view.
    void CopyFromMachine(const std::wstring& strKey);

    /// Makes a key below HKEY_LOCAL_MACHINE.
    void MakeKey(const std::wstring& strKey);
    /// Sets a text (REG_SZ), and makes the key where needed.
    void SetText(const std::wstring& strKey, const std::wstring& strValue, const std::wstring& strText);
    /// Sets a value of any type from bytes.
    void SetBytes(const std::wstring& strKey, const std::wstring& strValue, DWORD dwType, const void* pData,
                  DWORD cbData);
    /// Sets a value of the client's key, "Software\Vel-soft\Client".
    void SetClient(const std::wstring& strValue, const std::wstring& strText);
    /// Sets a value of the server's key.
    void SetServer(const std::wstring& strValue, const std::wstring& strText);

    /// The view's key, below HKEY_CURRENT_USER, for another process to take the same view.
    const std::wstring& Root() const { return m_strRoot; }

private:
    std::wstring m_strRoot; // below HKEY_CURRENT_USER
    HKEY m_hRoot = nullptr;
};
