#include "tests/common/LogLines.h"

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

std::vector<std::string> OwnLines(const LoggingOn& logging, const std::string& strFunction)
{
    std::vector<std::string> own;
    std::vector<std::string> scopes;
    const auto endsWith = [](const std::string& strLine, const char* pszMark) {
        const std::string strMark = pszMark;
        return strLine.size() > strMark.size() &&
               strLine.compare(strLine.size() - strMark.size(), strMark.size(), strMark) == 0;
    };
    for (const std::string& strLine : Masked(logging))
    {
        if (endsWith(strLine, " :START......"))
        {
            scopes.push_back(strLine.substr(0, strLine.find(' ')));
        }
        if (!scopes.empty() && scopes.back() == "VelUI_dll__" + strFunction)
        {
            own.push_back(strLine);
        }
        if (!scopes.empty() && endsWith(strLine, " :End  ......"))
        {
            scopes.pop_back();
        }
    }
    return own;
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
