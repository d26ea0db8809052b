// Stands in for the client's programs: leaves "<own path>.ran" beside itself, with its command line, its current folder
// and its start time (hundreds of nanoseconds since 1601) on a line each, in UTF-16. Named VelprintD.exe, or with a
// file
// "<own path>.stay" beside it, it then goes on until a file "<own path>.stop" comes up, and leaves "<own
// path>.stopped"; or for a minute, and leaves nothing.

#include <windows.h>

#include <cstdio>
#include <string>

int main()
{
    wchar_t szPath[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, szPath, MAX_PATH);
    const std::wstring strPath = szPath;
    wchar_t szFolder[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, szFolder);
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const unsigned long long uiNow = (static_cast<unsigned long long>(now.dwHighDateTime) << 32) | now.dwLowDateTime;
    const std::wstring strText =
        std::wstring(GetCommandLineW()) + L"\n" + szFolder + L"\n" + std::to_wstring(uiNow) + L"\n";

    // Written under another name first, so that whoever waits for the file finds it whole.
    const std::wstring strRan = strPath + L".ran";
    FILE* const pFile = _wfopen((strRan + L".part").c_str(), L"ab");
    if (pFile == nullptr)
    {
        return 1;
    }
    std::fwrite(strText.data(), sizeof(wchar_t), strText.size(), pFile);
    std::fclose(pFile);
    MoveFileExW((strRan + L".part").c_str(), strRan.c_str(), MOVEFILE_REPLACE_EXISTING);

    const std::wstring strName = strPath.substr(strPath.rfind(L'\\') + 1);
    const auto isThere = [&](const wchar_t* pszSuffix) {
        return GetFileAttributesW((strPath + pszSuffix).c_str()) != INVALID_FILE_ATTRIBUTES;
    };
    const bool bStays = _wcsicmp(strName.c_str(), L"VelprintD.exe") == 0 || isThere(L".stay");
    for (int i = 0; i < 3000 && bStays; ++i)
    {
        if (isThere(L".stop"))
        {
            if (FILE* const pStopped = _wfopen((strPath + L".stopped").c_str(), L"wb"))
            {
                std::fclose(pStopped);
            }
            return 0;
        }
        Sleep(20);
    }
    return 0;
}
