// Logging on many threads at once.

#include "diag/LogSite.h"
#include "tests/common/HeapUse.h"
#include "tests/diag/LoggingOn.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <cstddef>
#include <map>
#include <vector>

VELUI_SOURCE_MODULE("Test");

namespace
{

/// Runs one function on many threads at once and waits for their end.
void OnThreads(int iThreads, DWORD (*pfnThread)(void*))
{
    std::vector<HANDLE> threads;
    for (int i = 0; i < iThreads; ++i)
    {
        threads.push_back(CreateThread(nullptr, 0,
                                       reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(pfnThread)),
                                       reinterpret_cast<void*>(static_cast<INT_PTR>(i)), 0, nullptr));
        REQUIRE(threads.back() != nullptr);
    }
    CHECK(WaitForMultipleObjects(static_cast<DWORD>(threads.size()), threads.data(), TRUE, 200000) == WAIT_OBJECT_0);
    for (const HANDLE hThread : threads)
    {
        CloseHandle(hThread);
    }
}

constexpr int kThreads = 8;
constexpr int kCalls = 10000;

void Inner(int iThread, int iCall)
{
    const FunctionScope scope("Inner");
    LogInfo("%d:%d", iThread, iCall);
}

DWORD WINAPI LogNested(void* pv)
{
    const int iThread = static_cast<int>(reinterpret_cast<INT_PTR>(pv));
    // A name of the thread's own, so that a frame of another thread would show.
    static constexpr const char* kNames[kThreads] = {"T0", "T1", "T2", "T3", "T4", "T5", "T6", "T7"};
    const FunctionScope scope(kNames[iThread]);
    for (int i = 0; i < kCalls; ++i)
    {
        Inner(iThread, i);
    }
    return 0;
}

DWORD WINAPI LogOnce(void*)
{
    const FunctionScope scope("Once");
    LogInfo("once");
    return 0;
}

} // namespace

TEST_CASE("8 threads with 10,000 nested calls each leave whole lines with the right frames", "[diag][threads][cores]")
{
    LogSetup setup;
    setup.strPattern = "%x|%m|%n"; // the thread's frames, and the message
    const LoggingOn logging(setup);
    OnThreads(kThreads, LogNested);

    std::map<int, int> next; // by thread, the call whose line comes next
    size_t uiWrong = 0;
    for (const std::string& strLine : logging.Lines())
    {
        int iThread = -1;
        int iCall = -1;
        const size_t uiMessage = strLine.find("INFO - ");
        const bool bRead = uiMessage != std::string::npos &&
                           sscanf(strLine.c_str() + uiMessage, "INFO - %d:%d|", &iThread, &iCall) == 2;
        const std::string strFrames = "VelUI_dll..T" + std::to_string(iThread) + "$ VelUI_dll..Inner$|[ThreadID:";
        const std::string strEnd = std::to_string(iThread) + ":" + std::to_string(iCall) + "|";
        const bool bWhole = bRead && strLine.compare(0, strFrames.size(), strFrames) == 0 &&
                            strLine.compare(uiMessage + 7, std::string::npos, strEnd) == 0 && iCall == next[iThread]++;
        uiWrong += bWhole ? 0 : 1;
    }
    CHECK(uiWrong == 0);
    CHECK(next.size() == kThreads);
    for (const auto& thread : next)
    {
        CHECK(thread.second == kCalls);
    }
}

TEST_CASE("1,000 threads that logged leave no memory behind", "[diag][threads][once]")
{
    const LoggingOn logging;
    const auto runThreads = [](int iCount) {
        for (int i = 0; i < iCount; i += 10)
        {
            OnThreads(10, LogOnce);
        }
    };
    runThreads(200); // what the platform keeps for its first threads
    // Wine 10's heap takes and gives its own stocks at once, some 20,000 bytes of them; what threads leave behind shows
    // in each round.
    const size_t cbStart = HeapInUse();
    std::vector<ptrdiff_t> growths;
    for (int i = 0; i < 5; ++i)
    {
        const size_t cbBefore = HeapInUse();
        runThreads(200);
        growths.push_back(static_cast<ptrdiff_t>(HeapInUse()) - static_cast<ptrdiff_t>(cbBefore));
    }
    std::sort(growths.begin(), growths.end());
    CAPTURE(growths);
    CHECK(growths[2] < 200 * 16);
    CHECK(HeapInUse() < cbStart + kHeapsStock);
    CHECK(logging.Lines().size() == 1200);
}
