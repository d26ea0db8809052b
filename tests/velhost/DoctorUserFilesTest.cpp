// What the doctor finds in the users' files. The files are those that the module's own writers make; each fault gives
// its own finding and no other.

#include "settings/DriverDevmode.h"
#include "state/DataFiles.h"
#include "state/MessageFiles.h"
#include "state/StorePaths.h"
#include "state/UserIniFiles.h"
#include "tests/velhost/DoctorFixture.h"
#include "tools/velhost/doctor/UserFilesCheck.h"
#include "tools/velhost/report/CommandError.h"

#include <catch2/catch_test_macros.hpp>

using namespace VelHost;

namespace
{

using Codes = std::vector<std::string>;

constexpr LONGLONG kHuge = 100 * 1024 * 1024;

std::wstring Personal(const wchar_t* pszName)
{
    wchar_t szPath[VelUtility::kStorePathUnits] = {};
    REQUIRE(VelUtility::MakePersonalFilePath(pszName, szPath));
    return szPath;
}

std::wstring OfLin(const wchar_t* pszName)
{
    wchar_t szPath[VelUtility::kStorePathUnits] = {};
    REQUIRE(VelUtility::MakeUserMessageFilePath(pszName, L"lin", szPath));
    return szPath;
}

/// Makes every file that the store keeps for a user.
void WriteGoodFiles()
{
    DEVMODEW record = {};
    record.dmSize = 220;
    record.dmDriverExtra = 12;
    REQUIRE(VelUtility::SetDevDef(&record) == 0);
    const DWORD dwNoWaterPrint = 1;
    REQUIRE(VelUtility::MakeDefSetting(&dwNoWaterPrint) == 0);
    const VelUtility::ServerPlace place = {L"print01", {10, 1, 2, 255}, 1};
    REQUIRE(VelUtility::MakeServerPlaceFile(&place) == 0);
    REQUIRE(VelUtility::MakeServerPlaceFileNew(L"print02") == 0);
    REQUIRE(VelUtility::MakeLogonUserName(L"lin") == 0);
    REQUIRE(VelUtility::MakeUserMessageID(L"lin", 0xFFFFFFFF) == 0);
    REQUIRE(VelUtility::MakeUserMessageDays(L"lin", -1) == 0);
    const BYTE abyMessage[] = {1, 2, 3};
    REQUIRE(VelUtility::AppendUserMessageFile(L"lin", abyMessage, sizeof(abyMessage)) == 0);
}

Codes Look()
{
    return CodesOf([](Findings& findings) { CheckUserFiles(L"lin", findings); });
}

void WriteRecordSizes(WORD wSize, WORD wExtra)
{
    DEVMODEW record = {};
    record.dmSize = wSize;
    record.dmDriverExtra = wExtra;
    REQUIRE(VelUtility::SetDevDef(&record) == 0);
}

void PutFolderInPlaceOf(const std::wstring& strPath)
{
    REQUIRE(DeleteFileW(strPath.c_str()));
    REQUIRE(CreateDirectoryW(strPath.c_str(), nullptr));
}

void WriteNumber(const std::wstring& strPath, const wchar_t* pszSection, const wchar_t* pszKey, const wchar_t* pszText)
{
    REQUIRE(WritePrivateProfileStringW(pszSection, pszKey, pszText, strPath.c_str()));
}

std::string Utf16(const std::wstring& strText)
{
    return std::string(reinterpret_cast<const char*>(strText.data()), strText.size() * sizeof(wchar_t));
}

constexpr wchar_t kDefSettingText[] = L"[PrintSetting]\r\nDefaultNoWaterPrint=1\r\n";

struct UserFault
{
    const char* pszName;
    std::function<void()> make;
    const char* pszCode; ///< null for what is good
};

const UserFault kFaults[] = {
    {"an empty record", [] { WriteFileBytes(Personal(L"DevMode.dat"), ""); }, "USR01"},
    {"a record of 219 bytes", [] { WriteFileBytes(Personal(L"DevMode.dat"), std::string(219, '\1')); }, "USR01"},
    {"a record with its tail",
     [] { WriteFileBytes(Personal(L"DevMode.dat"), ReadFileBytes(Personal(L"DevMode.dat")) + std::string(12, '\0')); },
     "USR02"},
    {"a record of 100 MB", [] { WriteSparseFile(Personal(L"DevMode.dat"), kHuge); }, "USR02"},
    {"an extra of 0", [] { WriteRecordSizes(220, 0); }, "USR03"},
    {"a size of 1000", [] { WriteRecordSizes(1000, 12); }, "USR03"},
    {"a folder for the record", [] { PutFolderInPlaceOf(Personal(L"DevMode.dat")); }, "USR05"},
    {"a folder for the messages", [] { PutFolderInPlaceOf(OfLin(L"Message.dat")); }, "USR05"},
    {"a read-only record", [] { SetFileAttributesW(Personal(L"DevMode.dat").c_str(), FILE_ATTRIBUTE_READONLY); },
     "USR06"},
    {"read-only settings", [] { SetFileAttributesW(Personal(L"defsetting.ini").c_str(), FILE_ATTRIBUTE_READONLY); },
     "USR06"},
    {"settings in UTF-16 without a mark", [] { WriteFileBytes(Personal(L"defsetting.ini"), Utf16(kDefSettingText)); },
     "USR07"},
    {"settings in UTF-8 with a mark",
     [] { WriteFileBytes(Personal(L"defsetting.ini"), "\xEF\xBB\xBF[PrintSetting]\r\nDefaultNoWaterPrint=1\r\n"); },
     "USR07"},
    {"settings in UTF-16 the other way round", [] { WriteFileBytes(Personal(L"defsetting.ini"), "\xFE\xFF"); },
     "USR07"},
    {"settings in UTF-16", [] { WriteFileBytes(Personal(L"defsetting.ini"), "\xFF\xFE" + Utf16(kDefSettingText)); },
     nullptr},
    {"messages' state that is no text", [] { WriteFileBytes(OfLin(L"MsgConfig.ini"), std::string(64, '\0')); },
     "USR07"},
    {"a watermark word",
     [] { WriteNumber(Personal(L"defsetting.ini"), L"PrintSetting", L"DefaultNoWaterPrint", L"yes"); }, "USR08"},
    {"a watermark of 2",
     [] { WriteNumber(Personal(L"defsetting.ini"), L"PrintSetting", L"DefaultNoWaterPrint", L"2"); }, "USR08"},
    {"an empty watermark",
     [] { WriteNumber(Personal(L"defsetting.ini"), L"PrintSetting", L"DefaultNoWaterPrint", L""); }, nullptr},
    {"a message number with a letter", [] { WriteNumber(OfLin(L"MsgConfig.ini"), L"Message", L"MessageId", L"12a"); },
     "USR08"},
    {"a message number of 33 bits",
     [] { WriteNumber(OfLin(L"MsgConfig.ini"), L"Message", L"MessageId", L"4294967296"); }, "USR08"},
    {"no interval", [] { WriteNumber(OfLin(L"MsgConfig.ini"), L"Message", L"Interval", L"0"); }, "USR08"},
    {"days beyond 31 bits", [] { WriteNumber(OfLin(L"MsgConfig.ini"), L"Message", L"SaveDays", L"2147483648"); },
     "USR08"},
    {"an address beyond 32 bits", [] { WriteNumber(Personal(L"server.ini"), L"Server", L"IPAddress", L"4294967296"); },
     "USR08"},
    {"a mode of 2", [] { WriteNumber(Personal(L"server.ini"), L"Server", L"Mode", L"2"); }, "USR08"},
    {"settings of 100 MB", [] { WriteSparseFile(Personal(L"defsetting.ini"), kHuge); }, "USR09"},
    {"messages of 100 MB", [] { WriteSparseFile(OfLin(L"Message.dat"), kHuge); }, "USR09"},
    {"a logon of 100 MB", [] { WriteSparseFile(Personal(L"passport.dat"), kHuge); }, "USR09"},
    {"empty settings and messages",
     [] {
         WriteFileBytes(Personal(L"defsetting.ini"), "");
         WriteFileBytes(OfLin(L"Message.dat"), "");
     },
     nullptr},
};

} // namespace

