#pragma once
/// Profile writes whose failure the caller logs by the writer's name.

#include "diag/LogSite.h"

namespace VelUtility
{

/// Logs "<writer> failed." for a writer that answered 0; the macro below fills in all but the call's arguments.
/// @return whether the writer succeeded.
inline bool LoggedWrite(DWORD dwWritten, const char* pszWords, const char* pszSourceModule, int iLine)
{
    if (dwWritten == 0 && IsErrorEnabled())
    {
        LogError("%s(%d) : %s", pszSourceModule, iLine, pszWords);
    }
    return dwWritten != 0;
}

} // namespace VelUtility

/// Calls a profile writer and tells whether it succeeded.
#define LOGGED_WRITE(writer, ...) LoggedWrite(writer(__VA_ARGS__), #writer " failed.", kSourceModule, __LINE__)
