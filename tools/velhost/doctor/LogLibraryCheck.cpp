#include "tools/velhost/doctor/LogLibraryCheck.h"

#include "diag/LogRules.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

#include <windows.h>

#include <log4cpp/Configurator.hh>
#include <log4cpp/PatternLayout.hh>
#include <log4cpp/Priority.hh>

#include <algorithm>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <utility>

namespace VelHost
{
namespace
{

using log4cpp::Priority;

constexpr char kRootCategory[] = "rootCategory";

/// The library's appenders that write a file, and its others.
constexpr const char* kFileAppenders[] = {"FileAppender", "RollingFileAppender", "DailyRollingFileAppender"};
constexpr const char* kOtherAppenders[] = {"ConsoleAppender", "SyslogAppender", "AbortAppender", "Win32DebugAppender",
                                           "NTEventLogAppender"};
/// Those of the others that want a layout.
constexpr const char* kOthersWithLayout[] = {"ConsoleAppender", "SyslogAppender", "Win32DebugAppender"};
constexpr const char* kLayouts[] = {"BasicLayout", "SimpleLayout", "PatternLayout"};

template <size_t uiNames>
bool IsOneOf(const std::string& strName, const char* const (&names)[uiNames])
{
    return std::find(std::begin(names), std::end(names), strName) != std::end(names);
}

/// A class name without what stands in front of its last point.
std::string ClassName(const std::string& strName)
{
    const size_t uiPoint = strName.rfind('.');
    return uiPoint == std::string::npos ? strName : strName.substr(uiPoint + 1);
}

/// The number of a priority's name; nothing for one that the library refuses.
std::optional<int> PriorityOf(const std::string& strName)
{
    try
    {
        return strName.empty() ? Priority::NOTSET : Priority::getPriorityValue(strName);
    }
    catch (const std::invalid_argument&)
    {
        return std::nullopt;
    }
}

bool IsPatternGood(const std::string& strPattern)
{
    try
    {
        log4cpp::PatternLayout().setConversionPattern(strPattern);
        return true;
    }
    catch (const log4cpp::ConfigureFailure&)
    {
        return false;
    }
}

class LogLibraryChecker
{
public:
    LogLibraryChecker(const LogConfigText& text, std::wstring strFile, Findings& findings)
        : m_text(text), m_strFile(std::move(strFile)), m_findings(findings)
    {}

    LogCategories Check()
    {
        CheckAppenders();
        CheckCategory(kRootCategory, kRootCategory);
        for (const auto& [strKey, strValue] : m_text.properties)
        {
            constexpr char kPrefix[] = "category.";
            if (strKey.rfind(kPrefix, 0) == 0)
            {
                AddWithParents(strKey.substr(sizeof(kPrefix) - 1));
                CheckCategory(strKey, strKey.substr(sizeof(kPrefix) - 1));
            }
        }
        CheckModuleCategory();
        m_categories.iModulePriority = ModulePriority();
        return m_categories;
    }

private:
    void Tell(const char* pszCode, const std::wstring& strWhere, std::wstring strDetail)
    {
        m_findings.Add(pszCode, m_strFile + (strWhere.empty() ? L"" : L" ") + strWhere, std::move(strDetail));
    }

    /// Goes through the appenders' keys in the library's order, which is that of their letters.
    void CheckAppenders()
    {
        std::string strCurrent;
        for (const auto& [strKey, strValue] : m_text.properties)
        {
            constexpr char kPrefix[] = "appender.";
            if (strKey.rfind(kPrefix, 0) != 0)
            {
                continue;
            }
            const std::vector<std::string> parts = SplitText(strKey, '.');
            if (parts[1] == strCurrent && !strCurrent.empty())
            {
                continue;
            }
            strCurrent = parts[1];
            if (parts.size() > 2 || strCurrent.empty())
            {
                Tell("LOG12", FromCodePage(strKey),
                     L"there is no line appender." + FromCodePage(strCurrent) + L" in front of it");
                m_appenders.insert(strCurrent); // told once
                continue;
            }
            m_appenders.insert(strCurrent);
            CheckAppender(strKey, ClassName(strValue));
        }
    }

    void CheckAppender(const std::string& strKey, const std::string& strClass)
    {
        const bool bFile = IsOneOf(strClass, kFileAppenders);
        if (!bFile && !IsOneOf(strClass, kOtherAppenders))
        {
            Tell("LOG12", FromCodePage(strKey), L"the library has no \"" + FromCodePage(strClass) + L"\"");
            return;
        }
        if (bFile || IsOneOf(strClass, kOthersWithLayout))
        {
            CheckLayout(strKey + ".layout");
        }
        const std::string* const pThreshold = FindProperty(m_text, strKey + ".threshold");
        if (pThreshold != nullptr && !PriorityOf(*pThreshold))
        {
            Tell("LOG14", FromCodePage(strKey + ".threshold"), L"\"" + FromCodePage(*pThreshold) + L"\"");
        }
        if (bFile)
        {
            CheckLogFile(strKey + ".fileName");
        }
    }

