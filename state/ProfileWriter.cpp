#include "state/ProfileWriter.h"

#include "diag/LogSite.h"
#include "state/ProfileKey.h"

#include <cstdio>

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

/// Room for the decimal text of a 32-bit number with sign and terminator, in wide characters.
constexpr size_t kNumberUnits = 12;

template <typename Value>
DWORD WriteNumber(const wchar_t* pszSection, const wchar_t* pszKey, const wchar_t* pszFormat, Value value,
                  const wchar_t* pszFile)
{
    wchar_t szValue[kNumberUnits];
    _snwprintf_s(szValue, kNumberUnits, _TRUNCATE, pszFormat, value);
    return WritePrivateProfileStringW(pszSection, pszKey, szValue, pszFile);
}

template <typename Name>
DWORD WriteNames(const wchar_t* pszSection, const wchar_t* pszBaseKey, const Name* pszValues, DWORD dwCount,
                 const wchar_t* pszFile)
{
    DWORD dwWritten = 1;
    for (DWORD dwIndex = 0; dwIndex < dwCount && dwWritten != 0; ++dwIndex)
    {
        // Required: the element itself goes to the platform, not a bounded copy, so an element that fills its width
        // without a terminator runs on into the one behind it.
        dwWritten =
            WritePrivateProfileStringW(pszSection, ElementKey(pszBaseKey, dwIndex), pszValues[dwIndex], pszFile);
        if (dwWritten == 0)
        {
            LOG_ERROR("GetLastError() = %u", static_cast<unsigned>(GetLastError()));
        }
    }
    return dwWritten;
}

template <typename Number>
DWORD WriteNumbers(const wchar_t* pszSection, const wchar_t* pszBaseKey, const Number* pValues, DWORD dwCount,
                   const wchar_t* pszFile)
{
    DWORD dwWritten = 1;
    if (pValues == nullptr)
    {
        return dwWritten;
    }
    for (DWORD dwIndex = 0; dwIndex < dwCount && dwWritten != 0; ++dwIndex)
    {
        dwWritten = WritePrivateProfileUINT(pszSection, ElementKey(pszBaseKey, dwIndex), pValues[dwIndex], pszFile);
        if (dwWritten == 0)
        {
            LOG_ERROR("GetLastError() = %u", static_cast<unsigned>(GetLastError()));
        }
    }
    return dwWritten;
}

template <typename Pair>
DWORD WritePairs(const wchar_t* pszSection, const wchar_t* pszBaseKeyX, const wchar_t* pszBaseKeyY, const Pair* pValues,
                 DWORD dwCount, const wchar_t* pszFile)
{
    DWORD dwWritten = 1;
    for (DWORD dwIndex = 0; dwIndex < dwCount && dwWritten != 0; ++dwIndex)
    {
        // Numbers go out without a sign: -1 becomes "4294967295".
        dwWritten = WritePrivateProfileUINT(pszSection, ElementKey(pszBaseKeyX, dwIndex),
                                            static_cast<DWORD>(pValues[dwIndex].x), pszFile);
        if (dwWritten != 0)
        {
            dwWritten = WritePrivateProfileUINT(pszSection, ElementKey(pszBaseKeyY, dwIndex),
                                                static_cast<DWORD>(pValues[dwIndex].y), pszFile);
        }
        if (dwWritten == 0)
        {
            LOG_ERROR_WORDS("WritePrivateProfileUINT failed.");
        }
    }
    return dwWritten;
}

} // namespace

DWORD WritePrivateProfileUINT(const wchar_t* pszSection, const wchar_t* pszKey, DWORD dwValue, const wchar_t* pszFile)
{
    TRACE_FUNCTION("VelUtility::WritePrivateProfileUINT");
    return WriteNumber(pszSection, pszKey, L"%u", static_cast<unsigned>(dwValue), pszFile);
}

DWORD WritePrivateProfileINT(const wchar_t* pszSection, const wchar_t* pszKey, int iValue, const wchar_t* pszFile)
{
    TRACE_FUNCTION("VelUtility::WritePrivateProfileINT");
    return WriteNumber(pszSection, pszKey, L"%d", iValue, pszFile);
}

DWORD WritePrivateProfileBOOL(const wchar_t* pszSection, const wchar_t* pszKey, BOOL bValue, const wchar_t* pszFile)
{
    TRACE_FUNCTION("VelUtility::WritePrivateProfileBOOL");
    return WritePrivateProfileStringW(pszSection, pszKey, bValue != 0 ? L"1" : L"0", pszFile);
}

DWORD WritePrivateProfileStringWArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const NarrowName* pszValues,
                                      DWORD dwCount, const wchar_t* pszFile)
{
    TRACE_FUNCTION("VelUtility::WritePrivateProfileStringWArray");
    return WriteNames(pszSection, pszBaseKey, pszValues, dwCount, pszFile);
}

DWORD WritePrivateProfileStringWArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const WideName* pszValues,
                                      DWORD dwCount, const wchar_t* pszFile)
{
    TRACE_FUNCTION("VelUtility::WritePrivateProfileStringWArray");
    return WriteNames(pszSection, pszBaseKey, pszValues, dwCount, pszFile);
}

DWORD WritePrivateProfileUINTArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const WORD* pValues,
                                   DWORD dwCount, const wchar_t* pszFile)
{
    TRACE_FUNCTION("VelUtility::WritePrivateProfileUINTArray");
    return WriteNumbers(pszSection, pszBaseKey, pValues, dwCount, pszFile);
}

DWORD WritePrivateProfileUINTArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const DWORD* pValues,
                                   DWORD dwCount, const wchar_t* pszFile)
{
    TRACE_FUNCTION("VelUtility::WritePrivateProfileUINTArray");
    return WriteNumbers(pszSection, pszBaseKey, pValues, dwCount, pszFile);
}

DWORD WritePrivateProfileResolutoinArray(const wchar_t* pszSection, const wchar_t* pszBaseKeyX,
                                         const wchar_t* pszBaseKeyY, const Resolution* pValues, DWORD dwCount,
                                         const wchar_t* pszFile)
{
    TRACE_FUNCTION("VelUtility::WritePrivateProfileResolutoinArray");
    if (pValues == nullptr)
    {
        return 1;
    }
    return WritePairs(pszSection, pszBaseKeyX, pszBaseKeyY, pValues, dwCount, pszFile);
}

DWORD WritePrivateProfilePointArray(const wchar_t* pszSection, const wchar_t* pszBaseKeyX, const wchar_t* pszBaseKeyY,
                                    const POINT* pstuValue, DWORD dwCount, const wchar_t* pszFile)
{
    TRACE_FUNCTION("VelUtility::WritePrivateProfilePointArray");
    if (pstuValue == nullptr)
    {
        LOG_ERROR_WORDS("NULL == pstuValue");
        return 1;
    }
    return WritePairs(pszSection, pszBaseKeyX, pszBaseKeyY, pstuValue, dwCount, pszFile);
}

} // namespace VelUtility
