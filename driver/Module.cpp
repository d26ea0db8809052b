#include "driver/Module.h"

#include "diag/LogSite.h"
#include "state/PsFolder.h"
#include "support/FileStream.h"
#include "support/RegistryKey.h"
#include "support/module/ModuleTexts.h"

#include <cstdio>
#include <io.h>

namespace
{

/// Bytes of InstallDir that are read.
constexpr DWORD kInstallDirBytes = 260;
/// Bytes for the file's full name: the longest folder and the name.
constexpr size_t kFileNameBytes = 280;

/// Finds the log configuration and starts logging with it. Without memory for the file's name logging stays off.
void StartModuleLogging() noexcept
{
    Quietly([] {
        const std::string strConfigFile = GetLogConfigFile();
        StartLogging(strConfigFile.c_str());
        // Required: no predicate in front. No trace scope is open here, so the line reaches no log; a predicate would
        // look for a category without one.
        LogFatal("Log4cpp config file : %s", strConfigFile.c_str());
    });
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE hinstDLL, DWORD fdwReason, LPVOID /*lpvReserved*/)
{
    g_hModule = hinstDLL;
    switch (fdwReason)
    {
    case DLL_PROCESS_ATTACH:
        StartModuleLogging();
        break;
    case DLL_PROCESS_DETACH:
        StopLogging();
        break;
    default:
        break;
    }
    return 1;
}

std::string GetLogConfigFile()
{
    const FunctionScope scope("GetLogConfigFile");
    std::string strFile = GetLogConfigFromKey(VelUtility::kNarrowClientKey);
    if (strFile.empty())
    {
        strFile = GetLogConfigFromKey(VelUtility::kNarrowServerKey);
    }
    return strFile;
}

std::string GetLogConfigFromKey(const char* pszKey)
{
    const FunctionScope scope("GetLogConfigFromKey");
    // No line is logged for a failure: logging does not run yet.
    RegistryKey key;
    if (key.Open(HKEY_LOCAL_MACHINE, pszKey, KEY_READ) != ERROR_SUCCESS)
    {
        return std::string();
    }
    // Required: one byte more than is read, so that a value that was stored without a terminator is a folder too. Its
    // type is not looked at.
    char szInstallDir[kInstallDirBytes + 1] = {};
    DWORD cbInstallDir = kInstallDirBytes;
    if (RegQueryValueExA(key.Get(), VelUtility::kNarrowInstallDir, nullptr, nullptr,
                         reinterpret_cast<BYTE*>(szInstallDir), &cbInstallDir) != ERROR_SUCCESS)
    {
        return std::string();
    }
    char szFile[kFileNameBytes];
    _snprintf_s(szFile, sizeof(szFile), _TRUNCATE, "%s\\LogConfig.conf", szInstallDir);
    if (_access(szFile, 0) != 0)
    {
        return std::string();
    }
    // A file that is there but can't be read counts as absent.
    FileStream stream;
    return stream.Open(szFile, "r") ? szFile : std::string();
}
