// What the doctor finds in the spooler: a driver and a printer of the test's own. Each fault is made in an installation
// that has nothing else wrong, gives its own finding and no other, and is undone.

#include "tests/velhost/DoctorFixture.h"
#include "tools/velhost/doctor/SpoolerCheck.h"
#include "tools/velhost/host/OtherProgram.h"
#include "tools/velhost/report/Encoding.h"

#include <catch2/catch_test_macros.hpp>

#include <cstring>

using namespace VelHost;

namespace
{

using Codes = std::vector<std::string>;

/// A client with the sample snapshot and a printer.
struct DoctorSpoolerFixture : ClientFixture
{
    DoctorSpoolerFixture() { WriteFileBytes(ConfigFile(), ReadFileBytes(BesideTests(L"sample\\Config.ini"))); }
    Codes Look(bool bAsk, const std::wstring& strPrinter = L"") const
    {
        return CodesOf([&](Findings& findings) { CheckSpooler({ModulePath(), strPrinter, bAsk}, findings); });
    }
    void SetCap(const wchar_t* pszKey, const std::wstring& strValue) const
    {
        REQUIRE(WritePrivateProfileStringW(L"DeviceCapabilities", pszKey, strValue.c_str(), ConfigFile().c_str()));
    }
    std::string DefaultRecord() const
    {
        char abyRecord[1024];
        DWORD cbRecord = sizeof(abyRecord);
        REQUIRE(RegGetValueW(HKEY_LOCAL_MACHINE, printer.PrinterKey().c_str(), L"Default DevMode", RRF_RT_REG_BINARY,
                             nullptr, abyRecord, &cbRecord) == ERROR_SUCCESS);
        return std::string(abyRecord, cbRecord);
    }
    void SetDefaultRecord(const std::string& strBytes)
    {
        registry.SetBytes(printer.PrinterKey(), L"Default DevMode", REG_BINARY, strBytes.data(),
                          static_cast<DWORD>(strBytes.size()));
    }

    DoctorPrinter printer{*this};
};

/// A folder in the spooler's, and the place of a module in it.
struct SpoolerSubfolder
{
    SpoolerSubfolder() { CreateDirectoryW(strFolder.c_str(), nullptr); }
    ~SpoolerSubfolder() { DeleteFolderTree(strFolder); }
    SpoolerSubfolder(const SpoolerSubfolder&) = delete;
    SpoolerSubfolder& operator=(const SpoolerSubfolder&) = delete;

    const std::wstring strFolder = DoctorPrinter::DriverFile(L"VelDoctorTest");
    const std::wstring strModule = strFolder + L"\\VelUI.dll";
};

/// The module with another version in its version resource.
std::string OfAnotherVersion(std::string strModule)
{
    const DWORD dwSignature = VS_FFI_SIGNATURE;
    const size_t uiPlace =
        strModule.find(std::string(reinterpret_cast<const char*>(&dwSignature), sizeof(dwSignature)));
    REQUIRE(uiPlace != std::string::npos);
    VS_FIXEDFILEINFO info = {};
    std::memcpy(&info, strModule.data() + uiPlace, sizeof(info));
    info.dwFileVersionMS = MAKELONG(7, 0);
    std::memcpy(strModule.data() + uiPlace, &info, sizeof(info));
    return strModule;
}

} // namespace

TEST_CASE_METHOD(DoctorSpoolerFixture, "the doctor is silent on a driver and a printer that are whole",
                 "[velhost][doctor]")
{
    Findings findings(AllKinds());
    CheckSpooler({ModulePath(), printer.Name(), true}, findings);
    CHECK(findings.Codes().empty());
    CHECK(findings.UnseenList().empty());
    CHECK(findings.GoodList().size() == 3); // the module, the rendering half, the printer
}

TEST_CASE_METHOD(DoctorSpoolerFixture, "the doctor finds each fault of the driver's files, and nothing else",
                 "[velhost][doctor]")
{
    SECTION("the module")
    {
        // In a folder of its own: the spooler's copy proper may be loaded by this process.
        const SpoolerSubfolder subfolder;
        const std::wstring& strFile = subfolder.strModule;
        const std::string strModule = ReadFileBytes(ModulePath());
        printer.SetDriverValue(L"Configuration File", L"VelDoctorTest\\VelUI.dll");
        CHECK(Look(true) == Codes{"SPL02"});
        REQUIRE(CreateDirectoryW(strFile.c_str(), nullptr));
        CHECK(Look(true) == Codes{"SPL02"});
        REQUIRE(RemoveDirectoryW(strFile.c_str()));
        WriteFileBytes(strFile, strModule);
        CHECK(Look(true).empty());
        WriteFileBytes(strFile, OfAnotherVersion(strModule));
        CHECK(Look(true) == Codes{"SPL03"});
        WriteFileBytes(strFile, "");
        CHECK(Look(true) == Codes{"SPL04"});
        WriteSparseFile(strFile, 100 * 1024 * 1024);
        CHECK(Look(true) == Codes{"SPL04"});
        WriteFileBytes(strFile, ReadFileBytes(BesideTests(L"latecaller.dll")));
        CHECK(Look(true) == Codes{"SPL05"});
        printer.SetDriverValue(L"Configuration File", L"VelUI.dll");
    }
    SECTION("its registration")
    {
        printer.SetDriverValue(L"Configuration File", L"other.dll");
        CHECK(Look(false) == Codes{"SPL01"});
        printer.SetDriverValue(L"Configuration File", L"VelUI.dll");
    }
    SECTION("the rendering half")
    {
        printer.SetDriverValue(L"Driver", L"VelUI.dll");
        CHECK(Look(false) == Codes{"SPL06"});
        printer.SetDriverValue(L"Data File", L"VelUI.dll");
        CHECK(Look(false) == Codes{"SPL06", "SPL06"});
        printer.SetDriverValue(L"Driver", L"wineps.drv");
        CHECK(Look(false) == Codes{"SPL06"});
        printer.SetDriverValue(L"Data File", L"none.ppd");
        CHECK(Look(false) == Codes{"SPL02"});
        printer.SetDriverValue(L"Driver", L"none.drv");
        CHECK(Look(false) == Codes{"SPL02", "SPL02"});
        printer.SetDriverValue(L"Data File", L"VelDoctorTest.ppd");
        printer.SetDriverValue(L"Driver", L"VelDoctorTest.ppd");
        CHECK(Look(false) == Codes{"SPL04"});
        printer.SetDriverValue(L"Driver", L"wineps.drv");
    }
    CHECK(Look(false).empty());
}

