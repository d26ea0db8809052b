#include "tests/common/TempFolder.h"

#include <catch2/catch_test_macros.hpp>

#include <cstdio>

namespace
{

void RemoveTree(const std::wstring& strFolder)
{
    WIN32_FIND_DATAW found;
    const HANDLE hFind = FindFirstFileW((strFolder + L"\\*").c_str(), &found);
    if (hFind != INVALID_HANDLE_VALUE)
    {
        do
        {
            const std::wstring strName = found.cFileName;
            if (strName == L"." || strName == L"..")
            {
                continue;
            }
            const std::wstring strPath = strFolder + L"\\" + strName;
            if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            {
                RemoveTree(strPath);
            }
            else
            {
                SetFileAttributesW(strPath.c_str(), FILE_ATTRIBUTE_NORMAL);
                DeleteFileW(strPath.c_str());
            }
        } while (FindNextFileW(hFind, &found));
        FindClose(hFind);
    }
    RemoveDirectoryW(strFolder.c_str());
}

} // namespace

TempFolder::TempFolder(size_t uiPathUnits)
{
    static LONG s_lNext = 0;
    wchar_t szTemp[MAX_PATH];
    REQUIRE(GetTempPathW(MAX_PATH, szTemp) != 0);
    // A run that crashed leaves its folders behind, and the platform gives process ids out again: such a name is passed
    // by.
    do
    {
        m_strRoot = szTemp + std::wstring(L"vt") + std::to_wstring(GetCurrentProcessId()) + L"x" +
                    std::to_wstring(InterlockedIncrement(&s_lNext));
    } while (!CreateDirectoryW(m_strRoot.c_str(), nullptr) && GetLastError() == ERROR_ALREADY_EXISTS);
    REQUIRE(PathExists(m_strRoot));
    m_strPath = m_strRoot;
    if (uiPathUnits != 0)
    {
        REQUIRE(uiPathUnits > m_strRoot.size() + 1);
        m_strPath += L"\\" + std::wstring(uiPathUnits - m_strRoot.size() - 1, L'd');
        REQUIRE(CreateDirectoryW(m_strPath.c_str(), nullptr));
    }
}

TempFolder::~TempFolder()
{
    RemoveTree(m_strRoot);
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
    REQUIRE(pFile != nullptr);
    const size_t cbWritten = std::fwrite(strBytes.data(), 1, strBytes.size(), pFile);
    std::fclose(pFile);
    REQUIRE(cbWritten == strBytes.size());
}

bool PathExists(const std::wstring& strPath)
{
    return GetFileAttributesW(strPath.c_str()) != INVALID_FILE_ATTRIBUTES;
}
