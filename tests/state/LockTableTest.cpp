// Which calls wait for a file's lock, and which do not.

#include "state/CapabilitySnapshot.h"
#include "state/ConfigFile.h"
#include "state/DataFiles.h"
#include "state/MessageFiles.h"
#include "state/UserIniFiles.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/LockHolder.h"

#include <catch2/catch_test_macros.hpp>

#include <functional>

using namespace VelUtility;

namespace
{

/// One call of the store on a thread of its own.
class Call
{
public:
    explicit Call(std::function<void()> function) : m_function(std::move(function))
    {
        m_hThread = CreateThread(
            nullptr, 0,
            [](void* pv) -> DWORD {
                static_cast<Call*>(pv)->m_function();
                return 0;
            },
            this, 0, nullptr);
    }
    ~Call()
    {
        WaitForSingleObject(m_hThread, 20000);
        CloseHandle(m_hThread);
    }
    bool Ends(DWORD dwMilliseconds) const { return WaitForSingleObject(m_hThread, dwMilliseconds) == WAIT_OBJECT_0; }

private:
    std::function<void()> m_function;
    HANDLE m_hThread;
};

struct LockedCall
{
    const char* pszName;
    const wchar_t* pszFile; ///< in the client's folder
    std::function<void()> function;
};

const BYTE kBytes[4] = {1, 2, 3, 4};

std::vector<LockedCall> LockedCalls()
{
    return {
        {"ReadClientSetting", L"Config.ini",
         [] {
             ClientSetting s;
             ReadClientSetting(&s);
         }},
        {"GetServerConfig", L"Config.ini",
         [] {
             ServerConfigInfo s;
             GetServerConfig(&s);
         }},
        {"GetPrinterInfo", L"Config.ini",
         [] {
             PrinterInfo s;
             GetPrinterInfo(&s);
         }},
        {"MakePrinterConfig", L"Config.ini",
         [] {
             PrinterInfo i;
             PrinterCaps c = {};
             MakePrinterConfig(&i, &c);
         }},
        {"GetComputerCaps", L"Config.ini", [] { GetComputerCaps(DC_COPIES, nullptr); }},
        {"GetDefSetting", L"QPS@VEL_defsetting.ini",
         [] {
             DWORD dw;
             GetDefSetting(&dw);
         }},
        {"MakeDefSetting", L"QPS@VEL_defsetting.ini",
         [] {
             DWORD dw = 1;
             MakeDefSetting(&dw);
         }},
        {"MakeServerPlaceFile", L"QPS@VEL_server.ini",
         [] {
             ServerPlace s = {};
             MakeServerPlaceFile(&s);
         }},
        {"GetServerPlaceFile", L"QPS@VEL_server.ini",
         [] {
             ServerPlace s = {};
             GetServerPlaceFile(&s);
         }},
        {"MakeServerPlaceFileNew", L"serverconfig.ini", [] { MakeServerPlaceFileNew(L"s"); }},
        {"GetServerPlaceFileNew", L"serverconfig.ini",
         [] {
             std::wstring s;
             GetServerPlaceFileNew(&s);
         }},
        {"MakeAutoLogonInfo", L"QPS@VEL_passport.dat", [] { MakeAutoLogonInfo(kBytes, 4); }},
        {"MakeLogonUserName", L"QPS@VEL_passport.dat", [] { MakeLogonUserName(L"u"); }},
        {"GetAutoLogonInfo", L"QPS@VEL_passport.dat",
         [] {
             BYTE b[9];
             int i;
             GetAutoLogonInfo(b, 9, &i);
         }},
        {"DelAutoLogonInfo", L"QPS@VEL_passport.dat", [] { DelAutoLogonInfo(); }},
        {"MakeUserMessageID", L"lin_MsgConfig.ini", [] { MakeUserMessageID(L"lin", 1); }},
        {"GetUserMessageID", L"lin_MsgConfig.ini",
         [] {
             DWORD dw;
             GetUserMessageID(L"lin", &dw);
         }},
        {"GetUserMsgInterval", L"lin_MsgConfig.ini",
         [] {
             DWORD dw;
             GetUserMsgInterval(L"lin", &dw);
         }},
        {"MakeUserMessageDays", L"lin_MsgConfig.ini", [] { MakeUserMessageDays(L"lin", 1); }},
        {"GetUserMessageDays", L"lin_MsgConfig.ini",
         [] {
             int i;
             GetUserMessageDays(L"lin", &i);
         }},
        {"AppendUserMessageFile", L"lin_Message.dat", [] { AppendUserMessageFile(L"lin", kBytes, 4); }},
        {"DelUserMessageFile", L"lin_Message.dat", [] { DelUserMessageFile(L"lin"); }},
        {"SetDevDef", L"QPS@VEL_DevMode.dat",
         [] {
             DEVMODEW d = {};
             SetDevDef(&d);
         }},
        {"GetDevDef", L"QPS@VEL_DevMode.dat",
         [] {
             DEVMODEW d;
             GetDevDef(&d);
         }},
    };
}

} // namespace

TEST_CASE_METHOD(ClientFixture, "every guarded call waits for its file's lock and for no other's",
                 "[state][locks][table]")
{
    for (const LockedCall& row : LockedCalls())
    {
        CAPTURE(row.pszName);
        LockHolder held(folder.File(row.pszFile));
        const Call call(row.function);
        CHECK_FALSE(call.Ends(60));
        held.End();
        CHECK(call.Ends(20000));
    }
}

TEST_CASE_METHOD(ClientFixture, "two writers and the test for the file go past the lock of Config.ini",
                 "[state][locks][table]")
{
    LockHolder held(ConfigFile());
    ClientSetting setting = {1, 0, 0, L"", L""};
    ServerConfigInfo config = {1, 0, 0, 0};
    CHECK(WriteClientSetting(&setting) == 0);
    CHECK(MakeServerConfig(&config) == 0);
    CHECK(CheckConfigFile() == 0);
    CHECK(ReadFileBytes(ConfigFile()).find("WaterPrintInstalled=1") != std::string::npos);
    held.End();
}

TEST_CASE_METHOD(ClientFixture, "telling the message file's path takes no lock", "[state][locks][table]")
{
    LockHolder held(folder.File(L"lin_Message.dat"));
    std::wstring strPath;
    CHECK(GetUserMessageFile(L"lin", &strPath) == 0);
    held.End();
}
