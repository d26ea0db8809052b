#pragma once
/// The client's LogConfig.conf, and the log that it asks for.

#include "tools/velhost/doctor/Findings.h"

#include <string>

namespace VelHost
{

const std::vector<FindingKind>& LogConfigKinds();

/// Looks at LogConfig.conf in the client's folder and at the log files that it names; tells what the log costs. Reads
/// only: a log file is opened, where there is one, and never made. Without the file there is no log, and no finding.
/// @param strInstallDir full path.
void CheckLogConfig(const std::wstring& strInstallDir, Findings& findings);

/// What a log costs, as docs/performance.md has measured it.
struct LogCost
{
    const char* pszMeasure;     ///< the row there
    const char* pszNanoseconds; ///< of ours
    const char* pszFactor;      ///< to the bare library
};
inline constexpr LogCost kLineCost = {"logging on, file: debug line with words", "16128.3", "1.169"};
inline constexpr LogCost kTracePairCost = {"logging on, file: trace pair", "30838.6", "1.063"};

} // namespace VelHost
