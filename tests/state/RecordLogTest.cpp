// The line that each call of the store leaves when its path can't be made, or its file can't be reached.

#include "diag/Log.h"
#include "state/CapabilitySnapshot.h"
#include "state/ConfigFile.h"
#include "state/DataFiles.h"
#include "state/MessageFiles.h"
#include "state/UserIniFiles.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/LogLines.h"

#include <catch2/catch_test_macros.hpp>

#include <functional>

using namespace VelUtility;

namespace
{

const BYTE kBytes[4] = {1, 2, 3, 4};

struct Row
{
    const char* pszFunction;
    const char* pszWords;
    std::function<void()> call;
};

std::vector<Row> PathRows()
{
    constexpr const char* kFolder = "GetClientFolder failed.";
    constexpr const char* kPersonal = "MakePersonalFilePath failed.";
    constexpr const char* kServer = "MakeServerFilePath failed.";
    constexpr const char* kMessage = "MakeUserMessageFilePath failed.";
    return {
        {"WriteClientSetting", kFolder,
         [] {
             ClientSetting s = {};
             WriteClientSetting(&s);
         }},
        {"ReadClientSetting", kFolder,
         [] {
             ClientSetting s = {};
             ReadClientSetting(&s);
         }},
        {"MakeServerConfig", kFolder,
         [] {
             ServerConfigInfo s = {};
             MakeServerConfig(&s);
         }},
        {"GetServerConfig", kFolder,
         [] {
             ServerConfigInfo s = {};
             GetServerConfig(&s);
         }},
        {"GetPrinterInfo", kFolder,
         [] {
             PrinterInfo s;
             GetPrinterInfo(&s);
         }},
        {"CheckConfigFile", kFolder, [] { CheckConfigFile(); }},
        {"GetDefSetting", kPersonal,
         [] {
             DWORD dw;
             GetDefSetting(&dw);
         }},
        {"MakeDefSetting", kFolder,
         [] {
             DWORD dw = 1;
             MakeDefSetting(&dw);
         }},
        {"MakeServerPlaceFile", kPersonal,
         [] {
             ServerPlace s = {};
             MakeServerPlaceFile(&s);
         }},
        {"GetServerPlaceFile", kPersonal,
         [] {
             ServerPlace s = {};
             GetServerPlaceFile(&s);
         }},
        {"MakeServerPlaceFileNew", kServer, [] { MakeServerPlaceFileNew(L"s"); }},
        {"GetServerPlaceFileNew", kServer,
         [] {
             std::wstring s;
             GetServerPlaceFileNew(&s);
         }},
        {"MakeAutoLogonInfo", kPersonal, [] { MakeAutoLogonInfo(kBytes, 4); }},
        {"MakeLogonUserName", kPersonal, [] { MakeLogonUserName(L"u"); }},
        {"GetAutoLogonInfo", kPersonal,
         [] {
             BYTE b[9];
             int i;
             GetAutoLogonInfo(b, 9, &i);
         }},
        {"DelAutoLogonInfo", kPersonal, [] { DelAutoLogonInfo(); }},
        {"MakeUserMessageID", kPersonal, [] { MakeUserMessageID(L"u", 1); }},
        {"GetUserMessageID", kMessage,
         [] {
             DWORD dw;
             GetUserMessageID(L"u", &dw);
         }},
        {"GetUserMsgInterval", kMessage,
         [] {
             DWORD dw;
             GetUserMsgInterval(L"u", &dw);
         }},
        {"MakeUserMessageDays", kPersonal, [] { MakeUserMessageDays(L"u", 1); }},
        {"GetUserMessageDays", kPersonal,
         [] {
             int i;
             GetUserMessageDays(L"u", &i);
         }},
        {"AppendUserMessageFile", kPersonal, [] { AppendUserMessageFile(L"u", kBytes, 4); }},
        {"DelUserMessageFile", kPersonal, [] { DelUserMessageFile(L"u"); }},
        {"SetDevDef", kPersonal,
         [] {
             DEVMODEW d = {};
             SetDevDef(&d);
         }},
        {"GetDevDef", kPersonal,
         [] {
             DEVMODEW d;
             GetDevDef(&d);
         }},
    };
}

/// What stands between a function's START and End.
std::vector<std::string> Inner(const LoggingOn& logging, const char* pszFunction)
{
    return InnerLines(logging, std::string("VelUtility::") + pszFunction);
}

} // namespace

TEST_CASE("each call names the step that failed when its path can't be made", "[state][records][log]")
{
    const PrivateRegistry registry;
    for (const Row& row : PathRows())
    {
        CAPTURE(row.pszFunction);
        const LoggingOn logging{"OutputFunBeginInfo"};
        row.call();
        CHECK(Inner(logging, row.pszFunction) ==
              std::vector<std::string>{std::string("ERROR - .\\ClientInfo(#) : ") + row.pszWords});
    }
}

