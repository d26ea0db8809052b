#pragma once
/// The text of single values in log lines. Each function returns a narrow text that the caller owns.

#include <windows.h>

#include <string>

/// The text of a result at hand, for a result line; the same whether logging is on or off.
std::string ToLogText(int iValue);
std::string ToLogText(LONG lValue);
std::string ToLogText(DWORD dwValue);
/// Wide text in the C runtime's current locale; null, and text that the locale can't represent, give "".
std::string ToLogText(PCWSTR pszValue);
/// The pointer form: "0x" and the address, and, unless it is null, " => " and the record's dump.
std::string ToLogText(const DEVMODEW* pstuDevmode);
/// The record's dump: its header, the names of the bits in dmFields, and its values, a line each.
std::string ToLogText(const DEVMODEW& stuDevmode);

/// The text of an argument in a call line. The overloads differ from ToLogText where a type stands for something else
/// there: a LONG* is the address of a size, a WORD a code, a pointer to void a handle.
inline std::string ArgumentText(int iValue)
{
    return ToLogText(iValue);
}
inline std::string ArgumentText(DWORD dwValue)
{
    return ToLogText(dwValue);
}
inline std::string ArgumentText(PCWSTR pszValue)
{
    return ToLogText(pszValue);
}
inline std::string ArgumentText(PWSTR pszValue)
{
    return ToLogText(static_cast<PCWSTR>(pszValue));
}
inline std::string ArgumentText(const DEVMODEW* pstuValue)
{
    return ToLogText(pstuValue);
}
inline std::string ArgumentText(DEVMODEW* pstuValue)
{
    return ToLogText(static_cast<const DEVMODEW*>(pstuValue));
}
inline std::string ArgumentText(const DEVMODEW& stuValue)
{
    return ToLogText(stuValue);
}
std::string ArgumentText(WORD wValue);
std::string ArgumentText(SHORT nValue);
std::string ArgumentText(unsigned __int64 uiValue);
/// "0x" and the address.
std::string ArgumentText(void* pValue);
/// The pointer form with the number, taken without a sign, in place of the dump.
std::string ArgumentText(LONG* plValue);
/// Whether the window is there; not its value.
std::string ArgumentText(HWND hWindow);
