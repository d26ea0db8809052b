#include "tools/velhost/doctor/LogConfigCheck.h"

#include "diag/LogRules.h"
#include "tools/velhost/doctor/LogConfigText.h"
#include "tools/velhost/doctor/LogLibraryCheck.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/install/LogSetup.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

#include <windows.h>

#include <log4cpp/Priority.hh>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <utility>

namespace VelHost
{
namespace
{

constexpr char kArea[] = "LogConfig.conf";

/// Far more than any configuration has; each process that loads the module reads it twice.
constexpr LONGLONG kMostBytes = 1024 * 1024;

/// The findings in front of this one end a process or leave it without a log.
constexpr char kFirstWithLog[] = "LOG16";

/// The keys that the module reads itself: switches and rules.
class OwnKeysChecker
{
public:
    OwnKeysChecker(const LogConfigText& text, const LogCategories& categories, std::wstring strFile, Findings& findings)
        : m_text(text), m_categories(categories), m_strFile(std::move(strFile)), m_findings(findings)
    {}

    void Check()
    {
        CheckSwitches();
        CheckRules();
        if (m_text.uiLongLine != 0)
        {
            Tell("LOG24", m_text.uiLongLine, L"switches and rules from here on are not read");
        }
    }

private:
    void Tell(const char* pszCode, size_t uiLine, std::wstring strDetail)
    {
        m_findings.Add(pszCode, m_strFile + L" " + Line(uiLine), std::move(strDetail));
    }
    static std::wstring Line(size_t uiLine) { return L"line " + std::to_wstring(uiLine); }

    void CheckSwitches()
    {
        for (const SwitchLine& line : m_text.switches)
        {
            if (line.bRefused)
            {
                Tell("LOG15", line.uiLine, FromCodePage(line.strKey));
            }
            else if (m_categories.names.count(line.strCategory) == 0)
            {
                Tell("LOG20", line.uiLine,
                     FromCodePage(line.strKey) + L": there is no category \"" + FromCodePage(line.strCategory) + L"\"");
            }
        }
    }

    void CheckRules()
    {
        for (size_t i = 0; i < m_text.rules.size(); ++i)
        {
            const RuleLines& rule = m_text.rules[i];
            const std::wstring strNever = WhyNever(rule);
            const auto covering = std::find_if(m_text.rules.begin(), m_text.rules.begin() + i,
                                               [&rule](const RuleLines& earlier) { return Covers(earlier, rule); });
            if (!strNever.empty())
            {
                Tell("LOG21", rule.uiLine, strNever);
            }
            else if (covering != m_text.rules.begin() + i)
            {
                Tell("LOG22", rule.uiLine, L"the rule that ends in " + Line(covering->uiLine) + L" decides first");
            }
        }
        if (m_text.uiKeysLeft != 0)
        {
            Tell("LOG23", m_text.uiLastKeyLine, std::to_wstring(m_text.uiKeysLeft) + L" lines of four");
        }
    }

    /// Why a rule fits no function; empty when it fits some. A rule for another module is none of ours.
    static std::wstring WhyNever(const RuleLines& rule)
    {
        if (rule.strModule == "*")
        {
            return L"\"*\" is no module";
        }
        if (rule.strClass == "*" && rule.strFunction != "*")
        {
            return L"\"*\" for the class beside a named function";
        }
        for (const std::string* const pText : {&rule.strModule, &rule.strClass, &rule.strFunction})
        {
            if (*pText != TrimmedText(*pText))
            {
                return L"blanks around \"" + FromCodePage(TrimmedText(*pText)) + L"\" count as part of the name";
            }
        }
        if (rule.strModule != kModuleTag && _stricmp(rule.strModule.c_str(), kModuleTag) == 0)
        {
            return L"the module is " + FromCodePage(kModuleTag) + L", letter by letter";
        }
        if (rule.strModule == kModuleTag && !rule.strClass.empty() && rule.strClass != "*")
        {
            return L"the module's functions belong to no class; leave filter.class empty";
        }
        return {};
    }

    /// Whether the earlier rule decides for each function for which the other would.
    static bool Covers(const RuleLines& earlier, const RuleLines& rule)
    {
        if (!WhyNever(earlier).empty() || earlier.strModule != rule.strModule)
        {
            return false;
        }
        return earlier.strClass == "*" || (earlier.strClass == rule.strClass &&
                                           (earlier.strFunction == "*" || earlier.strFunction == rule.strFunction));
    }

