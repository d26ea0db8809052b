#include "tests/support/SlimLockWatch.h"

#include <catch2/catch_test_macros.hpp>

#include <windows.h>

#include <cxxabi.h>
#include <stdexcept>

namespace
{

LONG s_lMade = 0;

/// Takes its time, so that other threads come to wait for it.
struct Slow
{
    Slow()
    {
        Sleep(100);
        InterlockedIncrement(&s_lMade);
        lValue = 7;
    }
    LONG lValue;
};

LONG SlowValue()
{
    static const Slow s_slow;
    return s_slow.lValue;
}

__cxxabiv1::__guard s_guard = 0;

/// 0 for a guard of which nothing is known, 1 while its variable is made, 2 once it stands.
int GuardState()
{
    const auto* const pby = reinterpret_cast<const unsigned char*>(&s_guard);
    return pby[0] != 0 ? 2 : pby[1];
}

int s_iTries = 0;

struct ThirdTime
{
    ThirdTime()
    {
        if (++s_iTries < 3)
        {
            throw std::runtime_error("not yet");
        }
    }
    int iValue = 9;
};

int ThirdTimeValue()
{
    static const ThirdTime s_thirdTime;
    return s_thirdTime.iValue;
}

} // namespace

TEST_CASE("a function's static is made once, and threads that come meanwhile wait for it", "[support][statics][cores]")
{
    LONG values[8] = {};
    HANDLE threads[8];
    for (int i = 0; i < 8; ++i)
    {
        threads[i] = CreateThread(
            nullptr, 0,
            [](void* pv) -> DWORD {
                *static_cast<LONG*>(pv) = SlowValue();
                return 0;
            },
            &values[i], 0, nullptr);
    }
    CHECK(WaitForMultipleObjects(8, threads, TRUE, 60000) == WAIT_OBJECT_0);
    for (int i = 0; i < 8; ++i)
    {
        CHECK(values[i] == 7);
        CloseHandle(threads[i]);
    }
    CHECK(s_lMade == 1);
}

TEST_CASE("a function's static whose making throws is made anew at the next call", "[support][statics]")
{
    CHECK_THROWS_AS(ThirdTimeValue(), std::runtime_error);
    CHECK_THROWS_AS(ThirdTimeValue(), std::runtime_error);
    CHECK(ThirdTimeValue() == 9);
    CHECK(ThirdTimeValue() == 9);
    CHECK(s_iTries == 3);
}

TEST_CASE("what a guard says of a function's static is read and changed under one lock", "[support][statics]")
{
    s_guard = 0;
    std::string strSteps;
    {
        const SlimLockWatch watch(&GuardState);
        CHECK(__cxxabiv1::__cxa_guard_acquire(&s_guard) == 1);
        __cxxabiv1::__cxa_guard_abort(&s_guard);
        CHECK(__cxxabiv1::__cxa_guard_acquire(&s_guard) == 1);
        __cxxabiv1::__cxa_guard_release(&s_guard);
        CHECK(__cxxabiv1::__cxa_guard_acquire(&s_guard) == 0);
        strSteps = SlimLockWatch::Steps();
    }
    CHECK(strSteps == "take 0, give 1, take 1, give 0, " // it is made, which fails
                      "take 0, give 1, take 1, give 2, " // it is made
                      "take 2, give 2, ");               // it stands
}
