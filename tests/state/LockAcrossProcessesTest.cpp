#include "state/CapabilitySnapshot.h"
#include "state/FileLocker.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/LockHolder.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <vector>

using namespace VelUtility;

namespace
{

/// Asks for a capability on a thread of its own.
struct Query
{
    Query()
    {
        hThread = CreateThread(
            nullptr, 0,
            [](void* pv) -> DWORD {
                static_cast<Query*>(pv)->dwAnswer = GetComputerCaps(DC_COPIES, nullptr);
                return 0;
            },
            this, 0, nullptr);
    }
    ~Query()
    {
        WaitForSingleObject(hThread, 20000);
        CloseHandle(hThread);
    }
    bool Ends(DWORD dwMilliseconds) const { return WaitForSingleObject(hThread, dwMilliseconds) == WAIT_OBJECT_0; }

    HANDLE hThread;
    DWORD dwAnswer = 0;
};

/// Counts the answers that are not whole: every paper of one snapshot has the same number.
DWORD WINAPI ReadManyTimes(void* pvBad)
{
    for (int i = 0; i < 50; ++i)
    {
        WORD papers[20] = {};
        const DWORD dwCount = GetComputerCaps(DC_PAPERS, papers);
        if (dwCount != 20 || !std::all_of(papers, papers + 20, [&](WORD w) { return w == papers[0]; }))
        {
            InterlockedIncrement(static_cast<LONG*>(pvBad));
        }
    }
    return 0;
}

} // namespace

TEST_CASE_METHOD(ClientFixture, "a query waits for a lock that another process holds, and goes on when it ends",
                 "[state][locks][processes]")
{
    WriteCaps({{L"Copies", L"7"}});
    LockHolder holder(ConfigFile());
    const Query query;
    CHECK_FALSE(query.Ends(300));
    holder.End(); // the mutex is abandoned; the waiter goes on all the same
    CHECK(query.Ends(20000));
    CHECK(query.dwAnswer == 7);
    // The waiter gave the abandoned mutex back: it is free for the next one.
    CFileLocker locker(ConfigFile().c_str());
    CHECK(locker.Lock(0) == 1);
    CHECK(locker.Unlock() != 0);
}

TEST_CASE_METHOD(ClientFixture, "a lock with a time-out ends while another process holds it",
                 "[state][locks][processes]")
{
    LockHolder holder(ConfigFile());
    CFileLocker locker(ConfigFile().c_str());
    CHECK(locker.Lock(0) == 0);
    CHECK(locker.Lock(100) == 0);
    CHECK(locker.Unlock() == 0);
    holder.End();
    CHECK(locker.Lock(INFINITE) == 0); // abandoned: counts as a failure, and yet it is owned
    CHECK(locker.Unlock() != 0);
    CHECK(locker.Lock(0) == 1);
    CHECK(locker.Unlock() != 0);
}

TEST_CASE_METHOD(ClientFixture, "readers in processes and threads never see a torn snapshot",
                 "[state][locks][processes][cores]")
{
    // The first snapshot is there before any reader starts.
    ChildProcess first(BesideTests(L"storeworker.exe"), {L"write", L"1", registry.Root()});
    REQUIRE(first.Wait(20000) == 0);
    ChildProcess writer(BesideTests(L"storeworker.exe"), {L"write", L"60", registry.Root()});
    ChildProcess reader(BesideTests(L"storeworker.exe"), {L"read", L"200", registry.Root()});
    LONG lBad = 0;
    std::vector<HANDLE> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.push_back(CreateThread(nullptr, 0, ReadManyTimes, &lBad, 0, nullptr));
    }
    CHECK(WaitForMultipleObjects(4, threads.data(), TRUE, 120000) == WAIT_OBJECT_0);
    for (const HANDLE hThread : threads)
    {
        CloseHandle(hThread);
    }
    CHECK(lBad == 0);
    CHECK(writer.Wait(60000) == 0);
    CHECK(reader.Wait(60000) == 0);
}
