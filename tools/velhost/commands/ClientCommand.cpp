#include "driver/ResidentClient.h"
#include "support/Exception.h"
#include "support/ProcessUtilities.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"

#include <memory>

namespace VelHost
{
namespace
{

/// What the launcher finds, without starting anything.
int RunClient(bool bJson)
{
    try
    {
        const std::wstring strPath = MakeClientPath();
        const bool bSystem = Win32::IsSystemUser();
        const DWORD dwPid = bSystem ? 0 : FindClientProcess(strPath);
        const bool bThere = IsFile(strPath);
        ItemReport report;
        report.Add("user", ToUtf8(Win32::GetUserNameString()));
        report.Add("path", ToUtf8(strPath));
        report.Add("file", bThere ? "there" : "missing");
        report.Add("running process", dwPid != 0 ? Json(dwPid) : Json());
        report.Add("would start", bSystem      ? "nothing: the user is SYSTEM"
                                  : dwPid != 0 ? "nothing: the client runs"
                                  : !bThere    ? "nothing: the file is missing"
                                               : "\"" + ToUtf8(strPath) + "\"");
        report.PrintOut(bJson);
        return kExitGood;
    }
    catch (const Language::Exception& exception)
    {
        throw CommandError(ToUtf8(exception.DetailW()));
    }
}

} // namespace

void AddClientCommand(CommandSyntax& program, int& iExitCode)
{
    CommandSyntax command = program.AddCommand(
        "client", "Shows what the launcher of the resident client finds, and what it would start. Starts nothing.");
    const auto pJson = std::make_shared<bool>(false);
    AddJsonFlag(command, *pJson);
    command.OnRun([pJson, &iExitCode] { iExitCode = RunClient(*pJson); });
}

} // namespace VelHost
