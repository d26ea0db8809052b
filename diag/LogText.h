#pragma once
/// The text of single values in log lines. Each function returns a narrow text that the caller owns, keeps the rules of
/// the log surface (diag/Log.h) for the caller's error state and for exceptions, and gives "" when there is no memory.

#include "diag/LogRules.h"

#include <windows.h>

#include <string>

/// Makes a text by the rules that hold for each call of the log surface.
/// @param work gives the text; when it throws, the text is empty.
template <typename Work>
std::string QuietText(Work work) noexcept
{
    std::string strText;
    Quietly([&] { strText = work(); });
    return strText;
}

/// The text of a result at hand, for a result line; the same whether logging is on or off.
std::string ToLogText(int iValue) noexcept;
std::string ToLogText(LONG lValue) noexcept;
std::string ToLogText(DWORD dwValue) noexcept;
/// Wide text in the C runtime's current locale; null, and text that the locale can't represent, give "".
std::string ToLogText(PCWSTR pszValue) noexcept;
/// The pointer form: "0x" and the address, and, unless it is null, " => " and the record's dump.
std::string ToLogText(const DEVMODEW* pstuDevmode) noexcept;
/// The record's dump: its header, the names of the bits in dmFields, and its values, a line each.
std::string ToLogText(const DEVMODEW& stuDevmode) noexcept;

/// The text of an argument in a call line. The overloads differ from ToLogText where a type stands for something else
/// there: a LONG* is the address of a size, a WORD a code, a pointer to void a handle.
inline std::string ArgumentText(int iValue) noexcept
{
    return ToLogText(iValue);
}
inline std::string ArgumentText(DWORD dwValue) noexcept
{
    return ToLogText(dwValue);
}
inline std::string ArgumentText(PCWSTR pszValue) noexcept
{
    return ToLogText(pszValue);
}
inline std::string ArgumentText(PWSTR pszValue) noexcept
{
    return ToLogText(static_cast<PCWSTR>(pszValue));
}
inline std::string ArgumentText(const DEVMODEW* pstuValue) noexcept
{
    return ToLogText(pstuValue);
}
inline std::string ArgumentText(DEVMODEW* pstuValue) noexcept
{
    return ToLogText(static_cast<const DEVMODEW*>(pstuValue));
}
inline std::string ArgumentText(const DEVMODEW& stuValue) noexcept
{
    return ToLogText(stuValue);
}
std::string ArgumentText(WORD wValue) noexcept;
std::string ArgumentText(SHORT nValue) noexcept;
std::string ArgumentText(unsigned __int64 uiValue) noexcept;
/// "0x" and the address.
std::string ArgumentText(void* pValue) noexcept;
/// The pointer form with the number, taken without a sign, in place of the dump.
std::string ArgumentText(LONG* plValue) noexcept;
/// Whether the window is there; not its value.
std::string ArgumentText(HWND hWindow) noexcept;
