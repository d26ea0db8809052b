#pragma once
/// What stands in the log while a function waits for the platform.

#include "tests/common/ImportHook.h"
#include "tests/common/LogLines.h"

#include <string>

template <typename Function>
class LineAtCall;

/// Keeps the log's last line as it is when the test program first calls a platform function in the object's life. One
/// of a kind at a time.
///
///     const LineAtCall<decltype(ReleaseMutex)> line(logging, "ReleaseMutex");
///     mutex.Unlock();
///     CHECK(line.Text() == "VelUI_dll__VelUtility::CBaseMutex::Unlock :START......");
template <typename Result, typename... Arguments>
class LineAtCall<Result(Arguments...)>
{
public:
    LineAtCall(const LoggingOn& logging, const char* pszFunction) : m_hook(nullptr, pszFunction, &Call)
    {
        s_pLogging = &logging;
        s_pfnPlatform = reinterpret_cast<Result (*)(Arguments...)>(m_hook.Original());
        s_strLine = "no call";
    }
    ~LineAtCall() { s_pLogging = nullptr; }

    /// The line, or "no call".
    static std::string Text() { return s_strLine; }

private:
    static Result Call(Arguments... arguments)
    {
        if (s_pLogging != nullptr)
        {
            const std::vector<std::string> lines = Masked(*s_pLogging);
            s_strLine = lines.empty() ? "no line" : lines.back();
            s_pLogging = nullptr;
        }
        return s_pfnPlatform(arguments...);
    }

    static inline const LoggingOn* s_pLogging = nullptr;
    static inline Result (*s_pfnPlatform)(Arguments...) = nullptr;
    static inline std::string s_strLine;
    ImportHook m_hook;
};
