// The doctor's look at Config.ini. Each fault is made in the sample printer's file, which is good, and where it makes a
// query fail the module itself is asked.

#include "state/CapabilitySnapshot.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/LockHolder.h"
#include "tests/driver/CapsModel.h"
#include "tools/velhost/doctor/ConfigCheck.h"
#include "tools/velhost/doctor/Kinds.h"
#include "tools/velhost/report/Encoding.h"

#include <catch2/catch_test_macros.hpp>

#include <functional>

using namespace VelHost;
using VelUtility::GetComputerCaps;

namespace
{

using Codes = std::vector<std::string>;

/// The sample printer's file in a client of the test's own, and the findings in it.
struct ConfigFixture : ClientFixture
{
    void Set(const std::wstring& strKey, const std::wstring& strValue)
    {
        for (auto& [strOne, strText] : keys)
        {
            if (strOne == strKey)
            {
                strText = strValue;
                return;
            }
        }
        keys.emplace_back(strKey, strValue);
    }
    void Remove(const std::wstring& strKey)
    {
        const auto found = std::find_if(keys.begin(), keys.end(), [&](const auto& one) { return one.first == strKey; });
        REQUIRE(found != keys.end());
        keys.erase(found);
    }
    Findings Look() const
    {
        Findings findings(AllKinds());
        CheckConfigFile(ConfigFile(), findings);
        return findings;
    }
    Findings LookAtKeys() const
    {
        WriteCaps(keys);
        return Look();
    }

