#include "driver/DependsFile.h"

#include "diag/LogSite.h"

#include <cstdlib>

VELUI_SOURCE_MODULE("VelUI");

std::wstring MakeDependsFilePath(HMODULE hModule, const wchar_t* pszFileName)
{
    TRACE_FUNCTION("MakeDependsFilePath");
    // The result of the call is not tested: without a name the file's own is all that is left.
    wchar_t szModuleFile[MAX_PATH] = {};
    GetModuleFileNameW(hModule, szModuleFile, MAX_PATH);
    LOG_DEBUG("szModuleFile = %S", szModuleFile);

    wchar_t szDrive[_MAX_DRIVE] = {};
    wchar_t szFolder[_MAX_DIR] = {};
    _wsplitpath_s(szModuleFile, szDrive, _MAX_DRIVE, szFolder, _MAX_DIR, nullptr, 0, nullptr, 0);
    wchar_t szName[_MAX_FNAME] = {};
    wchar_t szExtension[_MAX_EXT] = {};
    _wsplitpath_s(pszFileName, nullptr, 0, nullptr, 0, szName, _MAX_FNAME, szExtension, _MAX_EXT);

    wchar_t szPath[_MAX_DRIVE + _MAX_DIR + _MAX_FNAME + _MAX_EXT] = {};
    _wmakepath(szPath, szDrive, szFolder, szName, szExtension);
    return szPath;
}
