// What survives when a platform call fails in the middle, made at the import table.

#include "state/CapabilitySnapshot.h"
#include "state/CurrentUser.h"
#include "state/DataFiles.h"
#include "state/MessageFiles.h"
#include "state/Profile.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/ImportHook.h"
#include "tests/common/LogLines.h"
#include "tests/state/FailingKey.h"

#include <catch2/catch_test_macros.hpp>

#include <cstdlib>

using namespace VelUtility;

namespace
{

LONG WINAPI DenyKey(HKEY, LPCWSTR, DWORD, REGSAM, PHKEY)
{
    return ERROR_ACCESS_DENIED;
}

BOOL WINAPI FailComputerName(LPWSTR, LPDWORD)
{
    return FALSE;
}

size_t FailWrite(const void*, size_t, size_t, FILE*)
{
    errno = ENOSPC;
    return 0;
}

size_t (*s_pfnWrite)(const void*, size_t, size_t, FILE*);

/// The disk is full behind all items but the last.
size_t WriteAllButLast(const void* pData, size_t cbItem, size_t uiItems, FILE* pFile)
{
    errno = ENOSPC;
    return s_pfnWrite(pData, cbItem, uiItems - 1, pFile);
}

int FailFlush(FILE*)
{
    errno = ENOSPC;
    return EOF;
}

void* FailSmallMalloc(size_t cbSize)
{
    return cbSize == 220 ? nullptr : std::calloc(1, cbSize);
}

} // namespace

TEST_CASE_METHOD(ClientFixture, "a failed write of the fourth element leaves the first three keys", "[state][failures]")
{
    const std::wstring strFile = folder.File(L"p.ini");
    const WORD words[] = {1, 2, 3, 4, 5};
    const WideName names[] = {L"a", L"b", L"c", L"d", L"e"};
    const POINT points[] = {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}};
    const Resolution resolutions[] = {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}};
    {
        const FailingKey failing(L"K3");
        CHECK(WritePrivateProfileUINTArray(L"U", L"K", words, 5, strFile.c_str()) == 0);
        CHECK(WritePrivateProfileStringWArray(L"S", L"K", names, 5, strFile.c_str()) == 0);
    }
    {
        const FailingKey failing(L"Y3");
        CHECK(WritePrivateProfilePointArray(L"P", L"X", L"Y", points, 5, strFile.c_str()) == 0);
    }
    {
        // Behind the first number of a pair the second is not tried.
        const FailingKey failing(L"X3");
        CHECK(WritePrivateProfileResolutoinArray(L"R", L"X", L"Y", resolutions, 5, strFile.c_str()) == 0);
        CHECK(WritePrivateProfilePointArray(L"Q", L"X", L"Y", points, 5, strFile.c_str()) == 0);
    }
    CHECK(ReadFileBytes(strFile) == "[U]\r\nK0=1\r\nK1=2\r\nK2=3\r\n"
                                    "[S]\r\nK0=a\r\nK1=b\r\nK2=c\r\n"
                                    "[P]\r\nX0=1\r\nY0=1\r\nX1=2\r\nY1=2\r\nX2=3\r\nY2=3\r\nX3=4\r\n"
                                    "[R]\r\nX0=1\r\nY0=1\r\nX1=2\r\nY1=2\r\nX2=3\r\nY2=3\r\n"
                                    "[Q]\r\nX0=1\r\nY0=1\r\nX1=2\r\nY1=2\r\nX2=3\r\nY2=3\r\n");
}

TEST_CASE_METHOD(ClientFixture, "a failed first media type leaves its count in the file and no key behind it",
                 "[state][failures]")
{
    const FailingKey failing(L"MediaTypes0");
    const DWORD mediaTypes[] = {1, 2};
    const PrinterInfo info = {L"P", L"L", L"D"};
    PrinterCaps caps = {};
    caps.MediaTypes = mediaTypes;
    caps.MediaTypesCount = 2;
    CHECK(MakePrinterConfig(&info, &caps) == 0);
    const std::string strBytes = ReadFileBytes(ConfigFile());
    const std::string strEnd = "MediaTypesCount=2\r\n";
    REQUIRE(strBytes.size() > strEnd.size());
    CHECK(strBytes.substr(strBytes.size() - strEnd.size()) == strEnd);
    DWORD values[2] = {};
    CHECK(GetComputerCaps(DC_MEDIATYPES, nullptr) == 2); // the file promises more than it holds
    CHECK(GetComputerCaps(DC_MEDIATYPES, values) == 0xFFFFFFFF);
}

