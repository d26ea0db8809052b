#include "diag/LogConfigurator.h"

#include "diag/OutputSwitches.h"

#include <algorithm>
#include <boost/algorithm/string/erase.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <fstream>
#include <iostream>
#include <locale>
#include <memory>

namespace
{

/// Characters of a line's buffer, the terminator among them.
constexpr int kLineChars = 1024;
/// A rule is complete after so many lines with one of its keys.
constexpr int kKeysOfRule = 4;

} // namespace

void LogConfigurator::configure(const std::string& strFileName)
{
    std::ifstream file(strFileName);
    if (!file.good())
    {
        std::cout << "Config File" << strFileName << "does not exist or is unreadable"
                  << "\n";
    }
    ReadLines(file);
}

void LogConfigurator::ReadLines(std::istream& lines)
{
    Rule rule;
    char szLine[kLineChars];
    // Required: a line that does not fit sets the stream's failure, and so ends the reading. What stands behind it has
    // never been in force.
    while (lines.getline(szLine, kLineChars))
    {
        std::string strLine = szLine;
        strLine.resize(std::min(strLine.find('#'), strLine.size()));
        const size_t uiEquals = strLine.find('=');
        if (uiEquals == std::string::npos)
        {
            continue;
        }
        const std::string strKey = strLine.substr(0, uiEquals);
        const std::string strValue = strLine.substr(uiEquals + 1);
        for (const OutputSwitchName& name : kOutputSwitchNames)
        {
            ApplySwitch(name.pszName, strKey, strValue);
        }
        // Required: the word may stand anywhere, in the value too, so that "module=myfilter" counts as a rule's key;
        // a configuration with such a line must not change its meaning.
        if (strLine.find("filter") != std::string::npos)
        {
            ApplyFilterKey(rule, strKey, strValue);
        }
    }
}

void LogConfigurator::ApplySwitch(const char* pszSwitch, std::string strKey, std::string strValue)
{
    const std::string strSwitch = pszSwitch;
    if (strKey.find(strSwitch) == std::string::npos)
    {
        return;
    }
    boost::erase_all(strKey, " ");
    boost::erase_all(strValue, " ");
    const bool bOn = boost::iequals(strValue, "true", std::locale::classic()); // A to Z alone have small letters
    // Required: the category is what follows the name's length and one more character, whatever that character is. A
    // key of the name alone raises out_of_range, which turns logging off for the whole run.
    SetOutputSwitch(strKey.substr(strSwitch.size() + 1), strSwitch, bOn);
}

void LogConfigurator::ApplyFilterKey(Rule& rule, std::string strKey, const std::string& strValue)
{
    const size_t uiPoint = strKey.find('.');
    // Required: the prefix may be missing; a configuration without it must not change its meaning.
    if (uiPoint != std::string::npos && strKey.compare(0, uiPoint, "filter") == 0)
    {
        strKey.erase(0, uiPoint + 1);
    }
    static constexpr struct
    {
        const char* pszKey;
        std::string Rule::*pText;
    } kRuleKeys[] = {
        {"module", &Rule::strModule},
        {"class", &Rule::strClass},
        {"function", &Rule::strFunction},
        {"putoutpermission", &Rule::strPutOutPermission},
    };
    for (const auto& key : kRuleKeys)
    {
        if (strKey == key.pszKey)
        {
            rule.*key.pText = strValue;
            ++rule.iKeysSeen;
        }
    }
    // Required: lines are counted, not different keys, and the strings stay for the next rule, so that it need only say
    // what is different.
    if (rule.iKeysSeen == kKeysOfRule)
    {
        AddFilter(rule);
        rule.iKeysSeen = 0;
    }
}

void LogConfigurator::AddFilter(const Rule& rule)
{
    auto pFilter = std::make_unique<LogFilter>();
    pFilter->setModule(rule.strModule);
    pFilter->setClass(rule.strClass);
    pFilter->setFunction(rule.strFunction);
    pFilter->setPutOutPermission(rule.strPutOutPermission);
    if (m_pFilter == nullptr)
    {
        m_pFilter = pFilter.release();
    }
    else
    {
        m_pFilter->appendChainedFilter(pFilter.release());
    }
}
