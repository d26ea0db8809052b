// Sockets first: their header must come before windows.h.
#include <winsock2.h>

#include "state/MachineIdentity.h"

#include "diag/LogSite.h"
#include "state/StoreTypes.h"
#include "support/Memory.h"

#include <algorithm>
#include <boost/algorithm/string/trim.hpp>
#include <cstdlib>
#include <cstring>
#include <cwctype>
#include <iphlpapi.h>
#include <memory>

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

/// What GetHost is told of its buffer.
constexpr DWORD kHostSize = 255;

/// The host's part of the work: the stripped name and the front address.
DWORD FillHost(wchar_t* szHostName, DWORD uiHostSize, BYTE* pbyIP)
{
    wchar_t szName[kHostNameUnits] = {};
    std::list<DWORD> addresses;
    if (!GetHost(szName, kHostSize, addresses))
    {
        LOG_ERROR("GetHost failed.");
        return PSERR_FAILED;
    }
    if (szHostName != nullptr)
    {
        const std::wstring strName =
            boost::trim_copy_if(std::wstring(szName), [](wchar_t ch) { return std::iswspace(ch); });
        wcsncpy(szHostName, strName.c_str(), std::min<size_t>(uiHostSize, strName.size() + 1));
    }
    if (pbyIP != nullptr)
    {
        if (addresses.empty())
        {
            return PSERR_FAILED; // Required: without a line; a machine off the network is no error
        }
        std::memcpy(pbyIP, &addresses.front(), sizeof(DWORD));
    }
    return PSERR_OK;
}

} // namespace

DWORD GetLocalMachineInfo(wchar_t* szHostName, DWORD uiHostSize, BYTE* pbyMac, BYTE* pbyIP)
{
    const FunctionScope scope("VelUtility::GetLocalMachineInfo");
    if ((szHostName != nullptr || pbyIP != nullptr) && FillHost(szHostName, uiHostSize, pbyIP) != PSERR_OK)
    {
        return PSERR_FAILED;
    }
    if (pbyMac != nullptr)
    {
        std::list<MacAddress> addresses;
        GetMACaddress(addresses); // its result is left aside: the list tells
        if (addresses.empty())
        {
            LOG_ERROR("GetMACaddress failed");
            return PSERR_FAILED;
        }
        std::memcpy(pbyMac, addresses.front().data(), kMacBytes);
    }
    return PSERR_OK;
}

bool GetHost(wchar_t* szHostName, DWORD /*uiHostSize*/, std::list<DWORD>& addresses)
{
    const FunctionScope scope("VelUtility::GetHost");
    // Required: no WSACleanup; each call leaves one more start-up reference on the socket library. A host that uses
    // sockets itself so never loses them to this call.
    WSADATA data = {};
    if (WSAStartup(MAKEWORD(1, 1), &data) != 0)
    {
        LOG_ERROR("WSAGetLastError() = %d", WSAGetLastError());
        return false;
    }
    char szSocketName[255] = {};
    if (gethostname(szSocketName, sizeof(szSocketName)) != 0)
    {
        LOG_ERROR("WSAGetLastError() = %d", WSAGetLastError());
        return false;
    }
    const wchar_t* const pcComputerName = _wgetenv(L"COMPUTERNAME");
    if (pcComputerName == nullptr)
    {
        LOG_ERROR("NULL == pcComputerName");
        return false;
    }
    wcsncpy_s(szHostName, kHostNameUnits, pcComputerName, _TRUNCATE);
    const hostent* const pHost = gethostbyname(szSocketName);
    if (pHost == nullptr)
    {
        LOG_ERROR("WSAGetLastError() = %d", WSAGetLastError());
        return false;
    }
    for (char** ppAddress = pHost->h_addr_list; *ppAddress != nullptr; ++ppAddress)
    {
        DWORD dwAddress = 0;
        std::memcpy(&dwAddress, *ppAddress, sizeof(dwAddress));
        addresses.push_back(dwAddress);
    }
    return true;
}

bool GetMACaddress(std::list<MacAddress>& addresses)
{
    const FunctionScope scope("VelUtility::GetMACaddress");
    ULONG cbAdapters = 0;
    DWORD dwStatus = GetAdaptersInfo(nullptr, &cbAdapters);
    if (dwStatus != ERROR_BUFFER_OVERFLOW)
    {
        LOG_ERROR("dwStatus = %u", static_cast<unsigned>(dwStatus));
        return false;
    }
    const MallocPtr<IP_ADAPTER_INFO> pAdapters(static_cast<IP_ADAPTER_INFO*>(std::malloc(cbAdapters)));
    if (!pAdapters)
    {
        LOG_ERROR("malloc failed. size = %u", static_cast<unsigned>(cbAdapters));
        return false;
    }
    dwStatus = GetAdaptersInfo(pAdapters.get(), &cbAdapters);
    if (dwStatus != ERROR_SUCCESS)
    {
        LOG_ERROR("dwStatus = %u", static_cast<unsigned>(dwStatus));
        return false;
    }
    for (const IP_ADAPTER_INFO* pAdapter = pAdapters.get(); pAdapter != nullptr; pAdapter = pAdapter->Next)
    {
        if (pAdapter->AddressLength == kMacBytes)
        {
            MacAddress address;
            std::copy_n(pAdapter->Address, kMacBytes, address.begin());
            addresses.push_back(address);
        }
    }
    return true;
}

DWORD GetLogonUserInfo(unsigned __int64 /*uiFirst*/, DWORD /*dwSecond*/, unsigned __int64 /*uiThird*/,
                       DWORD /*dwFourth*/)
{
    const FunctionScope scope("VelUtility::GetLogonUserInfo");
    return 1;
}

} // namespace VelUtility
