#pragma once
/// The text of a LogConfig.conf as its two readers take it: log4cpp, and the module for its own keys.

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace VelHost
{

/// A line that sets one of the output switches.
struct SwitchLine
{
    size_t uiLine; ///< from 1
    std::string strKey;
    std::string strCategory; ///< empty when nothing stands behind the switch's name
    bool bRefused;           ///< the key is the name alone, which ends the reading with an exception
    bool bOn;
};

/// A complete filter rule.
struct RuleLines
{
    size_t uiLine; ///< of its last key
    std::string strModule;
    std::string strClass;
    std::string strFunction;
    std::string strPutOutPermission;
};

/// What the readers take of a file.
struct LogConfigText
{
    std::map<std::string, std::string> properties; ///< log4cpp's: the first of two equal keys
    std::vector<SwitchLine> switches;
    std::vector<RuleLines> rules;
    size_t uiKeysLeft = 0;    ///< keys of a rule that is not complete
    size_t uiLastKeyLine = 0; ///< of the last key of any rule
    size_t uiLongLine = 0;    ///< the line at which the module's reading ends, or 0
};

/// @param strBytes the file's bytes, in the system's code page.
LogConfigText ReadLogConfigText(std::string_view strBytes);

/// @return the property, or nothing.
const std::string* FindProperty(const LogConfigText& text, const std::string& strKey);

/// @return a text without blanks and tabs around it.
std::string TrimmedText(std::string_view strText);
/// @return the parts of a text, each trimmed; one at least.
std::vector<std::string> SplitText(std::string_view strText, char chBetween);

} // namespace VelHost
