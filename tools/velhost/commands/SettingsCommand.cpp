#include "state/CapabilitySnapshot.h"
#include "state/DataFiles.h"
#include "state/StorePaths.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/StoreKeys.h"
#include "tools/velhost/report/DevmodeReport.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"
#include "tools/velhost/report/Table.h"

#include <memory>

namespace VelHost
{
namespace
{

using namespace VelUtility;

struct SettingsOptions
{
    std::string strUser;
    bool bJson = false;
};

/// A store file: its name and the path that its maker gives, empty when it can't be made.
struct StoreFile
{
    const char* pszName;
    std::wstring strPath;
};

std::vector<StoreFile> StoreFiles(const std::wstring& strUser)
{
    wchar_t szPath[kStorePathUnits];
    const auto path = [&szPath](bool bMade) { return bMade ? std::wstring(szPath) : std::wstring(); };
    return {
        {"Config.ini", path(MakeConfigFilePath(szPath))},
        {"defsetting.ini", path(MakePersonalFilePath(L"defsetting.ini", szPath))},
        {"server.ini", path(MakePersonalFilePath(L"server.ini", szPath))},
        {"serverconfig.ini", path(MakeServerFilePath(L"serverconfig.ini", szPath))},
        {"passport.dat", path(MakePersonalFilePath(L"passport.dat", szPath))},
        {"DevMode.dat", path(MakePersonalFilePath(L"DevMode.dat", szPath))},
        {"MsgConfig.ini", path(MakeUserMessageFilePath(L"MsgConfig.ini", strUser, szPath))},
        {"Message.dat", path(MakeUserMessageFilePath(L"Message.dat", strUser, szPath))},
    };
}

/// The snapshot in short: how many entries its lists have.
Json SnapshotCounts()
{
    Json counts = Json::object();
    const std::pair<const char*, WORD> lists[] = {
        {"papers", DC_PAPERS}, {"bins", DC_BINS}, {"resolutions", DC_ENUMRESOLUTIONS}, {"media types", DC_MEDIATYPES}};
    for (const auto& [pszName, iDevCap] : lists)
    {
        const DWORD dwCount = GetComputerCaps(iDevCap, nullptr);
        counts[pszName] = dwCount == 0xFFFFFFFF ? Json() : Json(dwCount);
    }
    return counts;
}

int RunSettings(const SettingsOptions& options)
{
    const std::wstring strUser = StoreUser(options.strUser);
    Json report = Json::object();
    Table files({{"file"}, {"state"}, {"path"}});
    for (const StoreFile& file : StoreFiles(strUser))
    {
        const char* const pszState = file.strPath.empty() ? "no folder" : IsFile(file.strPath) ? "there" : "absent";
        files.AddRow({file.pszName, pszState, ToUtf8(file.strPath)});
        report["files"][file.pszName] = {{"state", pszState}, {"path", ToUtf8(file.strPath)}};
    }
    Table settings({{"file"}, {"key"}, {"value"}});
    const auto add = [&](const char* pszFile, const std::string& strKey, const Json& value) {
        settings.AddRow({pszFile, strKey, CellOf(value)});
        report["settings"][strKey] = value;
    };
    for (const StoreKey& key : StoreKeys())
    {
        add(key.pszFile, key.pszKey, key.pfnRead(strUser));
    }
    PrinterInfo info;
    const bool bInfo = GetPrinterInfo(&info) == 0;
    add("Config.ini", "PrinterName", bInfo ? Json(ToUtf8(info.PrinterName)) : Json());
    add("Config.ini", "Location", bInfo ? Json(ToUtf8(info.Location)) : Json());
    add("Config.ini", "Description", bInfo ? Json(ToUtf8(info.Description)) : Json());
    const Json counts = SnapshotCounts();
    for (const auto& [strName, count] : counts.items())
    {
        add("Config.ini", strName, count);
    }

    DEVMODEW stuDevmode = {};
    const bool bDevmode = GetDevDef(&stuDevmode) == 0;
    const DevmodeReport devmode = ReadDevmode(reinterpret_cast<const BYTE*>(&stuDevmode), sizeof(stuDevmode));
    report["devmode"] = bDevmode ? DevmodeToJson(devmode) : Json();
    if (options.bJson)
    {
        PrintJson(report);
        return kExitGood;
    }
    Print(files.Text() + "\n" + settings.Text());
    if (bDevmode)
    {
        Print("\n" + DevmodeTable(devmode));
    }
    return kExitGood;
}

} // namespace

void AddSettingsCommand(CommandSyntax& program, int& iExitCode)
{
    CommandSyntax command = program.AddCommand(
        "settings", "Shows every store file of the current user and the machine: where it lies and what it says.");
    const auto pOptions = std::make_shared<SettingsOptions>();
    AddUserOption(command, pOptions->strUser);
    AddJsonFlag(command, pOptions->bJson, "Print JSON instead of tables");
    command.OnRun([pOptions, &iExitCode] { iExitCode = RunSettings(*pOptions); });
}

} // namespace VelHost