TEST_CASE_METHOD(ClientFixture, "a denied logon key gives the hard-coded user", "[state][failures]")
{
    registry.SetText(L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon", L"DefaultUserName", L"mei");
    registry.SetText(L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon", L"DefaultDomainName", L"DOM-X");
    wchar_t szUser[kUserNameUnits] = {};
    wchar_t szDomain[kDomainNameUnits] = {};
    const ImportHook hook(nullptr, "RegOpenKeyExW", &DenyKey);
    CHECK(GetCurrentUsername(szUser, szDomain) == 1);
    CHECK(std::wstring(szUser) == L"QPS");
    CHECK(std::wstring(szDomain) == L"VEL");
}

TEST_CASE_METHOD(ClientFixture, "a computer name that can't be had gives the hard-coded user", "[state][failures]")
{
    registry.SetText(L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon", L"DefaultUserName", L"mei");
    registry.SetText(L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon", L"DefaultDomainName", L"DOM-X");
    wchar_t szUser[kUserNameUnits] = {};
    wchar_t szDomain[kDomainNameUnits] = {};
    const ImportHook hook(nullptr, "GetComputerNameW", &FailComputerName);
    CHECK(GetCurrentUsername(szUser, szDomain) == 1);
    CHECK(std::wstring(szUser) == L"QPS");
}

TEST_CASE_METHOD(ClientFixture, "a full disk leaves a cut logon, the old messages, and status 0 for a device mode",
                 "[state][failures]")
{
    const BYTE bytes[] = {1, 2, 3};
    const DEVMODEW stuDevmode = {};
    CHECK(MakeAutoLogonInfo(bytes, 3) == 0);
    CHECK(AppendUserMessageFile(L"lin", bytes, 3) == 0);
    DWORD statuses[4] = {};
    {
        // The test program writes its own words with the same function: nothing is checked in here.
        const ImportHook hook(nullptr, "fwrite", &FailWrite);
        statuses[0] = MakeAutoLogonInfo(bytes, 3);
        statuses[1] = MakeLogonUserName(L"u");
        statuses[2] = AppendUserMessageFile(L"lin", bytes, 3);
        statuses[3] = SetDevDef(&stuDevmode);
    }
    CHECK(statuses[0] == 1);
    CHECK(statuses[1] == 1);
    CHECK(statuses[2] == 1);
    CHECK(statuses[3] == 0);
    CHECK(PathExists(folder.File(L"QPS@VEL_passport.dat")));
    CHECK(ReadFileBytes(folder.File(L"QPS@VEL_passport.dat")).empty());
    CHECK(ReadFileBytes(folder.File(L"lin_Message.dat")) == "\x01\x02\x03");
    CHECK(ReadFileBytes(folder.File(L"QPS@VEL_DevMode.dat")).empty());
}

TEST_CASE_METHOD(ClientFixture, "a device mode without memory to read it into leaves the record and the block's size",
                 "[state][failures]")
{
    WriteFileBytes(folder.File(L"QPS@VEL_DevMode.dat"), std::string(220, 'q'));
    DEVMODEW stuDevmode = {};
    const LoggingOn logging{"OutputFunBeginInfo"};
    DWORD dwStatus = 0;
    {
        const ImportHook hook(nullptr, "malloc", &FailSmallMalloc);
        dwStatus = GetDevDef(&stuDevmode);
    }
    CHECK(dwStatus == 1);
    CHECK(stuDevmode.dmSize == 0);
    CHECK(OwnLines(logging, "VelUtility::GetDevDef") ==
          std::vector<std::string>{"VelUI_dll__VelUtility::GetDevDef :START......",
                                   "ERROR - .\\ClientInfo(#) : malloc failed. size = 220",
                                   "VelUI_dll__VelUtility::GetDevDef :End  ......"});
    CHECK_FALSE(logging.Has("CScopeFileLock")); // the lock is not waited for
}

TEST_CASE_METHOD(ClientFixture, "a user's name of which the last byte does not fit returns 1 and leaves the rest",
                 "[state][failures]")
{
    CHECK(MakeLogonUserName(L"before") == 0);
    DWORD dwStatus = 0;
    {
        const ImportHook hook(nullptr, "fwrite", &WriteAllButLast);
        s_pfnWrite = reinterpret_cast<decltype(s_pfnWrite)>(hook.Original());
        dwStatus = MakeLogonUserName(L"ab");
    }
    CHECK(dwStatus == 1);
    CHECK(ReadFileBytes(folder.File(L"QPS@VEL_passport.dat")) == std::string("a\0b\0\0", 5));
}

TEST_CASE_METHOD(ClientFixture,
                 "a caller that repeats an append until it succeeds stores the message once, although "
                 "the flush fails",
                 "[state][failures]")
{
    const BYTE bytes[] = {'a', 'b', 'c'};
    CHECK(AppendUserMessageFile(L"lin", bytes, 3) == 0);
    int iTries = 1;
    {
        const ImportHook hook(nullptr, "fflush", &FailFlush);
        while (AppendUserMessageFile(L"lin", bytes, 3) != 0 && iTries < 5)
        {
            ++iTries;
        }
    }
    CHECK(iTries == 1);
    CHECK(ReadFileBytes(folder.File(L"lin_Message.dat")) == "abcabc");
}