TEST_CASE_METHOD(DoctorSpoolerFixture, "the doctor finds each fault of the printer's entry, and nothing else",
                 "[velhost][doctor]")
{
    CHECK(Look(false, L"no such printer") == Codes{"SPL08"});

    const std::string strRecord = DefaultRecord();
    constexpr size_t kExtraPlace = 38; // of dmDriverExtra in the record of narrow text that Wine keeps
    REQUIRE(strRecord.at(kExtraPlace) == 12);
    std::string strOther = strRecord;
    strOther[kExtraPlace] = 0;
    SetDefaultRecord(strOther);
    CHECK(Look(false) == Codes{"SPL09"});
    SetDefaultRecord("");
    CHECK(Look(false) == Codes{"SPL09"});
    CHECK(RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, printer.PrinterKey().c_str(), L"Default DevMode") == ERROR_SUCCESS);
    CHECK(Look(false) == Codes{"SPL09"});
    SetDefaultRecord(strRecord);
    CHECK(Look(false).empty());

    registry.SetText(printer.PrinterKey(), L"Printer Driver", L"another driver");
    CHECK(Look(false) == Codes{"SPL07"});
    CHECK(Look(false, printer.Name()) == Codes{"SPL08"});
}

TEST_CASE_METHOD(DoctorSpoolerFixture, "the doctor finds each fault of the printer's answers, and nothing else",
                 "[velhost][doctor]")
{
    // 62 and 63 characters in a cell of 64, 22 and 23 in one of 24: the count answers, and the list is refused.
    SetCap(L"PaperNames3", std::wstring(63, L'n'));
    CHECK(Look(true) == Codes{"SPL13"});
    SetCap(L"PaperNames3", L"B4 (JIS)");
    SetCap(L"BinNames1", std::wstring(23, L'n'));
    CHECK(Look(true) == Codes{"SPL13"});
    SetCap(L"BinNames1", L"Tray 1");
    SetCap(L"PaperNamesCount", L"13");
    CHECK(Look(true) == Codes{"SPL12"});
    SetCap(L"PaperNamesCount", L"14");
    SetCap(L"BinsCount", L"4");
    SetCap(L"MediaTypesCount", L"4");
    CHECK(Look(true) == Codes{"SPL12", "SPL12"});
    WriteFileBytes(ConfigFile(), "");
    CHECK(Look(true) == Codes{"SPL11"});
    CHECK(Look(false).empty()); // nobody was asked
}

TEST_CASE_METHOD(DoctorSpoolerFixture, "the doctor tells of a printer whose module ends those who ask",
                 "[velhost][doctor]")
{
    // A log without the module's category.
    WriteFileBytes(folder.File(L"LogConfig.conf"), "rootCategory=ERROR\n"
                                                   "category.Another=DEBUG, file\n"
                                                   "appender.file=FileAppender\n"
                                                   "appender.file.fileName=" +
                                                       ToUtf8(folder.File(L"another.log")) +
                                                       "\n"
                                                       "appender.file.layout=PatternLayout\n");
    CHECK(Look(true) == Codes{"SPL10"});
}

TEST_CASE("a program that takes too long is ended, and what it printed is kept", "[velhost][program]")
{
    const TempFolder folder;
    const std::wstring strProgram = folder.File(L"slow.exe");
    PlaceStayingStandIn(strProgram);
    const ProgramRun run = RunProgram(L"\"" + strProgram + L"\"", 100);
    CHECK_FALSE(run.bEnded);
    for (int i = 0; i < 500 && !DeleteFileW(strProgram.c_str()); ++i)
    {
        Sleep(20); // until its process is gone
    }
    CHECK_FALSE(PathExists(strProgram));

    const ProgramRun help = RunProgram(L"\"" + BesideTests(L"velhost.exe") + L"\" --help", 30000);
    CHECK(help.bEnded);
    CHECK(help.dwExitCode == 0);
    CHECK(help.strOutput.find("doctor") != std::string::npos);
    const ProgramRun unknown = RunProgram(L"\"" + BesideTests(L"velhost.exe") + L"\" polish", 30000);
    CHECK(unknown.dwExitCode == 2);
    CHECK(unknown.strErrors.find("polish") != std::string::npos);
}
