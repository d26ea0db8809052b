#pragma once
/// Measuring against a floor: two loops in one run, in interleaved rounds, compared pair by pair.

#include "bench/Clock.h"

#include <functional>
#include <string>
#include <vector>

/// What a row is judged by, and how far it may go.
struct Goal
{
    enum class Figure
    {
        Ratio, ///< ours to floor
        Over,  ///< nanoseconds of ours beyond the floor
        Plain  ///< a number that was not timed
    };
    Figure figure;
    double dMost;                    ///< the figure's limit; kNoLimit when the row is only told
    const char* pszUnit;             ///< of the figure
    const char* pszTimesUnit = "ns"; ///< of the floor's and our times
};

inline constexpr double kNoLimit = -1;
/// At most so many times the floor.
inline constexpr Goal RatioGoal(double dMost)
{
    return {Goal::Figure::Ratio, dMost, "x"};
}
/// At most so many nanoseconds more than the floor.
inline constexpr Goal OverGoal(double dMost)
{
    return {Goal::Figure::Over, dMost, "ns over"};
}
/// A number that is told.
inline constexpr Goal PlainGoal(const char* pszUnit, double dMost = kNoLimit)
{
    return {Goal::Figure::Plain, dMost, pszUnit};
}

/// One line of the results. Times are nanoseconds of one call, but where the goal names another unit.
struct Row
{
    std::string strMeasure;
    double dFloor;  ///< median of the floor; 0 for none
    double dOurs;   ///< median of ours; 0 for none
    double dFigure; ///< median of the rounds' figures
    double dSpread; ///< half the distance between the figures' quartiles
    Goal goal;

    bool HasGoal() const { return goal.dMost != kNoLimit; }
    bool MeetsGoal() const { return dFigure <= goal.dMost; }
};

/// A loop that makes a given number of calls.
using Loop = std::function<void(int iCalls)>;

/// Makes the compiler do all of a loop's work in every turn.
inline void KeepLoop()
{
    __asm__ volatile("" ::: "memory");
}

/// The loop over one call, which is compiled into it.
template <typename Call>
Loop Repeat(Call call)
{
    return [call](int iCalls) {
        for (int i = 0; i < iCalls; ++i)
        {
            call();
            KeepLoop();
        }
    };
}

/// @param dPart 0 for the least, 0.5 for the median, 1 for the most; values must not be empty.
double Quantile(std::vector<double> values, double dPart);

/// The figures of pairs of times, one from each round, as a row.
Row RowOfPairs(const std::string& strMeasure, const std::vector<double>& floors, const std::vector<double>& ours,
               Goal goal);

/// The rows of a run, printed as a table.
class Results
{
public:
    /// Times both loops in interleaved rounds and adds a row; which one goes first changes from round to round. The
    /// calls of a loop and the number of rounds follow from what one call takes.
    /// @return the row.
    Row Measure(const std::string& strMeasure, const Loop& floor, const Loop& ours, Goal goal);
    void Add(const Row& row);
    /// Adds a number that was not timed.
    void AddNumber(const std::string& strMeasure, double dNumber, Goal goal);
    /// Writes the rows as JSON, and tells how many goals are missed.
    void Report(const std::string& strJsonFile) const;

private:
    std::vector<Row> m_rows;
};
