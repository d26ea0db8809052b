// What the doctor finds in the client's registry key. Each fault is made in an installation that has nothing else
// wrong, and gives its own finding and no other.

#include "driver/Module.h"
#include "state/StorePaths.h"
#include "tests/common/ImportHook.h"
#include "tests/velhost/DoctorFixture.h"
#include "tools/velhost/doctor/RegistryCheck.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/matchers/catch_matchers_string.hpp>

using namespace VelHost;
using Catch::Matchers::ContainsSubstring;

namespace
{

using Codes = std::vector<std::string>;

constexpr wchar_t kClient[] = L"Software\\Vel-soft\\Client";

/// Thai, which neither code page 1252 nor 936 has.
constexpr wchar_t kThaiFolder[] = L"\x0E01";

void DeleteValue(const wchar_t* pszValue)
{
    HKEY hKey = nullptr;
    REQUIRE(RegOpenKeyExW(HKEY_LOCAL_MACHINE, kClient, 0, KEY_ALL_ACCESS, &hKey) == ERROR_SUCCESS);
    CHECK(RegDeleteValueW(hKey, pszValue) == ERROR_SUCCESS);
    RegCloseKey(hKey);
}

void SetTyped(ClientFixture& client, const wchar_t* pszValue, DWORD dwType, const std::wstring& strText)
{
    client.registry.SetBytes(kClient, pszValue, dwType, strText.c_str(),
                             static_cast<DWORD>((strText.size() + 1) * sizeof(wchar_t)));
}

/// A fault and what it gives.
struct RegistryFault
{
    const char* pszName;
    std::function<void(ClientFixture&)> make;
    const char* pszCode;
};

const RegistryFault kFaults[] = {
    {"no key", [](ClientFixture&) { RegDeleteTreeW(HKEY_LOCAL_MACHINE, kClient); }, "REG01"},
    {"a key for 32-bit programs alone",
     [](ClientFixture& client) {
         RegDeleteTreeW(HKEY_LOCAL_MACHINE, kClient);
         client.registry.SetText(L"Software\\WOW6432Node\\Vel-soft\\Client", L"TempDir", client.folder.Path());
     },
     "REG02"},
    {"no InstallDir", [](ClientFixture&) { DeleteValue(L"InstallDir"); }, "REG03"},
    {"no DataDir", [](ClientFixture&) { DeleteValue(L"DataDir"); }, "REG03"},
    {"no TempDir", [](ClientFixture&) { DeleteValue(L"TempDir"); }, "REG03"},
    {"no LogDir", [](ClientFixture&) { DeleteValue(L"LogDir"); }, "REG03"},
    {"a number for a text",
     [](ClientFixture& client) {
         const DWORD dwNumber = 5;
         client.registry.SetBytes(kClient, L"TempDir", REG_DWORD, &dwNumber, sizeof(dwNumber));
     },
     "REG04"},
    {"a text to be expanded",
     [](ClientFixture& client) { SetTyped(client, L"DataDir", REG_EXPAND_SZ, client.folder.Path()); }, "REG04"},
    {"an empty text", [](ClientFixture& client) { client.registry.SetClient(L"DataDir", L""); }, "REG06"},
    {"a path from wherever a program stands",
     [](ClientFixture& client) { client.registry.SetClient(L"TempDir", L"Vel\\Temp"); }, "REG06"},
    {"a path without its drive", [](ClientFixture& client) { client.registry.SetClient(L"TempDir", L"\\Temp"); },
     "REG06"},
    {"a path in quotation marks",
     [](ClientFixture& client) { client.registry.SetClient(L"LogDir", L"\"" + client.folder.Path() + L"\""); },
     "REG06"},
    {"a path with a variable",
     [](ClientFixture& client) { client.registry.SetClient(L"TempDir", L"%ProgramData%\\Vel"); }, "REG06"},
    {"a folder that the code page lacks",
     [](ClientFixture& client) {
         CreateDirectoryW(client.folder.File(kThaiFolder).c_str(), nullptr);
         client.registry.SetClient(L"InstallDir", client.folder.File(kThaiFolder));
     },
     "REG07"},
    {"a folder that is not there",
     [](ClientFixture& client) { client.registry.SetClient(L"DataDir", client.folder.File(L"none")); }, "REG08"},
    {"a drive that is not there", [](ClientFixture& client) { client.registry.SetClient(L"LogDir", L"Q:\\Log"); },
     "REG08"},
    {"a file for a folder",
     [](ClientFixture& client) {
         WriteFileBytes(client.folder.File(L"file"), "");
         client.registry.SetClient(L"TempDir", client.folder.File(L"file"));
     },
     "REG09"},
};

std::wstring s_strForbidden;
decltype(&CreateFileW) s_pfnCreateFile = nullptr;

HANDLE WINAPI RefuseToAdd(LPCWSTR pszFile, DWORD dwAccess, DWORD dwShare, LPSECURITY_ATTRIBUTES pSecurity,
                          DWORD dwCreation, DWORD dwFlags, HANDLE hTemplate)
{
    if (pszFile == s_strForbidden && (dwAccess & FILE_ADD_FILE) != 0)
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    return s_pfnCreateFile(pszFile, dwAccess, dwShare, pSecurity, dwCreation, dwFlags, hTemplate);
}

LSTATUS WINAPI RefuseKey(HKEY, LPCWSTR, DWORD, REGSAM, PHKEY)
{
    return ERROR_ACCESS_DENIED;
}

} // namespace

