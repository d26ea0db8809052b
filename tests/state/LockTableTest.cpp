// What each call of the store does under which lock: one row a call, with all its steps on locks and files in their
// order.

#include "state/CapabilitySnapshot.h"
#include "state/ConfigFile.h"
#include "state/DataFiles.h"
#include "state/MessageFiles.h"
#include "state/UserIniFiles.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/LockHolder.h"
#include "tests/common/LockWatch.h"

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
    bool Ends() const { return WaitForSingleObject(m_hThread, 20000) == WAIT_OBJECT_0; }

private:
    std::function<void()> m_function;
    HANDLE m_hThread;
};

struct StoreCall
{
    const char* pszName;
    const wchar_t* pszFile; ///< in the client's folder
    const char* pszSteps;   ///< as LockWatch names them; a call that takes no lock has no "lock" among them
    std::function<void()> call;
};

const BYTE kBytes[4] = {1, 2, 3, 4};

constexpr wchar_t kConfig[] = L"Config.ini";
constexpr wchar_t kSetting[] = L"QPS@VEL_defsetting.ini";
constexpr wchar_t kPlace[] = L"QPS@VEL_server.ini";
constexpr wchar_t kMachinePlace[] = L"serverconfig.ini";
constexpr wchar_t kPassport[] = L"QPS@VEL_passport.dat";
constexpr wchar_t kMessageState[] = L"lin_MsgConfig.ini";
constexpr wchar_t kMessages[] = L"lin_Message.dat";
constexpr wchar_t kDevMode[] = L"QPS@VEL_DevMode.dat";

/// The files as each call finds them.
struct LockTableFixture : ClientFixture
{
    LockTableFixture()
    {
        WriteCaps({{L"Copies", L"5"},
                   {L"PapersCount", L"2"},
                   {L"Papers0", L"9"},
                   {L"Papers1", L"8"},
                   {L"PaperSizeCount", L"2"},
                   {L"PaperSizeX0", L"2100"},
                   {L"PaperSizeY0", L"2970"},
                   {L"PaperSizeX1", L"2970"},
                   {L"PaperSizeY1", L"4200"},
                   {L"PaperNamesCount", L"2"},
                   {L"PaperNames0", L"A4"},
                   {L"PaperNames1", L"A3"},
                   {L"MediaTypesCount", L"2"},
                   {L"MediaTypes0", L"1"},
                   {L"MediaTypes1", L"2"}});
        WriteFileBytes(folder.File(kPassport), "pass");
        WriteFileBytes(folder.File(kMessages), "old");
        WriteFileBytes(folder.File(kDevMode), std::string(220, 'd'));
    }
};

