#include "tests/common/LockWatch.h"

#include "tests/common/ImportHook.h"
#include "tests/common/Threads.h"

#include <catch2/catch_test_macros.hpp>

#include <cstdio>
#include <io.h>
#include <map>

namespace
{

std::vector<LockStep> s_steps;
std::map<HANDLE, std::wstring> s_mutexes; ///< the names of the watched call's mutexes, by its handles
std::set<std::wstring> s_names;           ///< all names of mutexes that it has made so far
DWORD s_dwThread = 0;                     ///< the watched one; 0 when none is
HANDLE s_hWaits = nullptr;                ///< set when it begins to wait for a mutex

/// Whether somebody else than the calling thread has a mutex.
bool IsHeldByAnother(const std::wstring& strName)
{
    const HANDLE hMutex = OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, FALSE, strName.c_str());
    if (hMutex == nullptr)
    {
        return false;
    }
    const bool bHeld = WaitForSingleObject(hMutex, 0) == WAIT_TIMEOUT;
    if (!bHeld)
    {
        ReleaseMutex(hMutex);
    }
    CloseHandle(hMutex);
    return bHeld;
}

/// Notes a step of the watched thread. Its own calls in here are not steps.
void Note(const std::string& strWhat)
{
    if (GetCurrentThreadId() != s_dwThread)
    {
        return;
    }
    s_dwThread = 0;
    LockStep step = {strWhat, {}};
    OnThread([&] {
        for (const std::wstring& strName : s_names)
        {
            if (IsHeldByAnother(strName))
            {
                step.held.insert(strName);
            }
        }
    });
    s_steps.push_back(step);
    s_dwThread = GetCurrentThreadId();
}

std::string Narrow(const wchar_t* pszText)
{
    return std::string(pszText, pszText + wcslen(pszText)); // keys are plain letters and digits
}

/// Hooks one function. A number of its own tells each from others of the same type.
template <int iNumber, typename Function>
class Hook;

template <int iNumber, typename Result, typename... Arguments>
class Hook<iNumber, Result(Arguments...)>
{
public:
    using Pointer = Result (*)(Arguments...);

    Hook(const char* pszName, Pointer pfnReplacement) : m_hook(nullptr, pszName, pfnReplacement)
    {
        s_pfnReal = reinterpret_cast<Pointer>(m_hook.Original());
    }
    static Result Real(Arguments... arguments) { return s_pfnReal(arguments...); }

private:
    static inline Pointer s_pfnReal = nullptr;
    ImportHook m_hook;
};

/// Hooks a function whose name alone is the step.
template <int iNumber, typename Function>
class NamedHook;

template <int iNumber, typename Result, typename... Arguments>
class NamedHook<iNumber, Result(Arguments...)> : Hook<iNumber, Result(Arguments...)>
{
public:
    explicit NamedHook(const char* pszName) : Hook<iNumber, Result(Arguments...)>(pszName, &Call)
    {
        s_pszName = pszName;
    }

private:
    static Result Call(Arguments... arguments)
    {
        Note(s_pszName);
        return Hook<iNumber, Result(Arguments...)>::Real(arguments...);
    }
    static inline const char* s_pszName = nullptr;
};

// What the compiler knows of some functions beyond their types is of no use here.
#pragma GCC diagnostic ignored "-Wignored-attributes"

using CreateHook = Hook<0, decltype(CreateMutexW)>;
using WaitHook = Hook<1, decltype(WaitForSingleObject)>;
using ReleaseHook = Hook<2, decltype(ReleaseMutex)>;
using CloseHook = Hook<3, decltype(CloseHandle)>;
using ReadIntHook = Hook<4, decltype(GetPrivateProfileIntW)>;
using ReadTextHook = Hook<5, decltype(GetPrivateProfileStringW)>;
using WriteHook = Hook<6, decltype(WritePrivateProfileStringW)>;

HANDLE CreateNoted(LPSECURITY_ATTRIBUTES pAttributes, BOOL bOwner, LPCWSTR pszName)
{
    const HANDLE hMutex = CreateHook::Real(pAttributes, bOwner, pszName);
    if (GetCurrentThreadId() == s_dwThread && hMutex != nullptr)
    {
        s_mutexes[hMutex] = pszName;
        s_names.insert(pszName);
    }
    return hMutex;
}

