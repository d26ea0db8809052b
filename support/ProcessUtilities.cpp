#include "support/ProcessUtilities.h"

#include "support/Exception.h"
#include "support/KeptText.h"
#include "support/ScopeGuard.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/bind/bind.hpp>

#include <cstdlib>
#include <cwchar>
#include <iterator>
#include <shlobj.h>
#include <tlhelp32.h>

namespace Win32
{

namespace
{

/// Wide characters of a full path, its terminator included.
constexpr DWORD kPathUnits = 260;

KeptText s_programFiles;
const std::wstring s_strNoFolder;

std::wstring FullPath(const std::wstring& strPath)
{
    wchar_t szFull[kPathUnits] = {};
    const DWORD dwLength = GetFullPathNameW(strPath.c_str(), kPathUnits, szFull, nullptr);
    if (dwLength >= kPathUnits)
    {
        // A path that does not fit leaves nothing in the buffer: two such paths must not pass for the same one.
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
    }
    if (dwLength == 0 || dwLength >= kPathUnits)
    {
        ThrowLastError(
            L"GetFullPathName"); // Required: without a W; a log is searched by the words that it has always held
    }
    return szFull;
}

ProcessInfo InfoOf(const PROCESSENTRY32W& entry)
{
    return {entry.th32ProcessID, entry.cntThreads, entry.th32ParentProcessID, entry.pcPriClassBase, entry.szExeFile};
}

ModuleInfo InfoOf(const MODULEENTRY32W& entry)
{
    return {entry.th32ProcessID, entry.modBaseAddr, entry.modBaseSize, entry.hModule, entry.szModule, entry.szExePath};
}

/// The one design of both walks.
/// @param pszFirstApi the first call's name in the text of its failure.
template <typename Info, typename Entry>
std::vector<Info> Walk(DWORD dwFlags, DWORD dwProcessId, BOOL(WINAPI* pfnFirst)(HANDLE, Entry*),
                       BOOL(WINAPI* pfnNext)(HANDLE, Entry*), const wchar_t* pszFirstApi)
{
    TryEnableDebugPrivilege(GetCurrentProcess(), L"SeDebugPrivilege", true);
    const HANDLE hSnapshot = CreateToolhelp32Snapshot(dwFlags, dwProcessId);
    if (hSnapshot == INVALID_HANDLE_VALUE)
    {
        ThrowLastError(L"CreateToolhelp32Snapshot");
    }
    const Language::scope_guard guard(boost::bind(&CloseHandle, hSnapshot));

    Entry entry = {};
    entry.dwSize = sizeof(entry);
    if (!pfnFirst(hSnapshot, &entry))
    {
        ThrowLastError(pszFirstApi);
    }
    std::vector<Info> infos;
    do
    {
        infos.push_back(InfoOf(entry));
    } while (pfnNext(hSnapshot, &entry));
    return infos;
}

} // namespace

std::wstring GetUserNameString()
{
    wchar_t szName[257];
    DWORD cchName = static_cast<DWORD>(sizeof(szName) / sizeof(szName[0]));
    if (!GetUserNameW(szName, &cchName))
    {
        ThrowLastError(L"GetUserNameW");
    }
    return szName;
}

bool IsSystemUser()
{
    return GetUserNameString() == L"SYSTEM";
}

const std::wstring& GetProgramFilesFolder()
{
    if (const std::wstring* const pFolder = s_programFiles.Get(); pFolder != nullptr)
    {
        return *pFolder;
    }
    wchar_t szFolder[MAX_PATH] = {};
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_PROGRAM_FILES, nullptr, 0, szFolder)) || szFolder[0] == L'\0')
    {
        return s_strNoFolder;
    }
    return s_programFiles.Keep(szFolder);
}

void EnableDebugPrivilege(HANDLE hProcess, const wchar_t* /*pszPrivilege*/, bool bEnable)
{
    HANDLE hToken = nullptr;
    if (!OpenProcessToken(hProcess, TOKEN_ADJUST_PRIVILEGES, &hToken))
    {
        ThrowLastError(L"OpenProcessToken");
    }
    const Language::scope_guard guard(boost::bind(&CloseHandle, hToken));

    TOKEN_PRIVILEGES privileges = {};
    privileges.PrivilegeCount = 1;
    if (!LookupPrivilegeValueW(nullptr, L"SeDebugPrivilege", &privileges.Privileges[0].Luid))
    {
        ThrowLastError(L"LookupPrivilegeValue"); // Required: without a W, as above
    }
    // Required: turning it off removes the right, which is more than disabling it: nothing in the process can turn it
    // on again.
    privileges.Privileges[0].Attributes = bEnable ? SE_PRIVILEGE_ENABLED : SE_PRIVILEGE_REMOVED;
    // A result other than 0 is a success also when the user does not hold the right.
    if (!AdjustTokenPrivileges(hToken, FALSE, &privileges, sizeof(privileges), nullptr, nullptr))
    {
        ThrowLastError(L"AdjustTokenPrivileges");
    }
}

bool TryEnableDebugPrivilege(HANDLE hProcess, const wchar_t* pszPrivilege, bool bEnable) noexcept
{
    try
    {
        EnableDebugPrivilege(hProcess, pszPrivilege, bEnable);
        return true;
    }
    catch (...)
    {
        return false;
    }
}

std::wstring PathFileNamePart(const std::wstring& strPath)
{
    // The drive and the folder are not asked for, and each part has room for the whole path: nothing in a path is too
    // long to find its name, and an empty name would be like every other empty one.
    const size_t uiUnits = strPath.size() + 1;
    std::wstring strName(uiUnits, L'\0');
    std::wstring strExtension(uiUnits, L'\0');
    _wsplitpath_s(strPath.c_str(), nullptr, 0, nullptr, 0, strName.data(), uiUnits, strExtension.data(), uiUnits);
    std::wstring strPart(uiUnits, L'\0');
    _wmakepath(strPart.data(), nullptr, nullptr, strName.c_str(), strExtension.c_str());
    strPart.resize(std::wcslen(strPart.c_str()));
    return strPart;
}

bool PathsEqual(const std::wstring& strFirst, const std::wstring& strSecond)
{
    return boost::iequals(FullPath(strFirst), FullPath(strSecond));
}

std::vector<ProcessInfo> WalkProcesses()
{
    return Walk<ProcessInfo, PROCESSENTRY32W>(TH32CS_SNAPPROCESS, 0, &Process32FirstW, &Process32NextW,
                                              L"Process32First");
}

std::vector<ModuleInfo> WalkModules(DWORD dwProcessId)
{
    return Walk<ModuleInfo, MODULEENTRY32W>(TH32CS_SNAPMODULE, dwProcessId, &Module32FirstW, &Module32NextW,
                                            L"Module32First");
}

bool IsProcessHostingModule(DWORD dwProcessId, const std::wstring& strPath)
{
    std::vector<ModuleInfo> modules;
    try
    {
        ModuleSnapshot(dwProcessId, std::back_inserter(modules));
    }
    catch (...)
    {
        return false;
    }
    for (const ModuleInfo& module : modules)
    {
        if (PathsEqual(strPath, module.szExePath))
        {
            return true;
        }
    }
    return false;
}

} // namespace Win32
