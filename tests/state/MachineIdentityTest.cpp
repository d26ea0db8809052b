#include <winsock2.h>

#include "state/MachineIdentity.h"
#include "tests/common/GuardedBuffer.h"
#include "tests/common/ImportHook.h"
#include "tests/common/LogLines.h"

#include <catch2/catch_test_macros.hpp>

#include <cstdlib>
#include <iphlpapi.h>

using namespace VelUtility;

namespace
{

/// COMPUTERNAME as the C runtime gives it, for the length of a scope.
class ComputerName
{
public:
    explicit ComputerName(const wchar_t* pszName) : m_strOld(_wgetenv(L"COMPUTERNAME"))
    {
        _wputenv((L"COMPUTERNAME=" + std::wstring(pszName)).c_str());
    }
    ~ComputerName() { _wputenv((L"COMPUTERNAME=" + m_strOld).c_str()); }

private:
    std::wstring m_strOld;
};

int s_iSocketCalls = 0;
int WSAAPI CountStartup(WORD wVersion, LPWSADATA pData)
{
    ++s_iSocketCalls;
    return WSAStartup(wVersion, pData);
}
int WSAAPI FailStartup(WORD, LPWSADATA)
{
    WSASetLastError(WSASYSNOTREADY);
    return WSASYSNOTREADY;
}
int WSAAPI FailName(char*, int)
{
    WSASetLastError(WSAENETDOWN);
    return SOCKET_ERROR;
}
WORD s_wVersion = 0;
decltype(&WSAStartup) s_pfnStartup = nullptr;
int WSAAPI NoteVersion(WORD wVersion, LPWSADATA pData)
{
    s_wVersion = wVersion;
    return s_pfnStartup(wVersion, pData);
}
const wchar_t* s_pszBuffer = nullptr; ///< the caller's, looked at while the address is asked for
std::wstring s_strBuffer;
hostent* WSAAPI LookAtBuffer(const char*)
{
    s_strBuffer = s_pszBuffer;
    WSASetLastError(WSAHOST_NOT_FOUND);
    return nullptr;
}
hostent* WSAAPI FailHost(const char*)
{
    WSASetLastError(WSAHOST_NOT_FOUND);
    return nullptr;
}

unsigned char s_first[4] = {10, 20, 30, 40};
unsigned char s_second[4] = {1, 2, 3, 4};
char* s_addresses[3];
hostent s_hostEntry;
hostent* WSAAPI GiveHost(const char*)
{
    s_hostEntry.h_addr_list = s_addresses;
    return &s_hostEntry;
}

constexpr size_t kAdapterBytes = 2 * sizeof(IP_ADAPTER_INFO);
void* (*s_pfnMalloc)(size_t) = nullptr;
void* FailAdaptersMalloc(size_t cbSize)
{
    return cbSize == kAdapterBytes ? nullptr : s_pfnMalloc(cbSize);
}

DWORD s_dwSizeAnswer = ERROR_BUFFER_OVERFLOW;
DWORD s_dwFillAnswer = ERROR_SUCCESS;
UINT s_addressLengths[2] = {8, 6};
ULONG WINAPI GiveAdapters(PIP_ADAPTER_INFO pAdapters, PULONG pcb)
{
    if (pAdapters == nullptr)
    {
        *pcb = kAdapterBytes;
        return s_dwSizeAnswer;
    }
    for (int i = 0; i < 2 && s_dwFillAnswer == ERROR_SUCCESS; ++i)
    {
        pAdapters[i] = {};
        pAdapters[i].Next = i == 0 ? &pAdapters[1] : nullptr;
        pAdapters[i].AddressLength = s_addressLengths[i];
        for (BYTE by = 0; by < 8; ++by)
        {
            pAdapters[i].Address[by] = static_cast<BYTE>(0x10 * (i + 1) + by);
        }
    }
    return s_dwFillAnswer;
}

/// Two adapters of the test's own.
struct Adapters
{
    Adapters(UINT uiFirst, UINT uiSecond) : hook(nullptr, "GetAdaptersInfo", &GiveAdapters)
    {
        s_addressLengths[0] = uiFirst;
        s_addressLengths[1] = uiSecond;
        s_dwSizeAnswer = ERROR_BUFFER_OVERFLOW;
        s_dwFillAnswer = ERROR_SUCCESS;
    }
    ImportHook hook;
};

std::vector<std::string> LinesOf(const LoggingOn& logging)
{
    return Masked(logging);
}

/// What a function leaves between its START and End.
std::vector<std::string> InScope(const LoggingOn& logging, const char* pszFunction)
{
    return InnerLines(logging, std::string("VelUtility::") + pszFunction);
}

} // namespace