TEST_CASE("telling the message file's path has no scope and names the failed step inside another's",
          "[state][records][log]")
{
    const PrivateRegistry registry;
    const LoggingOn logging{"OutputFunBeginInfo"};
    {
        const TraceScope scope("Outer");
        std::wstring strPath;
        CHECK(GetUserMessageFile(L"u", &strPath) == 1);
    }
    CHECK_FALSE(logging.Has("GetUserMessageFile"));
    CHECK(OwnLines(logging, "Outer").at(1) == "ERROR - .\\ClientInfo(#) : MakePersonalFilePath failed.");
}

TEST_CASE_METHOD(ClientFixture, "a file that can't be opened leaves its name and the reason", "[state][records][log]")
{
    const LoggingOn logging{"OutputFunBeginInfo"};
    DEVMODEW stuDevmode;
    GetDevDef(&stuDevmode);
    const std::string strFolder(folder.Path().begin(), folder.Path().end());
    CHECK(Inner(logging, "GetDevDef") ==
          std::vector<std::string>{"ERROR - .\\ClientInfo(#) : _wfopen failed. name = " + strFolder +
                                   "\\QPS@VEL_DevMode.dat, err = No such file or directory"});
}

TEST_CASE_METHOD(ClientFixture, "an empty file, an empty block and a small buffer each leave their line",
                 "[state][records][log]")
{
    WriteFileBytes(folder.File(L"QPS@VEL_DevMode.dat"), "");
    WriteFileBytes(folder.File(L"QPS@VEL_passport.dat"), "12345");
    const LoggingOn logging{"OutputFunBeginInfo"};
    DEVMODEW stuDevmode;
    BYTE buffer[4];
    int iLength = 0;
    GetDevDef(&stuDevmode);
    CHECK(Inner(logging, "GetDevDef").at(0).substr(0, 45) == "ERROR - .\\ClientInfo(#) : fread failed. err =");
    GetAutoLogonInfo(buffer, 4, &iLength);
    CHECK(Inner(logging, "GetAutoLogonInfo") == std::vector<std::string>{"ERROR - .\\ClientInfo(#) : iDataLen = 4",
                                                                         "ERROR - .\\ClientInfo(#) : lFileLen = 5"});
    MakeAutoLogonInfo(buffer, 0);
    CHECK(Inner(logging, "MakeAutoLogonInfo").at(0).substr(0, 46) == "ERROR - .\\ClientInfo(#) : fwrite failed. err =");
}

TEST_CASE_METHOD(ClientFixture, "arguments that can't be served leave their line", "[state][records][log]")
{
    const LoggingOn logging{"OutputFunBeginInfo"};
    MakeLogonUserName(nullptr);
    CHECK(Inner(logging, "MakeLogonUserName") ==
          std::vector<std::string>{"ERROR - .\\ClientInfo(#) : Invalid parameter."});
    GetAutoLogonInfo(nullptr, 4, nullptr);
    CHECK(Inner(logging, "GetAutoLogonInfo") ==
          std::vector<std::string>{"ERROR - .\\ClientInfo(#) : pbyData = 0x00000000",
                                   "ERROR - .\\ClientInfo(#) : piFileLen = 0x00000000"});
}

TEST_CASE_METHOD(ClientFixture, "an absent Config.ini is told at the debug level", "[state][config][log]")
{
    const LoggingOn logging{"OutputFunBeginInfo"};
    CheckConfigFile();
    CHECK(Inner(logging, "CheckConfigFile") ==
          std::vector<std::string>{"DEBUG - .\\ClientInfo(#) : _waccess failed. err = No such file or directory"});
}

TEST_CASE_METHOD(ClientFixture, "writers whose file can't be written leave the writer's name", "[state][config][log]")
{
    REQUIRE(CreateDirectoryW(ConfigFile().c_str(), nullptr));
    REQUIRE(CreateDirectoryW(folder.File(L"QPS@VEL_server.ini").c_str(), nullptr));
    REQUIRE(CreateDirectoryW(folder.File(L"lin_MsgConfig.ini").c_str(), nullptr));
    const LoggingOn logging{"OutputFunBeginInfo"};
    const auto head = [](const char* pszWords) {
        return std::vector<std::string>{std::string("ERROR - .\\ClientInfo(#) : ") + pszWords};
    };
    const ClientSetting setting = {};
    const ServerPlace place = {};
    WriteClientSetting(&setting);
    CHECK(Inner(logging, "WriteClientSetting") == head("WritePrivateProfileBOOL failed."));
    MakeServerPlaceFile(&place);
    CHECK(Inner(logging, "MakeServerPlaceFile") == head("WritePrivateProfileStringW failed."));
    MakeUserMessageID(L"lin", 1);
    CHECK(Inner(logging, "MakeUserMessageID") == head("WritePrivateProfileUINT failed."));
    MakeUserMessageDays(L"lin", 1);
    CHECK(Inner(logging, "MakeUserMessageDays") == head("WritePrivateProfileINT failed."));
}
