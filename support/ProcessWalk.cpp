#include "support/ProcessWalk.h"

#include "support/Account.h"
#include "support/Exception.h"
#include "support/PathNames.h"
#include "support/ScopeGuard.h"

#include <boost/bind/bind.hpp>

#include <iterator>
#include <tlhelp32.h>

namespace Win32
{

namespace
{

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