TEST_CASE("the doctor finds each fault of the users' files, and nothing else", "[velhost][doctor]")
{
    for (const UserFault& fault : kFaults)
    {
        CAPTURE(fault.pszName);
        const ClientFixture client;
        CHECK(Look().empty()); // no file at all
        WriteGoodFiles();
        CHECK(Look().empty());
        fault.make();
        CHECK(Look() == (fault.pszCode != nullptr ? Codes{fault.pszCode} : Codes()));
        SetFileAttributesW(Personal(L"DevMode.dat").c_str(), FILE_ATTRIBUTE_NORMAL);
        SetFileAttributesW(Personal(L"defsetting.ini").c_str(), FILE_ATTRIBUTE_NORMAL);
    }
}

TEST_CASE_METHOD(ClientFixture, "the doctor names each of the users' files that is good", "[velhost][doctor]")
{
    WriteGoodFiles();
    Findings findings(AllKinds());
    CheckUserFiles(L"lin", findings);
    std::vector<std::wstring> names;
    for (const Remark& remark : findings.GoodList())
    {
        names.push_back(remark.strText);
    }
    wchar_t szMachine[VelUtility::kStorePathUnits] = {};
    REQUIRE(VelUtility::MakeServerFilePath(L"serverconfig.ini", szMachine));
    CHECK(names == std::vector<std::wstring>{Personal(L"DevMode.dat"), Personal(L"defsetting.ini"),
                                             Personal(L"server.ini"), Personal(L"passport.dat"),
                                             OfLin(L"MsgConfig.ini"), OfLin(L"Message.dat"), szMachine});
}

