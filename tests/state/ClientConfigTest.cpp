#include "state/CapabilitySnapshot.h"
#include "state/ConfigFile.h"
#include "state/UserIniFiles.h"
#include "tests/common/AskedAccess.h"
#include "tests/common/ClientFixture.h"

#include <catch2/catch_test_macros.hpp>

using namespace VelUtility;

namespace
{

/// The files of a client without a logon key: the user is "QPS" of "VEL".
struct ConfigFixture : ClientFixture
{
    std::wstring UserFile(const wchar_t* pszName) const { return folder.File(L"QPS@VEL_" + std::wstring(pszName)); }
    std::string ConfigBytes() const { return ReadFileBytes(ConfigFile()); }
    /// Puts a folder in the place of a file, so that nothing can be written there.
    void Block(const std::wstring& strFile) { REQUIRE(CreateDirectoryW(strFile.c_str(), nullptr)); }
};

} // namespace

TEST_CASE_METHOD(ConfigFixture, "an absent Config.ini gives the client's defaults with status 0", "[state][config]")
{
    ClientSetting setting = {9, 9, 9, L"x", L"y"};
    CHECK(ReadClientSetting(&setting) == 0);
    CHECK(setting.DisplayProjectSelection == 1);
    CHECK(setting.CanSelectNoPrinter == 0);
    CHECK(setting.CanSelectNoProject == 0);
    CHECK(setting.DefaultPrinter.empty());
    CHECK(setting.DefaultProject.empty());
    CHECK_FALSE(PathExists(ConfigFile()));
}

TEST_CASE_METHOD(ConfigFixture, "client settings are written in their order and read back", "[state][config]")
{
    const ClientSetting written = {0, 2, 1, L"Office", L"Project 7"};
    CHECK(WriteClientSetting(&written) == 0);
    CHECK(ConfigBytes() == "[Setting]\r\n"
                           "DisplayProjectSelection=0\r\n"
                           "CanSelectNoPrinter=1\r\n"
                           "CanSelectNoProject=1\r\n"
                           "DefaultPrinter=Office\r\n"
                           "DefaultProject=Project 7\r\n");
    ClientSetting read = {};
    CHECK(ReadClientSetting(&read) == 0);
    CHECK(read.DisplayProjectSelection == 0);
    CHECK(read.CanSelectNoPrinter == 1);
    CHECK(read.CanSelectNoProject == 1);
    CHECK(read.DefaultPrinter == L"Office");
    CHECK(read.DefaultProject == L"Project 7");
}

TEST_CASE_METHOD(ConfigFixture, "default printer and project come back cut to 255 characters", "[state][config]")
{
    for (const size_t uiLength : {254u, 255u, 256u, 300u})
    {
        CAPTURE(uiLength);
        const ClientSetting written = {1, 0, 0, std::wstring(uiLength, L'p'), std::wstring(uiLength, L'j')};
        CHECK(WriteClientSetting(&written) == 0);
        ClientSetting read = {};
        CHECK(ReadClientSetting(&read) == 0);
        CHECK(read.DefaultPrinter == std::wstring(uiLength < 255 ? uiLength : 255, L'p'));
        CHECK(read.DefaultProject == std::wstring(uiLength < 255 ? uiLength : 255, L'j'));
    }
}

TEST_CASE_METHOD(ConfigFixture, "client settings that can't be written return 1", "[state][config]")
{
    Block(ConfigFile());
    const ClientSetting setting = {1, 1, 1, L"", L""};
    CHECK(WriteClientSetting(&setting) == 1);
}

TEST_CASE_METHOD(ConfigFixture, "server flags are written in their order, one with a spelling of its own",
                 "[state][config]")
{
    const ServerConfigInfo written = {1, 0, 5, 1};
    CHECK(MakeServerConfig(&written) == 0);
    CHECK(ConfigBytes() == "[ServerConfig]\r\n"
                           "WaterPrintInstalled=1\r\n"
                           "AuditInstalled=0\r\n"
                           "SGIdentifyInstalled=1\r\n"
                           "FilterIntalled=1\r\n");
    ServerConfigInfo read = {};
    CHECK(GetServerConfig(&read) == 0);
    CHECK(read.WaterPrintInstalled == 1);
    CHECK(read.AuditInstalled == 0);
    CHECK(read.SGIdentifyInstalled == 1);
    CHECK(read.FilterIntalled == 1);
}

TEST_CASE_METHOD(ConfigFixture, "absent server flags are 0 with status 0", "[state][config]")
{
    ServerConfigInfo read = {9, 9, 9, 9};
    CHECK(GetServerConfig(&read) == 0);
    CHECK(read.WaterPrintInstalled + read.AuditInstalled + read.SGIdentifyInstalled + read.FilterIntalled == 0);
}

TEST_CASE_METHOD(ConfigFixture, "server flags that can't be written return 1", "[state][config]")
{
    Block(ConfigFile());
    const ServerConfigInfo config = {1, 1, 1, 1};
    CHECK(MakeServerConfig(&config) == 1);
}

