// Where the module looks for its log configuration.

#include "driver/Module.h"
#include "tests/common/LineAtCall.h"
#include "tests/common/PrivateRegistry.h"
#include "tests/common/TempFolder.h"

#include <catch2/catch_test_macros.hpp>

#include <cstdio>

namespace
{

/// Leaves no zero below the caller's frame that could pass for a terminator.
__attribute__((noinline)) void FillStack()
{
    volatile char szRoom[0x4000];
    for (volatile char& c : szRoom)
    {
        c = 'x';
    }
}

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

TEST_CASE_METHOD(LogConfigFixture, "the search for the log configuration holds that in both keys in its scope",
                 "[driver][logconfig]")
{
    const LoggingOn logging{"OutputFunBeginInfo"};
    const LineAtCall<decltype(RegOpenKeyExA)> line(logging, "RegOpenKeyExA");
    CHECK(GetLogConfigFile().empty());
    CHECK(line.Text() == "VelUI_dll__GetLogConfigFromKey :START......");
    CHECK(Masked(logging) ==
          std::vector<std::string>{
              "VelUI_dll__GetLogConfigFile :START......", "VelUI_dll__GetLogConfigFromKey :START......",
              "VelUI_dll__GetLogConfigFromKey :End  ......", "VelUI_dll__GetLogConfigFromKey :START......",
              "VelUI_dll__GetLogConfigFromKey :End  ......", "VelUI_dll__GetLogConfigFile :End  ......"});
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
    // A number of four bytes, which are the text of the current folder with its terminator.
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

namespace
{

/// A machine on which every file is there: names of this length are more than the platform opens.
int FindAnyFile(const char*, int)
{
    return 0;
}

FILE* OpenAnyFile(const char*, const char* pszMode)
{
    auto* const pfnOpen = Platform<FILE*(const char*, const char*)>(L"msvcrt", "fopen");
    return pfnOpen("NUL", pszMode);
}

} // namespace

TEST_CASE_METHOD(LogConfigFixture, "an InstallDir of up to 260 bytes with its terminator is read, a longer one is not",
                 "[driver][logconfig]")
{
    const ImportHook access(nullptr, "_access", &FindAnyFile);
    const ImportHook open(nullptr, "fopen", &OpenAnyFile);
    registry.SetClient(L"InstallDir", std::wstring(259, L'f'));
    CHECK(GetLogConfigFile() == std::string(259, 'f') + "\\LogConfig.conf");
    registry.SetClient(L"InstallDir", std::wstring(260, L'f'));
    CHECK(GetLogConfigFile().empty());
}

TEST_CASE_METHOD(LogConfigFixture, "an InstallDir that was stored without a terminator is a folder too",
                 "[driver][logconfig]")
{
    const ImportHook access(nullptr, "_access", &FindAnyFile);
    const ImportHook open(nullptr, "fopen", &OpenAnyFile);
    const std::string strBytes(260, 'f');
    registry.SetBytes(L"Software\\Vel-soft\\Client", L"InstallDir", REG_BINARY, strBytes.data(), 260);
    FillStack();
    CHECK(GetLogConfigFile() == strBytes + "\\LogConfig.conf");
}
