#include "settings/DefaultRecord.h"
#include "state/DataFiles.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ChildCase.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/GuardedBuffer.h"
#include "tests/common/LogLines.h"
#include "tests/common/TextsFrom.h"

#include <catch2/catch_test_macros.hpp>

namespace
{

/// A client whose user has no DevMode.dat; the module's texts come from the built DLL.
struct DefaultFixture : ClientFixture
{
    std::wstring DevModeFile() const { return folder.File(L"QPS@VEL_DevMode.dat"); }
    void WritePapers(const std::vector<int>& papers)
    {
        std::vector<std::pair<std::wstring, std::wstring>> keys = {{L"PapersCount", std::to_wstring(papers.size())}};
        for (size_t i = 0; i < papers.size(); ++i)
        {
            keys.emplace_back(L"Papers" + std::to_wstring(i), std::to_wstring(papers[i]));
        }
        WriteCaps(keys);
    }

    BuiltModule module;
    const TextsFrom texts{module.handle};
};

} // namespace

TEST_CASE_METHOD(DefaultFixture, "the hard-coded default has its values and zeroes in all other fields",
                 "[settings][default]")
{
    stuDrvDevmode record;
    memset(&record, 0xEE, sizeof(record));
    CHECK(SubSetDevMode(&record) == 1);

    DEVMODEW expected = {};
    wcscpy(expected.dmDeviceName, L"VelPrinter");
    expected.dmSpecVersion = 0x401;
    expected.dmDriverVersion = 0x500;
    expected.dmSize = 220;
    expected.dmDriverExtra = 12;
    expected.dmFields = 0x9903;
    expected.dmOrientation = 1;
    expected.dmPaperSize = 9;
    expected.dmCopies = 1;
    expected.dmColor = 1;
    expected.dmDuplex = 1;
    CHECK(memcmp(&record.stuDevmode, &expected, 220) == 0);
    CHECK(record.dwTailWord0 == 0xEEEEEEEE); // the tail is not touched
    CHECK(record.dwNoWaterPrint == 0xEEEEEEEE);
    CHECK(record.dwTailWord2 == 0xEEEEEEEE);
}

TEST_CASE_METHOD(DefaultFixture, "the hard-coded default has the printer's default paper", "[settings][default]")
{
    WritePapers({5, 1});
    stuDrvDevmode record = {};
    CHECK(SubSetDevMode(&record) == 1);
    CHECK(record.stuDevmode.dmPaperSize == 5);
}

TEST_CASE_METHOD(DefaultFixture, "the default record is the user's file as it stands", "[settings][default]")
{
    std::string strFile(220, 'q');
    WriteFileBytes(DevModeFile(), strFile);
    stuDrvDevmode record = {};
    CHECK(SubSetDevMode(&record) == 1);
    CHECK(std::string(reinterpret_cast<char*>(&record), 220) == strFile);
    CHECK(record.dwTailWord0 == 0);
}

TEST_CASE_METHOD(DefaultFixture, "a file of 219 bytes gives the hard-coded default", "[settings][default]")
{
    WriteFileBytes(DevModeFile(), std::string(219, 'q'));
    stuDrvDevmode record = {};
    CHECK(SubSetDevMode(&record) == 1);
    CHECK(record.stuDevmode.dmFields == 0x9903);
}

TEST_CASE_METHOD(DefaultFixture, "the default paper is A4 where listed, else the first", "[settings][default]")
{
    WritePapers({1, 9});
    CHECK(SubSetDefPaperSize() == 9);
    WritePapers({1, 5});
    CHECK(SubSetDefPaperSize() == 1);
    WritePapers({9});
    CHECK(SubSetDefPaperSize() == 9);
    WritePapers({40000, 5});
    CHECK(SubSetDefPaperSize() == static_cast<short>(40000));
}

