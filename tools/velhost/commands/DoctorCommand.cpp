#include "driver/ResidentClient.h"
#include "state/StorePaths.h"
#include "support/Exception.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/doctor/ClientCheck.h"
#include "tools/velhost/doctor/ConfigCheck.h"
#include "tools/velhost/doctor/Kinds.h"
#include "tools/velhost/doctor/LogConfigCheck.h"
#include "tools/velhost/doctor/RegistryCheck.h"
#include "tools/velhost/doctor/SpoolerCheck.h"
#include "tools/velhost/doctor/UserFilesCheck.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/HostModule.h"
#include "tools/velhost/host/StoreKeys.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"
#include "tools/velhost/report/Table.h"

#include <functional>
#include <memory>

namespace VelHost
{
namespace
{

struct DoctorOptions
{
    std::string strModule;
    std::string strPrinter;
    std::string strUser;
    bool bWithoutClient = false;
    bool bJson = false;
};

/// Runs a check; one that can't look is noted, and the others go on.
void Look(const char* pszArea, Findings& findings, const std::function<void()>& check)
{
    try
    {
        check();
    }
    catch (const CommandError& error)
    {
        findings.Unseen(pszArea, FromUtf8(error.what()));
    }
    catch (const Language::Exception& exception)
    {
        findings.Unseen(pszArea, exception.DetailW());
    }
}

/// @return one of the client's folders, or empty where the registry does not tell it: the registry's check says why.
std::wstring ClientFolder(VelUtility::FolderId iFolder, unsigned __int64 uiSize)
{
    wchar_t szFolder[MAX_PATH] = {};
    return VelUtility::GetClientFolder(iFolder, szFolder, uiSize) == 0 ? std::wstring(szFolder) : std::wstring();
}

/// Looks at a file in one of the client's folders, where the registry tells the folder.
void LookInFolder(const char* pszFile, const std::wstring& strFolder, Findings& findings,
                  const std::function<void(const std::wstring& strFolder)>& check)
{
    if (strFolder.empty())
    {
        findings.Unseen(pszFile, L"the registry does not tell its folder");
        return;
    }
    Look(pszFile, findings, [&] { check(strFolder); });
}

void LookAtAll(const DoctorOptions& options, const std::wstring& strModule, Findings& findings)
{
    Look("registry", findings, [&] { CheckRegistry(findings); });
    LookInFolder("Config.ini", ClientFolder(VelUtility::kClientTempDir, VelUtility::kTempDirSize), findings,
                 [&](const std::wstring& strFolder) { CheckConfigFile(PathIn(strFolder, L"Config.ini"), findings); });
    LookInFolder("LogConfig.conf", ClientFolder(VelUtility::kClientInstallDir, MAX_PATH * sizeof(wchar_t)), findings,
                 [&](const std::wstring& strFolder) { CheckLogConfig(strFolder, findings); });

    const std::wstring strClient = MakeClientPath();
    bool bAsk = true;
    Look("client", findings, [&] {
        std::vector<std::wstring> modules;
        for (const DriverDescription& driver : ModuleDrivers(strModule))
        {
            modules.push_back(driver.strConfigFile);
        }
        if (!options.bWithoutClient)
        {
            CheckClient(strClient, modules, findings);
        }
        bAsk = !WouldStartClient(strClient);
    });
    Look("spooler", findings, [&] {
        if (!bAsk)
        {
            findings.Unseen("spooler", L"the printers' capabilities: asking for them would start the client");
        }
        CheckSpooler({strModule, FromUtf8(options.strPrinter), bAsk}, findings);
    });
    Look("users' files", findings, [&] { CheckUserFiles(StoreUser(options.strUser), findings); });
}

Json RemarksToJson(const std::vector<Remark>& remarks)
{
    Json list = Json::array();
    for (const Remark& remark : remarks)
    {
        list.push_back({{"area", remark.strArea}, {"what", ToUtf8(remark.strText)}});
    }
    return list;
}

void PrintAsJson(const Findings& findings)
{
    Json value;
    value["findings"] = findings.ToJson();
    value["unseen"] = RemarksToJson(findings.UnseenList());
    value["good"] = RemarksToJson(findings.GoodList());
    PrintJson(value);
}

void PrintRemarks(const char* pszTitle, const std::vector<Remark>& remarks)
{
    if (remarks.empty())
    {
        return;
    }
    Table table({{"area"}, {pszTitle}});
    for (const Remark& remark : remarks)
    {
        table.AddRow({remark.strArea, ToUtf8(remark.strText)});
    }
    Print(table.Text() + "\n");
}

void PrintAsText(const Findings& findings)
{
    PrintRemarks("good", findings.GoodList());
    PrintRemarks("could not be looked at", findings.UnseenList());
    for (const Finding& finding : findings.List())
    {
        Print(std::string(finding.pKind->pszCode) + "  " + finding.pKind->pszTitle +
              "\n       where: " + ToUtf8(finding.strWhere) + "\n");
        if (!finding.strDetail.empty())
        {
            Print("       seen:  " + ToUtf8(finding.strDetail) + "\n");
        }
        Print(std::string("       do:    ") + finding.pKind->pszCure + "\n");
    }
    const size_t findingCount = findings.List().size();
    Print(findingCount == 0 ? std::string("nothing wrong was found\n")
                            : std::to_string(findingCount) + (findingCount == 1 ? " finding" : " findings") +
                                  "; docs/doctor.md explains each code\n");
}

int RunDoctor(const DoctorOptions& options)
{
    std::wstring strModule;
    try
    {
        strModule = ModulePath(options.strModule);
        // What is no module at all is told at once: nothing could be compared with it.
        const HostModule module(strModule, HostModule::Purpose::Examine);
    }
    catch (const CommandError& error)
    {
        PrintError(error.what());
        return kExitCouldNotLook;
    }
    Findings findings(AllKinds());
    LookAtAll(options, strModule, findings);
    if (options.bJson)
    {
        PrintAsJson(findings);
    }
    else
    {
        PrintAsText(findings);
    }
    return !findings.List().empty() ? kExitFindings : !findings.UnseenList().empty() ? kExitCouldNotLook : kExitGood;
}

} // namespace

void AddDoctorCommand(CommandSyntax& program, int& iExitCode)
{
    CommandSyntax command = program.AddCommand(
        "doctor", "Looks at an installation, changes nothing, and tells what is good, what is wrong, and what to do.\n"
                  "Exit code 0: all is good; 1: there are findings; 2: none, but not all could be looked at.");
    const auto pOptions = std::make_shared<DoctorOptions>();
    AddModuleOption(command, pOptions->strModule);
    command
        .AddOption("--printer", pOptions->strPrinter,
                   "A printer that has to be there; all that use the module are looked at in any case")
        .Type("NAME");
    AddUserOption(command, pOptions->strUser);
    command.AddFlag("--without-client", pOptions->bWithoutClient,
                    "Do not look for the client's programs, on a machine that has none");
    AddJsonFlag(command, pOptions->bJson, "Print JSON instead of text");
    command.OnRun([pOptions, &iExitCode] { iExitCode = RunDoctor(*pOptions); });
}

} // namespace VelHost
