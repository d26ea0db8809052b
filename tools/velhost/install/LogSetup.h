#pragma once
/// The module's log configuration in the client's folder, and the log that it names.

#include <string>
#include <vector>

namespace VelHost
{

/// The configuration's file name in InstallDir, where the module looks for it, and the name that keeps it from the
/// module.
inline constexpr wchar_t kLogConfigName[] = L"LogConfig.conf";
inline constexpr wchar_t kLogConfigOffName[] = L"LogConfig.conf.off";

/// The sample configuration, beside velhost.exe.
inline constexpr wchar_t kSampleLogConfig[] = L"sample\\LogConfig.conf";

/// Writes the sample configuration with the client's LogDir in it. Throws CommandError on failure, also when the folder
/// has a name that the system's code page lacks.
/// @param strSample full path of the sample.
/// @param strTarget full path of the file to write.
/// @param strLogDir full path without a separator at its end.
void WriteLogConfig(const std::wstring& strSample, const std::wstring& strTarget, const std::wstring& strLogDir);

/// The first log file that a configuration names. Throws CommandError when the configuration can't be read or names
/// none.
std::wstring LogFileOf(const std::wstring& strConfig);

/// Follows a text file that grows.
class GrowingFile
{
public:
    explicit GrowingFile(std::wstring strPath);

    /// Reads what has come since the last call; the first call reads all. A file that has become shorter, or that is a
    /// new one of the same name, is read from its beginning.
    /// @return the new text as UTF-8, from the system's code page; empty without a file.
    std::string ReadNew();

private:
    std::wstring m_strPath;
    unsigned long long m_ullRead = 0; ///< bytes
    unsigned long long m_ullFile = 0; ///< which file was read last
};

/// @return the last lines of a text, each with its line feed.
std::string LastLines(const std::string& strText, size_t uiLines);

} // namespace VelHost
