// The trace scope of each function of the store: open before the function does anything, and until it is done.

#include "state/CapabilitySnapshot.h"
#include "state/ConfigFile.h"
#include "state/CurrentUser.h"
#include "state/DataFiles.h"
#include "state/MachineIdentity.h"
#include "state/MessageFiles.h"
#include "state/Profile.h"
#include "state/PsFolder.h"
#include "state/StorePaths.h"
#include "state/UserIniFiles.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/LineAtCall.h"

#include <catch2/catch_test_macros.hpp>

using namespace VelUtility;

namespace
{

struct Row
{
    const char* pszFunction;
    void (*pfnCall)();
};

BYTE s_bytes[256] = {1, 2, 3, 4};
wchar_t s_szText[4096];

/// The rows' file. Its path is made before they run, since that is a function of the store too.
std::wstring s_strFile;

const Row kRows[] = {
    {"GetClientFolder", [] { GetClientFolder(kClientDataDir, s_szText, 260); }},
    {"GetServerFolder", [] { GetServerFolder(kServerLogDir, s_szText, 260); }},
    {"MakePersonalFilePath", [] { MakePersonalFilePath(L"a.ini", s_szText); }},
    {"MakeUserMessageFilePath", [] { MakeUserMessageFilePath(L"a.ini", L"mei", s_szText); }},
    {"MakeServerFilePath", [] { MakeServerFilePath(L"a.ini", s_szText); }},
    {"GetCurrentUsername", [] { GetCurrentUsername(s_szText, s_szText + kUserNameUnits); }},
    {"GetCurrentUsername_Registry", [] { GetCurrentUsername_Registry(s_szText, s_szText + kUserNameUnits); }},
    {"GetCurrentUsername_Hardcode", [] { GetCurrentUsername_Hardcode(s_szText, s_szText + kUserNameUnits); }},
    {"WriteClientSetting",
     [] {
         const ClientSetting setting = {};
         WriteClientSetting(&setting);
     }},
    {"ReadClientSetting",
     [] {
         ClientSetting setting = {};
         ReadClientSetting(&setting);
     }},
    {"MakeServerConfig",
     [] {
         const ServerConfigInfo config = {};
         MakeServerConfig(&config);
     }},
    {"GetServerConfig",
     [] {
         ServerConfigInfo config = {};
         GetServerConfig(&config);
     }},
    {"CheckConfigFile", [] { CheckConfigFile(); }},
    {"MakePrinterConfig",
     [] {
         const PrinterInfo info;
         const PrinterCaps caps = {};
         MakePrinterConfig(&info, &caps);
     }},
    {"GetPrinterInfo",
     [] {
         PrinterInfo info;
         GetPrinterInfo(&info);
     }},
    {"GetComputerCaps", [] { GetComputerCaps(DC_PAPERS, s_bytes); }},
    {"SubCmpCaps_Rtn", [] { SubCmpCaps_Rtn(L"Copies", s_strFile.c_str()); }},
    {"SubCmpCaps_IntArray",
     [] { SubCmpCaps_IntArray(L"Papers", s_strFile.c_str(), reinterpret_cast<DWORD*>(s_bytes), 1); }},
    {"SubCmpCaps_StrArray", [] { SubCmpCaps_StrArray(L"PaperNames", s_strFile.c_str(), s_szText, 1, 64); }},
    {"MakeAutoLogonInfo", [] { MakeAutoLogonInfo(s_bytes, 4); }},
    {"MakeLogonUserName", [] { MakeLogonUserName(L"mei"); }},
    {"GetAutoLogonInfo",
     [] {
         int iFileLen = 0;
         GetAutoLogonInfo(s_bytes, 256, &iFileLen);
     }},
    {"DelAutoLogonInfo", [] { DelAutoLogonInfo(); }},
    {"SetDevDef",
     [] {
         DEVMODEW record = {};
         record.dmSize = sizeof(record);
         SetDevDef(&record);
     }},
    {"GetDevDef", [] { GetDevDef(reinterpret_cast<DEVMODEW*>(s_bytes)); }},
    {"GetDefSetting", [] { GetDefSetting(reinterpret_cast<DWORD*>(s_bytes)); }},
    {"MakeDefSetting", [] { MakeDefSetting(reinterpret_cast<DWORD*>(s_bytes)); }},
    {"MakeServerPlaceFile",
     [] {
         const ServerPlace place = {};
         MakeServerPlaceFile(&place);
     }},
    {"GetServerPlaceFile",
     [] {
         ServerPlace place = {};
         GetServerPlaceFile(&place);
     }},
    {"MakeServerPlaceFileNew", [] { MakeServerPlaceFileNew(L"server"); }},
    {"GetServerPlaceFileNew",
     [] {
         std::wstring strServer;
         GetServerPlaceFileNew(&strServer);
     }},
    {"MakeUserMessageID", [] { MakeUserMessageID(L"mei", 1); }},
    {"GetUserMessageID", [] { GetUserMessageID(L"mei", reinterpret_cast<DWORD*>(s_bytes)); }},
    {"GetUserMsgInterval", [] { GetUserMsgInterval(L"mei", reinterpret_cast<DWORD*>(s_bytes)); }},
    {"MakeUserMessageDays", [] { MakeUserMessageDays(L"mei", 1); }},
    {"GetUserMessageDays", [] { GetUserMessageDays(L"mei", reinterpret_cast<int*>(s_bytes)); }},
    {"AppendUserMessageFile", [] { AppendUserMessageFile(L"mei", s_bytes, 4); }},
    {"DelUserMessageFile", [] { DelUserMessageFile(L"mei"); }},
    {"GetLocalMachineInfo", [] { GetLocalMachineInfo(s_szText, kHostNameUnits, s_bytes, s_bytes + 8); }},
    {"GetHost",
     [] {
         std::list<DWORD> addresses;
         GetHost(s_szText, kHostNameUnits, addresses);
     }},
    {"GetMACaddress",
     [] {
         std::list<MacAddress> addresses;
         GetMACaddress(addresses);
     }},
    {"GetLogonUserInfo", [] { GetLogonUserInfo(0, 0, 0, 0); }},
    {"WritePrivateProfileUINT", [] { WritePrivateProfileUINT(L"S", L"K", 1, s_strFile.c_str()); }},
    {"WritePrivateProfileINT", [] { WritePrivateProfileINT(L"S", L"K", 1, s_strFile.c_str()); }},
    {"WritePrivateProfileBOOL", [] { WritePrivateProfileBOOL(L"S", L"K", 1, s_strFile.c_str()); }},
    {"WritePrivateProfileStringWArray",
     [] {
         const NarrowName names[] = {L"n"};
         WritePrivateProfileStringWArray(L"S", L"K", names, 1, s_strFile.c_str());
     }},
    {"WritePrivateProfileStringWArray",
     [] {
         const WideName names[] = {L"n"};
         WritePrivateProfileStringWArray(L"S", L"K", names, 1, s_strFile.c_str());
     }},
    {"WritePrivateProfileUINTArray",
     [] { WritePrivateProfileUINTArray(L"S", L"K", reinterpret_cast<WORD*>(s_bytes), 1, s_strFile.c_str()); }},
    {"WritePrivateProfileUINTArray",
     [] { WritePrivateProfileUINTArray(L"S", L"K", reinterpret_cast<DWORD*>(s_bytes), 1, s_strFile.c_str()); }},
    {"WritePrivateProfileResolutoinArray",
     [] {
         const Resolution resolutions[] = {{1, 1}};
         WritePrivateProfileResolutoinArray(L"S", L"X", L"Y", resolutions, 1, s_strFile.c_str());
     }},
    {"WritePrivateProfilePointArray",
     [] {
         const POINT points[] = {{1, 1}};
         WritePrivateProfilePointArray(L"S", L"X", L"Y", points, 1, s_strFile.c_str());
     }},
};

} // namespace

