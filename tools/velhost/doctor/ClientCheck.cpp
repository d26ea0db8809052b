#include "tools/velhost/doctor/ClientCheck.h"

#include "driver/ResidentClient.h"
#include "support/Exception.h"
#include "support/ProcessUtilities.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/Spooler.h"
#include "tools/velhost/report/Encoding.h"

namespace VelHost
{
namespace
{

constexpr char kArea[] = "client";

/// The tools that a printer's events start, from the module's folder.
constexpr const wchar_t* kTools[] = {L"velup.exe", L"veldel.exe"};

/// @return the path of a process's program; empty when it can't be told, as for another account's process.
std::wstring PlaceOf(DWORD dwPid)
{
    try
    {
        const std::vector<Win32::ModuleInfo> modules = Win32::WalkModules(dwPid);
        return modules.empty() ? std::wstring() : modules.front().szExePath;
    }
    catch (const Language::Exception&)
    {
        return std::wstring();
    }
}

/// @return whether there is a program to be started.
bool CheckProgram(const std::wstring& strClient, Findings& findings)
{
    DWORD dwType = 0;
    if (!IsFile(strClient))
    {
        findings.Add("CLI01", strClient, IsFolder(strClient) ? L"a folder has that name" : L"there is no such file");
    }
    else if (!GetBinaryTypeW(strClient.c_str(), &dwType))
    {
        findings.Add("CLI02", strClient, L"Windows could not start it");
    }
    else
    {
        findings.Good(kArea, L"the program is " + strClient);
        return true;
    }
    return false;
}

/// Looks for processes of the client's name, the one from the right place and others.
/// @param bProgram whether there is a program that could run.
/// One whose place can't be told is
/// another user's, as on a machine that several people work on at once, and no fault.
void CheckProcesses(const std::wstring& strClient, bool bProgram, Findings& findings)
{
    const std::wstring strName = Win32::PathFileNamePart(strClient);
    bool bElsewhere = false;
    int iUntold = 0;
    for (const Win32::ProcessInfo& process : Win32::WalkProcesses())
    {
        if (!IsSameName(Win32::PathFileNamePart(process.szExeFile), strName) ||
            Win32::IsProcessHostingModule(process.th32ProcessID, strClient))
        {
            continue;
        }
        const std::wstring strPlace = PlaceOf(process.th32ProcessID);
        if (strPlace.empty())
        {
            ++iUntold;
            continue;
        }
        bElsewhere = true;
        findings.Add("CLI04", strPlace,
                     L"process " + std::to_wstring(process.th32ProcessID) + L"; the launcher looks for " + strClient);
    }
    if (const DWORD dwPid = FindClientProcess(strClient); dwPid != 0)
    {
        findings.Good(kArea, L"runs as process " + std::to_wstring(dwPid));
    }
    else if (bProgram && !bElsewhere)
    {
        findings.Add("CLI03", strClient,
                     L"user " + Win32::GetUserNameString() + L"; " + std::to_wstring(iUntold) +
                         L" processes of that name belong to other accounts");
    }
}

void CheckTools(const std::wstring& strModule, Findings& findings)
{
    const std::wstring strFolder = strModule.substr(0, strModule.find_last_of(L'\\'));
    for (const wchar_t* pszTool : kTools)
    {
        const std::wstring strTool = PathIn(strFolder, pszTool);
        if (IsFile(strTool))
        {
            findings.Good(kArea, L"beside the module: " + strTool);
        }
        else
        {
            findings.Add("CLI05", strTool, L"there is no such file");
        }
    }
    if (strFolder.find(L' ') != std::wstring::npos)
    {
        findings.Add("CLI06", strFolder,
                     L"a tool started there takes what follows the first blank for an argument of its own");
    }
}

} // namespace

const std::vector<FindingKind>& ClientKinds()
{
    static const std::vector<FindingKind> s_kinds = {
        {"CLI01", "The client's program is not where the launcher looks",
         "Install the client to Vel-soft\\Client in the Program Files folder: the launcher looks nowhere else."},
        {"CLI02", "The client's program is no program", "Install the client again: its file is damaged."},
        {"CLI03", "The client does not run",
         "Ask the printer for its papers, as any print dialog does: that starts it; if it ends again, look at its "
         "log."},
        {"CLI04", "The client runs from another folder",
         "End that process; the launcher starts the right one, and a second one beside a wrong one."},
        {"CLI05", "A tool is missing beside the module", "Copy velup.exe and veldel.exe to the module's folder."},
        {"CLI06", "The module's folder has a blank in its path",
         "Install the driver where the spooler puts it by itself; its folder has no blank."},
    };
    return s_kinds;
}

void CheckClient(const std::wstring& strClient, const std::vector<std::wstring>& modules, Findings& findings)
{
    const bool bProgram = CheckProgram(strClient, findings);
    if (Win32::IsSystemUser())
    {
        findings.Good(kArea, L"the user is SYSTEM, for whom the launcher does nothing");
    }
    else
    {
        CheckProcesses(strClient, bProgram, findings);
    }
    for (const std::wstring& strModule : modules)
    {
        CheckTools(strModule, findings);
    }
}

bool WouldStartClient(const std::wstring& strClient)
{
    return !Win32::IsSystemUser() && IsFile(strClient) && FindClientProcess(strClient) == 0;
}

} // namespace VelHost
