#include "bench/Benches.h"
#include "bench/floors/CapsFloor.h"
#include "bench/floors/StoreFloor.h"

#include <array>
#include <vector>

namespace
{

/// Within 10 % of the floor's own scaling.
constexpr Goal kGoal = {Goal::Figure::Ratio, 1.10, "x", "x"};
constexpr int kRounds = 101;
constexpr double kRunNs = 20e6; ///< length of one run on one thread

int Processors()
{
    SYSTEM_INFO info = {};
    GetSystemInfo(&info);
    return static_cast<int>(info.dwNumberOfProcessors);
}

/// One thread's share of a run, behind a gate that lets all threads go at once.
struct Share
{
    const Loop* pLoop;
    int iCalls;
    HANDLE hGate;
    DWORD_PTR ulProcessor; ///< the mask of the one processor that the thread runs on
};

DWORD WINAPI RunShare(void* pShare)
{
    const Share& share = *static_cast<const Share*>(pShare);
    SetThreadAffinityMask(GetCurrentThread(), share.ulProcessor);
    WaitForSingleObject(share.hGate, INFINITE);
    (*share.pLoop)(share.iCalls);
    return 0;
}

/// Nanoseconds from the gate's opening to the end of the last of so many threads.
/// @param iCalls calls of all threads together.
double TimeThreads(const Loop& loop, int iCalls, int iThreads)
{
    const HANDLE hGate = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::vector<Share> shares;
    for (int i = 0; i < iThreads; ++i)
    {
        shares.push_back({&loop, iCalls / iThreads, hGate, DWORD_PTR{1} << (i % Processors())});
    }
    std::vector<HANDLE> threads;
    for (Share& share : shares)
    {
        threads.push_back(CreateThread(nullptr, 0, &RunShare, &share, 0, nullptr));
    }
    const double dStart = NowNanoseconds();
    SetEvent(hGate);
    WaitForMultipleObjects(static_cast<DWORD>(threads.size()), threads.data(), TRUE, INFINITE);
    const double dTime = NowNanoseconds() - dStart;
    for (const HANDLE hThread : threads)
    {
        CloseHandle(hThread);
    }
    CloseHandle(hGate);
    return dTime;
}

/// How many times as long the same calls take on so many threads as on one, ours to floor.
void Scale(Results& results, const std::string& strQuery, int iThreads, const Loop& floor, const Loop& ours)
{
    const int iCalls = (static_cast<int>(kRunNs / (TimeThreads(floor, 100, 1) / 100)) | 7) + 1; // a multiple of 8
    std::vector<double> floors;
    std::vector<double> oursScales;
    // Each side on one thread and on many; the order goes round.
    const std::array<std::pair<const Loop*, int>, 4> runs = {
        {{&floor, 1}, {&ours, 1}, {&floor, iThreads}, {&ours, iThreads}}};
    for (int iRound = 0; iRound < kRounds; ++iRound)
    {
        std::array<double, 4> times = {};
        for (size_t i = 0; i < runs.size(); ++i)
        {
            const size_t uiRun = (i + static_cast<size_t>(iRound)) % runs.size();
            times[uiRun] = TimeThreads(*runs[uiRun].first, iCalls, runs[uiRun].second);
        }
        floors.push_back(times[2] / times[0]);
        oursScales.push_back(times[3] / times[1]);
    }
    results.Add(RowOfPairs(strQuery + ", time on " + std::to_string(iThreads) + " threads to time on one", floors,
                           oursScales, kGoal));
}

/// All processors for this process for the length of a scope; Wine's server stays where it is.
class AllProcessors
{
public:
    AllProcessors()
    {
        DWORD_PTR ulSystem = 0;
        GetProcessAffinityMask(GetCurrentProcess(), &m_ulBefore, &ulSystem);
        SetProcessAffinityMask(GetCurrentProcess(), ulSystem);
    }
    ~AllProcessors() { SetProcessAffinityMask(GetCurrentProcess(), m_ulBefore); }
    AllProcessors(const AllProcessors&) = delete;
    AllProcessors& operator=(const AllProcessors&) = delete;

private:
    DWORD_PTR m_ulBefore = 0;
};

} // namespace

void BenchThreads(Results& results, const BenchClient& client, const BenchModule& module, DWORD dwClientPid)
{
    client.UseSample();
    const AllProcessors processors;
    const auto query = [&](WORD iDevCap) {
        return Repeat([pfnCaps = module.pfnCaps, iDevCap] { pfnCaps(nullptr, nullptr, iDevCap, nullptr, nullptr); });
    };
    const Loop floorConstant = Repeat([=] { FloorClientCheck(dwClientPid); });
    const Loop floorNumber = Repeat([=] {
        FloorClientCheck(dwClientPid);
        FloorNumber(L"Copies");
    });
    for (const int iThreads : {2, 8})
    {
        Scale(results, "constant code (DC_SIZE)", iThreads, floorConstant, query(DC_SIZE));
        Scale(results, "snapshot code (DC_COPIES)", iThreads, floorNumber, query(DC_COPIES));
    }
}