    const LogConfigText& m_text;
    const LogCategories& m_categories;
    std::wstring m_strFile;
    Findings& m_findings;
};

/// What the log costs, in one line.
std::wstring CostText(const LogConfigText& text, const LogCategories& categories)
{
    const std::string strModule = kModuleTag;
    bool bParam = false;
    bool bTrace = false;
    for (const SwitchLine& line : text.switches)
    {
        // Of two lines for one switch the later one stands.
        bParam = line.strCategory == strModule && line.strKey.rfind("OutputParam", 0) == 0 ? line.bOn : bParam;
        bTrace = line.strCategory == strModule && line.strKey.rfind("OutputFun", 0) == 0 ? line.bOn : bTrace;
    }
    const auto microseconds = [](const LogCost& cost) {
        char szText[32] = {};
        _snprintf_s(szText, _TRUNCATE, "%.1f", std::stod(cost.pszNanoseconds) / 1000);
        return std::string(szText);
    };
    return FromCodePage("logging is on for each process that starts: " + std::to_string(categories.uiLines) +
                        (categories.uiLines == 1 ? " category" : " categories") + ", the module's at " +
                        log4cpp::Priority::getPriorityName(categories.iModulePriority) + ", results " +
                        (bParam ? "on" : "off") + ", START and End lines " + (bTrace ? "on" : "off") + ", " +
                        std::to_string(text.rules.size()) + " filter rules; as measured, a line to a file takes " +
                        microseconds(kLineCost) + " us (" + kLineCost.pszFactor + " times the bare library's)" +
                        (bTrace ? ", each function's START and End " + microseconds(kTracePairCost) + " us (" +
                                      kTracePairCost.pszFactor + " times)"
                                : ""));
}

/// Reads the file. @return nothing when that is told, or when there is no file.
std::optional<std::string> ReadLogConfig(const std::wstring& strFile, Findings& findings)
{
    if (strFile.size() >= MAX_PATH)
    {
        findings.Add("LOG02", strFile, std::to_wstring(strFile.size()) + L" characters");
        return std::nullopt;
    }
    if (IsFolder(strFile))
    {
        findings.Add("LOG01", strFile, L"a folder has its name");
        return std::nullopt;
    }
    const LookedAtFile file(strFile);
    if (file.IsAbsent())
    {
        findings.Good(kArea, strFile + L" is not there: logging is off, and costs a load and a branch per call");
        return std::nullopt;
    }
    if (file.Error() != ERROR_SUCCESS)
    {
        findings.Add("LOG01", strFile, FromUtf8(Win32ErrorText("can't open it", file.Error())));
        return std::nullopt;
    }
    if (file.Bytes() == 0 || file.Bytes() > kMostBytes)
    {
        findings.Add(file.Bytes() == 0 ? "LOG03" : "LOG04", strFile, std::to_wstring(file.Bytes()) + L" bytes");
        return std::nullopt;
    }
    std::optional<std::string> strBytes = file.Read(static_cast<size_t>(file.Bytes()));
    if (!strBytes)
    {
        findings.Add("LOG01", strFile, FromUtf8(Win32ErrorText("can't read it", GetLastError())));
    }
    else if (strBytes->find('\0') != std::string::npos)
    {
        findings.Add("LOG05", strFile, L"it has bytes of 0, as UTF-16 has");
        return std::nullopt;
    }
    return strBytes;
}

} // namespace

const std::vector<FindingKind>& LogConfigKinds()
{
    static const std::vector<FindingKind> s_kinds = {
        {"LOG01", "LogConfig.conf can't be read",
         "Close who holds it open, mend its rights, remove a folder of its name."},
        {"LOG02", "The path of LogConfig.conf is too long", "Move the client to a folder with a shorter path."},
        {"LOG03", "LogConfig.conf is empty", "Restore it, or remove it (velhost log off)."},
        {"LOG04", "LogConfig.conf is too large to be one", "Look what it is; replace it (velhost log on)."},
        {"LOG05", "LogConfig.conf is not narrow text", "Save it in the system's code page (\"ANSI\" in Notepad)."},
        {"LOG10", "No category of the module: each process that loads the module ends",
         "Add the line category.VelUI_dll=DEBUG with an appender, or remove the file (velhost log off), at once."},
        {"LOG11", "No root category: there is no log", "Add the line rootCategory=ERROR."},
        {"LOG12", "An appender is unknown: there is no log", "Name one of the library's appenders, and define it."},
        {"LOG13", "A layout is unknown: there is no log",
         "Use BasicLayout, SimpleLayout or PatternLayout with a pattern."},
        {"LOG14", "A priority is unknown: there is no log",
         "Use FATAL, ALERT, CRIT, ERROR, WARN, NOTICE, INFO or DEBUG."},
        {"LOG15", "A switch without a category: there is no log",
         "Write the category behind it: OutputParam.VelUI_dll=true."},
        {"LOG16", "The log file can't be written", "Make its folder, and let those who print write there."},
        {"LOG17", "The log file has no full path", "Name the file with drive and folder."},
        {"LOG18", "No appender gets the module's lines", "Name one behind the priority of category.VelUI_dll."},
        {"LOG20", "A switch is for a category that is not there", "Mend the name, or add the category."},
        {"LOG21", "A filter rule can never apply", "Mend the rule; docs/logging.md tells the forms that apply."},
        {"LOG22", "A filter rule comes too late", "Put the rule for less in front of the rule for more."},
        {"LOG23", "A filter rule is not complete", "Give it four lines: module, class, function, putoutpermission."},
        {"LOG24", "A line is too long", "Cut it below 1,024 characters."},
    };
    return s_kinds;
}

void CheckLogConfig(const std::wstring& strInstallDir, Findings& findings)
{
    const std::wstring strFile = PathIn(strInstallDir, kLogConfigName);
    const std::optional<std::string> strBytes = ReadLogConfig(strFile, findings);
    if (!strBytes)
    {
        return;
    }
    const auto uiBefore = static_cast<std::ptrdiff_t>(findings.List().size());
    const LogConfigText text = ReadLogConfigText(*strBytes);
    const LogCategories categories = CheckLogLibrary(text, strFile, findings);
    OwnKeysChecker(text, categories, strFile, findings).Check();
    const bool bOn =
        std::none_of(findings.List().begin() + uiBefore, findings.List().end(),
                     [](const Finding& finding) { return std::string_view(finding.pKind->pszCode) < kFirstWithLog; });
    if (bOn)
    {
        findings.Good(kArea, strFile + L": " + CostText(text, categories));
    }
}

} // namespace VelHost