TEST_CASE_METHOD(ConfigFixture, "the printer's texts are read, each cut to 255 characters", "[state][config]")
{
    PrinterInfo info = {L"x", L"y", L"z"};
    CHECK(GetPrinterInfo(&info) == 0);
    CHECK(info.PrinterName.empty());
    CHECK(info.Location.empty());
    CHECK(info.Description.empty());
    WriteFileBytes(ConfigFile(), "[Printer]\r\nPrinterName=" + std::string(300, 'n') +
                                     "\r\nLocation=here\r\nDescription=" + std::string(255, 'd') + "\r\n");
    CHECK(GetPrinterInfo(&info) == 0);
    CHECK(info.PrinterName == std::wstring(255, L'n'));
    CHECK(info.Location == L"here");
    CHECK(info.Description == std::wstring(255, L'd'));
}

TEST_CASE_METHOD(ConfigFixture, "Config.ini is found when it exists, whatever it holds", "[state][config]")
{
    CHECK(CheckConfigFile() == 1);
    WriteFileBytes(ConfigFile(), "");
    CHECK(CheckConfigFile() == 0);
    CHECK(AskedAccess([] { CheckConfigFile(); }) == 0); // to be there is enough
}

TEST_CASE("without the temporary folder every call on Config.ini returns 1", "[state][config]")
{
    const PrivateRegistry registry;
    ClientSetting setting = {9, 9, 9, L"x", L"y"};
    ServerConfigInfo config = {9, 9, 9, 9};
    PrinterInfo info = {L"x", L"y", L"z"};
    CHECK(WriteClientSetting(&setting) == 1);
    CHECK(ReadClientSetting(&setting) == 1);
    CHECK(MakeServerConfig(&config) == 1);
    CHECK(GetServerConfig(&config) == 1);
    CHECK(GetPrinterInfo(&info) == 1);
    CHECK(CheckConfigFile() == 1);
    CHECK(setting.DefaultPrinter == L"x");
    CHECK(config.AuditInstalled == 9);
    CHECK(info.Location == L"y");
}

TEST_CASE_METHOD(ConfigFixture, "an absent defsetting.ini gives 0 with status 0", "[state][config]")
{
    DWORD dwNoWaterPrint = 7;
    CHECK(GetDefSetting(&dwNoWaterPrint) == 0);
    CHECK(dwNoWaterPrint == 0);
}

TEST_CASE_METHOD(ConfigFixture, "the no-watermark default is stored as a signed number", "[state][config]")
{
    DWORD dwNoWaterPrint = 1;
    CHECK(MakeDefSetting(&dwNoWaterPrint) == 0);
    CHECK(ReadFileBytes(UserFile(L"defsetting.ini")) == "[PrintSetting]\r\nDefaultNoWaterPrint=1\r\n");
    dwNoWaterPrint = 0xFFFFFFFF;
    CHECK(MakeDefSetting(&dwNoWaterPrint) == 0);
    CHECK(ReadFileBytes(UserFile(L"defsetting.ini")) == "[PrintSetting]\r\nDefaultNoWaterPrint=-1\r\n");
    dwNoWaterPrint = 0;
    CHECK(GetDefSetting(&dwNoWaterPrint) == 0);
    CHECK(dwNoWaterPrint == 0xFFFFFFFF);
}

TEST_CASE_METHOD(ConfigFixture, "a no-watermark default that can't be written returns 0", "[state][config]")
{
    Block(UserFile(L"defsetting.ini"));
    const DWORD dwNoWaterPrint = 1;
    CHECK(MakeDefSetting(&dwNoWaterPrint) == 0);
}

TEST_CASE("without the data folder the no-watermark default can't be reached", "[state][config]")
{
    const PrivateRegistry registry;
    DWORD dwNoWaterPrint = 7;
    CHECK(GetDefSetting(&dwNoWaterPrint) == 1);
    CHECK(dwNoWaterPrint == 7);
    CHECK(MakeDefSetting(&dwNoWaterPrint) == 1);
}

TEST_CASE_METHOD(ConfigFixture, "a server's place is stored with its address as one number and reads back",
                 "[state][config]")
{
    const ServerPlace written = {L"print01", {192, 168, 1, 250}, 1};
    CHECK(MakeServerPlaceFile(&written) == 0);
    // 250 * 2^24 + 1 * 2^16 + 168 * 2^8 + 192
    CHECK(ReadFileBytes(UserFile(L"server.ini")) == "[Server]\r\nServer=print01\r\nIPAddress=4194412736\r\nMode=1\r\n");
    ServerPlace read = {L"x", {9, 9, 9, 9}, 9};
    CHECK(GetServerPlaceFile(&read) == 0);
    CHECK(read.Server == L"print01");
    CHECK(std::string(reinterpret_cast<const char*>(read.IPAddress), 4) == "\xC0\xA8\x01\xFA");
    CHECK(read.Mode == 1);
}

