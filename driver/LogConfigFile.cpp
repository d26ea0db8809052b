#include "driver/LogConfigFile.h"

#include "diag/LogSite.h"
#include "support/RegistryKey.h"

#include <cstdio>
#include <io.h>
#include <memory>

namespace
{

/// Bytes of InstallDir that are read.
constexpr DWORD kInstallDirBytes = 260;
/// Bytes for the file's full name; room for the longest folder and the name.
constexpr size_t kFileNameBytes = 280;

struct FileCloser
{
    void operator()(FILE* pFile) const noexcept { std::fclose(pFile); }
};

} // namespace

std::string GetLogConfigFile()
{
    TRACE_FUNCTION("GetLogConfigFile");
    std::string strFile = GetLogConfigFromKey("Software\\Vel-soft\\Client");
    if (strFile.empty())
    {
        strFile = GetLogConfigFromKey("Software\\Vel-soft\\Server");
    }
    return strFile;
}

std::string GetLogConfigFromKey(const char* pszKey)
{
    TRACE_FUNCTION("GetLogConfigFromKey");
    // No line is logged for a failure: logging does not run yet.
    RegistryKey key;
    if (key.Open(HKEY_LOCAL_MACHINE, pszKey, KEY_READ) != ERROR_SUCCESS)
    {
        return std::string();
    }
    // One byte more than is read, so that a value stored without a terminator still ends. Its type is not looked at.
    char szInstallDir[kInstallDirBytes + 1] = {};
    DWORD cbInstallDir = kInstallDirBytes;
    if (RegQueryValueExA(key.Get(), "InstallDir", nullptr, nullptr, reinterpret_cast<BYTE*>(szInstallDir),
                         &cbInstallDir) != ERROR_SUCCESS)
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
    const std::unique_ptr<FILE, FileCloser> pFile(std::fopen(szFile, "r"));
    return pFile ? szFile : std::string();
}