/// The calls on Config.ini.
const std::vector<StoreCall>& ConfigCalls()
{
    static const std::vector<StoreCall> kCalls = {
        {"ReadClientSetting", kConfig,
         "lock ?DisplayProjectSelection ?CanSelectNoPrinter ?CanSelectNoProject ?DefaultPrinter ?DefaultProject unlock",
         [] {
             ClientSetting stuSetting;
             CHECK(ReadClientSetting(&stuSetting) == 0);
         }},
        // The two writers below and the test for the file run without the lock.
        {"WriteClientSetting", kConfig,
         "DisplayProjectSelection= CanSelectNoPrinter= CanSelectNoProject= DefaultPrinter= DefaultProject=",
         [] {
             const ClientSetting stuSetting = {1, 0, 0, L"p", L"j"};
             CHECK(WriteClientSetting(&stuSetting) == 0);
         }},
        {"GetServerConfig", kConfig,
         "lock ?WaterPrintInstalled ?AuditInstalled ?SGIdentifyInstalled ?FilterIntalled unlock",
         [] {
             ServerConfigInfo stuConfig;
             CHECK(GetServerConfig(&stuConfig) == 0);
         }},
        {"MakeServerConfig", kConfig, "WaterPrintInstalled= AuditInstalled= SGIdentifyInstalled= FilterIntalled=",
         [] {
             const ServerConfigInfo stuConfig = {1, 0, 0, 0};
             CHECK(MakeServerConfig(&stuConfig) == 0);
         }},
        {"CheckConfigFile", kConfig, "_waccess", [] { CHECK(CheckConfigFile() == 0); }},
        {"GetPrinterInfo", kConfig, "lock ?PrinterName ?Location ?Description unlock",
         [] {
             PrinterInfo stuInfo;
             CHECK(GetPrinterInfo(&stuInfo) == 0);
         }},
        {"MakePrinterConfig", kConfig,
         "lock PrinterName= Location= Description= BinNamesCount= BinsCount= Collate= ColorDevice= Copies= Duplex= "
         "ResolutionCount= MaxExtent= MinExtent= MediaReadyCount= MediaTypeNamesCount= MediaTypesCount= Orientation= "
         "PaperNamesCount= PapersCount= Papers0= Papers1= PaperSizeCount= PrintMem= PrintRate= PrintPPM= "
         "PrintRateUnit= "
         "unlock",
         [] {
             const WORD papers[2] = {9, 8};
             PrinterCaps stuCaps = {};
             stuCaps.Papers = papers;
             stuCaps.PapersCount = 2;
             const PrinterInfo stuInfo = {L"P", L"L", L"D"};
             CHECK(MakePrinterConfig(&stuInfo, &stuCaps) == 0);
         }},
    };
    return kCalls;
}

/// The queries of the snapshot.
const std::vector<StoreCall>& QueryCalls()
{
    static const std::vector<StoreCall> kCalls = {
        {"GetComputerCaps, a number", kConfig, "lock ?Copies unlock",
         [] { CHECK(GetComputerCaps(DC_COPIES, nullptr) == 5); }},
        {"GetComputerCaps, a count of numbers", kConfig, "lock ?PapersCount unlock",
         [] { CHECK(GetComputerCaps(DC_PAPERS, nullptr) == 2); }},
        {"GetComputerCaps, a count of pairs", kConfig, "lock ?PaperSizeCount unlock",
         [] { CHECK(GetComputerCaps(DC_PAPERSIZE, nullptr) == 2); }},
        {"GetComputerCaps, a count of names", kConfig, "lock ?PaperNamesCount unlock",
         [] { CHECK(GetComputerCaps(DC_PAPERNAMES, nullptr) == 2); }},
        {"GetComputerCaps, a missing count", kConfig, "lock ?BinsCount unlock",
         [] {
             WORD bins[2];
             CHECK(GetComputerCaps(DC_BINS, bins) == kNoAnswer);
         }},
        {"GetComputerCaps, 16-bit numbers", kConfig, "lock ?PapersCount ?Papers0 ?Papers1 unlock",
         [] {
             WORD papers[2];
             CHECK(GetComputerCaps(DC_PAPERS, papers) == 2);
         }},
        {"GetComputerCaps, 32-bit numbers", kConfig, "lock ?MediaTypesCount ?MediaTypes0 ?MediaTypes1 unlock",
         [] {
             DWORD mediaTypes[2];
             CHECK(GetComputerCaps(DC_MEDIATYPES, mediaTypes) == 2);
         }},
        {"GetComputerCaps, pairs", kConfig,
         "lock ?PaperSizeCount ?PaperSizeX0 ?PaperSizeX1 ?PaperSizeY0 ?PaperSizeY1 unlock",
         [] {
             POINT sizes[2];
             CHECK(GetComputerCaps(DC_PAPERSIZE, sizes) == 2);
         }},
        {"GetComputerCaps, names", kConfig, "lock ?PaperNamesCount ?PaperNames0 ?PaperNames1 unlock",
         [] {
             WideName names[2];
             CHECK(GetComputerCaps(DC_PAPERNAMES, names) == 2);
         }},
        {"GetComputerCaps, a code outside the snapshot", kConfig, "lock unlock",
         [] { CHECK(GetComputerCaps(DC_FIELDS, nullptr) == kNoAnswer); }},
    };
    return kCalls;
}

