#include "driver/ResidentClient.h"
#include "state/MachineIdentity.h"
#include "support/Account.h"
#include "support/Exception.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/HostModule.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/ItemReport.h"
#include "tools/velhost/report/Utf8.h"

#include <cstdio>
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

std::string AddressText(const BYTE* pbyBytes, size_t uiCount, const char* pszFormat, const char* pszSeparator)
{
    std::string strText;
    for (size_t i = 0; i < uiCount; ++i)
    {
        char szByte[8];
        _snprintf_s(szByte, sizeof(szByte), _TRUNCATE, pszFormat, pbyBytes[i]);
        strText += (i == 0 ? "" : pszSeparator) + std::string(szByte);
    }
    return strText;
}

int RunMachine(bool bJson)
{
    wchar_t szName[VelUtility::kHostNameUnits] = {};
    BYTE abyAddress[4] = {};
    BYTE abyMac[VelUtility::kMacBytes] = {};
    const bool bHost = VelUtility::GetLocalMachineInfo(szName, VelUtility::kHostNameUnits, nullptr, abyAddress) == 0;
    const bool bMac = VelUtility::GetLocalMachineInfo(nullptr, 0, abyMac, nullptr) == 0;
    ItemReport report;
    report.Add("name", bHost ? Json(ToUtf8(szName)) : Json());
    report.Add("address", bHost ? Json(AddressText(abyAddress, 4, "%u", ".")) : Json());
    report.Add("hardware address", bMac ? Json(AddressText(abyMac, VelUtility::kMacBytes, "%02X", "-")) : Json());
    report.PrintOut(bJson);
    return bHost && bMac ? kExitGood : kExitFailed;
}

/// Adds a command that has no option but the form of its output.
void AddPlainCommand(CLI::App& program, int& iExitCode, const char* pszName, const char* pszText, int (*pfnRun)(bool))
{
    CLI::App* const pCommand = program.add_subcommand(pszName, pszText);
    const auto pJson = std::make_shared<bool>(false);
    pCommand->add_flag("--json", *pJson, "Print JSON instead of a table");
    pCommand->callback([pJson, pfnRun, &iExitCode] { iExitCode = pfnRun(*pJson); });
}

} // namespace

void AddClientCommand(CLI::App& program, int& iExitCode)
{
    AddPlainCommand(program, iExitCode, "client",
                    "Shows what the launcher of the resident client finds, and what it would start. Starts nothing.",
                    &RunClient);
}

void AddMachineCommand(CLI::App& program, int& iExitCode)
{
    AddPlainCommand(program, iExitCode, "machine", "Shows the machine's name, address and hardware address.",
                    &RunMachine);
}

} // namespace VelHost