TEST_CASE_METHOD(DefaultFixture, "the search for the default paper holds its queries in its scope",
                 "[settings][default]")
{
    WritePapers({1, 9});
    const LoggingOn logging{"OutputFunBeginInfo"};
    CHECK(SubSetDefPaperSize() == 9);
    const std::vector<std::string> events = ScopeEvents(logging);
    REQUIRE(events.size() > 4);
    CHECK(events[0] == "+VelUI_dll__SubSetDefPaperSize");
    CHECK(events[1] == "+VelUI_dll__VelUtility::GetComputerCaps");
    CHECK(events[events.size() - 2] == "-VelUI_dll__VelUtility::GetComputerCaps");
    CHECK(events.back() == "-VelUI_dll__SubSetDefPaperSize");
}

TEST_CASE_METHOD(DefaultFixture, "the default paper is A4 where papers can't be read", "[settings][default]")
{
    CHECK(SubSetDefPaperSize() == 9);                        // no file
    WriteCaps({{L"PapersCount", L"2"}, {L"Papers0", L"1"}}); // a missing entry
    CHECK(SubSetDefPaperSize() == 9);
    WritePapers({}); // nothing to be the first
    CHECK(SubSetDefPaperSize() == 9);
}

TEST_CASE_METHOD(DefaultFixture, "a default record tells where it comes from, inside scopes of its own",
                 "[settings][default][log]")
{
    using Lines = std::vector<std::string>;
    stuDrvDevmode record = {};
    {
        const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
        SubSetDevMode(&record);
        CHECK(OwnLines(logging, "SubSetDevMode") == Lines{"VelUI_dll__SubSetDevMode :START......",
                                                          "DEBUG - SubVelUi(#) : Set hardcode default DEVMODE",
                                                          "VelUI_dll__SubSetDevMode :End  ......"});
        CHECK(Outline(logging, "SubSetDevMode") == Lines{"> VelUtility::GetDevDef",
                                                         "DEBUG - SubVelUi(#) : Set hardcode default DEVMODE",
                                                         "> SubLoadString", "> SubSetDefPaperSize"});
        CHECK(OwnLines(logging, "SubSetDefPaperSize") ==
              Lines{"VelUI_dll__SubSetDefPaperSize :START......", "VelUI_dll__SubSetDefPaperSize :End  ......"});
    }
    WriteFileBytes(DevModeFile(), std::string(220, 'q'));
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    SubSetDevMode(&record);
    CHECK(OwnLines(logging, "SubSetDevMode") == Lines{"VelUI_dll__SubSetDevMode :START......",
                                                      "DEBUG - SubVelUi(#) : Set default DEVMODE read from file.",
                                                      "VelUI_dll__SubSetDevMode :End  ......"});
    CHECK(Outline(logging, "SubSetDevMode") ==
          Lines{"> VelUtility::GetDevDef", "DEBUG - SubVelUi(#) : Set default DEVMODE read from file."});
}

// Run by the next case in a process of its own.
TEST_CASE("child: storing a record that can't be read to its end", "[.child]")
{
    wchar_t szFolder[MAX_PATH] = {};
    REQUIRE(GetEnvironmentVariableW(L"VELUI_TEST_PROOF", szFolder, MAX_PATH) != 0);
    ScratchClient client;
    const UserName system(L"SYSTEM");
    client.registry.SetClient(L"DataDir", szFolder);
    const GuardedBuffer record(219);
    VelUtility::SetDevDef(record.As<DEVMODEW>());
}

TEST_CASE_METHOD(DefaultFixture, "a record that can't be read to its end leaves the stored one as it was",
                 "[settings][default]")
{
    WriteFileBytes(DevModeFile(), std::string(220, 'q'));
    SetEnvironmentVariableW(L"VELUI_TEST_PROOF", folder.Path().c_str());
    const DWORD dwCode = ExitCodeOfCase(L"child: storing a record that can't be read to its end");
    SetEnvironmentVariableW(L"VELUI_TEST_PROOF", nullptr);
    CHECK(IsFault(dwCode));
    CHECK(ReadFileBytes(DevModeFile()) == std::string(220, 'q'));
}
