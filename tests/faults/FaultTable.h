#pragma once
/// The table of docs/faults.md: which failures each kind of work reaches. A copy of the document lies beside the test
/// program, and every test of tests/faults/ holds its work against it.

#include <map>
#include <string>

/// How many failures of one function a kind of work reaches, in both rounds together.
struct ReachedFailures
{
    int iCount = 0;
    bool bAtLeast = false; ///< the machine decides the rest: how long its paths are, how many processes it runs
};

/// A kind of work's row, by function.
using FaultRow = std::map<std::string, ReachedFailures>;

/// The whole table, by kind of work. The test fails where the document can't be read or a row is malformed.
const std::map<std::string, FaultRow>& FaultTable();

/// Holds what a kind of work has reached against its row: the same functions, each as often as the row says.
/// @param reached by function; one that was made to fail in vain may stand there with 0.
void CheckFaultRow(const std::string& strWork, const std::map<std::string, int>& reached);

/// Whether some kind of work reaches failures of a function.
bool IsFaultReached(const std::string& strFunction);
