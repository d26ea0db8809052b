#include "driver/ResidentClient.h"

#include "diag/LogSite.h"
#include "support/CommandLine.h"
#include "support/Exception.h"
#include "support/KeptText.h"
#include "support/ProcessUtilities.h"

#include <boost/algorithm/string/predicate.hpp>

#include <atomic>
#include <iterator>
#include <vector>

VELUI_SOURCE_MODULE("VelUI");

namespace
{

// Required: no lock: a check in the steady state costs two platform calls, on any number of threads. What two threads
// write at once is whole all the same, and at worst a second client is started, which the client bears.
KeptText s_szClientPath;             // built on the first check, never again
std::atomic<DWORD> s_dwClientPid{0}; // of the client that runs, as far as is known; 0 for none. Its number and whether
                                     // it runs are one variable, so that no thread meets one without the other.

/// Whether the client known from an earlier check still lives; forgets it when not.
bool KnownClientLives()
{
    const DWORD dwPid = s_dwClientPid;
    if (dwPid == 0)
    {
        return false;
    }
    if (!IsClientProcessAlive(dwPid))
    {
        s_dwClientPid = 0;
        return false;
    }
    return true;
}

/// The client's path, built when no check before has built it.
const std::wstring& ClientPath()
{
    // Required: a path without the Program Files folder is kept too, for the life of the module: a check must not look
    // for a folder that the platform does not tell, query by query.
    const std::wstring* const pPath = s_szClientPath.Get();
    return pPath != nullptr ? *pPath : s_szClientPath.Keep(MakeClientPath());
}

/// The check's work; throws what the calls in it throw.
void FindOrStartClient()
{
    if (Win32::IsSystemUser())
    {
        return;
    }
    const std::wstring& strPath = ClientPath();
    if (KnownClientLives())
    {
        return;
    }
    if (const DWORD dwPid = FindClientProcess(strPath); dwPid != 0)
    {
        s_dwClientPid = dwPid;
        return;
    }
    // The new process's id is not taken over: the next check finds it by a walk.
    Language::LaunchCommandLine(L"\"" + strPath + L"\"", false);
}

} // namespace

// Required: no trace scope here, so what the check logs is lost unless the call comes from inside a traced function. A
// machine without a client would fill its log with one line for each capability that an application asks for.
void CheckResidentClient() noexcept
{
    try
    {
        FindOrStartClient();
    }
    catch (const Language::Exception& exception)
    {
        // The text takes memory, for which there may be none.
        Quietly([&] {
            // Required: without a blank or a colon behind the line's number: the form of the line is fixed.
            LOG_FATAL_JOINED("Failed to launch apps. err = %s", exception.What().c_str());
        });
    }
    catch (...)
    {
        LOG_FATAL("Caught unexpected C++ exception.");
    }
}

bool IsClientProcessAlive(DWORD dwPid)
{
    if (GetProcessVersion(dwPid) != 0)
    {
        return true;
    }
    LOG_ERROR("::GetLastError() = %u", static_cast<unsigned>(GetLastError()));
    return false;
}

std::wstring MakeClientPath()
{
    return Win32::GetProgramFilesFolder() + L"\\Vel-soft\\Client\\VelprintD.exe";
}

DWORD FindClientProcess(const std::wstring& strClientPath)
{
    std::vector<Win32::ProcessInfo> processes;
    Win32::ProcessSnapshot(std::back_inserter(processes));
    const std::wstring strName = Win32::PathFileNamePart(strClientPath);
    for (const Win32::ProcessInfo& process : processes)
    {
        if (boost::iequals(Win32::PathFileNamePart(process.szExeFile), strName) &&
            Win32::IsProcessHostingModule(process.th32ProcessID, strClientPath))
        {
            return process.th32ProcessID;
        }
    }
    return 0;
}
