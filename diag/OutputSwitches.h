#pragma once
/// The output switches: per category name, what is written beyond what the category's priority says.
/// Every function here may be called on any thread; each holds the one lock for its whole run.

#include <string>

struct OutputSwitches
{
    bool outputParam = false;          ///< LogParam writes
    bool outputFunBeginInfo = false;   ///< the START and End lines are written
    bool outputNTEventLog = false;     ///< fatal messages also go to the NT event log
    bool outputNDCFullmessage = false; ///< debug, error and fatal messages are followed by the call stack
};
static_assert(sizeof(OutputSwitches) == 4, "four switches of one byte each");

/// A switch's name, as a configuration file spells it, and its place in the record.
struct OutputSwitchName
{
    const char* pszName;
    bool OutputSwitches::*pSwitch;
};
inline constexpr OutputSwitchName kOutputSwitchNames[] = {
    {"OutputParam", &OutputSwitches::outputParam},
    {"OutputFunBeginInfo", &OutputSwitches::outputFunBeginInfo},
    {"OutputNTEventLog", &OutputSwitches::outputNTEventLog},
    {"OutputNDCFullmessage", &OutputSwitches::outputNDCFullmessage},
};

/// Sets one switch. A category that has no record yet gets one with all switches off, also when strSwitch is none of
/// the four names and nothing is set.
/// @param strCategory compared byte by byte.
void SetOutputSwitch(const std::string& strCategory, const std::string& strSwitch, bool bOn);

/// @param switches [out] the category's switches; unchanged when it has none.
/// @return 0, or -1 when the category has no record, which counts as all switches off.
int GetOutputSwitches(const std::string& strCategory, OutputSwitches& switches);

/// Forgets one category, or all.
void RemoveOutputSwitches(const std::string& strCategory);
void ClearOutputSwitches();
