#pragma once
/// What stands where a slim lock is taken and given back.

#include "tests/common/ImportHook.h"

#include <windows.h>

#include <string>

/// Notes a state whenever the calling program takes or gives back a slim lock: what it has read on the one side and
/// written on the other was guarded by it. One at a time.
class SlimLockWatch
{
public:
    /// @param pfnState gives the state, a digit; called before a lock is taken and before it is given back.
    explicit SlimLockWatch(int (*pfnState)())
    {
        s_strSteps.clear();
        s_strSteps.reserve(200);
        s_pfnState = pfnState; // now that both hooks are there: what made them may have taken locks
    }
    ~SlimLockWatch() { s_pfnState = nullptr; }

    /// So far: "take 0, give 1, ".
    static std::string Steps() { return s_strSteps; }

private:
    static void Note(const char* pszStep)
    {
        if (s_pfnState != nullptr)
        {
            ((s_strSteps += pszStep) += static_cast<char>('0' + s_pfnState())) += ", ";
        }
    }
    static void WINAPI Take(PSRWLOCK pLock)
    {
        Note("take ");
        Platform<void WINAPI(PSRWLOCK)>(L"kernel32", "AcquireSRWLockExclusive")(pLock);
    }
    static void WINAPI Give(PSRWLOCK pLock)
    {
        Note("give ");
        Platform<void WINAPI(PSRWLOCK)>(L"kernel32", "ReleaseSRWLockExclusive")(pLock);
    }

    static inline int (*s_pfnState)() = nullptr;
    static inline std::string s_strSteps;
    ImportHook m_take{nullptr, "AcquireSRWLockExclusive", &Take};
    ImportHook m_give{nullptr, "ReleaseSRWLockExclusive", &Give};
};
