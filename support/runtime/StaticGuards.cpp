// The guards of function-local statics, in place of libstdc++'s.
//
// libstdc++ guards the first use of such a variable with a mutex that it makes on demand and never gives back. With the
// win32 thread model the mutex holds a semaphore, so a module that links it statically loses one handle at every load
// and unload. This version waits with what Windows keeps in the module's own memory.
//
// The functions' names, arguments and the guard's layout are the C++ ABI. Linked as an object, never through an
// archive, like EmulatedTls.cpp. It may go when libstdc++'s guards lose no handle.

#include <windows.h>

#include <cxxabi.h>

namespace
{

/// A variable's guard. The compiler tests the first byte before it calls here.
struct Guard
{
    unsigned char byDone;    ///< 1 once the variable stands
    unsigned char byRunning; ///< 1 while some thread makes it
};

SRWLOCK s_lock = SRWLOCK_INIT;
CONDITION_VARIABLE s_ended = CONDITION_VARIABLE_INIT;

/// Ends a thread's making of a variable and lets the threads that wait for it look again.
void End(__cxxabiv1::__guard* pGuard, bool bDone)
{
    auto* const pState = reinterpret_cast<Guard*>(pGuard);
    AcquireSRWLockExclusive(&s_lock);
    pState->byRunning = 0;
    __atomic_store_n(&pState->byDone, static_cast<unsigned char>(bDone), __ATOMIC_RELEASE);
    ReleaseSRWLockExclusive(&s_lock);
    WakeAllConditionVariable(&s_ended);
}

} // namespace

namespace __cxxabiv1
{

/// @return 1 when the caller is to make the variable, 0 when it stands.
extern "C" int __cxa_guard_acquire(__guard* pGuard)
{
    auto* const pState = reinterpret_cast<Guard*>(pGuard);
    AcquireSRWLockExclusive(&s_lock);
    while (pState->byRunning != 0)
    {
        SleepConditionVariableSRW(&s_ended, &s_lock, INFINITE, 0);
    }
    const bool bMake = pState->byDone == 0;
    pState->byRunning = bMake;
    ReleaseSRWLockExclusive(&s_lock);
    return bMake;
}

extern "C" void __cxa_guard_release(__guard* pGuard) noexcept
{
    End(pGuard, true);
}

/// The making has thrown: the next thread tries anew.
extern "C" void __cxa_guard_abort(__guard* pGuard) noexcept
{
    End(pGuard, false);
}

} // namespace __cxxabiv1
