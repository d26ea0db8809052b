#pragma once
/// Call sites in one line. A source file names its logical module once and then writes
///
///     VELUI_SOURCE_MODULE(".\\ClientInfo");
///     ...
///     const FunctionScope scope("VelUtility::GetComputerCaps");
///     LOG_ERROR("GetClientFolder failed.");
///
/// The macros hold all that repeats: the module's name, the line's number and the predicate in front of the call. They
/// are macros because only they know the line that they stand in, and because what they are given is not evaluated
/// while its level is off.

#include "diag/FunctionTrace.h"
#include "diag/Log.h"

#include <cstdint>

/// Names the logical source module of a file in its log lines. Only the macros below read the constant.
#define VELUI_SOURCE_MODULE(name) [[maybe_unused]] static constexpr char kSourceModule[] = name

/// Makes a call of the log surface when its predicate says yes; the root of all macros here.
#define LOG_IF(enabled, call)                                                                                          \
    do                                                                                                                 \
    {                                                                                                                  \
        if (enabled)                                                                                                   \
        {                                                                                                              \
            call;                                                                                                      \
        }                                                                                                              \
    } while (false)

/// One message with the head "module(line) : ".
#define LOG_HEADED(enabled, function, format, ...)                                                                     \
    LOG_IF(enabled, function("%s(%d) : " format, kSourceModule, __LINE__, ##__VA_ARGS__))

#define LOG_DEBUG(format, ...) LOG_HEADED(IsDebugEnabled(), LogDebug, format, ##__VA_ARGS__)
#define LOG_WARNING(format, ...) LOG_HEADED(IsWarnEnabled(), LogWarning, format, ##__VA_ARGS__)
#define LOG_ERROR(format, ...) LOG_HEADED(IsErrorEnabled(), LogError, format, ##__VA_ARGS__)
#define LOG_FATAL(format, ...) LOG_HEADED(IsFatalEnabled(), LogFatal, format, ##__VA_ARGS__)

/// The one message whose text joins the head without " : ".
#define LOG_FATAL_JOINED(format, ...)                                                                                  \
    LOG_IF(IsFatalEnabled(), LogFatal("%s(%d)" format, kSourceModule, __LINE__, ##__VA_ARGS__))

/// An info line: its own text only, without a source position.
#define LOG_INFO(...) LOG_IF(IsInfoEnabled(), LogInfo(__VA_ARGS__))

/// Tells that the function of a FunctionScope was invoked.
#define LOG_INVOKED(scope) LOG_INFO("%s was invoked.", (scope).Name())

/// LogParam has no predicate in front: it filters by itself. Its first filter, the test of loggingDisabled, stands here
/// too, so that the texts among its arguments are not built for nothing.
#define LOG_PARAM(format, ...) LOG_HEADED(!loggingDisabled, LogParam, format, ##__VA_ARGS__)

/// The line of a result: a name, as a literal, and the text of its value.
#define LOG_RESULT(name, value) LOG_PARAM(name " = %s\n", ToLogText(value).c_str())

/// The line of an entry point's answer (EntryAnswer), which some answers do without.
#define LOG_ANSWER(name, answer)                                                                                       \
    LOG_HEADED(!loggingDisabled && (answer).bLogged, LogParam, name " = %s\n", ToLogText((answer).result).c_str())

/// The call line of a FunctionScope, with its arguments.
/// Required: the line is handed over as the format, with no arguments behind it, so that a per cent sign in a printer's
/// name is read as a conversion: the form of the line is fixed.
#define LOG_CALL(scope) LOG_IF(!loggingDisabled, LogParam(CallText(scope).c_str()))

/// Keeps arguments, each under its own name, for the function's call line. They must outlive the scope object.
#define TRACE_ARGUMENTS(scope, ...) LOG_IF(IsFatalEnabled(), (scope).AddParams(#__VA_ARGS__, __VA_ARGS__))

/// Keeps one argument under another name, or an array: what AddParam takes.
#define TRACE_ARGUMENT_AS(scope, name, ...) LOG_IF(IsFatalEnabled(), (scope).AddParam(name, __VA_ARGS__))

/// The low 32 bits of an address, which is what "0x%08X" shows.
inline unsigned LowBits(const void* pAddress) noexcept
{
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pAddress));
}
