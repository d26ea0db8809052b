// velhost install and uninstall: which files a driver is registered with, and whose they are.

#include "support/ScopeGuard.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ImportHook.h"
#include "tests/common/InstallFixture.h"
#include "tools/velhost/host/Spooler.h"
#include "tools/velhost/install/InstallRecord.h"
#include "tools/velhost/report/Encoding.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/matchers/catch_matchers_string.hpp>

using namespace VelHost;
using Catch::Matchers::ContainsSubstring;

namespace
{

/// Registers kDriverName with one file three times, as install did before there was a rendering half, and notes the
/// file in the record.
void InstallOldForm(const std::wstring& strFile)
{
    std::wstring strName = kDriverName;
    std::wstring strPath = strFile;
    DRIVER_INFO_3W info = {};
    info.cVersion = 3;
    info.pName = strName.data();
    info.pDriverPath = info.pDataFile = info.pConfigFile = strPath.data();
    REQUIRE(
        AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&info), APD_COPY_ALL_FILES | APD_COPY_FROM_DIRECTORY));
    InstallRecord record = InstallRecord::Load();
    AddOnce(record.driverFiles, FindDriver(kDriverName)->strConfigFile);
    record.Save();
}

/// Windows has every file but its PostScript driver.
DWORD WINAPI AttributesWithoutRenderer(LPCWSTR pszPath)
{
    static auto* const s_pfnReal = Platform<DWORD WINAPI(LPCWSTR)>(L"kernel32", "GetFileAttributesW");
    const std::wstring strPath = pszPath;
    constexpr wchar_t kRenderer[] = L"wineps.drv";
    if (strPath.size() > 10 && IsSameName(strPath.substr(strPath.size() - 10), kRenderer))
    {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_FILE_ATTRIBUTES;
    }
    return s_pfnReal(pszPath);
}

/// What a refused install must not have made.
void CheckNothingInstalled(const InstallFixture& fixture)
{
    CHECK_FALSE(FindDriver(kDriverName));
    CHECK_FALSE(IsPrinterInstalled(fixture.PrinterName()));
    CHECK_FALSE(PathExists(fixture.Root()));
    CHECK(InstallRecord::Load().driverFiles.empty());
}

} // namespace

TEST_CASE_METHOD(InstallFixture, "install registers a half that renders, and uninstall leaves only what was there",
                 "[velhost][install]")
{
    REQUIRE(Install().iExitCode == 0);
    const auto driver = FindDriver(kDriverName);
    REQUIRE(driver);
    CHECK(IsSameName(driver->strDriverFile, Spooled(L"wineps.drv")));
    CHECK(IsSameName(driver->strDataFile, Spooled(L"VelPrinter.ppd")));
    CHECK(IsSameName(driver->strConfigFile, Spooled(L"VelUI.dll")));
    CHECK(ReadFileBytes(Spooled(L"VelPrinter.ppd")) == ReadFileBytes(BesideTests(L"sample\\VelPrinter.ppd")));
    // The platform's own file is not this program's to take away.
    CHECK(InstallRecord::Load().driverFiles ==
          std::vector<std::wstring>{Spooled(L"VelUI.dll"), Spooled(L"VelPrinter.ppd")});
    {
        // With a scale of 0 the platform's driver tells applications of 0 dots per inch.
        const PrinterHandle printer = OpenInstalledPrinter(PrinterName());
        CHECK(reinterpret_cast<const DEVMODEW*>(PrinterDefaultRecord(printer).data())->dmScale == 100);
    }

    SECTION("with its record")
    {
        CHECK(Run({"uninstall"}).iExitCode == 0);
    }
    SECTION("without: the spooler knows the files")
    {
        InstallRecord record = InstallRecord::Load();
        record.driverFiles.clear();
        record.Save();
        CHECK(Run({"uninstall"}).iExitCode == 0);
    }
    CheckNothingInstalled(*this);
    CHECK_FALSE(PathExists(Spooled(L"VelUI.dll")));
    CHECK_FALSE(PathExists(Spooled(L"VelPrinter.ppd")));
    CHECK(PathExists(Spooled(L"wineps.drv")));
}

