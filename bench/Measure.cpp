#include "bench/Measure.h"

#include <windows.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace
{

double NanosecondsPerCall(const Loop& loop, int iCalls)
{
    LARGE_INTEGER frequency;
    LARGE_INTEGER start;
    LARGE_INTEGER end;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    loop(iCalls);
    QueryPerformanceCounter(&end);
    return static_cast<double>(end.QuadPart - start.QuadPart) * 1e9 / static_cast<double>(frequency.QuadPart) / iCalls;
}

double Quantile(std::vector<double> values, double dPart)
{
    std::sort(values.begin(), values.end());
    return values[static_cast<size_t>(dPart * static_cast<double>(values.size() - 1) + 0.5)];
}

} // namespace

Measurement Measure(const std::string& strName, const Loop& floor, const Loop& ours, int iCalls, int iRounds)
{
    std::vector<double> floors;
    std::vector<double> oursTimes;
    std::vector<double> ratios;
    floor(iCalls);
    ours(iCalls);
    for (int iRound = 0; iRound < iRounds; ++iRound)
    {
        double dFloor = 0;
        double dOurs = 0;
        if (iRound % 2 == 0)
        {
            dFloor = NanosecondsPerCall(floor, iCalls);
            dOurs = NanosecondsPerCall(ours, iCalls);
        }
        else
        {
            dOurs = NanosecondsPerCall(ours, iCalls);
            dFloor = NanosecondsPerCall(floor, iCalls);
        }
        floors.push_back(dFloor);
        oursTimes.push_back(dOurs);
        ratios.push_back(dFloor > 0 ? dOurs / dFloor : 0);
    }
    return {strName, Quantile(floors, 0.5), Quantile(oursTimes, 0.5), Quantile(ratios, 0.5),
            (Quantile(ratios, 0.75) - Quantile(ratios, 0.25)) / 2};
}

void Report(const std::vector<Measurement>& measurements, const std::string& strJsonFile)
{
    std::printf("%-58s %12s %12s %8s %8s\n", "measure", "floor ns", "ours ns", "ratio", "spread");
    nlohmann::json rows = nlohmann::json::array();
    for (const Measurement& m : measurements)
    {
        std::printf("%-58s %12.1f %12.1f %8.3f %8.3f\n", m.strName.c_str(), m.dFloor, m.dOurs, m.dRatio, m.dSpread);
        rows.push_back({{"measure", m.strName},
                        {"floorNs", m.dFloor},
                        {"oursNs", m.dOurs},
                        {"ratio", m.dRatio},
                        {"spread", m.dSpread}});
    }
    std::ofstream(strJsonFile) << rows.dump(2) << "\n";
    std::printf("written to %s\n", strJsonFile.c_str());
}