TEST_CASE("no output asks for nothing and is a success", "[state][machine]")
{
    const ImportHook hook(nullptr, "WSAStartup", &CountStartup);
    s_iSocketCalls = 0;
    CHECK(GetLocalMachineInfo(nullptr, 0, nullptr, nullptr) == 0);
    CHECK(s_iSocketCalls == 0);
}

TEST_CASE("the real machine tells its name and its address", "[state][machine]")
{
    wchar_t szName[256] = {};
    BYTE abyIP[4] = {};
    REQUIRE(GetLocalMachineInfo(szName, 256, nullptr, abyIP) == 0);
    CHECK(std::wstring(szName) == _wgetenv(L"COMPUTERNAME"));
    CHECK(abyIP[0] != 0);
}

TEST_CASE("a hardware address alone makes no socket call", "[state][machine]")
{
    const ImportHook hook(nullptr, "WSAStartup", &CountStartup);
    const Adapters adapters(6, 6);
    s_iSocketCalls = 0;
    BYTE abyMac[6] = {};
    CHECK(GetLocalMachineInfo(nullptr, 0, abyMac, nullptr) == 0);
    CHECK(s_iSocketCalls == 0);
    CHECK(abyMac[0] == 0x10);
    CHECK(abyMac[5] == 0x15);
}

TEST_CASE("nothing is written behind what the machine tells", "[state][machine]")
{
    const Adapters adapters(6, 6);
    const ImportHook hook(nullptr, "gethostbyname", &GiveHost);
    const ComputerName computer(L"ABCDE");
    s_addresses[0] = reinterpret_cast<char*>(s_first);
    s_addresses[1] = nullptr;
    const GuardedBuffer name(6 * sizeof(wchar_t)); // each ends at a page that can't be touched
    const GuardedBuffer mac(6);
    const GuardedBuffer address(4);
    CHECK(GetLocalMachineInfo(name.As<wchar_t>(), 64, mac.Get(), address.Get()) == 0);
    CHECK(std::wstring(name.As<wchar_t>()) == L"ABCDE");
    CHECK(mac.Get()[5] == 0x15);
    CHECK(memcmp(address.Get(), s_first, 4) == 0);
}

TEST_CASE("an adapter with an address of 8 bytes is passed over", "[state][machine]")
{
    const Adapters adapters(8, 6);
    BYTE abyMac[6] = {};
    CHECK(GetLocalMachineInfo(nullptr, 0, abyMac, nullptr) == 0);
    CHECK(abyMac[0] == 0x20);
    CHECK(abyMac[5] == 0x25);
}

TEST_CASE("every address of 6 bytes is listed in the platform's order", "[state][machine]")
{
    const Adapters adapters(6, 6);
    std::list<MacAddress> addresses;
    CHECK(GetMACaddress(addresses));
    REQUIRE(addresses.size() == 2);
    CHECK(addresses.front()[0] == 0x10);
    CHECK(addresses.back()[0] == 0x20);
}

TEST_CASE("a machine without an adapter has no hardware address and says so", "[state][machine]")
{
    Adapters adapters(6, 6);
    s_dwSizeAnswer = ERROR_NO_DATA;
    const LoggingOn logging{"OutputFunBeginInfo"};
    BYTE abyMac[6] = {'#'};
    CHECK(GetLocalMachineInfo(nullptr, 0, abyMac, nullptr) == 1);
    CHECK(abyMac[0] == '#');
    CHECK(InScope(logging, "GetMACaddress") == std::vector<std::string>{"ERROR - .\\ClientInfo(#) : dwStatus = 232"});
    CHECK(InScope(logging, "GetLocalMachineInfo") ==
          std::vector<std::string>{"ERROR - .\\ClientInfo(#) : GetMACaddress failed"});
}

