#pragma once
/// Owner of a C runtime stream.

#include <cstdio>

/// Closes its stream at the end of its scope.
class FileStream
{
public:
    FileStream() noexcept = default;
    ~FileStream() { Close(); }
    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;

    /// Opens a file, in the place of the one that is open.
    /// @param pszMode as _wfopen takes it.
    /// @return whether it opened; errno tells why not.
    bool Open(const wchar_t* pszPath, const wchar_t* pszMode) noexcept
    {
        Close();
        m_pFile = _wfopen(pszPath, pszMode);
        return m_pFile != nullptr;
    }
    /// The same with the path in the system's code page.
    bool Open(const char* pszPath, const char* pszMode) noexcept
    {
        Close();
        m_pFile = std::fopen(pszPath, pszMode);
        return m_pFile != nullptr;
    }
    FILE* Get() const noexcept { return m_pFile; }

private:
    void Close() noexcept
    {
        if (m_pFile != nullptr)
        {
            std::fclose(m_pFile);
            m_pFile = nullptr;
        }
    }

    FILE* m_pFile = nullptr;
};