TEST_CASE_METHOD(ClientFixture, "the scope of each function of the store holds all that the function does",
                 "[state][log]")
{
    registry.SetServer(L"LogDir", folder.Path());
    s_strFile = ConfigFile();
    for (const Row& row : kRows)
    {
        CAPTURE(row.pszFunction);
        WriteCaps({{L"Copies", L"5"}, {L"PapersCount", L"1"}, {L"Papers0", L"9"}, {L"PaperNames0", L"A4"}});
        const LoggingOn logging{"OutputFunBeginInfo"};
        row.pfnCall();
        const std::vector<std::string> events = ScopeEvents(logging);
        const std::string strOwn = std::string("VelUI_dll__VelUtility::") + row.pszFunction;
        REQUIRE(events.size() >= 2);
        CHECK(events.front() == "+" + strOwn);
        CHECK(events.back() == "-" + strOwn);
        int iOpen = 0;
        for (size_t ui = 0; ui < events.size(); ++ui)
        {
            iOpen += events[ui][0] == '+' ? 1 : -1;
            CHECK((iOpen > 0) == (ui + 1 < events.size()));
        }
    }
}

TEST_CASE_METHOD(ClientFixture, "the scope of a search for a server's folder is open while Windows opens the key",
                 "[state][log]")
{
    const LoggingOn logging{"OutputFunBeginInfo"};
    const LineAtCall<decltype(RegOpenKeyExW)> line(logging, "RegOpenKeyExW");
    GetServerFolder(kServerLogDir, s_szText, 260);
    CHECK(line.Text() == "VelUI_dll__VelUtility::GetServerFolder :START......");
}