    void CheckLayout(const std::string& strKey)
    {
        const std::string* const pLayout = FindProperty(m_text, strKey);
        if (pLayout == nullptr || !IsOneOf(ClassName(*pLayout), kLayouts))
        {
            Tell("LOG13", FromCodePage(strKey),
                 pLayout == nullptr ? L"it is missing" : L"\"" + FromCodePage(*pLayout) + L"\"");
            return;
        }
        const std::string* const pPattern = FindProperty(m_text, strKey + ".ConversionPattern");
        if (ClassName(*pLayout) == "PatternLayout" && pPattern != nullptr && !IsPatternGood(*pPattern))
        {
            Tell("LOG13", FromCodePage(strKey + ".ConversionPattern"), L"\"" + FromCodePage(*pPattern) + L"\"");
        }
    }

    void CheckLogFile(const std::string& strKey)
    {
        const std::string* const pName = FindProperty(m_text, strKey);
        const std::wstring strName = pName == nullptr ? std::wstring() : FromCodePage(*pName);
        const bool bFull = strName.size() > 2 &&
                           ((strName[1] == L':' && strName[2] == L'\\') || (strName[1] == L':' && strName[2] == L'/') ||
                            (strName[0] == L'\\' && strName[1] == L'\\'));
        if (!bFull)
        {
            Tell("LOG17", FromCodePage(strKey),
                 pName == nullptr ? L"it is missing: a file \"foobar\" is written instead" : L"\"" + strName + L"\"");
            return;
        }
        // The file as it is, or else the folder in which it would be made.
        DWORD dwError = IsFolder(strName) ? ERROR_DIRECTORY : OpenError(strName, FILE_APPEND_DATA);
        if (dwError == ERROR_FILE_NOT_FOUND)
        {
            dwError = OpenError(strName.substr(0, strName.find_last_of(L"\\/") + 1), FILE_ADD_FILE,
                                FILE_FLAG_BACKUP_SEMANTICS);
        }
        if (dwError != ERROR_SUCCESS)
        {
            Tell("LOG16", FromCodePage(strKey),
                 dwError == ERROR_DIRECTORY ? strName + L" is a folder"
                                            : FromUtf8(Win32ErrorText(ToUtf8(strName), dwError)));
        }
    }

    void AddWithParents(std::string strCategory)
    {
        ++m_categories.uiLines;
        m_categories.names.insert(strCategory);
        for (size_t ui = strCategory.rfind('.'); ui != std::string::npos; ui = strCategory.rfind('.'))
        {
            strCategory.resize(ui);
            m_categories.names.insert(strCategory); // the library makes those above it too
        }
    }

    void CheckCategory(const std::string& strKey, const std::string& strName)
    {
        const std::string* const pValue = FindProperty(m_text, strKey);
        const std::vector<std::string> parts = SplitText(pValue == nullptr ? "" : *pValue, ',');
        const std::optional<int> iPriority = PriorityOf(parts[0]);
        if (strName == kRootCategory && (pValue == nullptr || (iPriority && *iPriority >= Priority::NOTSET)))
        {
            Tell("LOG11", FromCodePage(kRootCategory),
                 pValue == nullptr ? L"the line is missing" : L"it has no priority");
        }
        else if (!iPriority)
        {
            Tell("LOG14", FromCodePage(strKey), L"\"" + FromCodePage(parts[0]) + L"\"");
        }
        for (size_t i = 1; i < parts.size(); ++i)
        {
            if (m_appenders.count(parts[i]) == 0)
            {
                Tell("LOG12", FromCodePage(strKey), L"there is no appender." + FromCodePage(parts[i]));
            }
        }
        m_bHeard =
            m_bHeard || ((strName == kRootCategory ? IsPassedToRoot() : strName == kModuleTag) && parts.size() > 1);
    }

    bool IsPassedToRoot() const
    {
        const std::string* const pAdditivity = FindProperty(m_text, std::string("additivity.") + kModuleTag);
        return pAdditivity == nullptr || *pAdditivity == "true";
    }

    void CheckModuleCategory()
    {
        if (m_categories.names.count(kModuleTag) == 0)
        {
            Tell("LOG10", L"", FromCodePage(std::string("there is no line category.") + kModuleTag));
        }
        else if (!m_bHeard)
        {
            Tell("LOG18", FromCodePage(std::string("category.") + kModuleTag),
                 L"it names no appender, nor does the root for it");
        }
    }

    /// The priority that holds for the module: its own, or that of the root.
    int ModulePriority() const
    {
        for (const std::string& strKey : {std::string("category.") + kModuleTag, std::string(kRootCategory)})
        {
            const std::string* const pValue = FindProperty(m_text, strKey);
            const std::optional<int> iPriority = PriorityOf(SplitText(pValue == nullptr ? "" : *pValue, ',')[0]);
            if (iPriority && *iPriority < Priority::NOTSET)
            {
                return *iPriority;
            }
        }
        return Priority::NOTSET;
    }

    const LogConfigText& m_text;
    std::wstring m_strFile;
    Findings& m_findings;
    std::set<std::string> m_appenders;
    LogCategories m_categories;
    bool m_bHeard = false; ///< some appender gets the module's lines
};

} // namespace

LogCategories CheckLogLibrary(const LogConfigText& text, const std::wstring& strFile, Findings& findings)
{
    return LogLibraryChecker(text, strFile, findings).Check();
}

} // namespace VelHost
