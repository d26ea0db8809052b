#include "driver/ResidentClient.h"

#include "diag/LogSite.h"
#include "support/CommandLine.h"
#include "support/Exception.h"
#include "support/ProcessUtilities.h"

#include <boost/algorithm/string/predicate.hpp>

#include <iterator>
#include <vector>

VELUI_SOURCE_MODULE("VelUI");

namespace
{

std::wstring s_szClientPath; // built on the first check, never again
bool s_bPathBuilt = false;
DWORD s_dwClientPid = 0; // 0 when unknown
bool s_bClientRunning = false;

/// Whether the client known from an earlier check still lives; forgets it when not.
void CheckKnownClient()
{
    if (s_bClientRunning)
    {
        s_bClientRunning = IsClientProcessAlive(s_dwClientPid);
    }
    else
    {
        s_dwClientPid = 0;
    }
}

/// The check's work; throws what the calls in it throw.
void FindOrStartClient()
{
    if (Win32::IsSystemUser())
    {
        return;
    }
    if (!s_bPathBuilt)
    {
        s_szClientPath = MakeClientPath();
        s_bPathBuilt = true;
    }
    CheckKnownClient();
    if (s_bClientRunning)
    {
        return;
    }
    if (const DWORD dwPid = FindClientProcess(s_szClientPath); dwPid != 0)
    {
        s_dwClientPid = dwPid;
        s_bClientRunning = true;
        return;
    }
    // The new process's id is not taken over: the next check finds it by a walk.
    Language::LaunchCommandLine(L"\"" + s_szClientPath + L"\"", false);
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
