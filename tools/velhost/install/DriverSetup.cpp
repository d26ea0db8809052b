#include "tools/velhost/install/DriverSetup.h"

#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/Spooler.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

#include <algorithm>

namespace VelHost
{
namespace
{

/// Wine's PostScript driver. It lies in the spooler's folder; older releases kept it in the system's.
constexpr wchar_t kPostScriptDriver[] = L"wineps.drv";

std::wstring SystemFolder()
{
    std::wstring strFolder(MAX_PATH, L'\0');
    strFolder.resize(GetSystemDirectoryW(strFolder.data(), static_cast<UINT>(strFolder.size())));
    return strFolder;
}

/// Where the spooler keeps a driver's file once it is registered.
std::wstring InSpooler(const std::wstring& strSource)
{
    return PathIn(SpoolerDriverFolder(), NameInFolder(strSource));
}

RenderingHalf PlatformsOwn()
{
    RenderingHalf half;
    half.strData = BesideProgram(kSampleData);
    const std::wstring folders[] = {SpoolerDriverFolder(), SystemFolder()};
    for (const std::wstring& strFolder : folders)
    {
        if (half.strDriver = PathIn(strFolder, kPostScriptDriver); IsFile(half.strDriver))
        {
            return half;
        }
    }
    throw CommandError("there is nothing that could render this printer's pages: no " + ToUtf8(kPostScriptDriver) +
                       " in " + ToUtf8(folders[0]) + " or " + ToUtf8(folders[1]) +
                       "; name a driver and its data with --driver FILE --data FILE");
}

/// Adds to the record those of a driver's files that the spooler's folder owes to this program. A file that is there
/// already belongs to whoever put it there, unless it is of the names that are this program's own.
void RecordBrought(const std::wstring& strModule, const RenderingHalf& rendering, InstallRecord& record)
{
    AddOnce(record.driverFiles, InSpooler(strModule));
    const std::wstring strOwnData = InSpooler(kSampleData);
    for (const std::wstring& strSource : {rendering.strDriver, rendering.strData})
    {
        const std::wstring strTarget = InSpooler(strSource);
        if (!IsFile(strTarget) || IsSameName(strTarget, strOwnData))
        {
            AddOnce(record.driverFiles, strTarget);
        }
    }
    record.Save();
}

/// Throws CommandError when the spooler's copy of a file is not that file.
void CheckCopied(const std::wstring& strSource, const std::wstring& strCopy)
{
    if (!IsFile(strCopy))
    {
        throw CommandError("the spooler accepted the driver without copying " + ToUtf8(strSource));
    }
    if (!IsSameName(strSource, strCopy) && ReadBinaryFile(strSource) != ReadBinaryFile(strCopy))
    {
        // Wine's spooler says nothing of a copy that failed.
        throw CommandError("the spooler still has the older " + ToUtf8(strCopy) +
                           ": a program uses it; close the programs that have printed, and run install again");
    }
}

/// Deletes the recorded files that no driver uses any more, and takes them out of the record.
void RemoveLeftOvers(InstallRecord& record, DriverReport& report)
{
    std::vector<std::wstring> kept;
    for (const std::wstring& strFile : record.driverFiles)
    {
        if (IsDriverFile(strFile))
        {
            kept.push_back(strFile);
        }
        else if (IsFile(strFile) && !DeleteFileW(strFile.c_str()))
        {
            kept.push_back(strFile);
            report.leftOvers.emplace_back(strFile, "not used any more, can't be deleted yet");
        }
        else
        {
            report.leftOvers.emplace_back(strFile, "not used any more, removed");
        }
    }
    record.driverFiles = std::move(kept);
    record.Save();
}

} // namespace

RenderingHalf FindRenderingHalf(const std::string& strDriver, const std::string& strData, const std::wstring& strModule)
{
    if (strDriver.empty() != strData.empty())
    {
        throw CommandError("--driver and --data go together: a rendering driver needs its own data file");
    }
    const RenderingHalf half =
        strDriver.empty() ? PlatformsOwn() : RenderingHalf{AbsolutePath(strDriver), AbsolutePath(strData)};
    for (const std::wstring& strFile : {half.strDriver, half.strData})
    {
        if (!IsFile(strFile))
        {
            throw CommandError("there is no file " + ToUtf8(strFile));
        }
        if (IsSameName(NameInFolder(strFile), NameInFolder(strModule)))
        {
            throw CommandError(ToUtf8(strFile) + " is the module's name: it shows the sheets and renders nothing");
        }
    }
    return half;
}

DriverReport RegisterDriver(const std::wstring& strModule, const RenderingHalf& rendering, InstallRecord& record)
{
    DriverReport report;
    report.pszState = FindDriver(kDriverName) ? "updated" : "added";
    RecordBrought(strModule, rendering, record);

    std::wstring strName = kDriverName;
    std::wstring strConfigPath = strModule;
    RenderingHalf paths = rendering;
    DRIVER_INFO_3W info = {};
    info.cVersion = 3;
    info.pName = strName.data();
    info.pDriverPath = paths.strDriver.data();
    info.pDataFile = paths.strData.data();
    info.pConfigFile = strConfigPath.data();
    if (!AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&info), APD_COPY_ALL_FILES | APD_COPY_FROM_DIRECTORY))
    {
        ThrowCommandError("can't add the printer driver");
    }
    const auto driver = FindDriver(kDriverName);
    if (!driver)
    {
        throw CommandError("the spooler does not list the driver that it accepted");
    }
    report.strModule = driver->strConfigFile;
    report.strDriver = driver->strDriverFile;
    report.strData = driver->strDataFile;
    CheckCopied(strModule, report.strModule);
    CheckCopied(rendering.strDriver, report.strDriver);
    CheckCopied(rendering.strData, report.strData);
    RemoveLeftOvers(record, report);
    return report;
}

} // namespace VelHost
