// The state of logging, and the calls behind the call surface.
//
// What writes a line is not built yet: no configuration is read, so logging is off for the life of every process, and
// each call ends at its test of loggingDisabled, which stands first of all.

#include "diag/Log.h"

#include <log4cpp/Category.hh>

bool loggingDisabled = true;

int StartLogging(const char* /*pszConfigFile*/) noexcept
{
    loggingDisabled = true;
    return 0;
}

void StopLogging() noexcept
{
    if (!loggingDisabled)
    {
        log4cpp::Category::shutdown();
        loggingDisabled = true;
    }
}

int IsPriorityEnabled(int /*iPriority*/) noexcept
{
    return 0;
}

void LogDebug(const char* /*pszFormat*/, ...) noexcept {}

void LogInfo(const char* /*pszFormat*/, ...) noexcept {}

void LogWarning(const char* /*pszFormat*/, ...) noexcept {}

void LogError(const char* /*pszFormat*/, ...) noexcept {}

void LogFatal(const char* /*pszFormat*/, ...) noexcept {}

void LogParam(const char* /*pszFormat*/, ...) noexcept {}

void LogBufferDump(const char* /*pszTitle*/, const void* /*pBuffer*/, long /*lLength*/, LogFunction /*pfnLog*/) noexcept
{}

void PushTraceFrame(const char* /*pszModuleTag*/, const char* /*pszClassName*/, const char* /*pszFunction*/) noexcept {}

void PopTraceFrame() noexcept {}
