#include "tools/velhost/doctor/UserFilesCheck.h"

#include "settings/DriverDevmode.h"
#include "state/DataFiles.h"
#include "state/StorePaths.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

#include <algorithm>
#include <cerrno>
#include <cwchar>
#include <cwctype>

namespace VelHost
{
namespace
{

constexpr char kArea[] = "users' files";

constexpr LONGLONG kMegabyte = 1024 * 1024;
/// Bytes that are looked at to tell an ini file's encoding.
constexpr DWORD kHeadBytes = 4096;

constexpr LONGLONG kMost32 = 0xFFFFFFFFll;

/// A number in an ini file, and what the store can make of it.
struct NumberKey
{
    const wchar_t* pszKey;
    LONGLONG llLeast;
    LONGLONG llMost;
};

/// How a file's path is made.
enum class Place
{
    Personal, ///< of the user and domain that the module sees
    Message,  ///< of the user whose messages are meant
    Machine,
};

/// One file of the store.
struct UserFile
{
    const wchar_t* pszName;
    Place place;
    LONGLONG llMostBytes;      ///< more is never written by the store, or slows each of its readers
    const wchar_t* pszSection; ///< null for a file that is no ini file
    std::vector<NumberKey> numbers;
};

const std::vector<UserFile>& UserFiles()
{
    static const std::vector<UserFile> s_files = {
        // Its length has kinds of its own.
        {VelUtility::kDevModeFile, Place::Personal, MAXLONGLONG, nullptr, {}},
        {L"defsetting.ini", Place::Personal, kMegabyte, L"PrintSetting", {{L"DefaultNoWaterPrint", 0, 1}}},
        {L"server.ini", Place::Personal, kMegabyte, L"Server", {{L"IPAddress", 0, kMost32}, {L"Mode", 0, 1}}},
        {L"passport.dat", Place::Personal, kMegabyte, nullptr, {}},
        {L"MsgConfig.ini",
         Place::Message,
         kMegabyte,
         L"Message",
         {{L"MessageId", 0, kMost32}, {L"Interval", 1, kMost32}, {L"SaveDays", -1 - LONGLONG{MAXLONG}, MAXLONG}}},
        {L"Message.dat", Place::Message, 64 * kMegabyte, nullptr, {}},
        {L"serverconfig.ini", Place::Machine, kMegabyte, L"Server", {}},
    };
    return s_files;
}

/// @return the file's path as the module makes it. Throws CommandError when DataDir can't be told.
std::wstring PathOf(const UserFile& file, const std::wstring& strUser)
{
    wchar_t szPath[VelUtility::kStorePathUnits] = {};
    const bool bMade = file.place == Place::Personal ? VelUtility::MakePersonalFilePath(file.pszName, szPath)
                       : file.place == Place::Message
                           ? VelUtility::MakeUserMessageFilePath(file.pszName, strUser, szPath)
                           : VelUtility::MakeServerFilePath(file.pszName, szPath);
    if (!bMade)
    {
        throw CommandError("DataDir can't be told, in which the users' files lie");
    }
    return szPath;
}

/// @return why no program may write the file, 0 when one may. Opens it and changes nothing.
DWORD WriteError(const std::wstring& strPath)
{
    if ((GetFileAttributesW(strPath.c_str()) & FILE_ATTRIBUTE_READONLY) != 0)
    {
        return ERROR_ACCESS_DENIED;
    }
    return OpenError(strPath, GENERIC_WRITE);
}

void CheckRecord(const std::wstring& strPath, LONGLONG llBytes, const std::string& strHead, Findings& findings)
{
    if (llBytes != kDevmodeSize)
    {
        findings.Add(llBytes < kDevmodeSize ? "USR01" : "USR02", strPath,
                     std::to_wstring(llBytes) + L" bytes; a record has " + std::to_wstring(kDevmodeSize));
        return;
    }
    DEVMODEW record = {};
    std::copy(strHead.begin(), strHead.end(), reinterpret_cast<char*>(&record));
    if (record.dmSize != kDevmodeSize || record.dmDriverExtra != kDriverExtra)
    {
        findings.Add("USR03", strPath,
                     L"dmSize " + std::to_wstring(record.dmSize) + L", dmDriverExtra " +
                         std::to_wstring(record.dmDriverExtra));
    }
}

/// @return what is wrong with the form in which an ini file is written; empty when Windows reads it.
std::wstring EncodingFault(const std::string& strHead)
{
    const auto startsWith = [&strHead](const char* pszMark) { return strHead.rfind(pszMark, 0) == 0; };
    if (startsWith("\xFF\xFE"))
    {
        return std::wstring();
    }
    if (startsWith("\xEF\xBB\xBF"))
    {
        return L"UTF-8 with a mark: Windows takes the mark for a part of the first line";
    }
    if (startsWith("\xFE\xFF"))
    {
        return L"UTF-16 with the bytes the other way round";
    }
    const bool bZero = strHead.find('\0') != std::string::npos;
    return bZero ? L"bytes of 0: UTF-16 without a mark, or no text at all" : std::wstring();
}

void CheckNumber(const UserFile& file, const NumberKey& key, const std::wstring& strPath, Findings& findings)
{
    wchar_t szValue[256] = {};
    GetPrivateProfileStringW(file.pszSection, key.pszKey, L"", szValue, 256, strPath.c_str());
    if (szValue[0] == L'\0')
    {
        return; // missing or empty: the default
    }
    wchar_t* pszEnd = nullptr;
    errno = 0;
    const LONGLONG llValue = std::wcstoll(szValue, &pszEnd, 10);
    if (*pszEnd != L'\0' || errno != 0 || llValue < key.llLeast || llValue > key.llMost)
    {
        findings.Add("USR08", strPath,
                     std::wstring(key.pszKey) + L"=" + szValue + L"; from " + std::to_wstring(key.llLeast) + L" to " +
                         std::to_wstring(key.llMost));
    }
}

/// Looks at a file that is there.
void CheckUserFile(const UserFile& file, const std::wstring& strPath, Findings& findings)
{
    const LookedAtFile look(strPath);
    const std::optional<std::string> strHead =
        look.Error() == ERROR_SUCCESS ? look.Read(kHeadBytes) : std::optional<std::string>();
    if (!strHead)
    {
        const DWORD dwError = look.Error() != ERROR_SUCCESS ? look.Error() : GetLastError();
        findings.Add("USR04", strPath, FromUtf8(Win32ErrorText("opened to read", dwError)));
        return;
    }
    const size_t faultCount = findings.List().size();
    if (const DWORD dwError = WriteError(strPath); dwError != ERROR_SUCCESS)
    {
        findings.Add("USR06", strPath, FromUtf8(Win32ErrorText("opened to write", dwError)));
    }
    if (look.Bytes() > file.llMostBytes)
    {
        findings.Add("USR09", strPath,
                     std::to_wstring(look.Bytes()) + L" bytes; more than " + std::to_wstring(file.llMostBytes));
        return;
    }
    if (file.pszName == VelUtility::kDevModeFile)
    {
        CheckRecord(strPath, look.Bytes(), *strHead, findings);
    }
    else if (file.pszSection != nullptr)
    {
        if (const std::wstring strFault = EncodingFault(*strHead); !strFault.empty())
        {
            findings.Add("USR07", strPath, strFault);
            return;
        }
        for (const NumberKey& key : file.numbers)
        {
            CheckNumber(file, key, strPath, findings);
        }
    }
    if (findings.List().size() == faultCount)
    {
        findings.Good(kArea, strPath);
    }
}

} // namespace

const std::vector<FindingKind>& UserFilesKinds()
{
    static const std::vector<FindingKind> s_kinds = {
        {"USR01", "DevMode.dat is shorter than a record", "Delete the file; the next OK in the sheet writes it anew."},
        {"USR02", "DevMode.dat is longer than a record", "Delete the file; the next OK in the sheet writes it anew."},
        {"USR03", "The record in DevMode.dat declares other sizes than the driver's",
         "Delete the file, and update the application whose OK left it."},
        {"USR04", "A file of the user's can't be read",
         "End the program that holds it, or give the user the right to read it."},
        {"USR05", "A folder stands in the place of a file of the user's", "Move the folder away."},
        {"USR06", "A file of the user's can't be written",
         "Take away its read-only attribute, or give the user the right to write it."},
        {"USR07", "An ini file of the user's is in an encoding that Windows does not read",
         "Save it as plain text in the system's code page, or as UTF-16 with its mark."},
        {"USR08", "A number in an ini file of the user's is none that the module can use",
         "Set it with velhost set, or delete the line for the default."},
        {"USR09", "A file of the user's is far too large", "Move it away; the store makes it anew."},
        {"USR10", "The path of a file of the user's is too long for Windows", "Move DataDir to a shorter path."},
    };
    return s_kinds;
}

void CheckUserFiles(const std::wstring& strUser, Findings& findings)
{
    for (const UserFile& file : UserFiles())
    {
        const std::wstring strPath = PathOf(file, strUser);
        if (strPath.size() >= MAX_PATH)
        {
            findings.Add("USR10", strPath, std::to_wstring(strPath.size()) + L" characters");
        }
        else if (IsFolder(strPath))
        {
            findings.Add("USR05", strPath, L"");
        }
        else if (IsFile(strPath))
        {
            CheckUserFile(file, strPath, findings);
        }
    }
}

} // namespace VelHost
