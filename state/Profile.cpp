#include "state/Profile.h"

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

template <typename Name>
DWORD WriteNames(const wchar_t* pszSection, const wchar_t* pszBaseKey, const Name* pszValues, DWORD dwCount,
                 const wchar_t* pszFile)
{
    DWORD dwWritten = 1;
    for (DWORD dwIndex = 0; dwIndex < dwCount && dwWritten != 0; ++dwIndex)
    {
        // Required: the element itself goes to Windows, not a bounded copy, so an element that fills its width without
        // a terminator runs on into the one behind it. The reader cuts the longer text to the width again.
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
    // Required: a null array is a success that writes nothing, whatever the count says. Who takes a snapshot of a
    // printer that refuses a list hands in null, and the capabilities behind it must still be written.
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
            LOG_ERROR("WritePrivateProfileUINT failed.");
        }
    }
    return dwWritten;
}

} // namespace

DWORD WritePrivateProfileUINT(const wchar_t* pszSection, const wchar_t* pszKey, DWORD dwValue, const wchar_t* pszFile)
{
    const FunctionScope scope("VelUtility::WritePrivateProfileUINT");
    return WritePrivateProfileStringW(pszSection, pszKey, NumberText(L"%u", static_cast<unsigned>(dwValue)), pszFile);
}

DWORD WritePrivateProfileINT(const wchar_t* pszSection, const wchar_t* pszKey, int iValue, const wchar_t* pszFile)
{
    const FunctionScope scope("VelUtility::WritePrivateProfileINT");
    return WritePrivateProfileStringW(pszSection, pszKey, NumberText(L"%d", iValue), pszFile);
}

DWORD WritePrivateProfileBOOL(const wchar_t* pszSection, const wchar_t* pszKey, BOOL bValue, const wchar_t* pszFile)
{
    const FunctionScope scope("VelUtility::WritePrivateProfileBOOL");
    return WritePrivateProfileStringW(pszSection, pszKey, bValue != 0 ? L"1" : L"0", pszFile);
}

DWORD WritePrivateProfileStringWArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const NarrowName* pszValues,
                                      DWORD dwCount, const wchar_t* pszFile)
{
    const FunctionScope scope("VelUtility::WritePrivateProfileStringWArray");
    return WriteNames(pszSection, pszBaseKey, pszValues, dwCount, pszFile);
}

DWORD WritePrivateProfileStringWArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const WideName* pszValues,
                                      DWORD dwCount, const wchar_t* pszFile)
{
    const FunctionScope scope("VelUtility::WritePrivateProfileStringWArray");
    return WriteNames(pszSection, pszBaseKey, pszValues, dwCount, pszFile);
}

DWORD WritePrivateProfileUINTArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const WORD* pValues,
                                   DWORD dwCount, const wchar_t* pszFile)
{
    const FunctionScope scope("VelUtility::WritePrivateProfileUINTArray");
    return WriteNumbers(pszSection, pszBaseKey, pValues, dwCount, pszFile);
}

DWORD WritePrivateProfileUINTArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const DWORD* pValues,
                                   DWORD dwCount, const wchar_t* pszFile)
{
    const FunctionScope scope("VelUtility::WritePrivateProfileUINTArray");
    return WriteNumbers(pszSection, pszBaseKey, pValues, dwCount, pszFile);
}

DWORD WritePrivateProfileResolutoinArray(const wchar_t* pszSection, const wchar_t* pszBaseKeyX,
                                         const wchar_t* pszBaseKeyY, const Resolution* pValues, DWORD dwCount,
                                         const wchar_t* pszFile)
{
    const FunctionScope scope("VelUtility::WritePrivateProfileResolutoinArray");
    if (pValues == nullptr)
    {
        return 1; // Required: a success, as with numbers
    }
    return WritePairs(pszSection, pszBaseKeyX, pszBaseKeyY, pValues, dwCount, pszFile);
}

DWORD WritePrivateProfilePointArray(const wchar_t* pszSection, const wchar_t* pszBaseKeyX, const wchar_t* pszBaseKeyY,
                                    const POINT* pstuValue, DWORD dwCount, const wchar_t* pszFile)
{
    const FunctionScope scope("VelUtility::WritePrivateProfilePointArray");
    if (pstuValue == nullptr)
    {
        LOG_ERROR("NULL == pstuValue");
        return 1; // Required: a success, as with numbers; only the line tells
    }
    return WritePairs(pszSection, pszBaseKeyX, pszBaseKeyY, pstuValue, dwCount, pszFile);
}

} // namespace VelUtility