    CapKeys keys = SampleKeys();
};

/// Answers of the module for a list, with space for all that the sample's lists hold.
DWORD AskList(WORD iDevCap)
{
    std::vector<wchar_t> buffer(64 * 64);
    return GetComputerCaps(iDevCap, buffer.data());
}

constexpr DWORD kRefusedAnswer = 0xFFFFFFFF;

struct Fault
{
    const char* pszName;
    std::function<void(ConfigFixture&)> make;
    const char* pszCode;
    const wchar_t* pszKey;
    std::function<void()> proof; ///< what the module does with the fault
};

std::vector<Fault> Faults()
{
    const auto refused = [](WORD iDevCap) { return [iDevCap] { CHECK(AskList(iDevCap) == kRefusedAnswer); }; };
    const auto name = [](size_t uiLength) { return std::wstring(uiLength, L'n'); };
    return {
        {"a missing number", [](ConfigFixture& f) { f.Remove(L"Copies"); }, "CFG11", L"Copies", refused(DC_COPIES)},
        {"a missing count", [](ConfigFixture& f) { f.Remove(L"PapersCount"); }, "CFG11", L"PapersCount",
         refused(DC_PAPERS)},
        {"a number without a value", [](ConfigFixture& f) { f.Set(L"Copies", L""); }, "CFG11", L"Copies",
         refused(DC_COPIES)},
        {"a stored -1", [](ConfigFixture& f) { f.Set(L"Copies", L"-1"); }, "CFG12", L"Copies", refused(DC_COPIES)},
        {"a stored 4294967295", [](ConfigFixture& f) { f.Set(L"PrintRate", L"4294967295"); }, "CFG12", L"PrintRate",
         refused(DC_PRINTRATE)},
        {"a paper of number -1", [](ConfigFixture& f) { f.Set(L"Papers3", L"-1"); }, "CFG12", L"Papers3",
         refused(DC_PAPERS)},
        {"a 0", [](ConfigFixture& f) { f.Set(L"Duplex", L"0"); }, "CFG13", L"Duplex",
         [] {
             const BuiltModule module; // the 0 becomes a failure in the entry point
             CHECK(module.DeviceCapabilities(nullptr, nullptr, DC_DUPLEX, nullptr, nullptr) == kRefusedAnswer);
         }},
        {"a word for a number", [](ConfigFixture& f) { f.Set(L"Collate", L"yes"); }, "CFG13", L"Collate",
         [] { CHECK(GetComputerCaps(DC_COLLATE, nullptr) == 0); }},
        {"a missing paper number", [](ConfigFixture& f) { f.Remove(L"Papers13"); }, "CFG14", L"Papers13",
         refused(DC_PAPERS)},
        {"a missing height", [](ConfigFixture& f) { f.Remove(L"PaperSizeY2"); }, "CFG14", L"PaperSizeY2",
         refused(DC_PAPERSIZE)},
        {"a missing resolution", [](ConfigFixture& f) { f.Remove(L"ResolutionX1"); }, "CFG14", L"ResolutionX1",
         refused(DC_ENUMRESOLUTIONS)},
        {"a missing name", [](ConfigFixture& f) { f.Remove(L"BinNames1"); }, "CFG14", L"BinNames1",
         [] {
             wchar_t szNames[5][24];
             CHECK(GetComputerCaps(DC_BINNAMES, szNames) == 5);
             CHECK(szNames[1][0] == L'\0');
             CHECK(szNames[2][0] != L'\0');
         }},
        {"one name more than counted", [](ConfigFixture& f) { f.Set(L"MediaReady4", L"B5"); }, "CFG15", L"MediaReady4",
         [] { CHECK(GetComputerCaps(DC_MEDIAREADY, nullptr) == 4); }},
        {"one resolution more than counted", [](ConfigFixture& f) { f.Set(L"ResolutionCount", L"2"); }, "CFG15",
         L"ResolutionX2", [] { CHECK(GetComputerCaps(DC_ENUMRESOLUTIONS, nullptr) == 2); }},
        {"a paper's height more than counted", [](ConfigFixture& f) { f.Set(L"PaperSizeY14", L"2970"); }, "CFG15",
         L"PaperSizeY14", [] { CHECK(GetComputerCaps(DC_PAPERSIZE, nullptr) == 14); }},
        {"a paper without a name",
         [](ConfigFixture& f) {
             f.Set(L"PaperNamesCount", L"13");
             f.Remove(L"PaperNames13");
         },
         "CFG16", L"PapersCount", [] { CHECK(GetComputerCaps(DC_PAPERNAMES, nullptr) == 13); }},
        {"a bin without a name",
         [](ConfigFixture& f) {
             f.Set(L"BinNamesCount", L"4");
             f.Remove(L"BinNames4");
         },
         "CFG16", L"BinsCount", [] { CHECK(GetComputerCaps(DC_BINNAMES, nullptr) == 4); }},
        {"a media type without a name",
         [](ConfigFixture& f) {
             f.Set(L"MediaTypeNamesCount", L"4");
             f.Remove(L"MediaTypeNames4");
         },
         "CFG16", L"MediaTypesCount", [] { CHECK(GetComputerCaps(DC_MEDIATYPENAMES, nullptr) == 4); }},
        {"a bin name of 22", [=](ConfigFixture& f) { f.Set(L"BinNames2", name(22)); }, "CFG17", L"BinNames2",
         refused(DC_BINNAMES)},
        {"a bin name of 23", [=](ConfigFixture& f) { f.Set(L"BinNames2", name(23)); }, "CFG17", L"BinNames2",
         refused(DC_BINNAMES)},
        {"a paper name of 62", [=](ConfigFixture& f) { f.Set(L"PaperNames0", name(62)); }, "CFG17", L"PaperNames0",
         refused(DC_PAPERNAMES)},
        {"a paper name of 63", [=](ConfigFixture& f) { f.Set(L"PaperNames0", name(63)); }, "CFG17", L"PaperNames0",
         refused(DC_PAPERNAMES)},
        {"a ready medium's name of 63", [=](ConfigFixture& f) { f.Set(L"MediaReady1", name(63)); }, "CFG17",
         L"MediaReady1", refused(DC_MEDIAREADY)},
        {"a media type's name of 62", [=](ConfigFixture& f) { f.Set(L"MediaTypeNames1", name(62)); }, "CFG17",
         L"MediaTypeNames1", refused(DC_MEDIATYPENAMES)},
        {"a paper name of 64", [=](ConfigFixture& f) { f.Set(L"PaperNames0", name(64)); }, "CFG18", L"PaperNames0",
         [] {
             wchar_t szNames[14][64];
             CHECK(GetComputerCaps(DC_PAPERNAMES, szNames) == 14);
             CHECK(szNames[0][63] == L'n'); // no terminator
         }},
        {"a bin name of 40", [=](ConfigFixture& f) { f.Set(L"BinNames4", name(40)); }, "CFG18", L"BinNames4",
         [] {
             wchar_t szNames[5][24];
             CHECK(GetComputerCaps(DC_BINNAMES, szNames) == 5);
             CHECK(szNames[4][23] == L'n');
         }},
        {"a paper's name twice, in other letters", [](ConfigFixture& f) { f.Set(L"PaperNames9", L"a4"); }, "CFG19",
         L"PaperNames9", [] {}},
        {"a bin's name twice", [](ConfigFixture& f) { f.Set(L"BinNames2", L"Tray 1"); }, "CFG19", L"BinNames2", [] {}},
        {"a paper's number twice", [](ConfigFixture& f) { f.Set(L"Papers12", L"9"); }, "CFG20", L"Papers12", [] {}},
        {"a bin's number twice", [](ConfigFixture& f) { f.Set(L"Bins3", L"1"); }, "CFG20", L"Bins3", [] {}},
        {"a media type's number twice", [](ConfigFixture& f) { f.Set(L"MediaTypes4", L"1"); }, "CFG20", L"MediaTypes4",
         [] {}},
        {"the custom paper's name", [](ConfigFixture& f) { f.Set(L"PaperNames12", L"自定义"); }, "CFG21",
         L"PaperNames12", [] {}},
        {"the custom paper's number", [](ConfigFixture& f) { f.Set(L"Papers12", L"256"); }, "CFG21", L"Papers12",
         [] {}},
        // 3048 by 12192 as the greatest: 4000 by 1397 is wider, 900 by 13000 is longer.
        {"a least width above the greatest", [](ConfigFixture& f) { f.Set(L"MinExtent", L"91557792"); }, "CFG22",
         L"MinExtent", [] { CHECK(LOWORD(GetComputerCaps(DC_MINEXTENT, nullptr)) == 4000); }},
        {"a least height above the greatest", [](ConfigFixture& f) { f.Set(L"MinExtent", L"851968900"); }, "CFG22",
         L"MinExtent", [] { CHECK(HIWORD(GetComputerCaps(DC_MINEXTENT, nullptr)) == 13000); }},
        {"a paper too wide", [](ConfigFixture& f) { f.Set(L"PaperSizeX8", L"3049"); }, "CFG23", L"PaperSizeX8",
         [] { CHECK(LOWORD(GetComputerCaps(DC_MAXEXTENT, nullptr)) == 3048); }},
        {"a paper too short", [](ConfigFixture& f) { f.Set(L"PaperSizeY13", L"1396"); }, "CFG23", L"PaperSizeX13",
         [] { CHECK(HIWORD(GetComputerCaps(DC_MINEXTENT, nullptr)) == 1397); }},
    };
}

} // namespace

