#pragma once
/// The log library's part of a LogConfig.conf: appenders, layouts, categories.

#include "tools/velhost/doctor/Findings.h"
#include "tools/velhost/doctor/LogConfigText.h"

#include <set>
#include <string>

namespace VelHost
{

/// What the library makes of a configuration that it accepts.
struct LogCategories
{
    std::set<std::string> names; ///< all that there will be, without the root
    size_t uiLines = 0;          ///< those that have a line of their own
    int iModulePriority = 0;     ///< the one that holds for the module: its own, or that of the root
};

/// Looks at all keys that the library reads, as it does: in the order of their letters, the first of two equal ones.
/// @param strFile the file's place, for the findings.
LogCategories CheckLogLibrary(const LogConfigText& text, const std::wstring& strFile, Findings& findings);

} // namespace VelHost
