#include "state/CurrentUser.h"

#include "diag/LogSite.h"
#include "support/RegistryKey.h"

#include <cwchar>
#include <memory>
#include <new>

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

/// Names longer than this are cut by a terminator at this index.
constexpr size_t kNameLimit = 80;
/// What GetComputerNameW is offered, in wide characters.
constexpr DWORD kComputerNameUnits = 32;

// Required: the separators are doubled in the text that goes to Windows, which takes them as single ones; a monitor
// of registry calls shows the text in this form.
constexpr wchar_t kWinlogonKey[] = L"SOFTWARE\\\\Microsoft\\\\Windows NT\\\\CurrentVersion\\\\Winlogon";

using WideBuffer = std::unique_ptr<wchar_t[]>;

/// Allocates a zeroed buffer for cbValue bytes and a terminator.
WideBuffer AllocateText(DWORD cbValue)
{
    return WideBuffer(new (std::nothrow) wchar_t[cbValue / sizeof(wchar_t) + 2]());
}

LONG QuerySize(const RegistryKey& key, const wchar_t* pszValue, DWORD& cbValue)
{
    cbValue = 0;
    return RegQueryValueExW(key.Get(), pszValue, nullptr, nullptr, nullptr, &cbValue);
}

LONG QueryText(const RegistryKey& key, const wchar_t* pszValue, WideBuffer& pText, DWORD cbValue)
{
    pText = AllocateText(cbValue);
    if (!pText)
    {
        return ERROR_OUTOFMEMORY;
    }
    return RegQueryValueExW(key.Get(), pszValue, nullptr, nullptr, reinterpret_cast<BYTE*>(pText.get()), &cbValue);
}

/// Copies at most uiRoom - 1 characters and a terminator.
void CopyText(wchar_t* szTarget, size_t uiRoom, const wchar_t* pszText)
{
    wcsncpy_s(szTarget, uiRoom, pszText, _TRUNCATE);
}

} // namespace

DWORD GetCurrentUsername(wchar_t* szUserName, wchar_t* szDomainName)
{
    const FunctionScope scope("VelUtility::GetCurrentUsername");
    if (GetCurrentUsername_Registry(szUserName, szDomainName) != 0)
    {
        return 1;
    }
    return GetCurrentUsername_Hardcode(szUserName, szDomainName);
}

DWORD GetCurrentUsername_Registry(wchar_t* szUserName, wchar_t* szDomainName)
{
    const FunctionScope scope("VelUtility::GetCurrentUsername_Registry");

    // In the order of their release, last to first: the key, the user, the domain, the computer's name.
    WideBuffer pComputerName;
    WideBuffer pDomainName;
    WideBuffer pUserName;
    RegistryKey key;

    // Required: full access, so that a process without the right to it takes the hard-coded user. With less, such a
    // process would look for its files under another name than before.
    LONG lRet = key.Open(HKEY_LOCAL_MACHINE, kWinlogonKey, KEY_ALL_ACCESS);
    if (lRet != ERROR_SUCCESS)
    {
        LOG_ERROR("lRet = %u", static_cast<unsigned>(lRet));
        return 0;
    }

    DWORD cbValue = 0;
    lRet = QuerySize(key, L"DefaultUserName", cbValue);
    if (lRet != ERROR_SUCCESS)
    {
        LOG_ERROR("RegQueryValueExW_Username returns %u", static_cast<unsigned>(lRet));
        return 0;
    }
    lRet = QueryText(key, L"DefaultUserName", pUserName, cbValue);
    if (lRet != ERROR_SUCCESS)
    {
        LOG_ERROR("lRet = %u", static_cast<unsigned>(lRet));
        return 0;
    }
    CopyText(szUserName, kUserNameUnits, pUserName.get());

    lRet = QuerySize(key, L"DefaultDomainName", cbValue);
    if (lRet != ERROR_SUCCESS)
    {
        LOG_ERROR("RegQueryValueExW_DomainName returns %u", static_cast<unsigned>(lRet));
        return 0;
    }
    lRet = QueryText(key, L"DefaultDomainName", pDomainName, cbValue);
    if (lRet != ERROR_SUCCESS)
    {
        LOG_ERROR("lRet = %u", static_cast<unsigned>(lRet));
        return 0;
    }

    pComputerName.reset(new (std::nothrow) wchar_t[kComputerNameUnits]());
    DWORD cchComputerName = kComputerNameUnits;
    if (!pComputerName || !GetComputerNameW(pComputerName.get(), &cchComputerName))
    {
        LOG_ERROR("GetComputerNameW failed.");
        return 0;
    }

    // Required: only as many characters as the computer's name has are compared, so a domain that merely begins with it
    // counts as equal. The names of users' files depend on it.
    if (wcsncmp(pComputerName.get(), pDomainName.get(), cchComputerName) == 0)
    {
        CopyText(szDomainName, kDomainNameUnits, L"localhost");
        return 1;
    }
    CopyText(szDomainName, kDomainNameUnits, pDomainName.get());
    if (wcslen(pDomainName.get()) >= kNameLimit)
    {
        // Required: a long domain stays whole, and the terminator goes into the other buffer, where a user name of at
        // most 80 characters does not feel it.
        szUserName[kNameLimit] = L'\0';
    }
    return 1;
}

DWORD GetCurrentUsername_Hardcode(wchar_t* szUserName, wchar_t* szDomainName)
{
    const FunctionScope scope("VelUtility::GetCurrentUsername_Hardcode");
    CopyText(szUserName, kUserNameUnits, L"QPS");
    CopyText(szDomainName, kDomainNameUnits, L"VEL");
    LOG_DEBUG("szUserName = %S", szUserName);
    LOG_DEBUG("szDomainName = %S", szDomainName);
    return 1;
}

} // namespace VelUtility