TEST_CASE_METHOD(ConfigFixture, "the doctor is silent about the sample snapshot and says what it has seen",
                 "[velhost][doctor]")
{
    WriteFileBytes(ConfigFile(), ReadFileBytes(BesideTests(L"sample\\Config.ini")));
    const Findings findings = Look();
    CHECK(findings.Codes() == Codes());
    REQUIRE(findings.GoodList().size() == 1);
    CHECK(findings.GoodList()[0].strText ==
          ConfigFile() + L": 14 papers, 5 bins, 5 media types; no one holds its lock");
}

TEST_CASE_METHOD(ConfigFixture, "the doctor finds each fault of a snapshot and no other", "[velhost][doctor]")
{
    for (const Fault& fault : Faults())
    {
        DYNAMIC_SECTION(fault.pszName)
        {
            fault.make(*this);
            const Findings findings = LookAtKeys();
            CHECK(findings.Codes() == Codes{fault.pszCode});
            REQUIRE_FALSE(findings.List().empty());
            CHECK(findings.List()[0].strWhere == ConfigFile() + L" [DeviceCapabilities] " + fault.pszKey);
            CHECK(findings.GoodList().empty());
            fault.proof();
        }
    }
}

TEST_CASE_METHOD(ConfigFixture, "the doctor refuses the name lengths at which the module refuses a list, and no others",
                 "[velhost][doctor]")
{
    struct Row
    {
        const wchar_t* pszKey;
        WORD iDevCap;
        size_t uiWidth;
    };
    for (const Row& row : {Row{L"BinNames0", DC_BINNAMES, 24}, Row{L"PaperNames0", DC_PAPERNAMES, 64}})
    {
        for (size_t uiLength = row.uiWidth - 4; uiLength <= row.uiWidth + 1; ++uiLength)
        {
            CAPTURE(row.uiWidth, uiLength);
            keys = SampleKeys();
            Set(row.pszKey, std::wstring(uiLength, L'x'));
            const bool bTold = LookAtKeys().Has("CFG17");
            CHECK(bTold == (uiLength == row.uiWidth - 2 || uiLength == row.uiWidth - 1));
            CHECK(bTold == (AskList(row.iDevCap) == kRefusedAnswer));
        }
    }
}

