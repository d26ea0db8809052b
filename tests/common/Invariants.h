#pragma once
/// What a call of the module must leave as it was, checked around every call that a test makes through BuiltModule.

#include <windows.h>

#include <string>

/// The state of the process and the thread that no entry point may change. What one does change, because it has to, is
/// not here: the last error that DrvConvertDevMode and DrvDevicePropertySheets set, the handle of a tool that
/// DrvPrinterEvent starts, the right to debug, which the search for the resident client leaves enabled, and the
/// fiber-local index that the module takes with its first C++ exception and gives back when it is unloaded.
struct CallerState
{
    CallerState();

    std::wstring strFolder;
    UINT uiErrorMode;
    int iThreadPriority;
    DWORD dwProcessPriority;
    LCID dwThreadLocale;
    std::string strLocale; ///< the C runtime's
    WORD wX87;             ///< the x87 control word
    unsigned uiSse;        ///< SSE's control bits, without the flags of what was computed
    bool bImpersonates;
    DWORD dwTlsIndex; ///< the one that a new thread-local place gets
    LONG lApartment;  ///< the thread's COM state
    size_t uiHandle;  ///< the number that a new handle gets; a mutex that stays open has one too
};

/// @param bHandles whether handles count: not around a first call, with which Windows opens what it keeps.
void CheckUnchanged(const CallerState& before, const CallerState& after, bool bHandles);

/// An entry point that is called with these checks on the test's own thread. Converts to the bare function for whoever
/// calls it elsewhere.
template <typename Function>
class CheckedEntry;

template <typename Result, typename... Arguments>
class CheckedEntry<Result(WINAPI*)(Arguments...)>
{
public:
    using Function = Result(WINAPI*)(Arguments...);

    CheckedEntry& operator=(Function pfn)
    {
        m_pfn = pfn;
        return *this;
    }
    operator Function() const { return m_pfn; }
    Result operator()(Arguments... arguments) const
    {
        static const DWORD s_dwTestThread = GetCurrentThreadId();
        if (GetCurrentThreadId() != s_dwTestThread)
        {
            return m_pfn(arguments...);
        }
        const DWORD dwErrorBefore = GetLastError();
        const CallerState before;
        SetLastError(dwErrorBefore);
        const Result result = m_pfn(arguments...);
        const DWORD dwErrorBehind = GetLastError();
        CheckUnchanged(before, CallerState(), m_bCalled);
        m_bCalled = true;
        SetLastError(dwErrorBehind);
        return result;
    }

private:
    Function m_pfn = nullptr;
    mutable bool m_bCalled = false;
};