TEST_CASE_METHOD(ConfigFixture, "a mode of 2 reads as 0", "[state][config]")
{
    for (const auto& [strMode, dwExpected] :
         {std::pair<std::string, DWORD>{"0", 0}, {"1", 1}, {"2", 0}, {"-1", 0}, {"", 0}})
    {
        CAPTURE(strMode);
        WriteFileBytes(UserFile(L"server.ini"), "[Server]\r\nMode=" + strMode + "\r\n");
        ServerPlace read = {L"", {}, 9};
        CHECK(GetServerPlaceFile(&read) == 0);
        CHECK(read.Mode == dwExpected);
    }
}

TEST_CASE_METHOD(ConfigFixture, "an absent server.ini gives an empty place", "[state][config]")
{
    ServerPlace read = {L"x", {9, 9, 9, 9}, 9};
    CHECK(GetServerPlaceFile(&read) == 0);
    CHECK(read.Server.empty());
    CHECK(read.IPAddress[0] + read.IPAddress[1] + read.IPAddress[2] + read.IPAddress[3] == 0);
    CHECK(read.Mode == 0);
}

TEST_CASE_METHOD(ConfigFixture, "a server's name comes back cut to 254 characters from both files", "[state][config]")
{
    const ServerPlace written = {std::wstring(300, L's'), {}, 0};
    CHECK(MakeServerPlaceFile(&written) == 0);
    ServerPlace read = {};
    CHECK(GetServerPlaceFile(&read) == 0);
    CHECK(read.Server == std::wstring(254, L's'));
    CHECK(MakeServerPlaceFileNew(std::wstring(300, L't')) == 0);
    std::wstring strServer;
    CHECK(GetServerPlaceFileNew(&strServer) == 0);
    CHECK(strServer == std::wstring(254, L't'));
}

TEST_CASE_METHOD(ConfigFixture, "the machine's server lies in serverconfig.ini under its plain name", "[state][config]")
{
    CHECK(MakeServerPlaceFileNew(L"print02") == 0);
    CHECK(ReadFileBytes(folder.File(L"serverconfig.ini")) == "[Server]\r\nServer=print02\r\n");
}

TEST_CASE("without the data folder readers of a server's place return 0 and leave the record, writers return 1",
          "[state][config]")
{
    const PrivateRegistry registry;
    ServerPlace place = {L"x", {9, 9, 9, 9}, 9};
    std::wstring strServer = L"x";
    CHECK(GetServerPlaceFile(&place) == 0);
    CHECK(place.Server == L"x");
    CHECK(place.IPAddress[3] == 9);
    CHECK(place.Mode == 9);
    CHECK(GetServerPlaceFileNew(&strServer) == 0);
    CHECK(strServer == L"x");
    CHECK(MakeServerPlaceFile(&place) == 1);
    CHECK(MakeServerPlaceFileNew(L"y") == 1);
}

TEST_CASE_METHOD(ConfigFixture, "a server's place that can't be written returns 1", "[state][config]")
{
    Block(UserFile(L"server.ini"));
    Block(folder.File(L"serverconfig.ini"));
    const ServerPlace place = {L"x", {}, 0};
    CHECK(MakeServerPlaceFile(&place) == 1);
    CHECK(MakeServerPlaceFileNew(L"y") == 1);
}

TEST_CASE_METHOD(ConfigFixture, "Chinese texts come back whole under code page 936, cut at exactly 255 and 254",
                 "[state][config][cp936]")
{
    REQUIRE(GetACP() == 936);
    const ClientSetting written = {1, 0, 0, std::wstring(255, L'印') + L"尾", std::wstring(255, L'项') + L"尾"};
    CHECK(WriteClientSetting(&written) == 0);
    ClientSetting read = {};
    CHECK(ReadClientSetting(&read) == 0);
    CHECK(read.DefaultPrinter == std::wstring(255, L'印'));
    CHECK(read.DefaultProject == std::wstring(255, L'项'));
    const PrinterInfo printer = {std::wstring(255, L'名') + L"尾", std::wstring(255, L'楼') + L"尾",
                                 std::wstring(255, L'注') + L"尾"};
    const PrinterCaps caps = {};
    MakePrinterConfig(&printer, &caps);
    PrinterInfo readPrinter;
    CHECK(GetPrinterInfo(&readPrinter) == 0);
    CHECK(readPrinter.PrinterName == std::wstring(255, L'名'));
    CHECK(readPrinter.Location == std::wstring(255, L'楼'));
    CHECK(readPrinter.Description == std::wstring(255, L'注'));
    const ServerPlace place = {std::wstring(254, L'服') + L"尾", {}, 0};
    CHECK(MakeServerPlaceFile(&place) == 0);
    ServerPlace readPlace = {};
    CHECK(GetServerPlaceFile(&readPlace) == 0);
    CHECK(readPlace.Server == std::wstring(254, L'服'));
    CHECK(MakeServerPlaceFileNew(std::wstring(254, L'器') + L"尾") == 0);
    std::wstring strServer;
    CHECK(GetServerPlaceFileNew(&strServer) == 0);
    CHECK(strServer == std::wstring(254, L'器'));
}
