// What the store's calls answer, which words they leave in the log and where they stop when one write, read or opening
// fails, and that they leave none when nothing does.

#include "state/CapabilitySnapshot.h"
#include "state/ConfigFile.h"
#include "state/DataFiles.h"
#include "state/MessageFiles.h"
#include "state/UserIniFiles.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/LogLines.h"
#include "tests/state/FailingKey.h"

#include <catch2/catch_test_macros.hpp>

#include <cerrno>
#include <cstring>
#include <functional>

using namespace VelUtility;

namespace
{

using Lines = std::vector<std::string>;

/// The lines of a function's own between its START and End, from a log with OutputFunBeginInfo.
Lines Inner(const LoggingOn& logging, const std::string& strFunction)
{
    return InnerLines(logging, "VelUtility::" + strFunction);
}

/// The error line of some words.
Lines Error(const std::string& strWords)
{
    return {"ERROR - .\\ClientInfo(#) : " + strWords};
}

constexpr const char* kFlag = "WritePrivateProfileBOOL failed.";
constexpr const char* kNumber = "WritePrivateProfileUINT failed.";
constexpr const char* kSigned = "WritePrivateProfileINT failed.";
constexpr const char* kText = "WritePrivateProfileStringW failed.";
constexpr const char* kSettingText = "WritePrivateProfileString failed."; // that one function's own
constexpr const char* kNames = "WritePrivateProfileStringWArray failed.";
constexpr const char* kNumbers = "WritePrivateProfileUINTArray failed.";
constexpr const char* kResolutions = "WritePrivateProfileResolutoinArray failed.";
constexpr const char* kPoints = "WritePrivateProfilePointArray failed.";

/// One key of a writer, in the order of writing.
struct KeyRow
{
    const wchar_t* pszKey;
    const char* pszWords; ///< null when a failed write leaves none
};

struct Writer
{
    const char* pszFunction;
    DWORD dwFailed; ///< its answer when a write fails
    std::vector<KeyRow> keys;
    std::function<DWORD()> call;
};

/// A snapshot with two entries in every list.
DWORD WriteSnapshot()
{
    static constexpr NarrowName kBinNames[] = {L"b0", L"b1"};
    static constexpr WideName kWideNames[] = {L"n0", L"n1"};
    static constexpr WORD kWords[] = {1, 2};
    static constexpr DWORD kDwords[] = {1, 2};
    static constexpr Resolution kPairs[] = {{300, 300}, {600, 600}};
    static constexpr POINT kSizes[] = {{2100, 2970}, {2970, 4200}};
    PrinterCaps stuCaps = {};
    stuCaps.BinNames = kBinNames;
    stuCaps.Bins = kWords;
    stuCaps.Resolutions = kPairs;
    stuCaps.MediaReady = stuCaps.MediaTypeNames = stuCaps.PaperNames = kWideNames;
    stuCaps.MediaTypes = kDwords;
    stuCaps.Papers = kWords;
    stuCaps.PaperSizes = kSizes;
    for (DWORD PrinterCaps::*pCount :
         {&PrinterCaps::BinNamesCount, &PrinterCaps::BinsCount, &PrinterCaps::ResolutionCount,
          &PrinterCaps::MediaReadyCount, &PrinterCaps::MediaTypeNamesCount, &PrinterCaps::MediaTypesCount,
          &PrinterCaps::PaperNamesCount, &PrinterCaps::PapersCount, &PrinterCaps::PaperSizeCount})
    {
        stuCaps.*pCount = 2;
    }
    const PrinterInfo stuInfo = {L"P", L"L", L"D"};
    return MakePrinterConfig(&stuInfo, &stuCaps);
}

const std::vector<Writer>& Writers()
{
    static const std::vector<Writer> kWriters = {
        {"WriteClientSetting",
         1,
         {{L"DisplayProjectSelection", kFlag},
          {L"CanSelectNoPrinter", kFlag},
          {L"CanSelectNoProject", kFlag},
          {L"DefaultPrinter", kSettingText},
          {L"DefaultProject", kSettingText}},
         [] {
             const ClientSetting stuSetting = {1, 0, 1, L"p", L"j"};
             return WriteClientSetting(&stuSetting);
         }},
        {"MakeServerConfig",
         1,
         {{L"WaterPrintInstalled", kFlag},
          {L"AuditInstalled", kFlag},
          {L"SGIdentifyInstalled", kFlag},
          {L"FilterIntalled", kFlag}},
         [] {
             const ServerConfigInfo stuConfig = {1, 0, 1, 0};
             return MakeServerConfig(&stuConfig);
         }},
        {"MakeServerPlaceFile",
         1,
         {{L"Server", kText}, {L"IPAddress", kNumber}, {L"Mode", kNumber}},
         [] {
             const ServerPlace stuPlace = {L"s", {10, 0, 0, 1}, 1};
             return MakeServerPlaceFile(&stuPlace);
         }},
        {"MakeServerPlaceFileNew", 1, {{L"Server", kText}}, [] { return MakeServerPlaceFileNew(L"s"); }},
        {"MakeUserMessageID", 1, {{L"MessageId", kNumber}}, [] { return MakeUserMessageID(L"lin", 1); }},
        {"MakeUserMessageDays", 1, {{L"SaveDays", kSigned}}, [] { return MakeUserMessageDays(L"lin", 1); }},
        // The two that do not tell of a failed write.
        {"MakeDefSetting",
         0,
         {{L"DefaultNoWaterPrint", nullptr}},
         [] {
             const DWORD dwValue = 1;
             return MakeDefSetting(&dwValue);
         }},
        {"MakePrinterConfig",
         0,
         {{L"PrinterName", kText},
          {L"Location", kText},
          {L"Description", kText},
          {L"BinNamesCount", kNumber},
          {L"BinNames0", kNames},
          {L"BinNames1", kNames},
          {L"BinsCount", kNumber},
          {L"Bins0", kNumbers},
          {L"Bins1", kNumbers},
          {L"Collate", kNumber},
          {L"ColorDevice", kNumber},
          {L"Copies", kNumber},
          {L"Duplex", kNumber},
          {L"ResolutionCount", kNumber},
          {L"ResolutionX0", kResolutions},
          {L"ResolutionY0", kResolutions},
          {L"ResolutionX1", kResolutions},
          {L"ResolutionY1", kResolutions},
          {L"MaxExtent", kNumber},
          {L"MinExtent", kNumber},
          {L"MediaReadyCount", kNumber},
          {L"MediaReady0", kNames},
          {L"MediaReady1", kNames},
          {L"MediaTypeNamesCount", kNumber},
          {L"MediaTypeNames0", kNames},
          {L"MediaTypeNames1", kNames},
          {L"MediaTypesCount", kNumber},
          {L"MediaTypes0", kNumbers},
          {L"MediaTypes1", kNumbers},
          {L"Orientation", kNumber},
          {L"PaperNamesCount", kNumber},
          {L"PaperNames0", kNames},
          {L"PaperNames1", kNames},
          {L"PapersCount", kNumber},
          {L"Papers0", kNumbers},
          {L"Papers1", kNumbers},
          {L"PaperSizeCount", kNumber},
          {L"PaperSizeX0", kPoints},
          {L"PaperSizeY0", kPoints},
          {L"PaperSizeX1", kPoints},
          {L"PaperSizeY1", kPoints},
          {L"PrintMem", kNumber},
          {L"PrintRate", kNumber},
          {L"PrintPPM", kNumber},
          {L"PrintRateUnit", kNumber}},
         &WriteSnapshot},
    };
    return kWriters;
}

FILE* FailOpening(const wchar_t*, const wchar_t*)
{
    errno = EMFILE;
    return nullptr;
}

size_t FailReading(void*, size_t, size_t, FILE*)
{
    errno = EIO;
    return 0;
}

size_t FailWriting(const void*, size_t, size_t, FILE*)
{
    errno = ENOSPC;
    return 0;
}

int FailFlushing(FILE*)
{
    errno = ENOSPC;
    return EOF;
}

/// A call on a data file.
struct DataCall
{
    const char* pszFunction;
    const wchar_t* pszFile;
    std::function<DWORD()> call;
};

const BYTE kBytes[4] = {1, 2, 3, 4};

const DataCall kMakeLogon = {"MakeAutoLogonInfo", L"QPS@VEL_passport.dat", [] { return MakeAutoLogonInfo(kBytes, 4); }};
const DataCall kMakeName = {"MakeLogonUserName", L"QPS@VEL_passport.dat", [] { return MakeLogonUserName(L"u"); }};
const DataCall kGetLogon = {"GetAutoLogonInfo", L"QPS@VEL_passport.dat", [] {
                                BYTE abyData[8];
                                int iLength = 0;
                                return GetAutoLogonInfo(abyData, 8, &iLength);
                            }};
const DataCall kAppend = {"AppendUserMessageFile", L"lin_Message.dat",
                          [] { return AppendUserMessageFile(L"lin", kBytes, 4); }};
const DataCall kSetRecord = {"SetDevDef", L"QPS@VEL_DevMode.dat", [] {
                                 const DEVMODEW stuDevmode = {};
                                 return SetDevDef(&stuDevmode);
                             }};
const DataCall kGetRecord = {"GetDevDef", L"QPS@VEL_DevMode.dat", [] {
                                 DEVMODEW stuDevmode;
                                 return GetDevDef(&stuDevmode);
                             }};

/// Makes a call with one function of the C runtime failing, and checks its answer and its lines.
template <typename Function>
void CheckWords(const char* pszFailing, Function* pfnFailing, const DataCall& row, DWORD dwStatus,
                const Lines& expected)
{
    CAPTURE(row.pszFunction);
    const LoggingOn logging{"OutputFunBeginInfo"};
    DWORD dwAnswer = 77;
    {
        const ImportHook hook(nullptr, pszFailing, pfnFailing);
        dwAnswer = row.call();
    }
    CHECK(dwAnswer == dwStatus);
    CHECK(Inner(logging, row.pszFunction) == expected);
}

} // namespace

