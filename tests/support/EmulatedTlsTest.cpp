#include "tests/common/HeapUse.h"
#include "tests/common/Threads.h"
#include "tests/support/SlimLockWatch.h"

#include <catch2/catch_test_macros.hpp>

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

namespace
{

thread_local int t_iTemplated = 42;
thread_local unsigned char t_abyZeroed[300];
struct alignas(64) Wide
{
    int values[16];
};
thread_local Wide t_wide = {{1, 2, 3}};
template <int i>
thread_local int t_iNumbered = i;

/// What the compiler emits for a variable, as its ABI has it.
struct EmittedVariable
{
    std::uintptr_t size;
    std::uintptr_t align;
    std::uintptr_t number;
    const void* templ;
};

EmittedVariable s_watched = {4, 4, 0, nullptr};

/// What threads but this one took from the heap and gave back, and how often with flags that it must not have: one of
/// them tells the heap not to lock itself.
DWORD s_dwThisThread = 0;
int s_iTaken = 0;
int s_iFreed = 0;
int s_iWrongFlags = 0;

void* WINAPI CountHeapAlloc(HANDLE hHeap, DWORD dwFlags, SIZE_T cb)
{
    if (GetCurrentThreadId() != s_dwThisThread)
    {
        ++s_iTaken;
        s_iWrongFlags += dwFlags != HEAP_ZERO_MEMORY;
    }
    return Platform<void * WINAPI(HANDLE, DWORD, SIZE_T)>(L"kernel32", "HeapAlloc")(hHeap, dwFlags, cb);
}

BOOL WINAPI CountHeapFree(HANDLE hHeap, DWORD dwFlags, void* pv)
{
    if (GetCurrentThreadId() != s_dwThisThread)
    {
        ++s_iFreed;
        s_iWrongFlags += dwFlags != 0;
    }
    return Platform<BOOL WINAPI(HANDLE, DWORD, void*)>(L"kernel32", "HeapFree")(hHeap, dwFlags, pv);
}

/// A slim lock's taking that leaves an error, as a function of Windows may.
void WINAPI TakeWithError(PSRWLOCK pLock)
{
    Platform<void WINAPI(PSRWLOCK)>(L"kernel32", "AcquireSRWLockExclusive")(pLock);
    SetLastError(ERROR_BUSY);
}

int HasNumber()
{
    return s_watched.number != 0 ? 1 : 0;
}

} // namespace

// The compiler has both built in, with void* for what is emitted.
extern "C" void* __emutls_get_address(void* pvVariable);
extern "C" void __emutls_register_common(void* pvVariable, std::uintptr_t size, std::uintptr_t align, void* templ);

namespace
{

/// A call that is made even where the compiler knows the answer, or nobody wants it.
void* (*volatile s_pfnGetAddress)(void* pvVariable) = &__emutls_get_address;

} // namespace

TEST_CASE("a variable that several objects define gets the largest size and alignment of all", "[support][tls]")
{
    static EmittedVariable s_variable = {4, 4, 0, nullptr};
    __emutls_register_common(&s_variable, 64, 32, nullptr);
    CHECK(s_variable.size == 64);
    CHECK(s_variable.align == 32);
    __emutls_register_common(&s_variable, 8, 8, nullptr); // a smaller definition changes nothing
    CHECK(s_variable.size == 64);
    CHECK(s_variable.align == 32);
    auto* const pbyVariable = static_cast<unsigned char*>(__emutls_get_address(&s_variable));
    CHECK(reinterpret_cast<std::uintptr_t>(pbyVariable) % 32 == 0);
    CHECK(pbyVariable[0] == 0);
    CHECK(pbyVariable[63] == 0);
}

