#include "tools/velhost/install/LogSetup.h"

#include "tools/velhost/host/Files.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

#include <windows.h>

#include <sstream>
#include <utility>

namespace VelHost
{
namespace
{

constexpr char kLogDirMark[] = "@LogDir@";

/// Bytes of new text that are read at once; what lies before them is left out.
constexpr unsigned long long kMostNewText = 4 * 1024 * 1024;

std::string FileText(const std::wstring& strFile)
{
    const std::vector<BYTE> bytes = ReadBinaryFile(strFile);
    return std::string(bytes.begin(), bytes.end());
}

/// A path in the system's code page, in which the module and its log library read the configuration.
std::string InCodePage(const std::wstring& strPath)
{
    const std::optional<std::string> strResult = ToCodePage(strPath);
    if (!strResult)
    {
        throw CommandError("the folder " + ToUtf8(strPath) + " can't be written in the system's code page");
    }
    return *strResult;
}

std::string Trimmed(const std::string& strText)
{
    constexpr char kBlanks[] = " \t\r";
    const size_t uiFirst = strText.find_first_not_of(kBlanks);
    return uiFirst == std::string::npos ? std::string()
                                        : strText.substr(uiFirst, strText.find_last_not_of(kBlanks) - uiFirst + 1);
}

} // namespace

void WriteLogConfig(const std::wstring& strSample, const std::wstring& strTarget, const std::wstring& strLogDir)
{
    std::string strText = FileText(strSample);
    const std::string strFolder = InCodePage(strLogDir);
    for (size_t ui = strText.find(kLogDirMark); ui != std::string::npos; ui = strText.find(kLogDirMark))
    {
        strText.replace(ui, sizeof(kLogDirMark) - 1, strFolder);
    }
    WriteBinaryFile(strTarget, reinterpret_cast<const BYTE*>(strText.data()), strText.size());
}

std::wstring LogFileOf(const std::wstring& strConfig)
{
    std::istringstream lines(FileText(strConfig));
    for (std::string strLine; std::getline(lines, strLine);)
    {
        strLine.resize(std::min(strLine.find('#'), strLine.size()));
        const size_t uiEquals = strLine.find('=');
        if (uiEquals == std::string::npos)
        {
            continue;
        }
        const std::string strKey = Trimmed(strLine.substr(0, uiEquals));
        constexpr char kEnd[] = ".fileName";
        const size_t uiEnd = strKey.rfind(kEnd);
        if (strKey.rfind("appender.", 0) == 0 && uiEnd != std::string::npos &&
            uiEnd + sizeof(kEnd) - 1 == strKey.size())
        {
            return FromCodePage(Trimmed(strLine.substr(uiEquals + 1)));
        }
    }
    throw CommandError(ToUtf8(strConfig) + " names no log file");
}

GrowingFile::GrowingFile(std::wstring strPath) : m_strPath(std::move(strPath)) {}

std::string GrowingFile::ReadNew()
{
    // Whoever writes the log may go on, and put it aside.
    const FileHandle file(m_strPath, GENERIC_READ, kShareAll, OPEN_EXISTING);
    BY_HANDLE_FILE_INFORMATION info = {};
    if (!file.IsOpen() || !GetFileInformationByHandle(file.Get(), &info))
    {
        return {};
    }
    const auto wide = [](DWORD dwHigh, DWORD dwLow) { return static_cast<unsigned long long>(dwHigh) << 32 | dwLow; };
    const unsigned long long ullFile = wide(info.nFileIndexHigh, info.nFileIndexLow);
    const unsigned long long ullSize = wide(info.nFileSizeHigh, info.nFileSizeLow);
    if (ullFile != m_ullFile || ullSize < m_ullRead)
    {
        m_ullRead = 0;
        m_ullFile = ullFile;
    }
    if (ullSize - m_ullRead > kMostNewText)
    {
        m_ullRead = ullSize - kMostNewText;
    }
    LARGE_INTEGER place = {};
    place.QuadPart = static_cast<LONGLONG>(m_ullRead);
    SetFilePointerEx(file.Get(), place, nullptr, FILE_BEGIN);
    std::string strNew(static_cast<size_t>(ullSize - m_ullRead), '\0');
    DWORD cbRead = 0;
    ReadFile(file.Get(), strNew.data(), static_cast<DWORD>(strNew.size()), &cbRead, nullptr);
    strNew.resize(cbRead);
    // Whole lines only: a character of two bytes must not be cut.
    strNew.resize(strNew.rfind('\n') + 1);
    m_ullRead += strNew.size();
    return ToUtf8(FromCodePage(strNew));
}

std::string LastLines(const std::string& strText, size_t uiLines)
{
    size_t uiStart = strText.size();
    for (size_t ui = 0; ui < uiLines && uiStart != 0; ++ui)
    {
        const size_t uiBefore = uiStart >= 2 ? strText.rfind('\n', uiStart - 2) : std::string::npos;
        uiStart = uiBefore == std::string::npos ? 0 : uiBefore + 1;
    }
    return strText.substr(uiStart);
}

} // namespace VelHost