TEST_CASE_METHOD(ConfigFixture, "two trays may hold the same paper", "[velhost][doctor]")
{
    Set(L"MediaReady1", L"A4");
    CHECK(LookAtKeys().Codes() == Codes());
}

TEST_CASE_METHOD(ConfigFixture, "a count far beyond the list is one finding and quickly told", "[velhost][doctor]")
{
    Set(L"MediaReadyCount", L"4294967294");
    CHECK(LookAtKeys().Codes() == Codes{"CFG14"});
}

TEST_CASE_METHOD(ConfigFixture, "what is no Config.ini is one clear finding", "[velhost][doctor]")
{
    const auto only = [this](const char* pszCode) {
        const Findings findings = Look();
        CHECK(findings.Codes() == Codes{pszCode});
        CHECK(GetComputerCaps(DC_COPIES, nullptr) == kRefusedAnswer);
        return findings.List().empty() ? std::wstring() : findings.List()[0].strDetail;
    };
    SECTION("no file")
    {
        only("CFG01");
    }
    SECTION("a folder in its place")
    {
        REQUIRE(CreateDirectoryW(ConfigFile().c_str(), nullptr));
        CHECK(only("CFG02") == L"a folder has its name");
    }
    SECTION("a file that someone keeps for himself")
    {
        WriteCaps(keys);
        const FileHandle held(ConfigFile(), GENERIC_READ, 0, OPEN_EXISTING);
        REQUIRE(held.IsOpen());
        CHECK(only("CFG02").find(L"(error 32)") != std::wstring::npos);
    }
    SECTION("0 bytes")
    {
        WriteFileBytes(ConfigFile(), "");
        CHECK(only("CFG04") == L"0 bytes");
    }
    SECTION("a section of another name")
    {
        WriteFileBytes(ConfigFile(), "[Printer]\r\nPrinterName=Office\r\n");
        only("CFG07");
    }
}

TEST_CASE_METHOD(ConfigFixture, "a Config.ini of 100 MB is told by its size and not read", "[velhost][doctor]")
{
    {
        const FileHandle file(ConfigFile(), GENERIC_WRITE, 0, CREATE_ALWAYS);
        REQUIRE(file.IsOpen());
        REQUIRE(SetFilePointer(file.Get(), 100 * 1024 * 1024, nullptr, FILE_BEGIN) == 100 * 1024 * 1024);
        REQUIRE(SetEndOfFile(file.Get()));
    }
    const Findings findings = Look();
    CHECK(findings.Codes() == Codes{"CFG05"});
    CHECK(findings.List().at(0).strDetail == L"104857600 bytes; it was not read");
}

