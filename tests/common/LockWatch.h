#pragma once
/// What a call of the store does with locks and files, step by step, and which locks are held at each step.

#include <windows.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

/// One step of a call.
///     lock     a mutex was waited for without end, and had
///     unlock   a mutex was given back
///     ?Key     a profile key was read
///     Key=     a profile key was written
///     fwrite   and its like: a function of the C runtime or of Windows that works on a file
struct LockStep
{
    std::string strWhat;
    std::set<std::wstring> held; ///< names of the mutexes that another thread finds held behind a lock's step and an
                                 ///< unlock's, and at the beginning of each other
};

/// Notes the steps of the calls that are made through it, at the test program's import table. One at a time.
class LockWatch
{
public:
    LockWatch();
    ~LockWatch();
    LockWatch(const LockWatch&) = delete;
    LockWatch& operator=(const LockWatch&) = delete;

    /// Makes a call on the calling thread, whose steps replace those that were noted before.
    void Watch(const std::function<void()>& call);

    const std::vector<LockStep>& Steps() const;
    /// All steps in one line, with a blank between two.
    std::string Line() const;
    /// Waits until the watched call is about to wait for a mutex. @return whether it was, within 20 seconds.
    bool WaitsForLock() const;

private:
    struct Hooks;
    std::unique_ptr<Hooks> m_pHooks;
};