TEST_CASE_METHOD(ClientFixture, "the scope of each function that reads or writes a key is open while Windows does it",
                 "[state][log]")
{
    const std::wstring strFile = ConfigFile();
    const wchar_t* const pszFile = strFile.c_str();
    WriteCaps({{L"Copies", L"5"}});
    const LoggingOn logging{"OutputFunBeginInfo"};
    const auto checkWrite = [&logging](const char* pszFunction, auto write) {
        CAPTURE(pszFunction);
        const LineAtCall<decltype(WritePrivateProfileStringW)> line(logging, "WritePrivateProfileStringW");
        write();
        CHECK(line.Text() == std::string("VelUI_dll__VelUtility::") + pszFunction + " :START......");
    };
    checkWrite("WritePrivateProfileUINT", [&] { WritePrivateProfileUINT(L"S", L"K", 1, pszFile); });
    checkWrite("WritePrivateProfileINT", [&] { WritePrivateProfileINT(L"S", L"K", 1, pszFile); });
    checkWrite("WritePrivateProfileBOOL", [&] { WritePrivateProfileBOOL(L"S", L"K", 1, pszFile); });
    {
        const LineAtCall<decltype(GetPrivateProfileIntW)> line(logging, "GetPrivateProfileIntW");
        SubCmpCaps_Rtn(L"Copies", pszFile);
        CHECK(line.Text() == "VelUI_dll__VelUtility::SubCmpCaps_Rtn :START......");
    }
    {
        const LineAtCall<decltype(GetPrivateProfileIntW)> line(logging, "GetPrivateProfileIntW");
        DWORD dwValue = 0;
        SubCmpCaps_IntArray(L"Papers", pszFile, &dwValue, 1);
        CHECK(line.Text() == "VelUI_dll__VelUtility::SubCmpCaps_IntArray :START......");
    }
    const LineAtCall<decltype(GetPrivateProfileStringW)> line(logging, "GetPrivateProfileStringW");
    wchar_t szName[24];
    SubCmpCaps_StrArray(L"BinNames", pszFile, szName, 1, 24);
    CHECK(line.Text() == "VelUI_dll__VelUtility::SubCmpCaps_StrArray :START......");
}
