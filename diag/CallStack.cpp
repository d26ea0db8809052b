#include "diag/CallStack.h"

#include "diag/Log.h"
#include "diag/OutputSwitches.h"
#include "diag/Quietly.h"
#include "diag/ThreadNdc.h"

#include <log4cpp/NDC.hh>

namespace
{

void WriteTraceLine(log4cpp::Category* pCategory, const FrameName& frame, const char* pszMark)
{
    const std::string strText = frame.Underscored() + pszMark;
    pCategory->fatal("[ThreadID:%lu] %s", GetCurrentThreadId(), strText.c_str());
}

bool WantsTraceLines(const log4cpp::Category* pCategory)
{
    OutputSwitches switches;
    return GetOutputSwitches(pCategory->getName(), switches) == 0 && switches.outputFunBeginInfo;
}

const char* OrEmpty(const char* pszText) noexcept
{
    return pszText != nullptr ? pszText : "";
}

} // namespace

void PushTraceFrame(const char* pszModuleTag, const char* pszClassName, const char* pszFunctionName) noexcept
{
    Quietly([=] {
        log4cpp::NDC::push(std::string(OrEmpty(pszModuleTag)) + '.' + OrEmpty(pszClassName) + '.' +
                           OrEmpty(pszFunctionName) + '$');
        LogTarget target;
        if (FindLogTarget(target) && target.pCategory != nullptr && WantsTraceLines(target.pCategory))
        {
            WriteTraceLine(target.pCategory, target.frame, " :START......");
        }
    });
}

void PopTraceFrame() noexcept
{
    Quietly([] {
        LogTarget target;
        // Required: the category is used without a test for null. A configuration that loads must name the module's
        // category; with one that does not, the process stops here.
        if (FindLogTarget(target) && WantsTraceLines(target.pCategory))
        {
            WriteTraceLine(target.pCategory, target.frame, " :End  ......\n");
        }
    });
    // Apart, so that the frame goes also when the line failed.
    Quietly([] {
        if (log4cpp::NDC::getDepth() != 0)
        {
            log4cpp::NDC::pop();
        }
        if (log4cpp::NDC::getDepth() == 0)
        {
            FreeThreadNdc();
        }
    });
}

void DumpCallStack(FrameName frame, int iPriority)
{
    std::string strStack = log4cpp::NDC::get();
    log4cpp::Category* const pCategory = FindCategory(frame);
    OutputSwitches switches;
    // The caller has found the category: it is there.
    if (GetOutputSwitches(pCategory->getName(), switches) != 0 || !switches.outputNDCFullmessage)
    {
        return;
    }
    pCategory->log(iPriority, "\t\t\t@_@ ---------\tCall\tStack\t-----------\n");
    pCategory->log(iPriority, "\t\t\t@_@ depth\tModule Name\t\tClass Name\t\t\tFunction Name \n");
    int iDepth = 1;
    for (size_t uiEnd = strStack.find('$'); uiEnd != std::string::npos; uiEnd = strStack.find('$'))
    {
        // Required: from the second frame on, the module's column starts with the blank that joins the frames.
        FrameName row;
        SplitFrameName(strStack.substr(0, uiEnd), row);
        pCategory->log(iPriority, "\t\t\t@_@ %d\t%s\t\t\t%s\t\t\t\t%s\n", iDepth, row.strModule.c_str(),
                       row.strClass.c_str(), row.strFunction.c_str());
        strStack.erase(0, uiEnd + 1);
        ++iDepth;
    }
    pCategory->log(iPriority, "\t\t\t@_@ ---------\tStack\tEnd\t-----------\n\n\n");
}
