#include "driver/Module.h"
#include "tests/common/PrivateRegistry.h"
#include "tests/common/TempFolder.h"

#include <catch2/catch_test_macros.hpp>

#include <share.h>

namespace
{

struct LogConfigFixture
{
    static std::string Narrow(const std::wstring& str) { return std::string(str.begin(), str.end()); }
    void PutConfig(const TempFolder& folder) { WriteFileBytes(folder.File(L"LogConfig.conf"), "# empty\n"); }
    std::string ClientName() const { return Narrow(client.File(L"LogConfig.conf")); }
    std::string ServerName() const { return Narrow(server.File(L"LogConfig.conf")); }

    TempFolder client;
    TempFolder server;
    PrivateRegistry registry;
};

} // namespace

TEST_CASE_METHOD(LogConfigFixture, "without both keys there is no log configuration", "[driver][logconfig]")
{
    CHECK(GetLogConfigFile().empty());
}

TEST_CASE_METHOD(LogConfigFixture, "a machine with both takes the client's log configuration", "[driver][logconfig]")
{
    registry.SetClient(L"InstallDir", client.Path());
    registry.SetServer(L"InstallDir", server.Path());
    PutConfig(client);
    PutConfig(server);
    CHECK(GetLogConfigFile() == ClientName());
}

TEST_CASE_METHOD(LogConfigFixture, "a client folder without the file falls through to the server's",
                 "[driver][logconfig]")
{
    registry.SetClient(L"InstallDir", client.Path());
    registry.SetServer(L"InstallDir", server.Path());
    PutConfig(server);
    CHECK(GetLogConfigFile() == ServerName());
}

TEST_CASE_METHOD(LogConfigFixture, "a client key without InstallDir falls through to the server's",
                 "[driver][logconfig]")
{
    registry.SetClient(L"DataDir", client.Path());
    registry.SetServer(L"InstallDir", server.Path());
    PutConfig(server);
    CHECK(GetLogConfigFile() == ServerName());
}

TEST_CASE_METHOD(LogConfigFixture, "InstallDir's bytes are taken as text whatever their type", "[driver][logconfig]")
{
    // Four bytes with the terminator: the folder "C:\" less its end, as a number.
    registry.SetBytes(L"Software\\Vel-soft\\Client", L"InstallDir", REG_DWORD, ".\0\0\0", 4);
    wchar_t szOld[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, szOld);
    PutConfig(client);
    REQUIRE(SetCurrentDirectoryW(client.Path().c_str()));
    CHECK(GetLogConfigFile() == ".\\LogConfig.conf");
    SetCurrentDirectoryW(szOld);
}

TEST_CASE_METHOD(LogConfigFixture, "a file that can't be opened counts as absent", "[driver][logconfig]")
{
    registry.SetClient(L"InstallDir", client.Path());
    registry.SetServer(L"InstallDir", server.Path());
    PutConfig(client);
    PutConfig(server);
    const HANDLE hHeld = CreateFileW(client.File(L"LogConfig.conf").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                     FILE_ATTRIBUTE_NORMAL, nullptr);
    REQUIRE(hHeld != INVALID_HANDLE_VALUE);
    CHECK(GetLogConfigFile() == ServerName());
    CloseHandle(hHeld);
    CHECK(GetLogConfigFile() == ClientName());
}

TEST_CASE_METHOD(LogConfigFixture, "a folder in the file's place counts as absent", "[driver][logconfig]")
{
    registry.SetClient(L"InstallDir", client.Path());
    REQUIRE(CreateDirectoryW(client.File(L"LogConfig.conf").c_str(), nullptr));
    CHECK(GetLogConfigFile().empty());
}

TEST_CASE_METHOD(LogConfigFixture, "an InstallDir of more than 260 bytes counts as absent", "[driver][logconfig]")
{
    registry.SetClient(L"InstallDir", std::wstring(260, L'f'));
    CHECK(GetLogConfigFile().empty());
    registry.SetClient(L"InstallDir", std::wstring(259, L'f'));
    CHECK(GetLogConfigFile().empty()); // read, but there is no such file
}
