#pragma once
/// Call sites in one line. A source file names its logical module once and then writes
///
///     VELUI_SOURCE_MODULE(".\\ClientInfo");
///     ...
///     TRACE_FUNCTION("VelUtility::GetComputerCaps");
///     LOG_ERROR_WORDS("GetClientFolder failed.");
///
/// The macros hold all that repeats: the module's name, the line number and the predicate in front of the call.

#include "diag/FunctionTrace.h"
#include "diag/Log.h"

#include <cstdint>

/// Names the logical source module of a file in its log lines.
#define VELUI_SOURCE_MODULE(name) [[maybe_unused]] static constexpr char kSourceModule[] = name

/// Opens the trace scope of a function and the FunctionTrace beside it, in this order; both end with the scope, in the
/// reverse order.
#define TRACE_FUNCTION(name)                                                                                           \
    const TraceScope traceScope(name);                                                                                 \
    FunctionTrace functionTrace(name)

/// One message with the head "module(line) : ", behind the level's predicate.
#define LOG_HEADED(predicate, function, format, ...)                                                                   \
    do                                                                                                                 \
    {                                                                                                                  \
        if (predicate())                                                                                               \
        {                                                                                                              \
            function("%s(%d) : " format, kSourceModule, __LINE__, ##__VA_ARGS__);                                      \
        }                                                                                                              \
    } while (false)

#define LOG_DEBUG(format, ...) LOG_HEADED(IsDebugEnabled, LogDebug, format, ##__VA_ARGS__)
#define LOG_WARNING(format, ...) LOG_HEADED(IsWarnEnabled, LogWarning, format, ##__VA_ARGS__)
#define LOG_ERROR(format, ...) LOG_HEADED(IsErrorEnabled, LogError, format, ##__VA_ARGS__)
#define LOG_DEBUG_WORDS(words) LOG_DEBUG("%s", words)
#define LOG_WARNING_WORDS(words) LOG_WARNING("%s", words)
#define LOG_ERROR_WORDS(words) LOG_ERROR("%s", words)

/// An info line: its own text only, without a source position.
#define LOG_INFO(...)                                                                                                  \
    do                                                                                                                 \
    {                                                                                                                  \
        if (IsInfoEnabled())                                                                                           \
        {                                                                                                              \
            LogInfo(__VA_ARGS__);                                                                                      \
        }                                                                                                              \
    } while (false)

/// Tells that the entry point was invoked; stands behind its TRACE_FUNCTION and the gathering of its arguments.
#define LOG_INVOKED() LOG_INFO("%s was invoked.", functionTrace.Name())

/// LogParam has no predicate in front: it filters by itself. Its first filter, the test of loggingDisabled, stands here
/// too, so that the texts among its arguments are not built for nothing.
#define LOG_PARAM(...)                                                                                                 \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!loggingDisabled)                                                                                          \
        {                                                                                                              \
            LogParam(__VA_ARGS__);                                                                                     \
        }                                                                                                              \
    } while (false)

/// The result line of an entry point: the variable's name and the text of its value.
#define LOG_RESULT(variable)                                                                                           \
    LOG_PARAM("%s(%d) : " #variable " = %s\n", kSourceModule, __LINE__, ToLogText(variable).c_str())

/// Adds arguments, each under its own name, to the function's list.
#define TRACE_ARGUMENT(argument) functionTrace.AddParam(#argument, &argument)

/// The low 32 bits of an address, which is what "0x%08X" shows.
inline unsigned LowBits(const void* pAddress) noexcept
{
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pAddress));
}
