#include "tests/common/LogLines.h"

#include <boost/algorithm/string/predicate.hpp>

#include <catch2/catch_test_macros.hpp>

#include <regex>

std::vector<std::string> Masked(const LoggingOn& logging)
{
    static const std::regex lineNumber(R"(\(\d+\))");
    std::vector<std::string> masked;
    for (std::string strLine : logging.Lines())
    {
        static const std::string strHead = "[ThreadID:#] ";
        if (strLine.compare(0, strHead.size(), strHead) == 0)
        {
            strLine.erase(0, strHead.size());
        }
        strLine = std::regex_replace(strLine, lineNumber, "(#)", std::regex_constants::format_first_only);
        if (!strLine.empty())
        {
            masked.push_back(strLine);
        }
    }
    return masked;
}

namespace
{

const std::string kModule = "VelUI_dll__";

/// The lines of one function alone, with "> F" in front of what a call of F has left, where that is wanted.
std::vector<std::string> LinesOf(const LoggingOn& logging, const std::string& strFunction, bool bCalls)
{
    std::vector<std::string> own;
    std::vector<std::string> scopes;
    for (const std::string& strLine : Masked(logging))
    {
        const bool bInside = !scopes.empty() && scopes.back() == kModule + strFunction;
        if (boost::ends_with(strLine, " :START......"))
        {
            scopes.push_back(strLine.substr(0, strLine.find(' ')));
            if (bInside && bCalls)
            {
                own.push_back("> " + scopes.back().substr(kModule.size()));
            }
        }
        if (!scopes.empty() && scopes.back() == kModule + strFunction)
        {
            own.push_back(strLine);
        }
        if (!scopes.empty() && boost::ends_with(strLine, " :End  ......"))
        {
            scopes.pop_back();
        }
    }
    return own;
}

} // namespace

std::vector<std::string> OwnLines(const LoggingOn& logging, const std::string& strFunction)
{
    return LinesOf(logging, strFunction, false);
}

std::vector<std::string> Outline(const LoggingOn& logging, const std::string& strFunction)
{
    static const std::regex begin("^(> |(INFO|DEBUG|WARNING|ERROR|FATAL|Param) - )");
    std::vector<std::string> outline;
    for (const std::string& strLine : LinesOf(logging, strFunction, true))
    {
        if (std::regex_search(strLine, begin)) // else the end of a long message, or the function's START or End
        {
            outline.push_back(strLine.substr(0, strLine.find(" = ")));
        }
    }
    return outline;
}

std::vector<std::string> InnerLines(const LoggingOn& logging, const std::string& strFunction)
{
    const std::vector<std::string> own = OwnLines(logging, strFunction);
    REQUIRE(own.size() >= 2);
    return {own.begin() + 1, own.end() - 1};
}

std::vector<std::string> ScopeEvents(const LoggingOn& logging)
{
    std::vector<std::string> events;
    for (const std::string& strLine : Masked(logging))
    {
        const bool bStart = strLine.find(" :START......") != std::string::npos;
        if (bStart || strLine.find(" :End  ......") != std::string::npos)
        {
            events.push_back((bStart ? "+" : "-") + strLine.substr(0, strLine.find(' ')));
        }
    }
    return events;
}
