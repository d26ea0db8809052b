#include "state/CurrentUser.h"
#include "tests/common/ImportHook.h"
#include "tests/common/LogLines.h"
#include "tests/common/PrivateRegistry.h"

#include <catch2/catch_test_macros.hpp>

#include <vector>

using namespace VelUtility;

namespace
{

constexpr wchar_t kWinlogon[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";

struct UserBuffers
{
    wchar_t szUser[kUserNameUnits] = {};
    wchar_t szDomain[kDomainNameUnits] = {};
    std::wstring User() const { return szUser; }
    std::wstring Domain() const { return szDomain; }
};

struct WinlogonFixture
{
    PrivateRegistry registry;
    UserBuffers who;

    void Set(const std::wstring& strUser, const std::wstring& strDomain)
    {
        registry.SetText(kWinlogon, L"DefaultUserName", strUser);
        registry.SetText(kWinlogon, L"DefaultDomainName", strDomain);
    }
};

std::wstring s_strKey;
LSTATUS WINAPI NoteKey(HKEY, LPCWSTR pszKey, DWORD, REGSAM, PHKEY)
{
    s_strKey = pszKey;
    return ERROR_ACCESS_DENIED;
}

int s_iFailingRead = 0; ///< which read of a value fails, counted from 1
decltype(&RegQueryValueExW) s_pfnQuery = nullptr;
LSTATUS WINAPI FailOneRead(HKEY hKey, LPCWSTR pszValue, LPDWORD pReserved, LPDWORD pdwType, LPBYTE pbyData, LPDWORD pcb)
{
    return --s_iFailingRead == 0 ? ERROR_ACCESS_DENIED : s_pfnQuery(hKey, pszValue, pReserved, pdwType, pbyData, pcb);
}

BOOL WINAPI FailComputerName(LPWSTR, LPDWORD)
{
    return FALSE;
}

/// What the reader of the logon key leaves between its START and End, having found no user.
std::vector<std::string> LinesOfFailure()
{
    UserBuffers who;
    const LoggingOn logging{"OutputFunBeginInfo"};
    CHECK(GetCurrentUsername_Registry(who.szUser, who.szDomain) == 0);
    return InnerLines(logging, "VelUtility::GetCurrentUsername_Registry");
}

std::wstring ComputerName()
{
    wchar_t szName[64] = {};
    DWORD cch = 64;
    REQUIRE(GetComputerNameW(szName, &cch));
    return szName;
}

} // namespace

TEST_CASE_METHOD(WinlogonFixture, "the current user comes from the logon key", "[state][user]")
{
    Set(L"mei", L"OFFICE-DOMAIN-X");
    CHECK(GetCurrentUsername(who.szUser, who.szDomain) == 1);
    CHECK(who.User() == L"mei");
    CHECK(who.Domain() == L"OFFICE-DOMAIN-X");
    CHECK(GetCurrentUsername_Registry(who.szUser, who.szDomain) == 1);
}

TEST_CASE_METHOD(WinlogonFixture, "a missing logon key gives the hard-coded user", "[state][user]")
{
    CHECK(GetCurrentUsername_Registry(who.szUser, who.szDomain) == 0);
    CHECK(GetCurrentUsername(who.szUser, who.szDomain) == 1);
    CHECK(who.User() == L"QPS");
    CHECK(who.Domain() == L"VEL");
}

TEST_CASE_METHOD(WinlogonFixture, "a missing user value gives the hard-coded user", "[state][user]")
{
    registry.SetText(kWinlogon, L"DefaultDomainName", L"D");
    CHECK(GetCurrentUsername(who.szUser, who.szDomain) == 1);
    CHECK(who.User() == L"QPS");
    CHECK(who.Domain() == L"VEL");
}

TEST_CASE_METHOD(WinlogonFixture, "a missing domain value gives the hard-coded user in place of the one read",
                 "[state][user]")
{
    registry.SetText(kWinlogon, L"DefaultUserName", L"somebody-with-a-longer-name");
    CHECK(GetCurrentUsername_Registry(who.szUser, who.szDomain) == 0);
    CHECK(GetCurrentUsername(who.szUser, who.szDomain) == 1);
    CHECK(who.User() == L"QPS");
    CHECK(who.Domain() == L"VEL");
}

TEST_CASE_METHOD(WinlogonFixture, "a domain equal to the computer's name becomes localhost", "[state][user]")
{
    Set(L"mei", ComputerName());
    CHECK(GetCurrentUsername(who.szUser, who.szDomain) == 1);
    CHECK(who.Domain() == L"localhost");
    CHECK(who.User() == L"mei");
    CHECK(GetCurrentUsername_Registry(who.szUser, who.szDomain) == 1);
}

TEST_CASE_METHOD(WinlogonFixture, "a domain that merely begins with the computer's name becomes localhost",
                 "[state][user]")
{
    Set(L"mei", ComputerName() + L"-FOREST");
    CHECK(GetCurrentUsername(who.szUser, who.szDomain) == 1);
    CHECK(who.Domain() == L"localhost");
}

TEST_CASE_METHOD(WinlogonFixture, "a domain in another case than the computer's name stays as it is", "[state][user]")
{
    std::wstring strLower = ComputerName();
    for (wchar_t& c : strLower)
    {
        c = towlower(c);
    }
    REQUIRE(strLower != ComputerName());
    Set(L"mei", strLower);
    CHECK(GetCurrentUsername(who.szUser, who.szDomain) == 1);
    CHECK(who.Domain() == strLower);
}

TEST_CASE_METHOD(WinlogonFixture, "a user name of 80 characters or more is cut to 80", "[state][user]")
{
    for (const size_t uiLength : {79u, 80u, 81u, 200u})
    {
        CAPTURE(uiLength);
        Set(std::wstring(uiLength, L'u'), L"DOM");
        UserBuffers buffers;
        CHECK(GetCurrentUsername(buffers.szUser, buffers.szDomain) == 1);
        CHECK(buffers.User() == std::wstring(uiLength < 80 ? uiLength : 80, L'u'));
        CHECK(buffers.Domain() == L"DOM");
    }
}

TEST_CASE_METHOD(WinlogonFixture, "a long domain stays whole and leaves a shorter user name alone", "[state][user]")
{
    for (const size_t uiLength : {79u, 80u, 81u, 200u})
    {
        CAPTURE(uiLength);
        Set(L"mei", std::wstring(uiLength, L'd'));
        UserBuffers buffers;
        CHECK(GetCurrentUsername(buffers.szUser, buffers.szDomain) == 1);
        CHECK(buffers.Domain() == std::wstring(uiLength, L'd'));
        CHECK(buffers.User() == L"mei");
    }
}

TEST_CASE_METHOD(WinlogonFixture, "a long domain puts its terminator at index 80 of the user's buffer", "[state][user]")
{
    Set(L"mei", std::wstring(80, L'd'));
    wmemset(who.szUser, L'#', kUserNameUnits);
    CHECK(GetCurrentUsername(who.szUser, who.szDomain) == 1);
    CHECK(who.szUser[80] == L'\0');
    CHECK(who.szUser[79] == L'#');
}

TEST_CASE_METHOD(WinlogonFixture, "a domain beyond every bound is cut at the declared room", "[state][user]")
{
    Set(L"mei", std::wstring(5000, L'd'));
    CHECK(GetCurrentUsername(who.szUser, who.szDomain) == 1);
    CHECK(who.Domain() == std::wstring(kDomainNameUnits - 1, L'd'));
}

TEST_CASE_METHOD(WinlogonFixture, "a user value stored without a terminator or with an odd size still ends",
                 "[state][user]")
{
    Set(L"x", L"DOM");
    registry.SetBytes(kWinlogon, L"DefaultUserName", REG_SZ, L"meiXYZ", 7);
    CHECK(GetCurrentUsername(who.szUser, who.szDomain) == 1);
    CHECK(who.User().substr(0, 3) == L"mei");
    CHECK(who.User().size() <= 4);
}

TEST_CASE_METHOD(WinlogonFixture, "the logon key is named with doubled separators", "[state][user]")
{
    const ImportHook hook(nullptr, "RegOpenKeyExW", &NoteKey);
    s_strKey.clear();
    CHECK(GetCurrentUsername_Registry(who.szUser, who.szDomain) == 0);
    CHECK(s_strKey == LR"(SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon)");
}

TEST_CASE_METHOD(WinlogonFixture, "each read of the logon key that fails leaves a line of its own",
                 "[state][user][log]")
{
    Set(L"mei", L"OFFICE");
    const char* const words[] = {"RegQueryValueExW_Username returns 5", "lRet = 5",
                                 "RegQueryValueExW_DomainName returns 5", "lRet = 5"};
    const ImportHook hook(nullptr, "RegQueryValueExW", &FailOneRead);
    s_pfnQuery = reinterpret_cast<decltype(s_pfnQuery)>(hook.Original());
    for (int iRead = 1; iRead <= 4; ++iRead)
    {
        CAPTURE(iRead);
        s_iFailingRead = iRead;
        CHECK(LinesOfFailure() ==
              std::vector<std::string>{std::string("ERROR - .\\ClientInfo(#) : ") + words[iRead - 1]});
    }
    s_iFailingRead = 0;
}

TEST_CASE_METHOD(WinlogonFixture, "a computer's name that can't be had leaves a line", "[state][user][log]")
{
    Set(L"mei", L"OFFICE");
    const ImportHook hook(nullptr, "GetComputerNameW", &FailComputerName);
    CHECK(LinesOfFailure() == std::vector<std::string>{"ERROR - .\\ClientInfo(#) : GetComputerNameW failed."});
}
