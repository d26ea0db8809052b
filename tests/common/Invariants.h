#pragma once
/// What a call of the module must leave as it was, checked around every call that a test makes through BuiltModule.

#include "tests/common/Handles.h"

#include <windows.h>

#include <catch2/catch_test_macros.hpp>

#include <clocale>
#include <objbase.h>
#include <string>

/// The state of the process and the thread that no entry point may change. What one does change, because it has to, is
/// not here: the last error that DrvConvertDevMode and DrvDevicePropertySheets set, the handle of a tool that
/// DrvPrinterEvent starts, the right to debug, which the search for the resident client leaves enabled, and the
/// fiber-local index that the module takes with its first C++ exception and gives back when it is unloaded.
struct CallerState
{
    CallerState()
        : strFolder(CurrentFolder()), uiErrorMode(GetErrorMode()),
          iThreadPriority(GetThreadPriority(GetCurrentThread())),
          dwProcessPriority(GetPriorityClass(GetCurrentProcess())), dwThreadLocale(GetThreadLocale()),
          strLocale(std::setlocale(LC_ALL, nullptr)), wX87(X87Control()), uiSse(__builtin_ia32_stmxcsr() & ~kSseFlags),
          bImpersonates(Impersonates()), dwTlsIndex(NextTlsIndex()), lApartment(Apartment()), uiHandle(NextHandle())
    {}

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

private:
    static constexpr unsigned kSseFlags = 0x3F;

    static std::wstring CurrentFolder()
    {
        wchar_t szFolder[MAX_PATH] = {};
        GetCurrentDirectoryW(MAX_PATH, szFolder);
        return szFolder;
    }
    static WORD X87Control()
    {
        WORD wControl = 0;
        __asm__ volatile("fnstcw %0" : "=m"(wControl));
        return wControl;
    }
    static DWORD NextTlsIndex()
    {
        const DWORD dwIndex = TlsAlloc();
        TlsFree(dwIndex);
        return dwIndex;
    }
    /// The apartment's type, or -1 without COM.
    static LONG Apartment()
    {
        APTTYPE type = APTTYPE_CURRENT;
        APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
        return CoGetApartmentType(&type, &qualifier) == S_OK ? static_cast<LONG>(type) : -1;
    }
    static bool Impersonates()
    {
        HANDLE hToken = nullptr;
        const bool bToken = OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &hToken) != FALSE;
        if (bToken)
        {
            CloseHandle(hToken);
        }
        return bToken;
    }
};

/// @param bHandles whether handles count: not around a first call, with which Windows opens what it keeps.
inline void CheckUnchanged(const CallerState& before, const CallerState& after, bool bHandles)
{
    CHECK(after.strFolder == before.strFolder);
    CHECK(after.uiErrorMode == before.uiErrorMode);
    CHECK(after.iThreadPriority == before.iThreadPriority);
    CHECK(after.dwProcessPriority == before.dwProcessPriority);
    CHECK(after.dwThreadLocale == before.dwThreadLocale);
    CHECK(after.strLocale == before.strLocale);
    CHECK(after.wX87 == before.wX87);
    CHECK(after.uiSse == before.uiSse);
    CHECK(after.bImpersonates == before.bImpersonates);
    CHECK(after.dwTlsIndex == before.dwTlsIndex);
    CHECK(after.lApartment == before.lApartment);
    CHECK((!bHandles || after.uiHandle == before.uiHandle));
}

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
