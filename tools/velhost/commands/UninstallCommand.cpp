#include "state/PsFolder.h"
#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/HostKey.h"
#include "tools/velhost/host/Spooler.h"
#include "tools/velhost/install/ClientFolders.h"
#include "tools/velhost/install/DriverSetup.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"
#include "tools/velhost/report/Table.h"

#include <algorithm>
#include <memory>

namespace VelHost
{
namespace
{

struct UninstallOptions
{
    std::string strPrinter;
    bool bKeepData = false;
    bool bJson = false;
};

/// One thing that was to be undone.
struct UninstallStep
{
    std::string strItem;
    std::string strName;
    std::string strState;
    bool bFailed = false;
};

using UninstallSteps = std::vector<UninstallStep>;

void RemovePrinter(const std::wstring& strPrinter, UninstallSteps& steps)
{
    const std::string strName = ToUtf8(strPrinter);
    if (!IsPrinterInstalled(strPrinter))
    {
        steps.push_back({"printer", strName, "was not there"});
        return;
    }
    if (DescribePrinter(strPrinter).strDriver != kDriverName)
    {
        steps.push_back({"printer", strName, "has another driver, kept", true});
        return;
    }
    const PrinterHandle printer = OpenInstalledPrinter(strPrinter, PRINTER_ALL_ACCESS);
    if (!DeletePrinter(printer.Get()))
    {
        steps.push_back({"printer", strName, Win32ErrorText("not removed", GetLastError()), true});
        return;
    }
    steps.push_back({"printer", strName, "removed"});
}

void RemoveDriver(UninstallSteps& steps)
{
    const std::string strShown = ToUtf8(kDriverName);
    if (!FindDriver(kDriverName))
    {
        steps.push_back({"driver", strShown, "was not there"});
        return;
    }
    std::wstring strName = kDriverName;
    BOOL bRemoved = DeletePrinterDriverExW(nullptr, nullptr, strName.data(), DPD_DELETE_UNUSED_FILES, 0);
    if (!bRemoved && GetLastError() == ERROR_INVALID_PARAMETER)
    {
        // Wine's spooler takes no flags; the file is deleted as a step of its own.
        bRemoved = DeletePrinterDriverExW(nullptr, nullptr, strName.data(), 0, 0);
    }
    if (!bRemoved)
    {
        steps.push_back({"driver", strShown, Win32ErrorText("not removed", GetLastError()), true});
        return;
    }
    steps.push_back({"driver", strShown, "removed"});
}

void RemoveFile(const char* pszItem, const std::wstring& strFile, UninstallSteps& steps)
{
    const std::string strName = ToUtf8(strFile);
    if (!IsFile(strFile))
    {
        steps.push_back({pszItem, strName, "was not there"});
    }
    else if (DeleteFileW(strFile.c_str()))
    {
        steps.push_back({pszItem, strName, "removed"});
    }
    else
    {
        steps.push_back({pszItem, strName, Win32ErrorText("not removed", GetLastError()), true});
    }
}

void RemoveRegistry(UninstallSteps& steps)
{
    const bool bValues = RemoveClientValues();
    const bool bKeyKept = HostKey::Open(VelUtility::kClientKey).IsOpen();
    steps.push_back({"registry", "HKLM\\" + ToUtf8(VelUtility::kClientKey),
                     !bValues   ? "was not there"
                     : bKeyKept ? "values removed, key has more, kept"
                                : "removed"});
}

void RemoveFolders(const InstallRecord& record, UninstallSteps& steps)
{
    for (const std::wstring& strFolder : record.dataFolders)
    {
        const bool bThere = IsFolder(strFolder);
        const bool bGone = DeleteFolderTree(strFolder);
        steps.push_back({"folder", ToUtf8(strFolder),
                         !bThere ? "was not there"
                         : bGone ? "removed"
                                 : "not removed",
                         !bGone});
    }
    for (auto folder = record.parentFolders.rbegin(); folder != record.parentFolders.rend(); ++folder)
    {
        const bool bThere = IsFolder(*folder);
        const bool bRemoved = RemoveDirectoryW(folder->c_str()) != FALSE;
        steps.push_back({"folder", ToUtf8(*folder),
                         !bThere    ? "was not there"
                         : bRemoved ? "removed"
                                    : "has other files, kept"});
    }
}

bool HasFailed(const UninstallSteps& steps)
{
    return std::any_of(steps.begin(), steps.end(), [](const UninstallStep& step) { return step.bFailed; });
}

void PrintSteps(const UninstallOptions& options, const UninstallSteps& steps)
{
    if (options.bJson)
    {
        Json value = Json::array();
        for (const UninstallStep& step : steps)
        {
            value.push_back(
                {{"item", step.strItem}, {"name", step.strName}, {"state", step.strState}, {"failed", step.bFailed}});
        }
        PrintJson(value);
        return;
    }
    Table table({{"item"}, {"name"}, {"state"}});
    for (const UninstallStep& step : steps)
    {
        table.AddRow({step.strItem, step.strName, step.strState});
    }
    Print(table.Text());
}

/// Keeps the record of what is left, so that a later run without --keep-data still knows what to remove.
void KeepDataRecord(const InstallRecord& record)
{
    InstallRecord rest;
    rest.files = record.files;
    rest.dataFolders = record.dataFolders;
    rest.parentFolders = record.parentFolders;
    rest.Save();
}

void RemoveRecord()
{
    InstallRecord::Erase();
    DeleteKeyIfEmpty(kVendorKey);
}

int RunUninstall(const UninstallOptions& options)
{
    InstallRecord record = InstallRecord::Load();
    if (!options.strPrinter.empty() || record.printers.empty())
    {
        AddOnce(record.printers, FromUtf8(options.strPrinter.empty() ? kDefaultPrinter : options.strPrinter));
    }

    UninstallSteps steps;
    for (const std::wstring& strPrinter : record.printers)
    {
        RemovePrinter(strPrinter, steps);
    }
    // Before the driver goes: the spooler knows its files even when there is no record. What renders is the platform's.
    if (const auto driver = FindDriver(kDriverName))
    {
        AddOnce(record.driverFiles, driver->strConfigFile);
        if (IsSameName(driver->strDataFile, PathIn(SpoolerDriverFolder(), NameInFolder(kSampleData))))
        {
            AddOnce(record.driverFiles, driver->strDataFile);
        }
    }
    RemoveDriver(steps);
    if (!FindDriver(kDriverName))
    {
        for (const std::wstring& strFile : record.driverFiles)
        {
            RemoveFile("driver file", strFile, steps);
        }
    }
    RemoveRegistry(steps);
    if (!options.bKeepData)
    {
        for (const std::wstring& strFile : record.files)
        {
            RemoveFile("file", strFile, steps);
        }
        RemoveFolders(record, steps);
    }

    if (HasFailed(steps))
    {
        // The record stays, so that another run can finish.
        PrintSteps(options, steps);
        return kExitFailed;
    }
    options.bKeepData ? KeepDataRecord(record) : RemoveRecord();
    PrintSteps(options, steps);
    return kExitGood;
}

} // namespace

void AddUninstallCommand(CommandSyntax& program, int& iExitCode)
{
    CommandSyntax command = program.AddCommand(
        "uninstall", "Undoes install: printers, driver, registry values, and the files and folders that install made.\n"
                     "Says what was not there. May be run again.");
    const auto pOptions = std::make_shared<UninstallOptions>();
    command
        .AddOption("--printer", pOptions->strPrinter,
                   "A printer besides those that install added; VelPrinter when it added none")
        .Type("NAME");
    command.AddFlag("--keep-data", pOptions->bKeepData, "Keep the files and folders that install made");
    AddJsonFlag(command, pOptions->bJson);
    command.OnRun([pOptions, &iExitCode] { iExitCode = RunUninstall(*pOptions); });
}

} // namespace VelHost