TEST_CASE("a variable that several objects define starts from the value of the one that has its size", "[support][tls]")
{
    static unsigned char s_abySmall[4] = {1, 1, 1, 1};
    static unsigned char s_abyLarge[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    static EmittedVariable s_variable = {4, 4, 0, s_abySmall};
    __emutls_register_common(&s_variable, 8, 4, nullptr);
    CHECK(s_variable.templ == nullptr); // too short for the larger one
    __emutls_register_common(&s_variable, 4, 4, s_abySmall);
    CHECK(s_variable.templ == nullptr);
    __emutls_register_common(&s_variable, 8, 4, s_abyLarge);
    CHECK(s_variable.templ == s_abyLarge);
    __emutls_register_common(&s_variable, 8, 4, nullptr);
    CHECK(s_variable.templ == s_abyLarge);
    OnThread([] { CHECK(std::memcmp(__emutls_get_address(&s_variable), s_abyLarge, sizeof(s_abyLarge)) == 0); });
}

TEST_CASE("a variable is given its number under a lock, and then keeps it without one", "[support][tls]")
{
    s_watched.number = 0;
    std::string strSteps;
    {
        const SlimLockWatch watch(&HasNumber);
        s_pfnGetAddress(&s_watched);
        s_pfnGetAddress(&s_watched);
        strSteps = SlimLockWatch::Steps();
    }
    CHECK(strSteps == "take 0, give 1, ");
}

TEST_CASE("a thread's variable starts from its initial value and is the thread's own", "[support][tls]")
{
    t_iTemplated = 7;
    int iSeen = 0;
    OnThread([&] {
        iSeen = t_iTemplated;
        t_iTemplated = 9;
    });
    CHECK(iSeen == 42);
    CHECK(t_iTemplated == 7);
    t_iTemplated = 42;
}

TEST_CASE("a thread's variable without a value starts as zeroes", "[support][tls]")
{
    OnThread([] {
        for (const unsigned char by : t_abyZeroed)
        {
            CHECK(by == 0);
        }
        t_abyZeroed[299] = 1;
    });
    OnThread([] { CHECK(t_abyZeroed[299] == 0); });
}

TEST_CASE("a thread's variable is aligned as its type asks", "[support][tls]")
{
    OnThread([] {
        CHECK(reinterpret_cast<std::uintptr_t>(&t_wide) % 64 == 0);
        CHECK(t_wide.values[2] == 3);
    });
}

TEST_CASE("a thread's variable keeps its place while others come into use", "[support][tls]")
{
    OnThread([] {
        const void* const pFirst = &t_iTemplated;
        t_abyZeroed[0] = 1;
        t_wide.values[0] = 5;
        try
        {
            throw std::runtime_error("x"); // the run-time's own variable
        }
        catch (const std::runtime_error&)
        {}
        CHECK(pFirst == &t_iTemplated);
        CHECK(t_iTemplated == 42);
    });
}

TEST_CASE("a thread's variable keeps its place and value when many more come into use", "[support][tls]")
{
    OnThread([] {
        int* const pFirst = &t_iTemplated;
        *pFirst = 17;
        int iSum = t_iNumbered<1> + t_iNumbered<2> + t_iNumbered<3> + t_iNumbered<4> + t_iNumbered<5> + t_iNumbered<6>;
        iSum += t_iNumbered<7> + t_iNumbered<8> + t_iNumbered<9> + t_iNumbered<10> + t_iNumbered<11> + t_iNumbered<12>;
        CHECK(iSum == 78);
        CHECK(pFirst == &t_iTemplated);
        CHECK(*pFirst == 17);
    });
}

TEST_CASE("each of many variables keeps its place and value while a thread's store of them grows", "[support][tls]")
{
    constexpr int kCount = 100;
    static EmittedVariable s_variables[kCount];
    for (EmittedVariable& variable : s_variables)
    {
        variable = {sizeof(int), alignof(int), 0, nullptr};
    }
    OnThread([] {
        int* places[kCount] = {};
        for (int i = 0; i < kCount; ++i)
        {
            places[i] = static_cast<int*>(__emutls_get_address(&s_variables[i]));
            CHECK(*places[i] == 0);
            *places[i] = i + 1;
            for (int iBefore = 0; iBefore <= i; ++iBefore)
            {
                CHECK(__emutls_get_address(&s_variables[iBefore]) == places[iBefore]);
                CHECK(*places[iBefore] == iBefore + 1);
            }
        }
    });
}

TEST_CASE("a thread's end frees each of its variables", "[support][tls]")
{
    constexpr size_t kSize = 100000;
    static EmittedVariable s_variables[3];
    for (EmittedVariable& variable : s_variables)
    {
        variable = {kSize, alignof(int), 0, nullptr};
    }
    const size_t uiBefore = HeapInUse(GetProcessHeap());
    size_t uiRunning = 0;
    for (int i = 0; i < 5; ++i)
    {
        OnThread([&uiRunning] {
            for (EmittedVariable& variable : s_variables)
            {
                s_pfnGetAddress(&variable);
            }
            uiRunning = HeapInUse(GetProcessHeap());
        });
    }
    CHECK(uiRunning > uiBefore + 3 * kSize);
    CHECK(HeapInUse(GetProcessHeap()) < uiBefore + kSize);
}

TEST_CASE("a thread's variables and its store of them, all given back, come from a heap that locks itself",
          "[support][tls]")
{
    static EmittedVariable s_variables[20]; // so many that the store grows
    for (EmittedVariable& variable : s_variables)
    {
        variable = {sizeof(int), alignof(int), 0, nullptr};
    }
    s_dwThisThread = GetCurrentThreadId();
    s_iTaken = s_iFreed = s_iWrongFlags = 0;
    {
        const ImportHook takeHook{nullptr, "HeapAlloc", &CountHeapAlloc};
        const ImportHook giveHook{nullptr, "HeapFree", &CountHeapFree};
        OnThread([] {
            for (EmittedVariable& variable : s_variables)
            {
                s_pfnGetAddress(&variable);
            }
            CHECK_THROWS(throw 1); // the variable of all that throws, the first one to have a number
        });
    }
    CHECK(s_iTaken >= 22);
    CHECK(s_iFreed == s_iTaken);
    CHECK(s_iWrongFlags == 0);
}

TEST_CASE("using a thread's variable leaves the last error alone", "[support][tls]")
{
    OnThread([] {
        SetLastError(5);
        t_abyZeroed[1] = 1; // first use on this thread
        const DWORD dwAfterFirst = GetLastError();
        t_abyZeroed[2] = 1;
        const DWORD dwAfterSecond = GetLastError();
        CHECK(dwAfterFirst == 5);
        CHECK(dwAfterSecond == 5);
    });
}

TEST_CASE("a variable's first use leaves the last error alone, whatever Windows does to it meanwhile", "[support][tls]")
{
    static EmittedVariable s_variable = {sizeof(int), alignof(int), 0, nullptr};
    s_variable.number = 0;
    const ImportHook hook{nullptr, "AcquireSRWLockExclusive", &TakeWithError};
    SetLastError(5);
    s_pfnGetAddress(&s_variable);
    const DWORD dwAfter = GetLastError();
    CHECK(dwAfter == 5);
}

TEST_CASE("eight threads that throw at once each catch their own exception", "[support][tls][cores]")
{
    struct Work
    {
        int iNumber;
        int iWrong;
    };
    Work works[8];
    HANDLE threads[8];
    for (int i = 0; i < 8; ++i)
    {
        works[i] = {i, 0};
        threads[i] = CreateThread(
            nullptr, 0,
            [](void* pv) -> DWORD {
                Work& work = *static_cast<Work*>(pv);
                for (int iRound = 0; iRound < 500; ++iRound)
                {
                    try
                    {
                        throw std::to_string(work.iNumber * 1000 + iRound);
                    }
                    catch (const std::string& strCaught)
                    {
                        work.iWrong += strCaught != std::to_string(work.iNumber * 1000 + iRound) ? 1 : 0;
                    }
                }
                return 0;
            },
            &works[i], 0, nullptr);
    }
    CHECK(WaitForMultipleObjects(8, threads, TRUE, 60000) == WAIT_OBJECT_0);
    for (int i = 0; i < 8; ++i)
    {
        CHECK(works[i].iWrong == 0);
        CloseHandle(threads[i]);
    }
}