DWORD WaitNoted(HANDLE hObject, DWORD dwMilliseconds)
{
    if (GetCurrentThreadId() != s_dwThread || s_mutexes.count(hObject) == 0)
    {
        return WaitHook::Real(hObject, dwMilliseconds);
    }
    SetEvent(s_hWaits);
    const DWORD dwResult = WaitHook::Real(hObject, dwMilliseconds);
    const bool bHad = dwMilliseconds == INFINITE && dwResult == WAIT_OBJECT_0;
    Note(bHad ? "lock" : "lock(" + std::to_string(dwMilliseconds) + ")=" + std::to_string(dwResult));
    return dwResult;
}

BOOL ReleaseNoted(HANDLE hMutex)
{
    const BOOL bReleased = ReleaseHook::Real(hMutex);
    if (bReleased)
    {
        Note("unlock");
    }
    return bReleased;
}

BOOL CloseNoted(HANDLE hObject)
{
    if (GetCurrentThreadId() == s_dwThread)
    {
        s_mutexes.erase(hObject);
    }
    return CloseHook::Real(hObject);
}

UINT ReadIntNoted(LPCWSTR pszSection, LPCWSTR pszKey, INT iDefault, LPCWSTR pszFile)
{
    Note("?" + Narrow(pszKey));
    return ReadIntHook::Real(pszSection, pszKey, iDefault, pszFile);
}

DWORD ReadTextNoted(LPCWSTR pszSection, LPCWSTR pszKey, LPCWSTR pszDefault, LPWSTR szText, DWORD dwUnits,
                    LPCWSTR pszFile)
{
    Note("?" + Narrow(pszKey));
    return ReadTextHook::Real(pszSection, pszKey, pszDefault, szText, dwUnits, pszFile);
}

BOOL WriteNoted(LPCWSTR pszSection, LPCWSTR pszKey, LPCWSTR pszText, LPCWSTR pszFile)
{
    Note(Narrow(pszKey) + "=");
    return WriteHook::Real(pszSection, pszKey, pszText, pszFile);
}

} // namespace

struct LockWatch::Hooks
{
    CreateHook create{"CreateMutexW", &CreateNoted};
    WaitHook wait{"WaitForSingleObject", &WaitNoted};
    ReleaseHook release{"ReleaseMutex", &ReleaseNoted};
    CloseHook close{"CloseHandle", &CloseNoted};
    ReadIntHook readInt{"GetPrivateProfileIntW", &ReadIntNoted};
    ReadTextHook readText{"GetPrivateProfileStringW", &ReadTextNoted};
    WriteHook write{"WritePrivateProfileStringW", &WriteNoted};
    NamedHook<7, decltype(_wfopen)> open{"_wfopen"};
    NamedHook<8, decltype(fread)> read{"fread"};
    NamedHook<9, decltype(fwrite)> writeStream{"fwrite"};
    NamedHook<10, decltype(fflush)> flush{"fflush"};
    NamedHook<11, decltype(fclose)> closeStream{"fclose"};
    NamedHook<12, decltype(_filelength)> length{"_filelength"};
    NamedHook<13, decltype(_wchmod)> mode{"_wchmod"};
    NamedHook<14, decltype(_waccess)> access{"_waccess"};
    NamedHook<15, decltype(DeleteFileW)> erase{"DeleteFileW"};
};

LockWatch::LockWatch()
{
    s_steps.clear();
    s_hWaits = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    m_pHooks = std::make_unique<Hooks>();
}

LockWatch::~LockWatch()
{
    m_pHooks.reset();
    CloseHandle(s_hWaits);
}

void LockWatch::Watch(const std::function<void()>& call)
{
    s_steps.clear();
    s_names.clear();
    s_mutexes.clear();
    s_dwThread = GetCurrentThreadId();
    call();
    s_dwThread = 0;
    ResetEvent(s_hWaits); // what nobody waited for tells nothing of the next call
}

const std::vector<LockStep>& LockWatch::Steps() const
{
    return s_steps;
}

std::string LockWatch::Line() const
{
    std::string strLine;
    for (const LockStep& step : s_steps)
    {
        strLine += (strLine.empty() ? "" : " ") + step.strWhat;
    }
    return strLine;
}

bool LockWatch::WaitsForLock() const
{
    return WaitForSingleObject(s_hWaits, 20000) == WAIT_OBJECT_0;
}
