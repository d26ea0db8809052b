#include "diag/LogFilter.h"

#include "diag/LogRules.h"

#include <log4cpp/LoggingEvent.hh>

LogFilter* logFilter = nullptr;

bool IsLogAllowed(std::string_view strFrame)
{
    if (loggingDisabled)
    {
        return false;
    }
    if (logFilter == nullptr)
    {
        return true;
    }
    const log4cpp::LoggingEvent event(std::string(), std::string(strFrame), std::string(), kPriorityDebug);
    return logFilter->decide(event) != log4cpp::Filter::DENY;
}

log4cpp::Filter::Decision LogFilter::_decide(const log4cpp::LoggingEvent& event)
{
    const std::string& strText = event.message;
    std::string strModule;
    std::string strClass;
    std::string strFunction;
    const size_t uiFirst = strText.find('.');
    if (uiFirst != std::string::npos)
    {
        strModule = strText.substr(0, uiFirst);
        // Unlike the frame's own parts, these are divided at the second point, not at the last.
        const size_t uiSecond = strText.find('.', uiFirst + 1);
        strClass = strText.substr(uiFirst + 1, uiSecond == std::string::npos ? uiSecond : uiSecond - uiFirst - 1);
        strFunction = uiSecond == std::string::npos ? std::string() : strText.substr(uiSecond + 1);
    }

    const bool bAnyClass = m_strClass == "*";
    const bool bAnyFunction = m_strFunction == "*";
    // Required: "*" means any in the three shapes only; "*" for the module, or for the class beside a named function,
    // never applies. A rule of such a shape, once written, must not begin to keep messages back.
    if (m_strModule == "*" || (bAnyClass && !bAnyFunction))
    {
        return NEUTRAL;
    }
    const bool bApplies = m_strModule == strModule && (bAnyClass || m_strClass == strClass) &&
                          (bAnyFunction || m_strFunction == strFunction);
    if (!bApplies)
    {
        return NEUTRAL;
    }
    return m_bPutOutPermission ? ACCEPT : DENY;
}