TEST_CASE("a path of 300 characters is one clear finding", "[velhost][doctor]")
{
    Findings findings(AllKinds());
    CheckConfigFile(L"C:\\" + std::wstring(286, L'd') + L"\\Config.ini", findings);
    CHECK(findings.Codes() == Codes{"CFG03"});
    CHECK(findings.List().at(0).strDetail == L"300 characters");
}

TEST_CASE_METHOD(ConfigFixture, "a file without the UTF-16 mark is told when it has more than ASCII",
                 "[velhost][doctor]")
{
    std::string strAscii;
    for (const auto& [strKey, strValue] : keys)
    {
        const bool bAscii = std::all_of(strValue.begin(), strValue.end(), [](wchar_t c) { return c < 0x80; });
        strAscii += ToUtf8(strKey) + "=" + (bAscii ? ToUtf8(strValue) : "plain " + ToUtf8(strKey)) + "\r\n";
    }
    strAscii = "[DeviceCapabilities]\r\n" + strAscii;
    const auto codesOf = [this](const std::string& strBytes) {
        WriteFileBytes(ConfigFile(), strBytes);
        return Look().Codes();
    };
    const std::string strPlain = "plain PaperNames12";
    const size_t uiPlain = strAscii.find(strPlain);
    REQUIRE(uiPlain != std::string::npos);
    const auto with = [&](const std::string& strName) {
        std::string strText = strAscii;
        return strText.replace(uiPlain, strPlain.size(), strName);
    };
    CHECK(codesOf(strAscii) == Codes());
    // GBK bytes of a Chinese name, which another code page makes other letters of.
    CHECK(codesOf(with("\xB4\xF3"
                       "16\xBF\xAA")) == Codes{"CFG06"});
    std::vector<wchar_t> names(14 * 64);
    CHECK(GetComputerCaps(DC_PAPERNAMES, names.data()) == 14);
    CHECK(std::wstring(names.data() + 12 * 64) != L"大16开");
    // What is left of it where it was written under a code page without Chinese.
    CHECK(codesOf(with("?16?")) == Codes{"CFG06"});
    // With the mark neither is a fault.
    Set(L"PaperNames12", L"?16?");
    CHECK(LookAtKeys().Codes() == Codes());
}

TEST_CASE_METHOD(ConfigFixture, "a lock that another process holds is told, and one that it left behind is not",
                 "[velhost][doctor][processes]")
{
    WriteCaps(keys);
    LockHolder holder(ConfigFile());
    const Findings findings = Look();
    CHECK(findings.Codes() == Codes{"CFG08"});
    CHECK(findings.List().at(0).strDetail == L"not free for half a second; Windows does not tell who holds a mutex");
    // Kept open, or the mutex would go with its holder and nothing be left behind.
    const HANDLE hKept = CreateMutexW(nullptr, FALSE, MutexNameOf(ConfigFile()).c_str());
    REQUIRE(hKept != nullptr);
    holder.End();
    CHECK(Look().Codes() == Codes());
    {
        const LockHolder next(ConfigFile()); // looking has left it free for others
    }
    CloseHandle(hKept);
}

TEST_CASE_METHOD(ConfigFixture, "another object of the lock's name is told", "[velhost][doctor]")
{
    WriteCaps(keys);
    const HANDLE hEvent = CreateEventW(nullptr, FALSE, FALSE, MutexNameOf(ConfigFile()).c_str());
    REQUIRE(hEvent != nullptr);
    const Findings findings = Look();
    CloseHandle(hEvent);
    CHECK(findings.Codes() == Codes{"CFG08"});
    CHECK(findings.List().at(0).strDetail.find(L"something else has its name") == 0);
}

TEST_CASE_METHOD(ConfigFixture, "the doctor changes nothing in the file that it looks at", "[velhost][doctor]")
{
    WriteCaps(keys);
    const std::string strBefore = ReadFileBytes(ConfigFile());
    Look();
    CHECK(ReadFileBytes(ConfigFile()) == strBefore);
    DeleteFileW(ConfigFile().c_str());
    Look();
    CHECK_FALSE(PathExists(ConfigFile()));
}