/// The calls on the small settings files in the data folder, and on the state of a user's messages.
const std::vector<StoreCall>& ProfileCalls()
{
    static const std::vector<StoreCall> kCalls = {
        {"GetDefSetting", kSetting, "lock ?DefaultNoWaterPrint unlock",
         [] {
             DWORD dwValue = 0;
             CHECK(GetDefSetting(&dwValue) == 0);
         }},
        {"MakeDefSetting", kSetting, "lock DefaultNoWaterPrint= unlock",
         [] {
             const DWORD dwValue = 1;
             CHECK(MakeDefSetting(&dwValue) == 0);
         }},
        {"MakeServerPlaceFile", kPlace, "lock Server= IPAddress= Mode= unlock",
         [] {
             const ServerPlace stuPlace = {L"s", {10, 0, 0, 1}, 1};
             CHECK(MakeServerPlaceFile(&stuPlace) == 0);
         }},
        {"GetServerPlaceFile", kPlace, "lock ?Server ?IPAddress ?Mode unlock",
         [] {
             ServerPlace stuPlace = {};
             CHECK(GetServerPlaceFile(&stuPlace) == 0);
         }},
        {"MakeServerPlaceFileNew", kMachinePlace, "lock Server= unlock",
         [] { CHECK(MakeServerPlaceFileNew(L"s") == 0); }},
        {"GetServerPlaceFileNew", kMachinePlace, "lock ?Server unlock",
         [] {
             std::wstring strServer;
             CHECK(GetServerPlaceFileNew(&strServer) == 0);
         }},
        {"MakeUserMessageID", kMessageState, "lock MessageId= unlock",
         [] { CHECK(MakeUserMessageID(L"lin", 1) == 0); }},
        {"GetUserMessageID", kMessageState, "lock ?MessageId unlock",
         [] {
             DWORD dwId = 0;
             CHECK(GetUserMessageID(L"lin", &dwId) == 0);
         }},
        {"GetUserMsgInterval", kMessageState, "lock ?Interval unlock",
         [] {
             DWORD dwInterval = 0;
             CHECK(GetUserMsgInterval(L"lin", &dwInterval) == 0);
         }},
        {"MakeUserMessageDays", kMessageState, "lock SaveDays= unlock",
         [] { CHECK(MakeUserMessageDays(L"lin", 1) == 0); }},
        {"GetUserMessageDays", kMessageState, "lock ?SaveDays unlock",
         [] {
             int iDays = 0;
             CHECK(GetUserMessageDays(L"lin", &iDays) == 0);
         }},
    };
    return kCalls;
}