TEST_CASE_METHOD(ClientFixture, "each profile write that fails ends its call there, with the writer's words",
                 "[state][failures][log]")
{
    for (const Writer& writer : Writers())
    {
        for (size_t uiFailing = 0; uiFailing < writer.keys.size(); ++uiFailing)
        {
            const KeyRow& row = writer.keys[uiFailing];
            CAPTURE(writer.pszFunction, uiFailing);
            const LoggingOn logging{"OutputFunBeginInfo"};
            const FailingKey failing(row.pszKey);
            CHECK(writer.call() == writer.dwFailed);
            CHECK(failing.Asked().size() == uiFailing + 1);
            CHECK(failing.Asked().back() == row.pszKey);
            CHECK(Inner(logging, writer.pszFunction) == (row.pszWords != nullptr ? Error(row.pszWords) : Lines()));
        }
    }
}

TEST_CASE_METHOD(ClientFixture, "profile writes that all succeed leave no line, and every key", "[state][log]")
{
    for (const Writer& writer : Writers())
    {
        CAPTURE(writer.pszFunction);
        const LoggingOn logging{"OutputFunBeginInfo"};
        const FailingKey none(L"");
        CHECK(writer.call() == 0);
        CHECK(Inner(logging, writer.pszFunction).empty());
        CHECK_FALSE(logging.Has("failed"));
        CHECK_FALSE(logging.Has("GetLastError"));
        REQUIRE(none.Asked().size() == writer.keys.size());
        for (size_t uiKey = 0; uiKey < writer.keys.size(); ++uiKey)
        {
            CHECK(none.Asked()[uiKey] == writer.keys[uiKey].pszKey);
        }
    }
}

