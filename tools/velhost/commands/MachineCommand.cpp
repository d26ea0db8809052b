#include "state/MachineIdentity.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"

#include <cstdio>
#include <memory>

namespace VelHost
{
namespace
{

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

} // namespace

void AddMachineCommand(CommandSyntax& program, int& iExitCode)
{
    CommandSyntax command = program.AddCommand("machine", "Shows the machine's name, address and hardware address.");
    const auto pJson = std::make_shared<bool>(false);
    AddJsonFlag(command, *pJson);
    command.OnRun([pJson, &iExitCode] { iExitCode = RunMachine(*pJson); });
}

} // namespace VelHost
