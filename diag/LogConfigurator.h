#pragma once
/// LogConfigurator: reads from the log configuration the keys that log4cpp does not know.

#include "diag/LogFilter.h"

#include <iosfwd>
#include <string>

/// Reads the output switches and the filter rules. log4cpp has read the same file before; each reader skips the other's
/// keys. The keys, one to a line, "#" opening a comment:
///   OutputParam.<category>=true      and likewise for the other switches; any value but "true" switches off
///   filter.module=...                these four, in any order, make a rule; what a rule does not set
///   filter.class=...                 it takes from the rule before
///   filter.function=...
///   filter.putoutpermission=yes|no
class LogConfigurator
{
public:
    virtual ~LogConfigurator() = default;

    /// Sets the output switches and builds the filter chain. A line that means nothing is skipped; a line of 1024
    /// characters or more ends the reading.
    /// @param strFileName the file's full name; one that can't be read counts as empty and is told on standard output.
    /// Throws std::out_of_range on a switch name with nothing behind it.
    void configure(const std::string& strFileName);

    /// The first rule, or null. The chain outlives this object and is never freed.
    LogFilter* getFilter() const noexcept { return m_pFilter; }

private:
    /// The four strings of the rule being read.
    struct Rule
    {
        std::string strModule;
        std::string strClass;
        std::string strFunction;
        std::string strPutOutPermission;
        int iKeysSeen = 0;
    };

    void ReadLines(std::istream& lines);
    static void ApplySwitch(const char* pszSwitch, std::string strKey, std::string strValue);
    void ApplyFilterKey(Rule& rule, std::string strKey, const std::string& strValue);
    void AddFilter(const Rule& rule);

    [[maybe_unused]] bool m_bOptions[3] =
        {}; // Required: three options that nothing reads, kept for the configurator's layout.
    LogFilter* m_pFilter = nullptr;
};
