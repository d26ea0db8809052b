#include "diag/Frame.h"

#include "diag/LogFilter.h"

#include <log4cpp/NDC.hh>

#include <stdexcept>

std::string_view GetCurrentFrameName()
{
    const std::string& strStack = log4cpp::NDC::get();
    if (log4cpp::NDC::getDepth() <= 1)
    {
        const size_t uiEnd = strStack.rfind('$');
        if (uiEnd == std::string::npos)
        {
            // Required: without a frame the caller's handler ends the log call, so that nothing is written outside
            // every traced function.
            throw std::out_of_range("no frame");
        }
        return std::string_view(strStack).substr(0, uiEnd);
    }
    const size_t uiEnd = strStack.size() - 1;
    const size_t uiStart = strStack.rfind('$', uiEnd - 1) + 2; // behind the "$" of the frame before and the blank
    return std::string_view(strStack).substr(uiStart, uiEnd - uiStart);
}

int SplitFrameName(std::string_view strText, FrameName& frame)
{
    const size_t uiFirst = strText.find('.');
    if (uiFirst == std::string_view::npos)
    {
        return -1;
    }
    const size_t uiLast = strText.rfind('.');
    frame.strModule = strText.substr(0, uiFirst);
    frame.strClass = uiLast > uiFirst ? strText.substr(uiFirst + 1, uiLast - uiFirst - 1) : std::string_view();
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
    // One text that holds the function's name, then the class's, then the module's.
    std::string strName;
    strName.reserve(frame.strModule.size() + frame.strClass.size() + frame.strFunction.size() + 2);
    strName = frame.strModule;
    if (!frame.strClass.empty())
    {
        (strName += '.') += frame.strClass;
    }
    const size_t uiOwner = strName.size();
    (strName += '.') += frame.strFunction;
    Category* pCategory = Category::exists(strName);
    if (pCategory == nullptr)
    {
        strName.resize(uiOwner);
        pCategory = Category::exists(strName);
    }
    if (pCategory == nullptr && !frame.strClass.empty())
    {
        strName.resize(frame.strModule.size());
        pCategory = Category::exists(strName);
    }
    return pCategory;
}

bool FindLogTarget(LogTarget& target)
{
    target.frame = ReadCurrentFrame();
    if (!IsLogAllowed(target.frame.strText))
    {
        return false;
    }
    target.pCategory = FindCategory(target.frame);
    return true;
}
