#pragma once
/// The thread's call stack: which traced functions run now. It is kept in log4cpp's NDC, one frame for each function,
/// and tells a message which category it belongs to.

#include "diag/LogRules.h"

struct FrameName;

/// Opens and closes a frame of the thread's call stack; called only while logging is on.
void PushTraceFrame(const char* pszModuleTag, const char* pszClassName, const char* pszFunctionName) noexcept;
void PopTraceFrame() noexcept;

/// Marks the entry of a function. Each string may be null, which counts as empty.
inline void TraceFunctionBegin(const char* pszModuleTag, const char* pszClassName, const char* pszFunctionName) noexcept
{
    if (!loggingDisabled)
    {
        PushTraceFrame(pszModuleTag, pszClassName, pszFunctionName);
    }
}

/// Marks the end of the function that was entered last.
inline void TraceFunctionEnd() noexcept
{
    if (!loggingDisabled)
    {
        PopTraceFrame();
    }
}

/// Keeps TraceFunctionBegin and TraceFunctionEnd paired on every way out of a scope, an exception included.
class TraceScope
{
public:
    /// @param pszFunctionName literal; the scope's name in the call stack.
    explicit TraceScope(const char* pszFunctionName) noexcept
    {
        TraceFunctionBegin(kModuleTag, nullptr, pszFunctionName);
    }
    ~TraceScope() { TraceFunctionEnd(); }
    TraceScope(const TraceScope&) = delete;
    TraceScope& operator=(const TraceScope&) = delete;
};

/// Writes the thread's frames as a table, the outermost first, if the switch outputNDCFullmessage of the frame's
/// category is on. Called under the level function's handler and guard: it may throw.
/// @param frame     the parts of the current frame.
/// @param iPriority the message's priority; the category tests it again.
void DumpCallStack(const FrameName& frame, int iPriority);

/// Frees the calling thread's NDC with all that it holds; the next frame on the thread gets a new one. log4cpp keeps a
/// thread's NDC until the process ends, and offers nothing to free it before. May throw std::bad_alloc.
void FreeThreadNdc();
