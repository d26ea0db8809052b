#pragma once
/// A platform function that fails at its n-th call, at the import table of the test program, which holds the module's
/// code too.

#include "tests/common/ImportHook.h"

#include <windows.h>

/// Which call of the one function under fault fails.
struct FaultPlan
{
    int iFailing = 0;      ///< counted from 1; 0 for none
    bool bOnwards = false; ///< whether all calls behind it fail too
    int iCalls = 0;        ///< calls so far
    void* pfnReal = nullptr;
    bool bArmed = true; ///< whether calls count at all

    /// Counts a call. @return whether it is to fail.
    bool Fails()
    {
        if (!bArmed)
        {
            return false;
        }
        ++iCalls;
        return iFailing != 0 && (bOnwards ? iCalls >= iFailing : iCalls == iFailing);
    }
};

inline FaultPlan s_faultPlan;

/// The replacement of a function: fails by the plan with a result and a last error, else calls the real one.
template <typename Function>
struct Faulty;

template <typename Result, typename... Arguments>
struct Faulty<Result(Arguments...)>
{
    static inline Result s_failed = {};
    static inline DWORD s_dwError = 0;

    static Result Call(Arguments... arguments)
    {
        if (s_faultPlan.Fails())
        {
            SetLastError(s_dwError);
            return s_failed;
        }
        return reinterpret_cast<Result (*)(Arguments...)>(s_faultPlan.pfnReal)(arguments...);
    }
};

/// One function that can be made to fail.
struct FaultyFunction
{
    const char* pszName;
    void (*pfnReplacement)();
    void (*pfnPrepare)(); ///< sets what a failed call answers
};

// What the compiler knows of some functions beyond their types is of no use here.
#pragma GCC diagnostic ignored "-Wignored-attributes"

/// Describes a function, what a call that fails answers, and the last error that it leaves. The platform has one
/// calling convention on the target.
#define FAULTY(function, failed, error) FAULTY_AS(function, decltype(function), failed, error)

/// The same for a function whose declared type can't be used, with the type of the calls that are made.
#define FAULTY_AS(function, type, failed, error)                                                                       \
    FaultyFunction                                                                                                     \
    {                                                                                                                  \
#function, reinterpret_cast<void (*)()>(&Faulty<type>::Call), [] { \
            Faulty<type>::s_failed = failed; \
            Faulty<type>::s_dwError = error; \
        }                                                   \
    }

/// Makes one function fail by a plan for the length of a scope.
class FaultScope
{
public:
    /// @param hModule whose calls fail; null for the test program's, which holds the module's code too.
    FaultScope(HMODULE hModule, const FaultyFunction& function, int iFailing, bool bOnwards)
        : m_hook(hModule, function.pszName, function.pfnReplacement)
    {
        function.pfnPrepare();
        s_faultPlan = {iFailing, bOnwards, 0, m_hook.Original(), true};
    }

    /// Whether a call has failed in this scope, or in the last one when none stands.
    static bool Reached() { return s_faultPlan.iCalls >= s_faultPlan.iFailing; }
    /// Which call was the first to fail.
    static int FirstFailing() { return s_faultPlan.iFailing; }
    /// Whether the calls behind it fail too.
    static bool FailsOnwards() { return s_faultPlan.bOnwards; }

private:
    ImportHook m_hook;
};