TEST_CASE("the doctor finds each fault of the client's registry key, and nothing else", "[velhost][doctor]")
{
    for (const RegistryFault& fault : kFaults)
    {
        CAPTURE(fault.pszName);
        ClientFixture client;
        CHECK(CodesOf(&CheckRegistry).empty());
        fault.make(client);
        CHECK(CodesOf(&CheckRegistry) == Codes{fault.pszCode});
    }
}

TEST_CASE_METHOD(ClientFixture, "the doctor accepts each folder up to the length that its reader accepts",
                 "[velhost][doctor]")
{
    struct Limit
    {
        const wchar_t* pszValue;
        size_t uiMost; ///< characters: half of the size that the reader is told, less the terminator
    };
    // DataDir is read with a size of 260 and TempDir with 256, which are taken for bytes. The name of LogConfig.conf
    // has room behind 244 of 259 characters.
    for (const Limit& limit : {Limit{L"DataDir", 129}, Limit{L"TempDir", 127}, Limit{L"InstallDir", 244}})
    {
        CAPTURE(limit.uiMost);
        const TempFolder longest(limit.uiMost);
        registry.SetClient(limit.pszValue, longest.Path());
        CHECK(CodesOf(&CheckRegistry).empty());
        const TempFolder longer(limit.uiMost + 1);
        registry.SetClient(limit.pszValue, longer.Path());
        CHECK(CodesOf(&CheckRegistry) == Codes{"REG05"});
        registry.SetClient(limit.pszValue, folder.Path());
    }
    // The module agrees.
    wchar_t szPath[VelUtility::kStorePathUnits] = {};
    const TempFolder longer(128);
    registry.SetClient(L"TempDir", longer.Path());
    CHECK_FALSE(VelUtility::MakeConfigFilePath(szPath));
}

TEST_CASE_METHOD(ClientFixture,
                 "the doctor accepts a folder with and without a backslash at its end, as all readers do",
                 "[velhost][doctor]")
{
    WriteFileBytes(folder.File(L"LogConfig.conf"), "rootCategory=ERROR\n");
    for (const wchar_t* pszEnd : {L"", L"\\"})
    {
        CAPTURE(pszEnd);
        for (const wchar_t* pszValue : {L"InstallDir", L"DataDir", L"TempDir", L"LogDir"})
        {
            registry.SetClient(pszValue, folder.Path() + pszEnd);
        }
        CHECK(CodesOf(&CheckRegistry).empty());
        wchar_t szPath[VelUtility::kStorePathUnits] = {};
        CHECK(VelUtility::MakeConfigFilePath(szPath));
        CHECK(szPath == ConfigFile());
        CHECK_FALSE(GetLogConfigFile().empty());
    }
}

TEST_CASE_METHOD(ClientFixture, "the doctor accepts a folder that the code page lacks where it is read as it is",
                 "[velhost][doctor]")
{
    const std::wstring strData = folder.File(kThaiFolder);
    REQUIRE(CreateDirectoryW(strData.c_str(), nullptr));
    registry.SetClient(L"DataDir", strData);
    registry.SetClient(L"TempDir", strData);
    CHECK(CodesOf(&CheckRegistry).empty());
}

TEST_CASE_METHOD(ClientFixture, "the doctor tells of a folder in which the user may not add files", "[velhost][doctor]")
{
    // As root every folder can be written to; so Windows is made to refuse.
    const std::wstring strData = folder.File(L"Data");
    REQUIRE(CreateDirectoryW(strData.c_str(), nullptr));
    registry.SetClient(L"DataDir", strData);
    s_strForbidden = strData;
    const ImportHook hook(nullptr, "CreateFileW", &RefuseToAdd);
    s_pfnCreateFile = reinterpret_cast<decltype(&CreateFileW)>(hook.Original());
    CHECK(CodesOf(&CheckRegistry) == Codes{"REG10"});
    // Nobody adds files to TempDir but the client.
    registry.SetClient(L"DataDir", folder.Path());
    registry.SetClient(L"TempDir", strData);
    CHECK(CodesOf(&CheckRegistry).empty());
}

TEST_CASE_METHOD(ClientFixture, "the doctor says so when it may not read the client's key", "[velhost][doctor]")
{
    const ImportHook hook(nullptr, "RegOpenKeyExW", &RefuseKey);
    CHECK_THROWS_WITH(CodesOf(&CheckRegistry), ContainsSubstring("can't read the registry key"));
}
