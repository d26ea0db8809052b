// Sixteen processes over the store's files, some of them ended at random moments while they hold a lock.

#include "state/CapabilitySnapshot.h"
#include "state/FileLocker.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/LockHolder.h"

#include <catch2/catch_test_macros.hpp>

#include <array>
#include <cstdio>
#include <memory>
#include <random>

namespace
{

/// What a process of the crowd does.
enum class Part
{
    Writes,  ///< whole snapshots, without end
    Reads,   ///< fifty snapshots
    Appends, ///< a thousand messages
    Holds    ///< takes the snapshot's lock and keeps it
};

constexpr std::array<Part, 16> kCrowd = {
    Part::Writes, Part::Writes,  Part::Reads,   Part::Reads,   Part::Reads,   Part::Reads, Part::Reads, Part::Reads,
    Part::Reads,  Part::Appends, Part::Appends, Part::Appends, Part::Appends, Part::Holds, Part::Holds, Part::Holds,
};

constexpr int kReadsEach = 50;
constexpr int kAppendsEach = 1000;

struct Counts
{
    int iReads = 0;      ///< whole snapshots that were read
    int iAppends = 0;    ///< messages that were added
    int iEnded = 0;      ///< processes that were ended from outside
    int iHoldsTaken = 0; ///< of these, holders that had the lock
    int iFailed = 0;     ///< processes that told of a torn snapshot or a failed append
};

class Crowd
{
public:
    explicit Crowd(ClientFixture& client)
        : m_client(client), m_strMutex(MutexNameOf(client.ConfigFile())),
          m_strReady(L"velui-test-crowd-" + std::to_wstring(GetCurrentProcessId())),
          m_hReady(CreateEventW(nullptr, FALSE, FALSE, m_strReady.c_str()))
    {
        for (size_t i = 0; i < kCrowd.size(); ++i)
        {
            Start(i);
        }
    }
    ~Crowd() { CloseHandle(m_hReady); }

    /// Takes note of the processes that have ended, and starts others in their place.
    void Renew()
    {
        for (size_t i = 0; i < kCrowd.size(); ++i)
        {
            const DWORD dwCode = m_processes[i]->Wait(0);
            if (dwCode != STILL_ACTIVE)
            {
                m_counts.iReads += kCrowd[i] == Part::Reads && dwCode == 0 ? kReadsEach : 0;
                m_counts.iAppends += kCrowd[i] == Part::Appends && dwCode == 0 ? kAppendsEach : 0;
                // A holder that waited ten seconds in vain ends with 1 too.
                m_counts.iFailed += dwCode != 0 && kCrowd[i] != Part::Holds ? 1 : 0;
                Start(i);
            }
        }
    }
    /// Ends a reader or a holder at once, wherever it is.
    void EndOne(std::mt19937& random)
    {
        const size_t i = random() % kCrowd.size();
        if (kCrowd[i] == Part::Reads || kCrowd[i] == Part::Holds)
        {
            m_processes[i]->Terminate();
            ++m_counts.iEnded;
            Start(i);
        }
    }
    /// Ends the holder that has the lock, when one has.
    void EndHolders()
    {
        if (WaitForSingleObject(m_hReady, 0) == WAIT_OBJECT_0)
        {
            ++m_counts.iHoldsTaken;
            for (size_t i = 0; i < kCrowd.size(); ++i)
            {
                if (kCrowd[i] == Part::Holds)
                {
                    m_processes[i]->Terminate();
                    ++m_counts.iEnded;
                    Start(i);
                }
            }
        }
    }
    const Counts& SoFar() const { return m_counts; }
    /// Ends all that would not end by themselves, and waits for the others.
    Counts Finish()
    {
        for (size_t i = 0; i < kCrowd.size(); ++i)
        {
            if (kCrowd[i] == Part::Holds)
            {
                m_processes[i]->Terminate();
            }
        }
        for (size_t i = 0; i < kCrowd.size(); ++i)
        {
            if (kCrowd[i] == Part::Reads || kCrowd[i] == Part::Appends)
            {
                const bool bGood = m_processes[i]->Wait(60000) == 0;
                m_counts.iFailed += bGood ? 0 : 1;
                m_counts.iReads += bGood && kCrowd[i] == Part::Reads ? kReadsEach : 0;
                m_counts.iAppends += bGood && kCrowd[i] == Part::Appends ? kAppendsEach : 0;
            }
        }
        for (auto& pProcess : m_processes)
        {
            pProcess.reset(); // ends the writers
        }
        return m_counts;
    }

private:
    void Start(size_t i)
    {
        const std::wstring& strView = m_client.registry.Root();
        std::vector<std::wstring> arguments;
        switch (kCrowd[i])
        {
        case Part::Writes:
            arguments = {L"write", L"1000000", strView};
            break;
        case Part::Reads:
            arguments = {L"read", std::to_wstring(kReadsEach), strView};
            break;
        case Part::Appends:
            arguments = {L"append", std::to_wstring(1000 + i % 4), strView};
            break;
        case Part::Holds:
            arguments = {L"hold", m_strMutex, m_strReady};
            break;
        }
        m_processes[i] = std::make_unique<ChildProcess>(BesideTests(L"storeworker.exe"), arguments);
    }

