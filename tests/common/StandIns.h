#pragma once
/// The stand-in for the client's programs, as tests place and watch it.

#include "tests/common/BuiltModule.h"
#include "tests/common/TempFolder.h"

#include <string>

/// Puts the stand-in somewhere under another name.
inline void PlaceStandIn(const std::wstring& strPath)
{
    CopyFileW(BesideTests(L"standin.exe").c_str(), strPath.c_str(), FALSE);
}

/// Waits, for some seconds at most, until a placed stand-in has run.
/// @return its command line, current folder and start time, a line each; empty when it did not run.
inline std::wstring WaitForRun(const std::wstring& strPath, DWORD dwMilliseconds = 20000)
{
    const DWORD dwStart = GetTickCount();
    do
    {
        // The file is there a moment before its bytes are.
        const std::string strBytes = ReadFileBytes(strPath + L".ran");
        if (!strBytes.empty())
        {
            return std::wstring(reinterpret_cast<const wchar_t*>(strBytes.data()), strBytes.size() / sizeof(wchar_t));
        }
        Sleep(10);
    } while (GetTickCount() - dwStart < dwMilliseconds);
    return std::wstring();
}

/// The command line that a placed stand-in was started with.
inline std::wstring CommandLineOfRun(const std::wstring& strPath)
{
    const std::wstring strRun = WaitForRun(strPath);
    return strRun.substr(0, strRun.find(L'\n'));
}

/// Has a placed stand-in that stays go on no longer, and waits until its process is gone.
/// @return whether it was still going on: one that nobody stops ends by itself after a minute, and says nothing.
inline bool StopStandIn(const std::wstring& strPath)
{
    WriteFileBytes(strPath + L".stop", "");
    for (int i = 0; i < 1000 && !PathExists(strPath + L".stopped"); ++i)
    {
        Sleep(20);
    }
    for (int i = 0; i < 500 && !DeleteFileW(strPath.c_str()); ++i)
    {
        Sleep(20); // until the program has ended and its file can go
    }
    return PathExists(strPath + L".stopped");
}

/// Makes a folder with all that lead to it.
inline void MakeFolders(const std::wstring& strPath)
{
    for (size_t i = strPath.find(L'\\', 3); i != std::wstring::npos; i = strPath.find(L'\\', i + 1))
    {
        CreateDirectoryW(strPath.substr(0, i).c_str(), nullptr);
    }
    CreateDirectoryW(strPath.c_str(), nullptr);
}
