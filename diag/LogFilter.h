#pragma once
/// LogFilter: a rule that lets the messages of a module, class or function through or keeps them back.

#include <windows.h>

#include <log4cpp/Filter.hh>

#include <string>
#include <string_view>

/// One rule. It applies to a message whose frame text is "module.class.function", and has one of three shapes:
///   module, "*", "*"          every message of the module
///   module, class, "*"        every message of the class
///   module, class, function   every message of the function
/// A rule of any other shape never applies. Names are compared exactly; a free function has an empty class.
/// Never changed after the start, and then read on any thread.
class LogFilter : public log4cpp::Filter
{
public:
    void setModule(const std::string& strModule) { m_strModule = strModule; }
    void setClass(const std::string& strClass) { m_strClass = strClass; }
    void setFunction(const std::string& strFunction) { m_strFunction = strFunction; }
    /// @param strText "no" keeps back what the rule applies to; any other text lets it through.
    void setPutOutPermission(const std::string& strText) { m_bPutOutPermission = strText != "no"; }

protected:
    Decision _decide(const log4cpp::LoggingEvent& event) override;

private:
    std::string m_strModule;
    std::string m_strClass;
    std::string m_strFunction;
    bool m_bPutOutPermission = true;
};

/// The first rule of the chain, or null without any. Set by StartLogging, read without a lock, never freed.
extern LogFilter* logFilter;

/// Whether the chain lets a message through: the first rule that applies decides, and without one the answer is yes.
/// @param strFrame the frame text, as GetCurrentFrameName gives it.
/// @return false also while logging is off.
bool IsLogAllowed(std::string_view strFrame);
