#pragma once
/// Files and folders, and the ways to name them.

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace VelHost
{

/// @return the full path of a file beside the running program, whether it is there or not.
/// @param strName its name, or a path from the program's folder.
std::wstring BesideProgram(const std::wstring& strName);

/// @return the full form of a path that is not empty, without a separator at its end (but for a drive's root). Throws
/// CommandError when there is none.
/// @param strPath UTF-8, as the command line has it.
std::wstring AbsolutePath(const std::string& strPath);

/// @return the path of a name in a folder, with one backslash between them.
std::wstring PathIn(const std::wstring& strFolder, const std::wstring& strName);

/// @return what stands behind the last backslash of a path; the whole text without one.
std::wstring NameInFolder(const std::wstring& strPath);

/// @return whether a file (not a folder) is there.
bool IsFile(const std::wstring& strPath);

/// @return whether a folder is there.
bool IsFolder(const std::wstring& strPath);

/// Deletes a folder with all that is in it; links are deleted, not followed.
/// @return whether it is gone.
bool DeleteFolderTree(const std::wstring& strFolder);

/// An open file; closed at the end of the object's life.
class FileHandle
{
public:
    /// @param dwAccess   the rights, as for CreateFileW.
    /// @param dwShare    FILE_SHARE_ bits: what others may do with it meanwhile.
    /// @param dwCreation as for CreateFileW.
    /// @param dwFlags    the same; FILE_FLAG_BACKUP_SEMANTICS opens a folder.
    FileHandle(const std::wstring& strPath, DWORD dwAccess, DWORD dwShare, DWORD dwCreation,
               DWORD dwFlags = FILE_ATTRIBUTE_NORMAL) noexcept;
    ~FileHandle();
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    /// @return false when the file could not be opened; GetLastError then tells why.
    bool IsOpen() const noexcept { return m_hFile != INVALID_HANDLE_VALUE; }
    HANDLE Get() const noexcept { return m_hFile; }

private:
    HANDLE m_hFile;
};

/// Whoever only looks at a file keeps nobody from it.
inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Opens a file or folder that is there with rights, and closes it again, which changes nothing in it.
/// @return the error code of Windows, 0 for success.
DWORD OpenError(const std::wstring& strPath, DWORD dwAccess, DWORD dwFlags = FILE_ATTRIBUTE_NORMAL) noexcept;

/// A file that is only looked at.
class LookedAtFile
{
public:
    explicit LookedAtFile(const std::wstring& strPath) noexcept;

    /// @return why it can't be opened, 0 when it is open.
    DWORD Error() const noexcept { return m_dwError; }
    /// @return whether it can't be opened because there is none.
    bool IsAbsent() const noexcept { return m_dwError == ERROR_FILE_NOT_FOUND || m_dwError == ERROR_PATH_NOT_FOUND; }
    LONGLONG Bytes() const noexcept { return m_llBytes; }
    /// @return its first bytes, so many at most; nothing, and the last error, when they can't be read.
    std::optional<std::string> Read(size_t cbMost) const;

private:
    FileHandle m_file;
    DWORD m_dwError = ERROR_SUCCESS;
    LONGLONG m_llBytes = 0;
};

/// @return all bytes of a file. Throws CommandError when it can't be read or is larger than 16 MB.
std::vector<BYTE> ReadBinaryFile(const std::wstring& strPath);

/// Writes a file anew. Throws CommandError on failure.
void WriteBinaryFile(const std::wstring& strPath, const BYTE* pbyData, size_t cbData);

} // namespace VelHost
