#include "bench/Benches.h"
#include "bench/fresh/Report.h"
#include "tools/velhost/host/Files.h"

#include <stdexcept>

namespace
{

/// Pairs of processes for each row.
constexpr int kPairs = 31;

/// The memory that a fresh process tells its figures through.
class ReportMemory
{
public:
    ReportMemory()
        : strName(L"VelUIBench-" + std::to_wstring(GetCurrentProcessId())),
          m_hMapping(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(FreshReport),
                                        strName.c_str())),
          m_pReport(static_cast<FreshReport*>(MapViewOfFile(m_hMapping, FILE_MAP_WRITE, 0, 0, sizeof(FreshReport))))
    {}
    ~ReportMemory()
    {
        UnmapViewOfFile(m_pReport);
        CloseHandle(m_hMapping);
    }
    ReportMemory(const ReportMemory&) = delete;
    ReportMemory& operator=(const ReportMemory&) = delete;

    FreshReport& Get() const { return *m_pReport; }

    const std::wstring strName;

private:
    HANDLE m_hMapping;
    FreshReport* m_pReport;
};

/// Starts processes of their own for one subject each.
class FreshProcesses
{
public:
    explicit FreshProcesses(const BenchClient& client) : m_strView(client.registry.Root()) {}

    /// Runs a subject in a process of its own, to its end.
    FreshReport Run(const wchar_t* pszProgram, const wchar_t* pszSubject, const std::wstring& strObject) const
    {
        m_memory.Get() = {};
        const std::wstring strProgram = VelHost::BesideProgram(pszProgram);
        std::wstring strLine = L"\"" + strProgram + L"\" \"" + m_memory.strName + L"\" \"" + m_strView + L"\" " +
                               pszSubject + L" \"" + strObject + L"\"";
        STARTUPINFOW startup = {};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION process = {};
        if (!CreateProcessW(strProgram.c_str(), strLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                            &process))
        {
            throw std::runtime_error("a fresh process can't be started");
        }
        WaitForSingleObject(process.hProcess, INFINITE);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
        if (m_memory.Get().dNanoseconds == 0)
        {
            throw std::runtime_error("a fresh process did not do its work");
        }
        return m_memory.Get();
    }

private:
    ReportMemory m_memory;
    std::wstring m_strView;
};

/// The figures of a row's pairs.
struct Pairs
{
    std::vector<double> floorTimes;
    std::vector<double> oursTimes;
    std::vector<double> floorKiB;
    std::vector<double> oursKiB;
};

/// Runs both sides, each in fresh processes, in turn; which one goes first changes from pair to pair.
template <typename Floor, typename Ours>
Pairs RunPairs(Floor floor, Ours ours)
{
    floor(); // what the machine reads from its disk for the first of all
    ours();
    Pairs pairs;
    for (int iPair = 0; iPair < kPairs; ++iPair)
    {
        const bool bFloorFirst = iPair % 2 == 0;
        FreshReport floorReport = bFloorFirst ? floor() : FreshReport{};
        const FreshReport oursReport = ours();
        floorReport = bFloorFirst ? floorReport : floor();
        pairs.floorTimes.push_back(floorReport.dNanoseconds);
        pairs.oursTimes.push_back(oursReport.dNanoseconds);
        pairs.floorKiB.push_back(floorReport.dPrivateKiB);
        pairs.oursKiB.push_back(oursReport.dPrivateKiB);
    }
    return pairs;
}

} // namespace

void BenchFirst(Results& results, const BenchClient& client)
{
    const std::wstring strOurs = VelHost::BesideProgram(L"VelUI.dll");
    const std::wstring strEmpty = VelHost::BesideProgram(L"EmptyModule.dll");
    const FreshProcesses fresh(client);
    const Pairs load = RunPairs([&] { return fresh.Run(L"bareprocess.exe", L"load", strEmpty); },
                                [&] { return fresh.Run(L"bareprocess.exe", L"load", strOurs); });
    results.Add(RowOfPairs("fresh process: first load", load.floorTimes, load.oursTimes, RatioGoal(1.3)));

    const std::wstring strLooks = VelHost::BesideProgram(L"EmptyThatLooks.dll");
    const Pairs look = RunPairs([&] { return fresh.Run(L"bareprocess.exe", L"load", strEmpty); },
                                [&] { return fresh.Run(L"bareprocess.exe", L"load", strLooks); });
    results.Add(RowOfPairs("of which the look for the log's configuration: an empty module that looks", look.floorTimes,
                           look.oursTimes, RatioGoal(kNoLimit)));

    const std::wstring strLog4cpp = VelHost::BesideProgram(L"EmptyWithLog4cpp.dll");
    const Pairs libraries = RunPairs([&] { return fresh.Run(L"bareprocess.exe", L"load", strEmpty); },
                                     [&] { return fresh.Run(L"bareprocess.exe", L"load", strLog4cpp); });
    results.Add(RowOfPairs("of which log4cpp and the C++ run-time: an empty module with them", libraries.floorTimes,
                           libraries.oursTimes, RatioGoal(kNoLimit)));

    const ResidentStandIn resident(client);
    const Pairs query = RunPairs([&] { return fresh.Run(L"bareprocess.exe", L"contract", client.ResidentPath()); },
                                 [&] { return fresh.Run(L"bareprocess.exe", L"query", strOurs); });
    results.Add(RowOfPairs("fresh process: first query (DC_SIZE)", query.floorTimes, query.oursTimes, RatioGoal(1.2)));
    Goal memory = RatioGoal(kNoLimit);
    memory.pszTimesUnit = "KiB";
    results.Add(RowOfPairs("fresh process: own memory behind its first query", query.floorKiB, query.oursKiB, memory));

    client.UseSample();
    const Pairs sheet = RunPairs([&] { return fresh.Run(L"sheetprocess.exe", L"bare", strOurs); },
                                 [&] { return fresh.Run(L"sheetprocess.exe", L"document", strOurs); });
    results.Add(RowOfPairs("fresh process: first document sheet, INIT to visible page", sheet.floorTimes,
                           sheet.oursTimes, RatioGoal(1.25)));
}
