#include "diag/CallStack.h"

#include "diag/Frame.h"
#include "diag/OutputSwitches.h"

#include <log4cpp/NDC.hh>

#include <atomic>

namespace
{

/// A part of a frame for "%.*s".
#define SIZED_TEXT(text) static_cast<int>((text).size()), (text).data()

void WriteTraceLine(log4cpp::Category* pCategory, const FrameName& frame, const char* pszMark)
{
    pCategory->fatal("[ThreadID:%lu] %.*s_%.*s_%.*s%s", GetCurrentThreadId(), SIZED_TEXT(frame.strModule),
                     SIZED_TEXT(frame.strClass), SIZED_TEXT(frame.strFunction), pszMark);
}

bool WantsTraceLines(const log4cpp::Category* pCategory)
{
    OutputSwitches switches;
    return GetOutputSwitches(pCategory->getName(), switches) == 0 && switches.outputFunBeginInfo;
}

std::string_view OrEmpty(const char* pszText) noexcept
{
    return pszText != nullptr ? pszText : "";
}

/// The text of a frame as the NDC holds it.
std::string FrameText(std::string_view strModule, std::string_view strClass, std::string_view strFunction)
{
    std::string strText;
    strText.reserve(strModule.size() + strClass.size() + strFunction.size() + 3);
    (strText += strModule) += '.';
    (strText += strClass) += '.';
    return (strText += strFunction) += '$';
}

/// Thread-local places that a process can have: the 64 that Windows promises and 1,024 more.
constexpr DWORD kTlsPlaces = TLS_MINIMUM_AVAILABLE + 1024;

/// Where log4cpp keeps its NDC on every thread; kTlsPlaces until it was found.
std::atomic<DWORD> s_dwPlace{kTlsPlaces};

bool HoldsAt(DWORD dwPlace, const void* pObject)
{
    return dwPlace < kTlsPlaces && TlsGetValue(dwPlace) == pObject;
}

/// @return the thread-local place that holds an object on this thread, or kTlsPlaces when none does.
DWORD FindPlace(const void* pObject)
{
    DWORD dwPlace = 0;
    while (dwPlace < kTlsPlaces && !HoldsAt(dwPlace, pObject))
    {
        ++dwPlace;
    }
    return dwPlace;
}

/// Takes all frames off the thread's stack, when there is no memory for one more. The functions that run now write
/// nothing until they end; their ends find the stack empty, and so no frame is taken for another function's.
void ForgetFrames() noexcept
{
    Quietly([] { log4cpp::NDC::clear(); });
}

} // namespace

void PushTraceFrame(const char* pszModuleTag, const char* pszClassName, const char* pszFunctionName) noexcept
{
    bool bPushed = false;
    Quietly([&] {
        log4cpp::NDC::push(FrameText(OrEmpty(pszModuleTag), OrEmpty(pszClassName), OrEmpty(pszFunctionName)));
        bPushed = true;
    });
    if (!bPushed)
    {
        ForgetFrames();
        return;
    }
    Quietly([] {
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
        auto& frames = log4cpp::NDC::getNDC()._stack;
        if (!frames.empty())
        {
            frames.pop_back(); // NDC::pop hands out a copy of the text, for which there may be no memory
        }
        if (frames.empty())
        {
            FreeThreadNdc();
        }
    });
}

void DumpCallStack(const FrameName& frame, int iPriority)
{
    log4cpp::Category* const pCategory = FindCategory(frame);
    OutputSwitches switches;
    // The caller has found the category: it is there.
    if (GetOutputSwitches(pCategory->getName(), switches) != 0 || !switches.outputNDCFullmessage)
    {
        return;
    }
    const std::string_view strStack = log4cpp::NDC::get();
    pCategory->log(iPriority, "\t\t\t@_@ ---------\tCall\tStack\t-----------\n");
    pCategory->log(iPriority, "\t\t\t@_@ depth\tModule Name\t\tClass Name\t\t\tFunction Name \n");
    int iDepth = 1;
    size_t uiStart = 0;
    for (size_t uiEnd = strStack.find('$'); uiEnd != std::string_view::npos; uiEnd = strStack.find('$', uiStart))
    {
        // Required: from the second frame on, the module's column starts with the blank that joins the frames:
        // the text is shown as log4cpp holds it.
        FrameName row;
        SplitFrameName(strStack.substr(uiStart, uiEnd - uiStart), row);
        pCategory->log(iPriority, "\t\t\t@_@ %d\t%.*s\t\t\t%.*s\t\t\t\t%.*s\n", iDepth, SIZED_TEXT(row.strModule),
                       SIZED_TEXT(row.strClass), SIZED_TEXT(row.strFunction));
        uiStart = uiEnd + 1;
        ++iDepth;
    }
    pCategory->log(iPriority, "\t\t\t@_@ ---------\tStack\tEnd\t-----------\n\n\n");
}

void FreeThreadNdc()
{
    log4cpp::NDC* const pNdc = &log4cpp::NDC::getNDC();
    pNdc->clear();
    if (!HoldsAt(s_dwPlace, pNdc))
    {
        s_dwPlace = FindPlace(pNdc);
    }
    // A library that keeps it elsewhere is left alone: an empty NDC is a few words.
    if (HoldsAt(s_dwPlace, pNdc) && TlsSetValue(s_dwPlace, nullptr))
    {
        delete pNdc;
    }
}
