#pragma once
/// Formats one short value as msvcrt does.

#include <cstdarg>
#include <cstdio>
#include <string>

/// The text of a format of at most 255 characters; a longer one is cut.
inline std::string FormatText(const char* pszFormat, ...) __attribute__((format(ms_printf, 1, 2)));
inline std::string FormatText(const char* pszFormat, ...)
{
    char szText[256];
    va_list arguments;
    va_start(arguments, pszFormat);
    _vsnprintf_s(szText, sizeof(szText), _TRUNCATE, pszFormat, arguments);
    va_end(arguments);
    return szText;
}