/// The calls on data files. Their streams are closed behind the lock.
const std::vector<StoreCall>& DataCalls()
{
    static const std::vector<StoreCall> kCalls = {
        {"MakeAutoLogonInfo", kPassport, "lock _wfopen fwrite unlock fclose",
         [] { CHECK(MakeAutoLogonInfo(kBytes, 4) == 0); }},
        {"MakeAutoLogonInfo, nothing", kPassport, "lock _wfopen fwrite unlock fclose",
         [] { CHECK(MakeAutoLogonInfo(kBytes, 0) == 1); }},
        {"MakeLogonUserName", kPassport, "lock _wfopen fwrite unlock fclose",
         [] { CHECK(MakeLogonUserName(L"u") == 0); }},
        {"GetAutoLogonInfo", kPassport, "lock _wfopen _filelength fread unlock fclose",
         [] {
             BYTE abyData[4];
             int iLength = 0;
             CHECK(GetAutoLogonInfo(abyData, 4, &iLength) == 0);
         }},
        {"GetAutoLogonInfo, a small buffer", kPassport, "lock _wfopen _filelength unlock fclose",
         [] {
             BYTE abyData[3];
             int iLength = 0;
             CHECK(GetAutoLogonInfo(abyData, 3, &iLength) == 16);
         }},
        {"DelAutoLogonInfo", kPassport, "lock _wchmod DeleteFileW unlock", [] { CHECK(DelAutoLogonInfo() == 0); }},
        {"GetAutoLogonInfo, no file", kPassport, "lock _wfopen unlock",
         [] {
             BYTE abyData[4];
             int iLength = 0;
             CHECK(GetAutoLogonInfo(abyData, 4, &iLength) == 1);
         }},
        // The bytes reach the file under the lock, or two appends would write them to one place.
        {"AppendUserMessageFile", kMessages, "lock _wfopen fwrite fflush unlock fclose",
         [] { CHECK(AppendUserMessageFile(L"lin", kBytes, 4) == 0); }},
        {"AppendUserMessageFile, nothing", kMessages, "lock _wfopen fwrite unlock fclose",
         [] { CHECK(AppendUserMessageFile(L"lin", kBytes, 0) == 1); }},
        {"GetUserMessageFile", kMessages, "",
         [] {
             std::wstring strPath;
             CHECK(GetUserMessageFile(L"lin", &strPath) == 0);
         }},
        {"DelUserMessageFile", kMessages, "lock _wchmod DeleteFileW unlock",
         [] { CHECK(DelUserMessageFile(L"lin") == 0); }},
        {"GetDevDef", kDevMode, "lock _wfopen fread unlock fclose",
         [] {
             DEVMODEW stuDevmode;
             CHECK(GetDevDef(&stuDevmode) == 0);
         }},
        {"SetDevDef", kDevMode, "lock _wfopen fwrite unlock fclose",
         [] {
             const DEVMODEW stuDevmode = {};
             CHECK(SetDevDef(&stuDevmode) == 0);
         }},
    };
    return kCalls;
}

std::vector<StoreCall> AllCalls()
{
    std::vector<StoreCall> all;
    for (const auto* pCalls : {&QueryCalls(), &ConfigCalls(), &ProfileCalls(), &DataCalls()})
    {
        all.insert(all.end(), pCalls->begin(), pCalls->end());
    }
    return all;
}

/// Checks that the lock of a file is held from each "lock" to its "unlock", that it alone is, and that none is else.
void CheckHeld(const std::vector<LockStep>& steps, const std::wstring& strMutex)
{
    bool bInside = false;
    for (const LockStep& step : steps)
    {
        CAPTURE(step.strWhat);
        bInside = step.strWhat == "lock" || (bInside && step.strWhat != "unlock");
        CHECK(step.held == (bInside ? std::set<std::wstring>{strMutex} : std::set<std::wstring>{}));
    }
}

} // namespace

TEST_CASE_METHOD(LockTableFixture, "each call works on its file with that file's lock held throughout, and no other",
                 "[state][locks][table]")
{
    LockWatch watch;
    for (const StoreCall& row : AllCalls())
    {
        CAPTURE(row.pszName);
        watch.Watch(row.call);
        CHECK(watch.Line() == row.pszSteps);
        CheckHeld(watch.Steps(), MutexNameOf(folder.File(row.pszFile)));
    }
}

TEST_CASE_METHOD(LockTableFixture, "each guarded call waits for its file's lock before it touches the file",
                 "[state][locks][table]")
{
    LockWatch watch;
    for (const StoreCall& row : AllCalls())
    {
        if (std::string(row.pszSteps).compare(0, 4, "lock") != 0)
        {
            continue;
        }
        CAPTURE(row.pszName);
        const HANDLE hMutex = CreateMutexW(nullptr, TRUE, MutexNameOf(folder.File(row.pszFile)).c_str());
        REQUIRE(hMutex != nullptr);
        {
            const Call call([&] { watch.Watch(row.call); });
            const bool bWaits = watch.WaitsForLock();
            const std::string strBefore = watch.Line();
            const BOOL bReleased = ReleaseMutex(hMutex);
            const bool bEnds = call.Ends(); // from here on the call's thread checks nothing
            CHECK(bWaits);
            CHECK(strBefore.empty());
            CHECK(bReleased);
            REQUIRE(bEnds);
        }
        CHECK(watch.Line() == row.pszSteps);
        CloseHandle(hMutex);
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