TEST_CASE("adapters that can't be read leave no hardware address", "[state][machine]")
{
    Adapters adapters(6, 6);
    s_dwFillAnswer = ERROR_GEN_FAILURE;
    const LoggingOn logging;
    BYTE abyMac[6] = {};
    CHECK(GetLocalMachineInfo(nullptr, 0, abyMac, nullptr) == 1);
    CHECK(LinesOf(logging).at(0) == "ERROR - .\\ClientInfo(#) : dwStatus = 31");
}

TEST_CASE("adapters without an address of 6 bytes leave a failure", "[state][machine]")
{
    const Adapters adapters(8, 0);
    BYTE abyMac[6] = {};
    CHECK(GetLocalMachineInfo(nullptr, 0, abyMac, nullptr) == 1);
}

TEST_CASE("the machine's name comes from the environment without the blanks around it", "[state][machine]")
{
    const ComputerName name(L"  OFFICE PC\t ");
    wchar_t szName[32];
    wmemset(szName, L'#', 32);
    CHECK(GetLocalMachineInfo(szName, 32, nullptr, nullptr) == 0);
    CHECK(std::wstring(szName) == L"OFFICE PC");
    CHECK(szName[10] == L'#'); // no more is written than the name and its terminator
}

TEST_CASE("a name too long for its buffer fills it without a terminator", "[state][machine]")
{
    const ComputerName name(L"ABCDE");
    wchar_t szName[5] = {L'#', L'#', L'#', L'#', L'#'};
    CHECK(GetLocalMachineInfo(szName, 3, nullptr, nullptr) == 0);
    CHECK(std::wstring(szName, 5) == L"ABC##");
}

TEST_CASE("an unset computer name is a failure with two lines, and no hardware address is sought", "[state][machine]")
{
    const ComputerName name(L"");
    const Adapters adapters(6, 6);
    const LoggingOn logging;
    wchar_t szName[8] = L"before";
    BYTE abyMac[6] = {'#'};
    CHECK(GetLocalMachineInfo(szName, 8, abyMac, nullptr) == 1);
    CHECK(std::wstring(szName) == L"before");
    CHECK(abyMac[0] == '#');
    CHECK(LinesOf(logging) == std::vector<std::string>{"ERROR - .\\ClientInfo(#) : NULL == pcComputerName",
                                                       "ERROR - .\\ClientInfo(#) : GetHost failed."});
}

TEST_CASE("each failed socket step leaves its code", "[state][machine]")
{
    wchar_t szName[64] = {};
    const auto check = [&](const char* pszFunction, auto pfn, const char* pszCode) {
        const ImportHook hook(nullptr, pszFunction, pfn);
        const LoggingOn logging{"OutputFunBeginInfo"};
        CHECK(GetLocalMachineInfo(szName, 64, nullptr, nullptr) == 1);
        CHECK(InScope(logging, "GetHost") ==
              std::vector<std::string>{std::string("ERROR - .\\ClientInfo(#) : WSAGetLastError() = ") + pszCode});
        CHECK(InScope(logging, "GetLocalMachineInfo") ==
              std::vector<std::string>{"ERROR - .\\ClientInfo(#) : GetHost failed."});
    };
    check("WSAStartup", &FailStartup, "10091");
    check("gethostname", &FailName, "10050");
    check("gethostbyname", &FailHost, "11001");
}

TEST_CASE("the front address is copied as its bytes stand, and none at all is a silent failure", "[state][machine]")
{
    const ImportHook hook(nullptr, "gethostbyname", &GiveHost);
    s_addresses[0] = reinterpret_cast<char*>(s_first);
    s_addresses[1] = reinterpret_cast<char*>(s_second);
    s_addresses[2] = nullptr;
    BYTE abyIP[4] = {};
    CHECK(GetLocalMachineInfo(nullptr, 0, nullptr, abyIP) == 0);
    CHECK(memcmp(abyIP, s_first, 4) == 0);

    s_addresses[0] = nullptr;
    const LoggingOn logging;
    wchar_t szName[64] = {};
    CHECK(GetLocalMachineInfo(szName, 64, nullptr, abyIP) == 1);
    CHECK_FALSE(std::wstring(szName).empty()); // what was filled before stays
    CHECK(LinesOf(logging).empty());
}