TEST_CASE_METHOD(ClientFixture, "the doctor tells of a file that another program keeps to itself", "[velhost][doctor]")
{
    WriteGoodFiles();
    const FileHandle held(Personal(L"defsetting.ini"), GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING);
    REQUIRE(held.IsOpen());
    CHECK(Look() == Codes{"USR04"});
}

TEST_CASE_METHOD(ClientFixture, "the doctor tells of a file that nobody else may write meanwhile", "[velhost][doctor]")
{
    WriteGoodFiles();
    const FileHandle held(Personal(L"DevMode.dat"), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    REQUIRE(held.IsOpen());
    CHECK(Look() == Codes{"USR06"});
}

TEST_CASE_METHOD(ClientFixture, "the doctor tells of each file whose path is too long for Windows", "[velhost][doctor]")
{
    const TempFolder data(129);
    registry.SetClient(L"DataDir", data.Path());
    constexpr wchar_t kWinlogon[] = L"Software\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
    registry.SetText(kWinlogon, L"DefaultUserName", std::wstring(60, L'u'));
    registry.SetText(kWinlogon, L"DefaultDomainName", std::wstring(57, L'd'));
    // 129 + 1 + 60 + 1 + 57 + 1 = 249 in front of the name: DevMode.dat makes 260, server.ini 259.
    CHECK(Look() == Codes{"USR10", "USR10", "USR10"}); // DevMode.dat, defsetting.ini, passport.dat
}

TEST_CASE_METHOD(ClientFixture, "the doctor says so when it can't tell where the users' files lie", "[velhost][doctor]")
{
    registry.SetClient(L"DataDir", std::wstring(200, L'x'));
    CHECK_THROWS_AS(Look(), CommandError);
}
