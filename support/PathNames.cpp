#include "support/PathNames.h"

#include "support/Exception.h"

#include <boost/algorithm/string/predicate.hpp>

#include <cstdlib>

namespace Win32
{

namespace
{

constexpr DWORD kPathUnits = 260;

std::wstring FullPath(const std::wstring& strPath)
{
    wchar_t szFull[kPathUnits] = {};
    // A path that does not fit leaves the buffer empty and gives the room that it needs.
    if (GetFullPathNameW(strPath.c_str(), kPathUnits, szFull, nullptr) == 0)
    {
        ThrowLastError(L"GetFullPathName"); // Required: without a W
    }
    return szFull;
}

} // namespace

std::wstring PathFileNamePart(const std::wstring& strPath)
{
    wchar_t szDrive[_MAX_DRIVE] = {};
    wchar_t szFolder[_MAX_DIR] = {};
    wchar_t szName[_MAX_FNAME] = {};
    wchar_t szExtension[_MAX_EXT] = {};
    _wsplitpath_s(strPath.c_str(), szDrive, _MAX_DRIVE, szFolder, _MAX_DIR, szName, _MAX_FNAME, szExtension, _MAX_EXT);
    wchar_t szPart[_MAX_FNAME + _MAX_EXT] = {};
    _wmakepath(szPart, nullptr, nullptr, szName, szExtension);
    return szPart;
}

bool PathsEqual(const std::wstring& strFirst, const std::wstring& strSecond)
{
    return boost::iequals(FullPath(strFirst), FullPath(strSecond));
}

} // namespace Win32
