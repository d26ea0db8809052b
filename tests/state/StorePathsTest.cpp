#include "state/StorePaths.h"
#include "tests/common/PrivateRegistry.h"

#include <catch2/catch_test_macros.hpp>

using namespace VelUtility;

namespace
{

constexpr wchar_t kWinlogon[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";

struct PathsFixture
{
    PathsFixture()
    {
        registry.SetClient(L"DataDir", L"C:\\Data");
        registry.SetClient(L"TempDir", L"C:\\Temp\\");
        registry.SetText(kWinlogon, L"DefaultUserName", L"mei");
        registry.SetText(kWinlogon, L"DefaultDomainName", L"OFFICE-DOMAIN-X");
        wcscpy(szPath, L"untouched");
    }
    std::wstring Path() const { return szPath; }

    PrivateRegistry registry;
    wchar_t szPath[kStorePathUnits] = {};
};

} // namespace

TEST_CASE_METHOD(PathsFixture, "a personal path carries user, domain and file name", "[state][paths]")
{
    CHECK(MakePersonalFilePath(L"defsetting.ini", szPath));
    CHECK(Path() == L"C:\\Data\\mei@OFFICE-DOMAIN-X_defsetting.ini");
}

TEST_CASE_METHOD(PathsFixture, "a message path carries the user that was given", "[state][paths]")
{
    CHECK(MakeUserMessageFilePath(L"Message.dat", L"lin", szPath));
    CHECK(Path() == L"C:\\Data\\lin_Message.dat");
}

TEST_CASE_METHOD(PathsFixture, "a user's name that is longer than a file's may be is cut in a message path",
                 "[state][paths]")
{
    CHECK(MakeUserMessageFilePath(L"Message.dat", std::wstring(5000, L'u'), szPath));
    CHECK(Path() == L"C:\\Data\\" + std::wstring(kStoreNameUnits - 1, L'u'));
}

TEST_CASE_METHOD(PathsFixture, "a server path is the plain name in the data folder", "[state][paths]")
{
    CHECK(MakeServerFilePath(L"serverconfig.ini", szPath));
    CHECK(Path() == L"C:\\Data\\serverconfig.ini");
}

TEST_CASE_METHOD(PathsFixture, "no second backslash is put behind a folder that ends in one", "[state][paths]")
{
    CHECK(MakeConfigFilePath(szPath));
    CHECK(Path() == L"C:\\Temp\\Config.ini");
}

TEST_CASE_METHOD(PathsFixture, "a personal path without a logon key carries the hard-coded user", "[state][paths]")
{
    PrivateRegistry bare;
    bare.SetClient(L"DataDir", L"C:\\Data");
    CHECK(MakePersonalFilePath(L"x.ini", szPath));
    CHECK(Path() == L"C:\\Data\\QPS@VEL_x.ini");
}

TEST_CASE_METHOD(PathsFixture, "an unavailable folder leaves every path untouched", "[state][paths]")
{
    PrivateRegistry bare;
    CHECK_FALSE(MakePersonalFilePath(L"x.ini", szPath));
    CHECK_FALSE(MakeUserMessageFilePath(L"x.ini", L"lin", szPath));
    CHECK_FALSE(MakeServerFilePath(L"x.ini", szPath));
    CHECK_FALSE(MakeConfigFilePath(szPath));
    CHECK(Path() == L"untouched");
}

TEST_CASE_METHOD(PathsFixture, "the data folder may have 129 characters and the temporary one 127", "[state][paths]")
{
    const auto folder = [](size_t uiUnits) { return L"C:\\" + std::wstring(uiUnits - 3, L'f'); };
    registry.SetClient(L"DataDir", folder(129));
    CHECK(MakeServerFilePath(L"x.ini", szPath));
    CHECK(Path() == folder(129) + L"\\x.ini");
    registry.SetClient(L"DataDir", folder(130));
    CHECK_FALSE(MakeServerFilePath(L"x.ini", szPath));
    registry.SetClient(L"TempDir", folder(127));
    CHECK(MakeConfigFilePath(szPath));
    CHECK(Path() == folder(127) + L"\\Config.ini");
    registry.SetClient(L"TempDir", folder(128));
    CHECK_FALSE(MakeConfigFilePath(szPath));
}

TEST_CASE_METHOD(PathsFixture, "a folder whose value has one byte too many is refused", "[state][paths]")
{
    constexpr wchar_t kClient[] = L"Software\\Vel-soft\\Client";
    const std::wstring strFolder(130, L'f');
    registry.SetBytes(kClient, L"DataDir", REG_BINARY, strFolder.c_str(), 261); // REG_SZ would be made even
    CHECK_FALSE(MakePersonalFilePath(L"a.ini", szPath));
    CHECK_FALSE(MakeUserMessageFilePath(L"a.ini", L"lin", szPath));
    CHECK_FALSE(MakeServerFilePath(L"a.ini", szPath));
    registry.SetBytes(kClient, L"TempDir", REG_BINARY, strFolder.c_str(), 257);
    CHECK_FALSE(MakeConfigFilePath(szPath));
}

TEST_CASE_METHOD(PathsFixture, "the longest user and a long domain lose nothing in a personal path", "[state][paths]")
{
    registry.SetText(kWinlogon, L"DefaultUserName", std::wstring(80, L'u'));
    registry.SetText(kWinlogon, L"DefaultDomainName", std::wstring(200, L'd'));
    CHECK(MakePersonalFilePath(L"DevMode.dat", szPath));
    CHECK(Path() == L"C:\\Data\\" + std::wstring(80, L'u') + L"@" + std::wstring(200, L'd') + L"_DevMode.dat");
}
