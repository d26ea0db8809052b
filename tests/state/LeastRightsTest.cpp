// With which rights keys, files, mutexes and tokens are asked for: what a call needs, and no more.

#include "driver/Module.h"
#include "state/DataFiles.h"
#include "state/MessageFiles.h"
#include "support/ProcessUtilities.h"
#include "tests/common/ImportHook.h"
#include "tests/ui/SheetDataFixture.h"

#include <catch2/catch_test_macros.hpp>

using namespace VelUtility;

namespace
{

/// What was asked for, one entry a call: a key's or file's name, and the rights or the mode.
struct Asked
{
    std::wstring strName;
    std::wstring strRights;
};

std::vector<Asked> s_asked;
void* s_pfnReal; ///< the function behind the hook

/// Replaces a function by one that notes what it is asked for.
class NotingHook
{
public:
    template <typename Function>
    NotingHook(HMODULE hModule, const char* pszFunction, Function* pfnNote) : m_hook(hModule, pszFunction, pfnNote)
    {
        s_asked.clear();
        s_pfnReal = m_hook.Original();
    }

private:
    ImportHook m_hook;
};

LSTATUS WINAPI NoteKeyW(HKEY hRoot, LPCWSTR pszName, DWORD dwOptions, REGSAM sam, PHKEY phKey)
{
    s_asked.push_back({pszName, std::to_wstring(sam)});
    return reinterpret_cast<decltype(&RegOpenKeyExW)>(s_pfnReal)(hRoot, pszName, dwOptions, sam, phKey);
}

LSTATUS WINAPI NoteKeyA(HKEY hRoot, LPCSTR pszName, DWORD dwOptions, REGSAM sam, PHKEY phKey)
{
    s_asked.push_back({std::wstring(pszName, pszName + strlen(pszName)), std::to_wstring(sam)});
    return reinterpret_cast<decltype(&RegOpenKeyExA)>(s_pfnReal)(hRoot, pszName, dwOptions, sam, phKey);
}

FILE* NoteFile(const wchar_t* pszPath, const wchar_t* pszMode)
{
    s_asked.push_back({pszPath, pszMode});
    return reinterpret_cast<decltype(&_wfopen)>(s_pfnReal)(pszPath, pszMode);
}

HANDLE WINAPI NoteMutex(LPSECURITY_ATTRIBUTES pAttributes, BOOL bOwner, LPCWSTR pszName)
{
    s_asked.push_back({pszName, pAttributes == nullptr && !bOwner ? L"plain" : L"more"});
    return reinterpret_cast<decltype(&CreateMutexW)>(s_pfnReal)(pAttributes, bOwner, pszName);
}

BOOL WINAPI NoteToken(HANDLE hProcess, DWORD dwRights, PHANDLE phToken)
{
    s_asked.push_back({L"token", std::to_wstring(dwRights)});
    return reinterpret_cast<decltype(&OpenProcessToken)>(s_pfnReal)(hProcess, dwRights, phToken);
}

/// Some work of the built module's entry points on all the files that they use.
void UseModule(SheetDataFixture& fixture)
{
    fixture.UsePapers(kPapers);
    CHECK(fixture.module.DeviceCapabilities(nullptr, nullptr, DC_PAPERS, nullptr, nullptr) == 4);
    stuDrvDevmode record = {};
    LONG cbNeeded = sizeof(record);
    CHECK(fixture.module.ConvertDevMode(nullptr, nullptr, &record.stuDevmode, &cbNeeded, CDM_DRIVER_DEFAULT) == 1);
}

} // namespace

TEST_CASE_METHOD(SheetDataFixture, "keys are opened for reading, the logon key alone with full access",
                 "[state][rights]")
{
    const NotingHook hook(module.handle, "RegOpenKeyExW", &NoteKeyW);
    UseModule(*this);
    size_t uiLogon = 0;
    for (const Asked& key : s_asked)
    {
        const bool bLogon = key.strName.find(L"Winlogon") != std::wstring::npos;
        uiLogon += bLogon ? 1 : 0;
        CHECK(key.strRights == std::to_wstring(bLogon ? 0xF003F : 0x20019));
    }
    CHECK(uiLogon == 2);        // for each of the user's two files
    CHECK(s_asked.size() == 7); // with the folders of those, and of the snapshot for three queries
}

TEST_CASE_METHOD(ClientFixture, "the log configuration's key is opened for reading", "[driver][rights]")
{
    const NotingHook hook(nullptr, "RegOpenKeyExA", &NoteKeyA);
    GetLogConfigFromKey("Software\\Vel-soft\\Client");
    REQUIRE(s_asked.size() == 1);
    CHECK(s_asked[0].strName == L"Software\\Vel-soft\\Client");
    CHECK(s_asked[0].strRights == std::to_wstring(0x20019));
}

TEST_CASE_METHOD(ClientFixture, "data files are opened for what is done with them", "[state][rights]")
{
    const NotingHook hook(nullptr, "_wfopen", &NoteFile);
    DEVMODEW record = {};
    BYTE abyData[4] = {1, 2, 3, 4};
    int iLength = 0;
    CHECK(SetDevDef(&record) == 0);
    CHECK(GetDevDef(&record) == 0);
    CHECK(MakeAutoLogonInfo(abyData, 4) == 0);
    CHECK(GetAutoLogonInfo(abyData, 4, &iLength) == 0);
    CHECK(AppendUserMessageFile(L"lin", abyData, 4) == 0);
    REQUIRE(s_asked.size() == 5);
    CHECK(s_asked[0].strRights == L"wb");
    CHECK(s_asked[1].strRights == L"rb");
    CHECK(s_asked[2].strRights == L"wb");
    CHECK(s_asked[3].strRights == L"rb");
    CHECK(s_asked[4].strRights == L"ab");
}

TEST_CASE_METHOD(SheetDataFixture, "mutexes are made with the creator's own rights and without an owner",
                 "[state][rights]")
{
    const NotingHook hook(module.handle, "CreateMutexW", &NoteMutex);
    UseModule(*this);
    CHECK(s_asked.size() == 5); // the user's two files, and the snapshot for three queries
    for (const Asked& mutex : s_asked)
    {
        CHECK(mutex.strRights == L"plain");
    }
}

TEST_CASE("the process's token is opened for its privileges alone", "[support][rights]")
{
    const NotingHook hook(nullptr, "OpenProcessToken", &NoteToken);
    Win32::TryEnableDebugPrivilege(GetCurrentProcess(), L"SeDebugPrivilege", true);
    REQUIRE(s_asked.size() == 1);
    CHECK(s_asked[0].strRights == std::to_wstring(0x20));
}
