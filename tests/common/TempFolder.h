#pragma once
/// A scratch folder, and files as a test or the bench reads and writes them. What can't be done throws
/// VelHost::CommandError.

#include <windows.h>

#include <string>

/// Makes a new empty folder below Windows' temporary folder and removes it with all that it holds.
class TempFolder
{
public:
    /// @param uiPathUnits when not 0, the folder's full path has exactly this many wide characters.
    explicit TempFolder(size_t uiPathUnits = 0);
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// Full path, without a separator at its end.
    const std::wstring& Path() const { return m_strPath; }
    /// Full path of a file in it.
    std::wstring File(const std::wstring& strName) const { return m_strPath + L"\\" + strName; }

private:
    std::wstring m_strRoot; // what is removed; the folder itself may lie deeper
    std::wstring m_strPath;
};

/// The bytes of a file, or an empty string when it can't be read.
std::string ReadFileBytes(const std::wstring& strPath);
/// Writes a file anew.
void WriteFileBytes(const std::wstring& strPath, const std::string& strBytes);
/// Whether there is a file or folder of that name.
bool PathExists(const std::wstring& strPath);
