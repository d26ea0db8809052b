#include "bench/Measure.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>

namespace
{

/// A loop is long enough for the clock and short enough to fall between two interruptions, mostly.
constexpr double kLoopNs = 1e6;
constexpr double kMostCalls = 1e6;
/// A row takes so long, but for its least and most rounds.
constexpr double kRowNs = 1.5e9;
constexpr double kFewestRounds = 21;
constexpr double kMostRounds = 301;

double NanosecondsPerCall(const Loop& loop, int iCalls)
{
    const double dStart = NowNanoseconds();
    loop(iCalls);
    return (NowNanoseconds() - dStart) / iCalls;
}

/// Calls that make a loop of the wanted length. Warms up what the call needs.
int CallsOfLoop(const Loop& loop)
{
    int iCalls = 1;
    double dCall = NanosecondsPerCall(loop, iCalls);
    while (dCall * iCalls < kLoopNs / 10 && iCalls < kMostCalls)
    {
        iCalls *= 10;
        dCall = NanosecondsPerCall(loop, iCalls);
    }
    return static_cast<int>(std::clamp(kLoopNs / std::max(dCall, 0.01), 1.0, kMostCalls));
}

double FigureOf(double dFloor, double dOurs, Goal goal)
{
    return goal.figure == Goal::Figure::Over ? dOurs - dFloor : dOurs / dFloor;
}

const char* Verdict(const Row& row)
{
    if (!row.HasGoal())
    {
        return "";
    }
    return row.MeetsGoal() ? "met" : "MISSED";
}

void PrintHeading()
{
    std::printf("%-62s %13s %13s %9s %-7s %7s %6s\n", "measure", "floor", "ours", "figure", "", "spread", "goal");
}

void PrintTime(double dTime, const char* pszUnit)
{
    if (dTime > 0)
    {
        std::printf(" %10.*f %-2s", pszUnit[0] == 'x' ? 3 : 1, dTime, pszUnit);
    }
    else
    {
        std::printf(" %13s", "");
    }
}

void PrintRow(const Row& row)
{
    std::printf("%-62s", row.strMeasure.c_str());
    PrintTime(row.dFloor, row.goal.pszTimesUnit);
    PrintTime(row.dOurs, row.goal.pszTimesUnit);
    const int iDigits = row.goal.figure == Goal::Figure::Ratio ? 3 : 1;
    std::printf(" %9.*f %-7s %7.*f", iDigits, row.dFigure, row.goal.pszUnit, iDigits, row.dSpread);
    if (row.HasGoal())
    {
        std::printf(" %6.*f %s", row.goal.figure == Goal::Figure::Ratio ? 2 : 0, row.goal.dMost, Verdict(row));
    }
    std::printf("\n");
    std::fflush(stdout);
}

} // namespace

double Quantile(std::vector<double> values, double dPart)
{
    std::sort(values.begin(), values.end());
    return values[static_cast<size_t>(dPart * static_cast<double>(values.size() - 1) + 0.5)];
}

Row RowOfPairs(const std::string& strMeasure, const std::vector<double>& floors, const std::vector<double>& ours,
               Goal goal)
{
    std::vector<double> figures;
    for (size_t i = 0; i < floors.size(); ++i)
    {
        figures.push_back(FigureOf(floors[i], ours[i], goal));
    }
    return {strMeasure,
            Quantile(floors, 0.5),
            Quantile(ours, 0.5),
            Quantile(figures, 0.5),
            (Quantile(figures, 0.75) - Quantile(figures, 0.25)) / 2,
            goal};
}

Row Results::Measure(const std::string& strMeasure, const Loop& floor, const Loop& ours, Goal goal)
{
    const int iCalls = std::min(CallsOfLoop(floor), CallsOfLoop(ours));
    const double dPair = (NanosecondsPerCall(floor, iCalls) + NanosecondsPerCall(ours, iCalls)) * iCalls;
    const auto iRounds = static_cast<int>(std::clamp(kRowNs / dPair, kFewestRounds, kMostRounds)) | 1;
    std::vector<double> floors;
    std::vector<double> oursTimes;
    for (int iRound = 0; iRound < iRounds; ++iRound)
    {
        if (iRound % 2 == 0)
        {
            floors.push_back(NanosecondsPerCall(floor, iCalls));
            oursTimes.push_back(NanosecondsPerCall(ours, iCalls));
        }
        else
        {
            oursTimes.push_back(NanosecondsPerCall(ours, iCalls));
            floors.push_back(NanosecondsPerCall(floor, iCalls));
        }
    }
    Add(RowOfPairs(strMeasure, floors, oursTimes, goal));
    return m_rows.back();
}

void Results::Add(const Row& row)
{
    if (m_rows.empty())
    {
        PrintHeading();
    }
    m_rows.push_back(row);
    PrintRow(row);
}

void Results::AddNumber(const std::string& strMeasure, double dNumber, Goal goal)
{
    Add({strMeasure, 0, 0, dNumber, 0, goal});
}

void Results::Report(const std::string& strJsonFile) const
{
    nlohmann::json rows = nlohmann::json::array();
    int iGoals = 0;
    int iMissed = 0;
    for (const Row& row : m_rows)
    {
        nlohmann::json json = {{"measure", row.strMeasure}, {"floorNs", row.dFloor},    {"oursNs", row.dOurs},
                               {"figure", row.dFigure},     {"unit", row.goal.pszUnit}, {"spread", row.dSpread}};
        if (row.HasGoal())
        {
            json["goal"] = row.goal.dMost;
            json["met"] = row.MeetsGoal();
            ++iGoals;
            iMissed += row.MeetsGoal() ? 0 : 1;
        }
        rows.push_back(json);
    }
    std::ofstream(strJsonFile) << rows.dump(2) << "\n";
    std::printf("%d of %d goals are met; written to %s\n", iGoals - iMissed, iGoals, strJsonFile.c_str());
}
