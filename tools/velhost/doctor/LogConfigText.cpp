#include "tools/velhost/doctor/LogConfigText.h"

#include "diag/OutputSwitches.h"

#include <algorithm>
#include <cstdlib>

namespace VelHost
{
namespace
{

/// The module's own reader stops at a line of so many characters; log4cpp reads on.
constexpr size_t kTooLong = 1024;
constexpr size_t kKeysOfRule = 4;

/// Calls for each line, without its line end, with its number from 1.
template <typename Call>
void ForEachLine(std::string_view strBytes, const Call& call)
{
    for (size_t uiLine = 1; !strBytes.empty(); ++uiLine)
    {
        const size_t uiEnd = std::min(strBytes.find('\n'), strBytes.size());
        std::string_view strLine = strBytes.substr(0, uiEnd);
        if (!strLine.empty() && strLine.back() == '\r')
        {
            strLine.remove_suffix(1);
        }
        call(uiLine, strLine);
        strBytes.remove_prefix(std::min(uiEnd + 1, strBytes.size()));
    }
}

/// Puts environment variables, and properties that stand above, in the place of "${name}".
std::string Substituted(const std::string& strValue, const std::map<std::string, std::string>& properties)
{
    std::string strResult;
    size_t uiDone = 0;
    for (size_t uiOpen = strValue.find("${"); uiOpen != std::string::npos; uiOpen = strValue.find("${", uiDone))
    {
        const size_t uiClose = strValue.find('}', uiOpen);
        if (uiClose == std::string::npos)
        {
            break;
        }
        strResult += strValue.substr(uiDone, uiOpen - uiDone);
        const std::string strName = strValue.substr(uiOpen + 2, uiClose - uiOpen - 2);
        const char* const pszVariable = std::getenv(strName.c_str());
        const auto property = properties.find(strName);
        strResult += pszVariable != nullptr ? pszVariable : property != properties.end() ? property->second : "";
        uiDone = uiClose + 1;
    }
    return strResult + strValue.substr(uiDone);
}

/// log4cpp's view of a line.
void TakeProperty(std::string_view strCommand, std::map<std::string, std::string>& properties)
{
    const size_t uiEquals = strCommand.find('=');
    std::string strKey = TrimmedText(strCommand.substr(0, uiEquals));
    const std::string strFirst = strKey.substr(0, strKey.find('.'));
    if (strFirst == "log4j" || strFirst == "log4cpp")
    {
        strKey.erase(0, strFirst.size() + 1);
    }
    properties.emplace(strKey, Substituted(TrimmedText(strCommand.substr(uiEquals + 1)), properties));
}

std::string WithoutBlanks(std::string strText)
{
    strText.erase(std::remove(strText.begin(), strText.end(), ' '), strText.end());
    return strText;
}

/// The module's reader: switches and rules.
class OwnReader
{
public:
    explicit OwnReader(LogConfigText& text) : m_text(text) {}

    void Read(size_t uiLine, const std::string& strKey, const std::string& strValue)
    {
        for (const OutputSwitchName& name : kOutputSwitchNames)
        {
            ReadSwitch(uiLine, name.pszName, strKey, strValue);
        }
        if (strKey.find("filter") != std::string::npos || strValue.find("filter") != std::string::npos)
        {
            ReadRuleKey(uiLine, strKey, strValue);
        }
    }

private:
    void ReadSwitch(size_t uiLine, const std::string& strSwitch, const std::string& strKey, const std::string& strValue)
    {
        if (strKey.find(strSwitch) == std::string::npos)
        {
            return;
        }
        const std::string strPlain = WithoutBlanks(strKey);
        std::string strOn = WithoutBlanks(strValue);
        std::transform(strOn.begin(), strOn.end(), strOn.begin(),
                       [](char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c); });
        const bool bRefused = strPlain.size() == strSwitch.size();
        m_text.switches.push_back({uiLine, TrimmedText(strKey),
                                   bRefused ? std::string() : strPlain.substr(strSwitch.size() + 1), bRefused,
                                   strOn == "true"});
    }

    void ReadRuleKey(size_t uiLine, std::string strKey, const std::string& strValue)
    {
        if (strKey.compare(0, strKey.find('.'), "filter") == 0 && strKey.find('.') != std::string::npos)
        {
            strKey.erase(0, strKey.find('.') + 1);
        }
        static constexpr struct
        {
            const char* pszKey;
            std::string RuleLines::*pText;
        } kRuleKeys[] = {
            {"module", &RuleLines::strModule},
            {"class", &RuleLines::strClass},
            {"function", &RuleLines::strFunction},
            {"putoutpermission", &RuleLines::strPutOutPermission},
        };
        for (const auto& key : kRuleKeys)
        {
            if (strKey == key.pszKey)
            {
                m_rule.*key.pText = strValue;
                m_rule.uiLine = m_text.uiLastKeyLine = uiLine;
                ++m_text.uiKeysLeft;
            }
        }
        if (m_text.uiKeysLeft == kKeysOfRule)
        {
            m_text.rules.push_back(m_rule); // what a rule does not set it takes from the one before
            m_text.uiKeysLeft = 0;
        }
    }

    LogConfigText& m_text;
    RuleLines m_rule{};
};

} // namespace

LogConfigText ReadLogConfigText(std::string_view strBytes)
{
    LogConfigText text;
    OwnReader own(text);
    ForEachLine(strBytes, [&](size_t uiLine, std::string_view strLine) {
        if (text.uiLongLine == 0 && strLine.size() >= kTooLong)
        {
            text.uiLongLine = uiLine;
        }
        const std::string_view strCommand = strLine.substr(0, strLine.find('#'));
        const size_t uiEquals = strCommand.find('=');
        if (uiEquals == std::string_view::npos)
        {
            return;
        }
        TakeProperty(strCommand, text.properties);
        if (text.uiLongLine == 0)
        {
            own.Read(uiLine, std::string(strCommand.substr(0, uiEquals)), std::string(strCommand.substr(uiEquals + 1)));
        }
    });
    return text;
}

const std::string* FindProperty(const LogConfigText& text, const std::string& strKey)
{
    const auto found = text.properties.find(strKey);
    return found == text.properties.end() ? nullptr : &found->second;
}

std::string TrimmedText(std::string_view strText)
{
    constexpr char kBlanks[] = " \t";
    const size_t uiFirst = strText.find_first_not_of(kBlanks);
    return uiFirst == std::string_view::npos
               ? std::string()
               : std::string(strText.substr(uiFirst, strText.find_last_not_of(kBlanks) - uiFirst + 1));
}

std::vector<std::string> SplitText(std::string_view strText, char chBetween)
{
    std::vector<std::string> parts;
    for (size_t uiStart = 0; uiStart <= strText.size();)
    {
        const size_t uiEnd = std::min(strText.find(chBetween, uiStart), strText.size());
        parts.push_back(TrimmedText(strText.substr(uiStart, uiEnd - uiStart)));
        uiStart = uiEnd + 1;
    }
    return parts;
}

} // namespace VelHost
