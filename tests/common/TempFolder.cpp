#include "tests/common/TempFolder.h"

#include "tools/velhost/host/Files.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

#include <cstdio>

namespace
{

[[noreturn]] void FailPath(const char* pszWork, const std::wstring& strPath)
{
    VelHost::ThrowCommandError(std::string("can't ") + pszWork + " " + VelHost::ToUtf8(strPath));
}

} // namespace

TempFolder::TempFolder(size_t uiPathUnits)
{
    static LONG s_lNext = 0;
    wchar_t szTemp[MAX_PATH];
    if (GetTempPathW(MAX_PATH, szTemp) == 0)
    {
        FailPath("find", L"the temporary folder");
    }
    // A run that crashed leaves its folders behind, and Windows gives process ids out again: such a name is passed
    // by.
    do
    {
        m_strRoot = szTemp + std::wstring(L"vt") + std::to_wstring(GetCurrentProcessId()) + L"x" +
                    std::to_wstring(InterlockedIncrement(&s_lNext));
    } while (!CreateDirectoryW(m_strRoot.c_str(), nullptr) && GetLastError() == ERROR_ALREADY_EXISTS);
    if (!PathExists(m_strRoot))
    {
        FailPath("make the folder", m_strRoot);
    }
    m_strPath = m_strRoot;
    if (uiPathUnits != 0)
    {
        if (uiPathUnits <= m_strRoot.size() + 1)
        {
            throw VelHost::CommandError("a path of " + std::to_string(uiPathUnits) + " characters is too short");
        }
        m_strPath += L"\\" + std::wstring(uiPathUnits - m_strRoot.size() - 1, L'd');
        if (!CreateDirectoryW(m_strPath.c_str(), nullptr))
        {
            FailPath("make the folder", m_strPath);
        }
    }
}

TempFolder::~TempFolder()
{
    VelHost::DeleteFolderTree(m_strRoot);
}

std::string ReadFileBytes(const std::wstring& strPath)
{
    std::string strBytes;
    if (FILE* const pFile = _wfopen(strPath.c_str(), L"rb"))
    {
        char buffer[4096];
        size_t cbRead = 0;
        while ((cbRead = std::fread(buffer, 1, sizeof(buffer), pFile)) > 0)
        {
            strBytes.append(buffer, cbRead);
        }
        std::fclose(pFile);
    }
    return strBytes;
}

void WriteFileBytes(const std::wstring& strPath, const std::string& strBytes)
{
    FILE* const pFile = _wfopen(strPath.c_str(), L"wb");
    if (pFile == nullptr)
    {
        FailPath("write", strPath);
    }
    const size_t cbWritten = std::fwrite(strBytes.data(), 1, strBytes.size(), pFile);
    std::fclose(pFile);
    if (cbWritten != strBytes.size())
    {
        FailPath("write", strPath);
    }
}

bool PathExists(const std::wstring& strPath)
{
    return GetFileAttributesW(strPath.c_str()) != INVALID_FILE_ATTRIBUTES;
}
