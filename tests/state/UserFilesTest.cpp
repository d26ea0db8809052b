#include "state/DataFiles.h"
#include "state/MessageFiles.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ChildProcess.h"
#include "tests/common/ClientFixture.h"

#include <catch2/catch_test_macros.hpp>

#include <memory>

using namespace VelUtility;

namespace
{

struct UserFixture : ClientFixture
{
    std::wstring Passport() const { return folder.File(L"QPS@VEL_passport.dat"); }
    std::wstring DevMode() const { return folder.File(L"QPS@VEL_DevMode.dat"); }
    std::wstring Message() const { return folder.File(L"lin_Message.dat"); }
    std::wstring MsgConfig() const { return folder.File(L"lin_MsgConfig.ini"); }
    void Block(const std::wstring& strFile) { REQUIRE(CreateDirectoryW(strFile.c_str(), nullptr)); }
};

const BYTE* Bytes(const std::string& str)
{
    return reinterpret_cast<const BYTE*>(str.data());
}

} // namespace

TEST_CASE_METHOD(UserFixture, "a logon block is stored as it is and replaces what was there", "[state][records]")
{
    const std::string strFirst("a\0b\n\r\x1A\xFF longer", 14);
    CHECK(MakeAutoLogonInfo(Bytes(strFirst), 14) == 0);
    CHECK(ReadFileBytes(Passport()) == strFirst);
    CHECK(MakeAutoLogonInfo(Bytes("xy"), 2) == 0);
    CHECK(ReadFileBytes(Passport()) == "xy");
}

TEST_CASE_METHOD(UserFixture, "a logon block of length zero returns 1 and leaves an empty file", "[state][records]")
{
    CHECK(MakeAutoLogonInfo(Bytes("xy"), 2) == 0);
    CHECK(MakeAutoLogonInfo(Bytes("xy"), 0) == 1);
    CHECK(PathExists(Passport()));
    CHECK(ReadFileBytes(Passport()).empty());
}

TEST_CASE_METHOD(UserFixture, "a logon block that can't be written returns 1", "[state][records]")
{
    Block(Passport());
    CHECK(MakeAutoLogonInfo(Bytes("xy"), 2) == 1);
}