TEST_CASE("the host's name survives a failed search for a hardware address", "[state][machine]")
{
    const Adapters adapters(0, 0);
    wchar_t szName[64] = {};
    BYTE abyMac[6] = {};
    CHECK(GetLocalMachineInfo(szName, 64, abyMac, nullptr) == 1);
    CHECK(std::wstring(szName) == _wgetenv(L"COMPUTERNAME"));
}

TEST_CASE("sockets of version 1.1 are asked for, and each call leaves one reference on the library", "[state][machine]")
{
    while (WSACleanup() == 0) // what others have left
    {}
    REQUIRE(WSAGetLastError() == WSANOTINITIALISED);
    const ImportHook hook(nullptr, "WSAStartup", &NoteVersion);
    s_pfnStartup = reinterpret_cast<decltype(s_pfnStartup)>(hook.Original());
    s_wVersion = 0;
    wchar_t szName[kHostNameUnits] = {};
    std::list<DWORD> addresses;
    CHECK(GetHost(szName, 255, addresses));
    CHECK(s_wVersion == 0x0101);
    CHECK(GetHost(szName, 255, addresses));
    CHECK(WSACleanup() == 0);
    CHECK(WSACleanup() == 0);
    CHECK(WSACleanup() == SOCKET_ERROR); // both references are gone
}

TEST_CASE("the caller's buffer holds the name before the address is asked for, and keeps it when there is none",
          "[state][machine]")
{
    const ComputerName name(L" OFFICE ");
    const ImportHook hook(nullptr, "gethostbyname", &LookAtBuffer);
    wchar_t szName[kHostNameUnits] = L"before";
    std::list<DWORD> addresses;
    s_pszBuffer = szName;
    s_strBuffer.clear();
    CHECK_FALSE(GetHost(szName, 255, addresses));
    CHECK(s_strBuffer == L" OFFICE ");
    CHECK(std::wstring(szName) == L" OFFICE "); // stripped by who asked for it
    CHECK(addresses.empty());
}

TEST_CASE("all that the C runtime counts as white space is cut from both ends of the name, and nothing inside it",
          "[state][machine]")
{
    for (const wchar_t cBlank : {L' ', L'\t', L'\n', L'\v', L'\f', L'\r', L'\u3000'})
    {
        CAPTURE(static_cast<int>(cBlank));
        const std::wstring strBlanks(2, cBlank);
        const ComputerName name((strBlanks + L"A" + strBlanks + L"_\u200B" + strBlanks).c_str());
        wchar_t szName[32] = {};
        CHECK(GetLocalMachineInfo(szName, 32, nullptr, nullptr) == 0);
        CHECK(std::wstring(szName) == L"A" + strBlanks + L"_\u200B"); // a zero-width space is none
    }
}

TEST_CASE("adapters for which there is no memory leave its size and no hardware address", "[state][machine]")
{
    const Adapters adapters(6, 6);
    const LoggingOn logging;
    BYTE abyMac[6] = {'#'};
    DWORD dwStatus = 0;
    {
        const ImportHook hook(nullptr, "malloc", &FailAdaptersMalloc);
        s_pfnMalloc = reinterpret_cast<decltype(s_pfnMalloc)>(hook.Original());
        dwStatus = GetLocalMachineInfo(nullptr, 0, abyMac, nullptr);
    }
    CHECK(dwStatus == 1);
    CHECK(abyMac[0] == '#');
    CHECK(LinesOf(logging) ==
          std::vector<std::string>{"ERROR - .\\ClientInfo(#) : malloc failed. size = " + std::to_string(kAdapterBytes),
                                   "ERROR - .\\ClientInfo(#) : GetMACaddress failed"});
}

TEST_CASE("the logon user's information is an empty operation", "[state][machine]")
{
    CHECK(GetLogonUserInfo(1, 2, 3, 4) == 1);
}