    ClientFixture& m_client;
    std::wstring m_strMutex;
    std::wstring m_strReady;
    HANDLE m_hReady;
    std::array<std::unique_ptr<ChildProcess>, kCrowd.size()> m_processes;
    Counts m_counts;
};

} // namespace

TEST_CASE_METHOD(ClientFixture, "a crowd of processes, some ended at random, leaves no lock behind and no torn answer",
                 "[state][locks][contention][cores][once]")
{
    wchar_t szSeconds[8] = {};
    GetEnvironmentVariableW(L"VELUI_STRESS_SECONDS", szSeconds, 8);
    const DWORD dwMilliseconds = 1000 * (szSeconds[0] != L'\0' ? _wtoi(szSeconds) : 4);
    {
        ChildProcess first(BesideTests(L"storeworker.exe"), {L"write", L"1", registry.Root()});
        REQUIRE(first.Wait(20000) == 0);
    }
    std::mt19937 random(20261121);
    Crowd crowd(*this);
    const DWORD dwStart = GetTickCount();
    // On a busy machine it may take longer until a holder has had its turn.
    const auto bSeen = [&] { return crowd.SoFar().iHoldsTaken > 0 && crowd.SoFar().iEnded > 10; };
    while (GetTickCount() - dwStart < dwMilliseconds || (!bSeen() && GetTickCount() - dwStart < dwMilliseconds + 60000))
    {
        Sleep(random() % 40);
        crowd.EndHolders();
        crowd.EndOne(random);
        crowd.Renew();
    }
    const Counts counts = crowd.Finish();
    std::printf("contention: %d snapshots read, %d messages added, %d processes ended, %d holders recovered from\n",
                counts.iReads, counts.iAppends, counts.iEnded, counts.iHoldsTaken);
    CHECK(counts.iFailed == 0);
    CHECK(counts.iEnded > 10);
    CHECK(counts.iHoldsTaken > 0);
    CHECK(counts.iReads > 0);

    // Whoever had the lock last, it is to be had again.
    VelUtility::CFileLocker locker(ConfigFile().c_str());
    locker.Lock(20000); // may tell of an abandoned mutex, once
    CHECK(locker.Unlock() != 0);
    CHECK(locker.Lock(0) == 1);
    CHECK(locker.Unlock() != 0);
    // A writer that was ended in the middle leaves a mixed file; the next one makes it whole.
    ChildProcess last(BesideTests(L"storeworker.exe"), {L"write", L"1", registry.Root()});
    CHECK(last.Wait(20000) == 0);
    ChildProcess reader(BesideTests(L"storeworker.exe"), {L"read", L"5", registry.Root()});
    CHECK(reader.Wait(20000) == 0);
}
