#include "tools/velhost/host/BinaryFile.h"

#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Utf8.h"

namespace VelHost
{
namespace
{

constexpr LONGLONG kMostFileBytes = 16 * 1024 * 1024;

/// An open file.
class FileHandle
{
public:
    FileHandle(const std::wstring& strPath, DWORD dwAccess, DWORD dwCreation)
        : m_hFile(CreateFileW(strPath.c_str(), dwAccess, FILE_SHARE_READ, nullptr, dwCreation, FILE_ATTRIBUTE_NORMAL,
                              nullptr))
    {}
    ~FileHandle()
    {
        if (IsOpen())
        {
            CloseHandle(m_hFile);
        }
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    bool IsOpen() const noexcept { return m_hFile != INVALID_HANDLE_VALUE; }
    HANDLE Get() const noexcept { return m_hFile; }

private:
    HANDLE m_hFile;
};

} // namespace

std::vector<BYTE> ReadBinaryFile(const std::wstring& strPath)
{
    const std::string strWhat = "can't read " + ToUtf8(strPath);
    const FileHandle file(strPath, GENERIC_READ, OPEN_EXISTING);
    LARGE_INTEGER size = {};
    if (!file.IsOpen() || !GetFileSizeEx(file.Get(), &size))
    {
        ThrowLastError(strWhat);
    }
    if (size.QuadPart > kMostFileBytes)
    {
        throw CommandError(strWhat + ": it is too large");
    }
    std::vector<BYTE> data(static_cast<size_t>(size.QuadPart));
    DWORD cbRead = 0;
    if (!ReadFile(file.Get(), data.data(), static_cast<DWORD>(data.size()), &cbRead, nullptr))
    {
        ThrowLastError(strWhat);
    }
    data.resize(cbRead);
    return data;
}

void WriteBinaryFile(const std::wstring& strPath, const BYTE* pbyData, size_t cbData)
{
    const std::string strWhat = "can't write " + ToUtf8(strPath);
    const FileHandle file(strPath, GENERIC_WRITE, CREATE_ALWAYS);
    DWORD cbWritten = 0;
    if (!file.IsOpen() || !WriteFile(file.Get(), pbyData, static_cast<DWORD>(cbData), &cbWritten, nullptr))
    {
        ThrowLastError(strWhat);
    }
    if (cbWritten != cbData)
    {
        throw CommandError(strWhat + ": the disk is full");
    }
}

} // namespace VelHost
