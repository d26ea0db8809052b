#pragma once
/// Walks over the running processes and over the modules of one.

#include <windows.h>

#include <string>
#include <vector>

namespace Win32
{

/// One process; the fields of the platform's PROCESSENTRY32W of the same names.
struct ProcessInfo
{
    DWORD th32ProcessID;
    DWORD cntThreads;
    DWORD th32ParentProcessID;
    LONG pcPriClassBase;
    std::wstring szExeFile; ///< file name with its extension
};

/// One module of a process; the fields of the platform's MODULEENTRY32W of the same names.
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
