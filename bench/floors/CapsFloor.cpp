#include "bench/floors/CapsFloor.h"

#include "bench/floors/StoreFloor.h"

#include <cstdio>
#include <cstring>
#include <cwchar>

namespace
{

constexpr wchar_t kSection[] = L"DeviceCapabilities";

struct ConfigPath
{
    ConfigPath() { FloorConfigPath(szPath); }
    wchar_t szPath[kFloorPathUnits];
};

DWORD ReadNumber(const ConfigPath& path, const wchar_t* pszKey)
{
    return GetPrivateProfileIntW(kSection, pszKey, -1, path.szPath);
}

struct Key
{
    Key(const wchar_t* pszBaseKey, DWORD i) { _snwprintf(szKey, 256, L"%ls%d", pszBaseKey, static_cast<int>(i)); }
    wchar_t szKey[256];
};

} // namespace

DWORD FloorNumber(const wchar_t* pszKey)
{
    const ConfigPath path;
    const FloorLock lock(path.szPath);
    return ReadNumber(path, pszKey);
}

DWORD FloorWords(const wchar_t* pszCountKey, const wchar_t* pszBaseKey, WORD* pwOutput)
{
    const ConfigPath path;
    const FloorLock lock(path.szPath);
    const DWORD dwCount = ReadNumber(path, pszCountKey);
    for (DWORD i = 0; i < dwCount; ++i)
    {
        pwOutput[i] = static_cast<WORD>(ReadNumber(path, Key(pszBaseKey, i).szKey));
    }
    return dwCount;
}

DWORD FloorDwords(const wchar_t* pszCountKey, const wchar_t* pszBaseKey, DWORD* pdwOutput)
{
    const ConfigPath path;
    const FloorLock lock(path.szPath);
    const DWORD dwCount = ReadNumber(path, pszCountKey);
    for (DWORD i = 0; i < dwCount; ++i)
    {
        pdwOutput[i] = ReadNumber(path, Key(pszBaseKey, i).szKey);
    }
    return dwCount;
}

DWORD FloorPairs(const wchar_t* pszCountKey, const wchar_t* pszBaseKeyX, const wchar_t* pszBaseKeyY, POINT* pstuOutput)
{
    const ConfigPath path;
    const FloorLock lock(path.szPath);
    const DWORD dwCount = ReadNumber(path, pszCountKey);
    for (DWORD i = 0; i < dwCount; ++i)
    {
        pstuOutput[i].x = static_cast<LONG>(ReadNumber(path, Key(pszBaseKeyX, i).szKey));
    }
    for (DWORD i = 0; i < dwCount; ++i)
    {
        pstuOutput[i].y = static_cast<LONG>(ReadNumber(path, Key(pszBaseKeyY, i).szKey));
    }
    return dwCount;
}

DWORD FloorNames(const wchar_t* pszCountKey, const wchar_t* pszBaseKey, wchar_t* pszOutput, DWORD dwWidth)
{
    const ConfigPath path;
    const FloorLock lock(path.szPath);
    const DWORD dwCount = ReadNumber(path, pszCountKey);
    for (DWORD i = 0; i < dwCount; ++i)
    {
        wchar_t szName[65] = {}; // one unit more than an entry has, so not into the entry itself
        GetPrivateProfileStringW(kSection, Key(pszBaseKey, i).szKey, L"", szName, dwWidth + 1, path.szPath);
        std::memcpy(pszOutput + size_t{i} * dwWidth, szName, dwWidth * sizeof(wchar_t));
    }
    return dwCount;
}
