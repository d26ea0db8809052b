#include "tools/velhost/host/Files.h"

#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

namespace VelHost
{
namespace
{

/// Wide characters of the longest path that Windows can return, terminator included.
constexpr DWORD kLongPathUnits = 32768;

constexpr LONGLONG kMostFileBytes = 16 * 1024 * 1024;

} // namespace

std::wstring BesideProgram(const std::wstring& strName)
{
    std::wstring strPath(kLongPathUnits, L'\0');
    strPath.resize(GetModuleFileNameW(nullptr, strPath.data(), kLongPathUnits));
    return PathIn(strPath.substr(0, strPath.find_last_of(L'\\')), strName);
}

std::wstring AbsolutePath(const std::string& strPath)
{
    std::wstring strFull(kLongPathUnits, L'\0');
    const DWORD cchFull = GetFullPathNameW(FromUtf8(strPath).c_str(), kLongPathUnits, strFull.data(), nullptr);
    if (cchFull == 0 || cchFull >= kLongPathUnits)
    {
        ThrowCommandError("no path can be made of \"" + strPath + "\"");
    }
    strFull.resize(cchFull);
    constexpr size_t kDriveRootUnits = 3; // "C:\"
    while (strFull.size() > kDriveRootUnits && strFull.back() == L'\\')
    {
        strFull.pop_back();
    }
    return strFull;
}

std::wstring PathIn(const std::wstring& strFolder, const std::wstring& strName)
{
    const bool bSeparated = !strFolder.empty() && strFolder.back() == L'\\';
    return strFolder + (bSeparated ? L"" : L"\\") + strName;
}

std::wstring NameInFolder(const std::wstring& strPath)
{
    return strPath.substr(strPath.find_last_of(L'\\') + 1);
}

bool IsFile(const std::wstring& strPath)
{
    const DWORD dwAttributes = GetFileAttributesW(strPath.c_str());
    return dwAttributes != INVALID_FILE_ATTRIBUTES && (dwAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool IsFolder(const std::wstring& strPath)
{
    const DWORD dwAttributes = GetFileAttributesW(strPath.c_str());
    return dwAttributes != INVALID_FILE_ATTRIBUTES && (dwAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool DeleteFolderTree(const std::wstring& strFolder)
{
    WIN32_FIND_DATAW found = {};
    const HANDLE hFind = FindFirstFileW(PathIn(strFolder, L"*").c_str(), &found);
    if (hFind != INVALID_HANDLE_VALUE)
    {
        do
        {
            const std::wstring strName = found.cFileName;
            const std::wstring strPath = PathIn(strFolder, strName);
            const bool bFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            const bool bLink = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
            if (strName == L"." || strName == L"..")
            {
                continue;
            }
            if (bFolder && !bLink)
            {
                DeleteFolderTree(strPath);
            }
            else if (bFolder)
            {
                RemoveDirectoryW(strPath.c_str());
            }
            else
            {
                SetFileAttributesW(strPath.c_str(), FILE_ATTRIBUTE_NORMAL);
                DeleteFileW(strPath.c_str());
            }
        } while (FindNextFileW(hFind, &found));
        FindClose(hFind);
    }
    // Whatever could not be deleted keeps the folder, which the caller is told.
    RemoveDirectoryW(strFolder.c_str());
    return !IsFolder(strFolder);
}

FileHandle::FileHandle(const std::wstring& strPath, DWORD dwAccess, DWORD dwShare, DWORD dwCreation,
                       DWORD dwFlags) noexcept
    : m_hFile(CreateFileW(strPath.c_str(), dwAccess, dwShare, nullptr, dwCreation, dwFlags, nullptr))
{}

FileHandle::~FileHandle()
{
    if (IsOpen())
    {
        CloseHandle(m_hFile);
    }
}

DWORD OpenError(const std::wstring& strPath, DWORD dwAccess, DWORD dwFlags) noexcept
{
    const FileHandle file(strPath, dwAccess, kShareAll, OPEN_EXISTING, dwFlags);
    return file.IsOpen() ? ERROR_SUCCESS : GetLastError();
}

LookedAtFile::LookedAtFile(const std::wstring& strPath) noexcept
    : m_file(strPath, GENERIC_READ, kShareAll, OPEN_EXISTING)
{
    LARGE_INTEGER size = {};
    if (!m_file.IsOpen() || !GetFileSizeEx(m_file.Get(), &size))
    {
        m_dwError = GetLastError();
    }
    m_llBytes = size.QuadPart;
}

std::optional<std::string> LookedAtFile::Read(size_t cbMost) const
{
    std::string strBytes(cbMost, '\0');
    DWORD cbRead = 0;
    if (!ReadFile(m_file.Get(), strBytes.data(), static_cast<DWORD>(cbMost), &cbRead, nullptr))
    {
        return std::nullopt;
    }
    strBytes.resize(cbRead);
    return strBytes;
}

std::vector<BYTE> ReadBinaryFile(const std::wstring& strPath)
{
    const std::string strWhat = "can't read " + ToUtf8(strPath);
    const FileHandle file(strPath, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    LARGE_INTEGER size = {};
    if (!file.IsOpen() || !GetFileSizeEx(file.Get(), &size))
    {
        ThrowCommandError(strWhat);
    }
    if (size.QuadPart > kMostFileBytes)
    {
        throw CommandError(strWhat + ": it is too large");
    }
    std::vector<BYTE> data(static_cast<size_t>(size.QuadPart));
    DWORD cbRead = 0;
    if (!ReadFile(file.Get(), data.data(), static_cast<DWORD>(data.size()), &cbRead, nullptr))
    {
        ThrowCommandError(strWhat);
    }
    data.resize(cbRead);
    return data;
}

void WriteBinaryFile(const std::wstring& strPath, const BYTE* pbyData, size_t cbData)
{
    const std::string strWhat = "can't write " + ToUtf8(strPath);
    const FileHandle file(strPath, GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS);
    DWORD cbWritten = 0;
    if (!file.IsOpen() || !WriteFile(file.Get(), pbyData, static_cast<DWORD>(cbData), &cbWritten, nullptr))
    {
        ThrowCommandError(strWhat);
    }
    if (cbWritten != cbData)
    {
        throw CommandError(strWhat + ": the disk is full");
    }
}

} // namespace VelHost
