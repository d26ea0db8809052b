#include "state/PsFolder.h"
#include "state/StoreTypes.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/install/ClientFolders.h"
#include "tools/velhost/install/InstallRecord.h"
#include "tools/velhost/install/LogSetup.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"

#include <memory>

namespace VelHost
{
namespace
{

constexpr DWORD kFollowMilliseconds = 200;

struct TailOptions
{
    size_t uiLines = 20;
    bool bOnce = false;
};

/// A folder of the client. Throws CommandError when it is not set.
std::wstring ClientFolderOf(DWORD iFolderId, const char* pszValue)
{
    wchar_t szFolder[VelUtility::kFolderUnits] = {};
    if (VelUtility::GetClientFolder(iFolderId, szFolder, sizeof(szFolder)) != VelUtility::PSERR_OK)
    {
        throw CommandError(std::string("the client's ") + pszValue + " is not set: run velhost install first");
    }
    return szFolder;
}

/// The configuration as the module finds it, and as it is kept from the module.
struct ConfigFiles
{
    ConfigFiles()
    {
        const std::wstring strFolder = ClientFolderOf(VelUtility::kClientInstallDir, "InstallDir");
        strOn = PathIn(strFolder, kLogConfigName);
        strOff = PathIn(strFolder, kLogConfigOffName);
    }
    std::wstring strOn;
    std::wstring strOff;
};

void Rename(const std::wstring& strFrom, const std::wstring& strTo)
{
    if (!MoveFileExW(strFrom.c_str(), strTo.c_str(), MOVEFILE_REPLACE_EXISTING))
    {
        ThrowCommandError("can't rename " + ToUtf8(strFrom));
    }
}

/// Switches on what was switched off before, else installs the sample.
int RunOn()
{
    const ConfigFiles files;
    if (IsFile(files.strOn))
    {
        Print("logging is on already: " + ToUtf8(files.strOn) + "\n");
        return kExitGood;
    }
    if (IsFile(files.strOff))
    {
        Rename(files.strOff, files.strOn);
    }
    else
    {
        WriteLogConfig(BesideProgram(kSampleLogConfig), files.strOn,
                       ClientFolderOf(VelUtility::kClientLogDir, "LogDir"));
        InstallRecord record = InstallRecord::Load();
        AddOnce(record.files, files.strOn);
        AddOnce(record.files, files.strOff);
        record.Save();
    }
    Print("logging is on for processes that start from now: " + ToUtf8(files.strOn) +
          "\nthe log: " + ToUtf8(LogFileOf(files.strOn)) + "\n");
    return kExitGood;
}

int RunOff()
{
    const ConfigFiles files;
    if (!IsFile(files.strOn))
    {
        Print("logging is off already\n");
        return kExitGood;
    }
    Rename(files.strOn, files.strOff);
    Print("logging is off for processes that start from now; its configuration is kept in " + ToUtf8(files.strOff) +
          "\n");
    return kExitGood;
}

int RunTail(const TailOptions& options)
{
    const ConfigFiles files;
    const std::wstring strConfig = IsFile(files.strOn) ? files.strOn : files.strOff;
    if (!IsFile(strConfig))
    {
        throw CommandError("there is no " + ToUtf8(files.strOn) + ": run velhost log on first");
    }
    const std::wstring strLog = LogFileOf(strConfig);
    if (options.bOnce && !IsFile(strLog))
    {
        throw CommandError("there is no log " + ToUtf8(strLog) + " yet");
    }
    GrowingFile log(strLog);
    Print(LastLines(log.ReadNew(), options.uiLines));
    while (!options.bOnce)
    {
        Sleep(kFollowMilliseconds);
        Print(log.ReadNew());
    }
    return kExitGood;
}

} // namespace

void AddLogCommand(CommandSyntax& program, int& iExitCode)
{
    CommandSyntax command =
        program.AddCommand("log", "Switches the module's logging for the client, and follows the log.");
    command.NeedCommand();
    command
        .AddCommand("on", "Puts LogConfig.conf in the client's folder: the one that \"off\" put aside, or the\n"
                          "sample. A process reads it when it loads the module.")
        .OnRun([&iExitCode] { iExitCode = RunOn(); });
    command.AddCommand("off", "Puts LogConfig.conf aside.").OnRun([&iExitCode] { iExitCode = RunOff(); });
    CommandSyntax tail =
        command.AddCommand("tail", "Prints the log's last lines, and those that come, until it is ended (Ctrl+C).");
    const auto pOptions = std::make_shared<TailOptions>();
    tail.AddOption("--lines", pOptions->uiLines, "How many lines to begin with").Type("N").ShowDefault();
    tail.AddFlag("--once", pOptions->bOnce, "Print the last lines and end");
    tail.OnRun([pOptions, &iExitCode] { iExitCode = RunTail(*pOptions); });
}

} // namespace VelHost
