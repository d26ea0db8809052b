#include "diag/Frame.h"

#include "diag/LogFilter.h"

#include <log4cpp/NDC.hh>

std::string GetCurrentFrameName()
{
    std::string strText = log4cpp::NDC::get();
    if (log4cpp::NDC::getDepth() <= 1)
    {
        // Required: without a frame the search finds nothing and erase raises out_of_range; the caller's handler ends
        // the log call, so that nothing is written outside every traced function.
        strText.erase(strText.rfind('$'));
        return strText;
    }
    const size_t uiEnd = strText.size() - 1;
    const size_t uiStart = strText.rfind('$', uiEnd - 1) + 2; // behind the "$" of the frame before and the blank
    return strText.substr(uiStart, uiEnd - uiStart);
}

int SplitFrameName(const std::string& strText, FrameName& frame)
{
    const size_t uiFirst = strText.find('.');
    const size_t uiLast = strText.rfind('.');
    if (uiFirst == std::string::npos || uiLast == std::string::npos)
    {
        return -1;
    }
    frame.strModule = strText.substr(0, uiFirst);
    frame.strClass = uiLast > uiFirst ? strText.substr(uiFirst + 1, uiLast - uiFirst - 1) : std::string();
    frame.strFunction = strText.substr(uiLast + 1);
    return 0;
}

FrameName ReadCurrentFrame()
{
    FrameName frame;
    frame.strText = GetCurrentFrameName();
    SplitFrameName(frame.strText, frame);
    return frame;
}

log4cpp::Category* FindCategory(const FrameName& frame)
{
    using log4cpp::Category;
    const bool bClass = !frame.strClass.empty();
    const std::string strOwner = bClass ? frame.strModule + '.' + frame.strClass : frame.strModule;
    Category* pCategory = Category::exists(strOwner + '.' + frame.strFunction);
    if (pCategory == nullptr)
    {
        pCategory = Category::exists(strOwner);
    }
    if (pCategory == nullptr && bClass)
    {
        pCategory = Category::exists(frame.strModule);
    }
    return pCategory;
}

bool FindLogTarget(LogTarget& target)
{
    std::string strText = GetCurrentFrameName();
    if (!IsLogAllowed(strText))
    {
        return false;
    }
    SplitFrameName(strText, target.frame);
    target.frame.strText = std::move(strText);
    target.pCategory = FindCategory(target.frame);
    return true;
}