TEST_CASE_METHOD(UserFixture, "a file held by another keeps its content when a block can't be written",
                 "[state][records]")
{
    CHECK(MakeAutoLogonInfo(Bytes("old"), 3) == 0);
    const HANDLE hHeld = CreateFileW(Passport().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    REQUIRE(hHeld != INVALID_HANDLE_VALUE);
    CHECK(MakeAutoLogonInfo(Bytes("new!"), 4) == 1);
    CloseHandle(hHeld);
    CHECK(ReadFileBytes(Passport()) == "old");
}

TEST_CASE_METHOD(UserFixture, "a user's name is stored with its terminator, its line feeds expanded",
                 "[state][records]")
{
    CHECK(MakeLogonUserName(L"ab") == 0);
    CHECK(ReadFileBytes(Passport()) == std::string("a\0b\0\0\0", 6));
    CHECK(MakeLogonUserName(L"") == 0);
    CHECK(ReadFileBytes(Passport()) == std::string("\0\0", 2));
    // U+010A and U+0A01 each hold a byte 0x0A, as the low and as the high one.
    CHECK(MakeLogonUserName(L"\u010A\u0A01\n") == 0);
    CHECK(ReadFileBytes(Passport()) == std::string("\r\n\x01\x01\r\n\r\n\0\0\0", 11));
}

TEST_CASE_METHOD(UserFixture, "a null user's name gives 16 and touches nothing", "[state][records]")
{
    CHECK(MakeLogonUserName(nullptr) == 16);
    CHECK_FALSE(PathExists(Passport()));
}

TEST_CASE_METHOD(UserFixture, "a user's name that can't be written returns 1", "[state][records]")
{
    Block(Passport());
    CHECK(MakeLogonUserName(L"ab") == 1);
}

TEST_CASE_METHOD(UserFixture, "a logon block of 100 bytes is read into a buffer of 100 and refused by one of 99",
                 "[state][records]")
{
    const std::string strBlock(100, 'b');
    CHECK(MakeAutoLogonInfo(Bytes(strBlock), 100) == 0);
    BYTE buffer[101];
    memset(buffer, '#', sizeof(buffer));
    int iFileLen = 7;
    CHECK(GetAutoLogonInfo(buffer, 99, &iFileLen) == 16);
    CHECK(iFileLen == 7);
    CHECK(buffer[0] == '#');
    CHECK(GetAutoLogonInfo(buffer, -1, &iFileLen) == 16);
    CHECK(GetAutoLogonInfo(buffer, 100, &iFileLen) == 0);
    CHECK(iFileLen == 100);
    CHECK(std::string(reinterpret_cast<char*>(buffer), 101) == strBlock + "#");
}

TEST_CASE_METHOD(UserFixture, "an absent and an empty logon block return 1", "[state][records]")
{
    BYTE buffer[4] = {'#'};
    int iFileLen = 7;
    CHECK(GetAutoLogonInfo(buffer, 4, &iFileLen) == 1);
    WriteFileBytes(Passport(), "");
    CHECK(GetAutoLogonInfo(buffer, 4, &iFileLen) == 1);
    CHECK(iFileLen == 7);
    CHECK(buffer[0] == '#');
}

TEST_CASE_METHOD(UserFixture, "a null argument of the logon's reader gives 16", "[state][records]")
{
    BYTE buffer[4] = {};
    int iFileLen = 7;
    CHECK(GetAutoLogonInfo(nullptr, 4, &iFileLen) == 16);
    CHECK(GetAutoLogonInfo(buffer, 4, nullptr) == 16);
    CHECK(iFileLen == 7);
}

TEST_CASE_METHOD(UserFixture, "deleting the logon succeeds without a file and with a read-only one", "[state][records]")
{
    CHECK(DelAutoLogonInfo() == 0);
    CHECK(MakeAutoLogonInfo(Bytes("xy"), 2) == 0);
    REQUIRE(SetFileAttributesW(Passport().c_str(), FILE_ATTRIBUTE_READONLY));
    CHECK(DelAutoLogonInfo() == 0);
    CHECK_FALSE(PathExists(Passport()));
}

TEST_CASE_METHOD(UserFixture, "absent message state gives 0, 5000 and -1", "[state][records]")
{
    DWORD dwId = 7;
    DWORD dwInterval = 7;
    int iDays = 7;
    CHECK(GetUserMessageID(L"lin", &dwId) == 0);
    CHECK(GetUserMsgInterval(L"lin", &dwInterval) == 0);
    CHECK(GetUserMessageDays(L"lin", &iDays) == 0);
    CHECK(dwId == 0);
    CHECK(dwInterval == 5000);
    CHECK(iDays == -1);
}

TEST_CASE_METHOD(UserFixture, "message state is stored for the user that was given and reads back", "[state][records]")
{
    CHECK(MakeUserMessageID(L"lin", 4294967295u) == 0);
    CHECK(MakeUserMessageDays(L"lin", -30) == 0);
    CHECK(ReadFileBytes(MsgConfig()) == "[Message]\r\nMessageId=4294967295\r\nSaveDays=-30\r\n");
    DWORD dwId = 0;
    int iDays = 0;
    CHECK(GetUserMessageID(L"lin", &dwId) == 0);
    CHECK(dwId == 4294967295u);
    CHECK(GetUserMessageDays(L"lin", &iDays) == 0);
    CHECK(iDays == -30);
    WriteFileBytes(MsgConfig(), "[Message]\r\nInterval=250\r\n");
    DWORD dwInterval = 0;
    CHECK(GetUserMsgInterval(L"lin", &dwInterval) == 0);
    CHECK(dwInterval == 250);
}

TEST_CASE_METHOD(UserFixture, "message state that can't be written returns 1", "[state][records]")
{
    Block(MsgConfig());
    CHECK(MakeUserMessageID(L"lin", 1) == 1);
    CHECK(MakeUserMessageDays(L"lin", 1) == 1);
}

TEST_CASE_METHOD(UserFixture, "two appended messages stand side by side", "[state][records]")
{
    CHECK(AppendUserMessageFile(L"lin", Bytes("abc"), 3) == 0);
    CHECK(AppendUserMessageFile(L"lin", Bytes(std::string("d\n\0fg", 5)), 5) == 0);
    CHECK(ReadFileBytes(Message()) == std::string("abcd\n\0fg", 8));
}

TEST_CASE_METHOD(UserFixture, "an empty message returns 1 and leaves the others", "[state][records]")
{
    CHECK(AppendUserMessageFile(L"lin", Bytes("abc"), 3) == 0);
    CHECK(AppendUserMessageFile(L"lin", Bytes("x"), 0) == 1);
    CHECK(ReadFileBytes(Message()) == "abc");
}

TEST_CASE_METHOD(UserFixture, "a message that can't be appended returns 1", "[state][records]")
{
    Block(Message());
    CHECK(AppendUserMessageFile(L"lin", Bytes("abc"), 3) == 1);
}

TEST_CASE_METHOD(UserFixture, "the message file's path is told without touching it", "[state][records]")
{
    std::wstring strPath;
    CHECK(GetUserMessageFile(L"lin", &strPath) == 0);
    CHECK(strPath == Message());
    CHECK_FALSE(PathExists(Message()));
}

TEST_CASE_METHOD(UserFixture, "deleting messages succeeds without a file and with a read-only one", "[state][records]")
{
    CHECK(DelUserMessageFile(L"lin") == 0);
    CHECK(AppendUserMessageFile(L"lin", Bytes("abc"), 3) == 0);
    REQUIRE(SetFileAttributesW(Message().c_str(), FILE_ATTRIBUTE_READONLY));
    CHECK(DelUserMessageFile(L"lin") == 0);
    CHECK_FALSE(PathExists(Message()));
}

TEST_CASE_METHOD(UserFixture, "of a stored device mode exactly 220 bytes reach the file, whatever they are",
                 "[state][records]")
{
    for (int iByte = 0; iByte < 256; ++iByte)
    {
        BYTE abyRecord[232];
        memset(abyRecord, iByte, sizeof(abyRecord));
        REQUIRE(SetDevDef(reinterpret_cast<const DEVMODEW*>(abyRecord)) == 0);
        REQUIRE(ReadFileBytes(DevMode()) == std::string(220, static_cast<char>(iByte)));
        BYTE abyRead[232];
        memset(abyRead, ~iByte, sizeof(abyRead));
        REQUIRE(GetDevDef(reinterpret_cast<DEVMODEW*>(abyRead)) == 0);
        REQUIRE(memcmp(abyRead, abyRecord, 220) == 0);
        REQUIRE(abyRead[220] == static_cast<BYTE>(~iByte));
    }
}

TEST_CASE_METHOD(UserFixture, "a device mode file of 0 or 219 bytes leaves the record, one of 220 or more fills it",
                 "[state][records]")
{
    for (const size_t uiLength : {0u, 219u, 220u, 221u, 1000u})
    {
        CAPTURE(uiLength);
        WriteFileBytes(DevMode(), std::string(uiLength, 'f'));
        BYTE abyRead[221];
        memset(abyRead, '#', sizeof(abyRead));
        const bool bFills = uiLength >= 220;
        CHECK(GetDevDef(reinterpret_cast<DEVMODEW*>(abyRead)) == (bFills ? 0 : 1));
        CHECK(std::string(reinterpret_cast<char*>(abyRead), 221) == std::string(220, bFills ? 'f' : '#') + "#");
    }
}

TEST_CASE_METHOD(UserFixture, "a missing, an unreadable and a blocked device mode file leave the record",
                 "[state][records]")
{
    DEVMODEW stuDevmode = {};
    stuDevmode.dmSize = 77;
    CHECK(GetDevDef(&stuDevmode) == 1);
    WriteFileBytes(DevMode(), std::string(220, 'f'));
    const HANDLE hHeld = CreateFileW(DevMode().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    CHECK(GetDevDef(&stuDevmode) == 1);
    CHECK(SetDevDef(&stuDevmode) == 1);
    CloseHandle(hHeld);
    CHECK(ReadFileBytes(DevMode()) == std::string(220, 'f'));
    DeleteFileW(DevMode().c_str());
    Block(DevMode());
    CHECK(GetDevDef(&stuDevmode) == 1);
    CHECK(SetDevDef(&stuDevmode) == 1);
    CHECK(stuDevmode.dmSize == 77);
}

TEST_CASE("without the data folder every record call returns 1", "[state][records]")
{
    const PrivateRegistry registry;
    BYTE buffer[4] = {};
    int iNumber = 7;
    DWORD dwNumber = 7;
    DEVMODEW stuDevmode = {};
    std::wstring strPath;
    CHECK(MakeAutoLogonInfo(buffer, 4) == 1);
    CHECK(MakeLogonUserName(L"x") == 1);
    CHECK(GetAutoLogonInfo(buffer, 4, &iNumber) == 1);
    CHECK(DelAutoLogonInfo() == 1);
    CHECK(MakeUserMessageID(L"u", 1) == 1);
    CHECK(GetUserMessageID(L"u", &dwNumber) == 1);
    CHECK(GetUserMsgInterval(L"u", &dwNumber) == 1);
    CHECK(MakeUserMessageDays(L"u", 1) == 1);
    CHECK(GetUserMessageDays(L"u", &iNumber) == 1);
    CHECK(AppendUserMessageFile(L"u", buffer, 4) == 1);
    CHECK(GetUserMessageFile(L"u", &strPath) == 1);
    CHECK(DelUserMessageFile(L"u") == 1);
    CHECK(SetDevDef(&stuDevmode) == 1);
    CHECK(GetDevDef(&stuDevmode) == 1);
    CHECK(iNumber == 7);
    CHECK(dwNumber == 7);
}

TEST_CASE_METHOD(UserFixture, "a Chinese user has files of that name under code page 936", "[state][records][cp936]")
{
    REQUIRE(GetACP() == 936);
    CHECK(AppendUserMessageFile(L"李梅", Bytes("abc"), 3) == 0);
    CHECK(ReadFileBytes(folder.File(L"李梅_Message.dat")) == "abc");
    CHECK(MakeUserMessageID(L"李梅", 5) == 0);
    DWORD dwId = 0;
    CHECK(GetUserMessageID(L"李梅", &dwId) == 0);
    CHECK(dwId == 5);
    CHECK(MakeLogonUserName(L"李") == 0);
    CHECK(ReadFileBytes(Passport()) == std::string("\x4E\x67\0\0", 4)); // U+674E
}

TEST_CASE_METHOD(UserFixture, "four processes append 1,000 messages each, none lost or torn",
                 "[state][records][processes][cores]")
{
    std::vector<std::unique_ptr<ChildProcess>> writers;
    for (int i = 0; i < 4; ++i)
    {
        writers.push_back(std::make_unique<ChildProcess>(
            BesideTests(L"storeworker.exe"),
            std::vector<std::wstring>{L"append", std::to_wstring(1000 + i), registry.Root()}));
    }
    for (const auto& pWriter : writers)
    {
        CHECK(pWriter->Wait(120000) == 0);
    }
    // Each message is "[w:nnnn:" and a run of the writer's letter up to "]\n", of one length for each writer.
    const std::string strBytes = ReadFileBytes(Message());
    size_t uiWhole[4] = {};
    size_t uiStart = 0;
    while (uiStart < strBytes.size())
    {
        const size_t uiEnd = strBytes.find('\n', uiStart);
        REQUIRE(uiEnd != std::string::npos);
        const std::string strMessage = strBytes.substr(uiStart, uiEnd - uiStart);
        REQUIRE(strMessage.size() > 8);
        const int iWriter = strMessage[1] - '0';
        REQUIRE((iWriter >= 0 && iWriter < 4));
        char szHead[16];
        sprintf(szHead, "[%d:%04d:", iWriter, static_cast<int>(uiWhole[iWriter]));
        REQUIRE(strMessage == szHead + std::string(20 + 40 * iWriter, static_cast<char>('a' + iWriter)) + "]");
        ++uiWhole[iWriter];
        uiStart = uiEnd + 1;
    }
    for (const size_t uiCount : uiWhole)
    {
        CHECK(uiCount == 1000);
    }
}
