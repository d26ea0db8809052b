#pragma once
/// Measuring against a floor: two loops in one run, in interleaved rounds, compared pair by pair.

#include <functional>
#include <string>
#include <vector>

/// One line of the table. Times are nanoseconds of one call.
struct Measurement
{
    std::string strName;
    double dFloor;  ///< median of the floor
    double dOurs;   ///< median of ours
    double dRatio;  ///< median of the rounds' ratios, ours to floor
    double dSpread; ///< half the distance between the ratios' quartiles
};

/// A loop that makes a given number of calls.
using Loop = std::function<void(int iCalls)>;

/// Times both loops in interleaved rounds; which one goes first changes from round to round.
/// @param iCalls  calls in one loop of one round.
/// @param iRounds rounds.
Measurement Measure(const std::string& strName, const Loop& floor, const Loop& ours, int iCalls, int iRounds);

/// Prints the measurements as a table, and as JSON into a file.
void Report(const std::vector<Measurement>& measurements, const std::string& strJsonFile);