TEST_CASE_METHOD(InstallFixture, "an installation with the module as all three files is mended by installing again",
                 "[velhost][install]")
{
    const std::wstring strOld = OwnName(L"VelTestOld", L".dll");
    WriteFileBytes(folder.File(strOld), ReadFileBytes(ModulePath()));
    InstallOldForm(folder.File(strOld));
    REQUIRE(PathExists(Spooled(strOld)));

    SECTION("its file goes")
    {
        CHECK(Install().iExitCode == 0);
        CHECK_FALSE(PathExists(Spooled(strOld)));
        CHECK(InstallRecord::Load().driverFiles.size() == 2);
    }
    SECTION("its file is in use: it goes with uninstall")
    {
        const HANDLE hUser =
            CreateFileW(Spooled(strOld).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
        REQUIRE(hUser != INVALID_HANDLE_VALUE);
        CHECK(Install().iExitCode == 0);
        CloseHandle(hUser);
        CHECK(PathExists(Spooled(strOld)));
        CHECK(InstallRecord::Load().driverFiles.size() == 3);
    }
    CHECK(IsSameName(FindDriver(kDriverName)->strDriverFile, Spooled(L"wineps.drv")));
    CHECK(IsSameName(FindDriver(kDriverName)->strDataFile, Spooled(L"VelPrinter.ppd")));
    CHECK(Run({"uninstall"}).iExitCode == 0);
    CHECK_FALSE(PathExists(Spooled(strOld)));
    CHECK_FALSE(PathExists(Spooled(L"VelUI.dll")));
}

TEST_CASE_METHOD(InstallFixture, "install says so when a program keeps the spooler's copy of the module in use",
                 "[velhost][install]")
{
    REQUIRE(Install().iExitCode == 0);
    const std::wstring strCopy = Spooled(L"VelUI.dll");
    const std::string strBefore = ReadFileBytes(strCopy);
    // Another version of the module, which the spooler can't put in the place of the one that a process has loaded.
    const std::wstring strNewer = folder.File(L"VelUI.dll");
    WriteFileBytes(strNewer, strBefore + "newer");
    const HMODULE hInUse = LoadLibraryW(strCopy.c_str());
    REQUIRE(hInUse != nullptr);
    const Language::scope_guard unload([hInUse] { FreeLibrary(hInUse); });
    const CommandEnd end = Install({"--module", ToUtf8(strNewer)});
    CHECK(end.iExitCode == 1);
    CHECK_THAT(end.strError, ContainsSubstring("a program uses it; close the programs that have printed"));
    const bool bKept = ReadFileBytes(strCopy) == strBefore;
    CHECK(bKept);
}

TEST_CASE_METHOD(InstallFixture, "install takes any rendering driver with its data, and uninstall takes them away",
                 "[velhost][install]")
{
    const std::wstring strDriver = OwnName(L"VelTestRender", L".drv");
    const std::wstring strData = OwnName(L"VelTestData", L".ppd");
    WriteFileBytes(folder.File(strDriver), ReadFileBytes(Spooled(L"wineps.drv")));
    WriteFileBytes(folder.File(strData), ReadFileBytes(BesideTests(L"sample\\VelPrinter.ppd")));
    REQUIRE(Install({"--driver", ToUtf8(folder.File(strDriver)), "--data", ToUtf8(folder.File(strData))}).iExitCode ==
            0);
    CHECK(IsSameName(FindDriver(kDriverName)->strDriverFile, Spooled(strDriver)));
    CHECK(IsSameName(FindDriver(kDriverName)->strDataFile, Spooled(strData)));
    CHECK(ReadFileBytes(Spooled(strDriver)) == ReadFileBytes(folder.File(strDriver)));
    CHECK(Run({"uninstall"}).iExitCode == 0);
    CHECK_FALSE(PathExists(Spooled(strDriver)));
    CHECK_FALSE(PathExists(Spooled(strData)));
}

TEST_CASE_METHOD(InstallFixture, "install refuses without a half that renders, and changes nothing",
                 "[velhost][install]")
{
    const std::string strPpd = ToUtf8(BesideTests(L"sample\\VelPrinter.ppd"));
    CommandEnd end = {};
    const char* pszSays = "";
    SECTION("the platform has none")
    {
        const ImportHook hook(nullptr, "GetFileAttributesW", &AttributesWithoutRenderer);
        end = Install();
        pszSays = "name a driver and its data with --driver FILE --data FILE";
    }
    SECTION("a driver without data")
    {
        end = Install({"--driver", ToUtf8(Spooled(L"wineps.drv"))});
        pszSays = "--driver and --data go together";
    }
    SECTION("data without a driver")
    {
        end = Install({"--data", strPpd});
        pszSays = "--driver and --data go together";
    }
    SECTION("a driver that is not there")
    {
        end = Install({"--driver", "C:\\no such\\thing.drv", "--data", strPpd});
        pszSays = "there is no file C:\\no such\\thing.drv";
    }
    SECTION("data that is a folder")
    {
        end = Install({"--driver", ToUtf8(Spooled(L"wineps.drv")), "--data", ToUtf8(folder.Path())});
        pszSays = "there is no file ";
    }
    SECTION("the module")
    {
        end = Install({"--driver", ToUtf8(ModulePath()), "--data", strPpd});
        pszSays = "renders nothing";
    }
    CHECK(end.iExitCode == 1);
    CHECK_THAT(end.strError, ContainsSubstring(pszSays));
    CheckNothingInstalled(*this);
}
