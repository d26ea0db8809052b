#include "bench/floors/LogFloor.h"

#include <log4cpp/FileAppender.hh>
#include <log4cpp/NDC.hh>
#include <log4cpp/PatternLayout.hh>

#include <windows.h>

std::unique_ptr<log4cpp::Appender> MakeFileAppender(const std::string& strName, const std::string& strFile)
{
    auto pAppender = std::make_unique<log4cpp::FileAppender>(strName, strFile);
    auto pLayout = std::make_unique<log4cpp::PatternLayout>();
    pLayout->setConversionPattern("%d{%Y-%m-%d %H:%M:%S.%l} %m%n");
    pAppender->setLayout(pLayout.release());
    return pAppender;
}

void FloorWordsLine(log4cpp::Category& category, int iPriority, const char* pszLevel, const char* pszModule, int iLine,
                    const char* pszWords)
{
    category.log(iPriority, "[ThreadID:%lu] %s - %s(%d) : %s", GetCurrentThreadId(), pszLevel, pszModule, iLine,
                 pszWords);
}

void FloorWideLine(log4cpp::Category& category, const char* pszModule, int iLine, const wchar_t* pszText)
{
    category.debug("[ThreadID:%lu] DEBUG - %s(%d) : szFolder = %S", GetCurrentThreadId(), pszModule, iLine, pszText);
}

void FloorInvokedLine(log4cpp::Category& category, const char* pszFunction)
{
    category.info("[ThreadID:%lu] INFO - %s was invoked.", GetCurrentThreadId(), pszFunction);
}

void FloorResultLine(log4cpp::Category& category, const char* pszModule, int iLine, int iResult)
{
    category.fatal("[ThreadID:%lu] Param - %s(%d) : lReturn = %d\n", GetCurrentThreadId(), pszModule, iLine, iResult);
}

void FloorTracePair(log4cpp::Category& category, const char* pszFunction)
{
    log4cpp::NDC::push(std::string("VelUI_dll..") + pszFunction + '$');
    category.fatal("[ThreadID:%lu] VelUI_dll__%s :START......", GetCurrentThreadId(), pszFunction);
    category.fatal("[ThreadID:%lu] VelUI_dll__%s :End  ......\n", GetCurrentThreadId(), pszFunction);
    log4cpp::NDC::pop();
}
