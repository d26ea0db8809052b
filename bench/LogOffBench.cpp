#include "bench/Benches.h"
#include "diag/LogSite.h"

#include <cstdlib>

VELUI_SOURCE_MODULE("Bench");

namespace
{

/// Blocks that the program has asked the C runtime for; operator new asks it too.
size_t g_uiBlocks = 0;

} // namespace

// The linker leads every call of the program and of the libraries in it here (--wrap).
extern "C" {
void* __real_malloc(size_t cb);
void* __real_calloc(size_t uiCount, size_t cb);
void* __real_realloc(void* p, size_t cb);
void* __wrap_malloc(size_t cb)
{
    ++g_uiBlocks;
    return __real_malloc(cb);
}
void* __wrap_calloc(size_t uiCount, size_t cb)
{
    ++g_uiBlocks;
    return __real_calloc(uiCount, cb);
}
void* __wrap_realloc(void* p, size_t cb)
{
    ++g_uiBlocks;
    return __real_realloc(p, cb);
}
}

namespace
{

constexpr Goal kPredicateGoal = OverGoal(2);
constexpr Goal kScopeGoal = OverGoal(5);

void MeasureOff(Results& results, const char* pszMeasure, const Loop& ours, Goal goal)
{
    // The floor is the loop alone.
    results.Measure(pszMeasure, Repeat([] {}), ours, goal);
}

/// The blocks of a thousand calls.
void CountBlocks(Results& results, const char* pszMeasure, const Loop& ours, double dMost)
{
    const size_t uiBefore = g_uiBlocks;
    ours(1000);
    results.AddNumber(pszMeasure, static_cast<double>(g_uiBlocks - uiBefore), PlainGoal("blocks", dMost));
}

} // namespace

void BenchLogOff(Results& results)
{
    const Loop predicate = Repeat([] {
        if (IsErrorEnabled())
        {
            std::abort();
        }
    });
    const Loop line = Repeat([] { LOG_ERROR("GetClientFolder failed."); });
    const Loop result = Repeat([] {
        const int iReturn = 1;
        LOG_RESULT("iReturn", iReturn);
    });
    const Loop scope = Repeat([] { const FunctionScope scope("Bench"); });
    const Loop argument = Repeat([] {
        const int iArgument = 1;
        FunctionScope scope("Bench");
        TRACE_ARGUMENTS(scope, iArgument);
    });
    MeasureOff(results, "logging off: a predicate", predicate, kPredicateGoal);
    MeasureOff(results, "logging off: a predicate and its line", line, kPredicateGoal);
    MeasureOff(results, "logging off: LogParam with its argument's text", result, kPredicateGoal);
    MeasureOff(results, "logging off: a trace scope with its FunctionTrace", scope, kScopeGoal);
    MeasureOff(results, "logging off: the same with an argument's predicate", argument, kScopeGoal);
    CountBlocks(results, "logging off: blocks of 1,000 predicates with lines", line, 0);
    CountBlocks(results, "logging off: blocks of 1,000 scopes with FunctionTrace", argument, 0);
    // Shows that the count sees what it is to see.
    const Loop known = Repeat([] {
        const std::string strText(100, 'x');
        __asm__ volatile("" : : "r"(strText.data()) : "memory");
    });
    CountBlocks(results, "for comparison: blocks of 1,000 long texts", known, kNoLimit);
}
