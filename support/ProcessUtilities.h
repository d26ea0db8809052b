#pragma once
/// Who runs this process and what it may do, paths of programs, and walks over the running processes and their modules.

#include <windows.h>

#include <string>
#include <vector>

namespace Win32
{

/// The current user's name. Throws Win32Exception.
std::wstring GetUserNameString();

/// Whether the user is "SYSTEM", with case. Throws as GetUserNameString.
bool IsSystemUser();

/// The Program Files folder without a separator at its end; looked for until it is found once, and empty until then.
/// Safe on several threads at once; what it refers to never changes.
const std::wstring& GetProgramFilesFolder();

/// Enables the right to debug in a process's token, or removes it from the token for good.
/// @param pszPrivilege not read: the right is always "SeDebugPrivilege".
/// Throws Win32Exception. A user who does not hold the right passes without notice.
void EnableDebugPrivilege(HANDLE hProcess, const wchar_t* pszPrivilege, bool bEnable);

/// The same; answers whether it came back without an exception.
bool TryEnableDebugPrivilege(HANDLE hProcess, const wchar_t* pszPrivilege, bool bEnable) noexcept;

/// The file name of a path, with its extension; both may be of any length, and so may what is in front of them.
std::wstring PathFileNamePart(const std::wstring& strPath);

/// Whether two paths name one file once made full, whatever the case of their letters (by the global locale).
/// Throws Win32Exception when a path can't be made full, or has more than 259 characters then.
bool PathsEqual(const std::wstring& strFirst, const std::wstring& strSecond);

/// One process; the fields of PROCESSENTRY32W of the same names.
struct ProcessInfo
{
    DWORD th32ProcessID;
    DWORD cntThreads;
    DWORD th32ParentProcessID;
    LONG pcPriClassBase;
    std::wstring szExeFile; ///< file name with its extension
};

/// One module of a process; the fields of MODULEENTRY32W of the same names.
struct ModuleInfo
{
    DWORD th32ProcessID;
    BYTE* modBaseAddr;
    DWORD modBaseSize; ///< bytes
    HMODULE hModule;
    std::wstring szModule;
    std::wstring szExePath; ///< full path
};

/// What stands behind the templates below: the entries in the snapshot's order. Each enables the right to debug first
/// and leaves it enabled. Throws Win32Exception; an empty walk can't be told from a failed one.
std::vector<ProcessInfo> WalkProcesses();
std::vector<ModuleInfo> WalkModules(DWORD dwProcessId);

/// Writes every process through an output iterator. Throws Win32Exception.
template <typename OutputIterator>
void ProcessSnapshot(OutputIterator output)
{
    for (const ProcessInfo& process : WalkProcesses())
    {
        *output++ = process;
    }
}

/// Writes every module of a process through an output iterator. Throws Win32Exception.
template <typename OutputIterator>
void ModuleSnapshot(DWORD dwProcessId, OutputIterator output)
{
    for (const ModuleInfo& module : WalkModules(dwProcessId))
    {
        *output++ = module;
    }
}

/// Whether a process has loaded the file at strPath, as its program or as a library. A process whose modules can't be
/// read counts as not.
/// Throws Win32Exception when two paths can't be compared.
bool IsProcessHostingModule(DWORD dwProcessId, const std::wstring& strPath);

} // namespace Win32