TEST_CASE_METHOD(ClientFixture, "each data file that can't be opened leaves its path and the reason, and 1",
                 "[state][records][log]")
{
    const std::string strFolder(folder.Path().begin(), folder.Path().end());
    for (const DataCall& row : {kMakeLogon, kMakeName, kGetLogon, kAppend, kSetRecord, kGetRecord})
    {
        const std::wstring strFile = row.pszFile;
        CheckWords("_wfopen", &FailOpening, row, 1,
                   Error("_wfopen failed. name = " + strFolder + "\\" + std::string(strFile.begin(), strFile.end()) +
                         ", err = " + std::strerror(EMFILE)));
    }
}

TEST_CASE_METHOD(ClientFixture, "each read and write of a data file that fails leaves the reason, and 1",
                 "[state][records][log]")
{
    WriteFileBytes(folder.File(L"QPS@VEL_passport.dat"), "pass");
    WriteFileBytes(folder.File(L"QPS@VEL_DevMode.dat"), std::string(220, 'd'));
    for (const DataCall& row : {kGetLogon, kGetRecord})
    {
        CheckWords("fread", &FailReading, row, 1, Error(std::string("fread failed. err = ") + std::strerror(EIO)));
    }
    for (const DataCall& row : {kMakeLogon, kMakeName, kAppend})
    {
        CheckWords("fwrite", &FailWriting, row, 1, Error(std::string("fwrite failed. err = ") + std::strerror(ENOSPC)));
    }
    CheckWords("fwrite", &FailWriting, kSetRecord, 0, {}); // a full disk is no failure of this one
}

TEST_CASE_METHOD(ClientFixture, "a message that can't be flushed counts as stored and leaves the reason",
                 "[state][records][log]")
{
    CheckWords("fflush", &FailFlushing, kAppend, 0,
               Error(std::string("fflush failed. err = ") + std::strerror(ENOSPC)));
}
