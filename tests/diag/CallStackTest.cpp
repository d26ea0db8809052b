// The START and End lines, the frames of the call stack, and its dump.

#include "diag/Frame.h"
#include "diag/Log.h"
#include "tests/common/ImportHook.h"
#include "tests/diag/LoggingOn.h"

#include <log4cpp/NDC.hh>

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

namespace
{

using Strings = std::vector<std::string>;

constexpr char kDumpHead[] = "\t\t\t@_@ ---------\tCall\tStack\t-----------\n\n"
                             "\t\t\t@_@ depth\tModule Name\t\tClass Name\t\t\tFunction Name \n\n";
constexpr char kDumpEnd[] = "\t\t\t@_@ ---------\tStack\tEnd\t-----------\n\n\n\n";

std::string DumpRow(int iDepth, const std::string& strModule, const std::string& strFunction)
{
    return "\t\t\t@_@ " + std::to_string(iDepth) + "\t" + strModule + "\t\t\t\t\t\t\t" + strFunction + "\n\n";
}

/// Begins a function whose frame finds no memory.
void BeginWithoutMemory()
{
    const ImportHook hook(
        nullptr, "malloc", +[](size_t) -> void* { return nullptr; });
    TraceFunctionBegin(kModuleTag, "", "FunctionWithoutMemory");
}

} // namespace

TEST_CASE("nested functions write START and End lines, the End with a blank line behind it", "[diag][trace]")
{
    const LoggingOn logging{"OutputFunBeginInfo"};
    {
        const TraceScope outer("DrvConvertDevMode");
        const TraceScope inner("VelUtility::CBaseMutex::Lock");
    }
    CHECK(logging.Lines() == Strings{"[ThreadID:#] VelUI_dll__DrvConvertDevMode :START......",
                                     "[ThreadID:#] VelUI_dll__VelUtility::CBaseMutex::Lock :START......",
                                     "[ThreadID:#] VelUI_dll__VelUtility::CBaseMutex::Lock :End  ......", "",
                                     "[ThreadID:#] VelUI_dll__DrvConvertDevMode :End  ......", ""});
}

TEST_CASE("START and End lines pass any priority of the category", "[diag][trace]")
{
    LogSetup setup;
    setup.strPriority = "FATAL";
    setup.strPattern = "%p %m%n";
    setup.switches = {"OutputFunBeginInfo"};
    const LoggingOn logging(setup);
    TraceFunctionBegin(kModuleTag, "C", "F");
    TraceFunctionEnd();
    CHECK(logging.Lines() == Strings{"FATAL [ThreadID:#] VelUI_dll_C_F :START......",
                                     "FATAL [ThreadID:#] VelUI_dll_C_F :End  ......", ""});
}

TEST_CASE("without their switch no START and End lines are written, and the frames are kept", "[diag][trace]")
{
    const LoggingOn logging{"OutputParam"};
    {
        const TraceScope scope("F");
        CHECK(log4cpp::NDC::get() == "VelUI_dll..F$");
        const TraceScope inner("G");
        CHECK(log4cpp::NDC::get() == "VelUI_dll..F$ VelUI_dll..G$");
    }
    CHECK(log4cpp::NDC::getDepth() == 0);
    CHECK(logging.Text().empty());
}

TEST_CASE("while logging is off nothing is pushed and nothing popped", "[diag][trace][off]")
{
    REQUIRE(loggingDisabled);
    {
        const TraceScope scope("F");
        CHECK(log4cpp::NDC::getDepth() == 0);
    }
    log4cpp::NDC::push("kept");
    {
        const TraceScope scope("F");
        CHECK(log4cpp::NDC::get() == "kept");
    }
    TraceFunctionEnd();
    CHECK(log4cpp::NDC::get() == "kept");
    log4cpp::NDC::clear();
}

TEST_CASE("the switches of START and End lines and of the dump are those of the category that was found",
          "[diag][trace]")
{
    LogSetup setup;
    setup.strMoreLines = "category.VelUI_dll.Own=DEBUG\n"
                         "OutputFunBeginInfo.VelUI_dll.Own=true\n"
                         "OutputNDCFullmessage.VelUI_dll.Own=true\n"
                         "OutputParam.VelUI_dll=true\n";
    const LoggingOn logging(setup);
    for (const char* const pszFunction : {"Own", "Other"})
    {
        const TraceScope scope(pszFunction);
        LogError("m");
    }
    CHECK(logging.Text() == std::string("[ThreadID:#] VelUI_dll__Own :START......\n[ThreadID:#] ERROR - m\n") +
                                kDumpHead + DumpRow(1, "VelUI_dll", "Own") + kDumpEnd +
                                "[ThreadID:#] VelUI_dll__Own :End  ......\n\n[ThreadID:#] ERROR - m\n");
}

TEST_CASE("the running function is the one that was entered last and has not ended", "[diag][trace]")
{
    LogSetup setup;
    setup.strPattern = "%c %m%n";
    setup.strMoreLines = "category.VelUI_dll.A=DEBUG\ncategory.VelUI_dll.B=DEBUG\n";
    const LoggingOn logging(setup);
    {
        const TraceScope outer("A");
        LogInfo("1");
        {
            const TraceScope inner("B");
            LogInfo("2");
        }
        LogInfo("3");
    }
    LogInfo("4");
    CHECK(logging.Lines() == Strings{"VelUI_dll.A [ThreadID:#] INFO - 1", "VelUI_dll.B [ThreadID:#] INFO - 2",
                                     "VelUI_dll.A [ThreadID:#] INFO - 3"});
}

TEST_CASE("behind a frame that finds no memory nothing is logged under another function's name", "[diag][trace]")
{
    const LoggingOn logging;
    const TraceScope outer("A");
    BeginWithoutMemory();
    LogInfo("in the function without a frame");
    TraceFunctionEnd();
    LogInfo("in A, whose frame went with it");
    {
        const TraceScope next("B");
        LogInfo("in the next");
    }
    CHECK(logging.Lines() == Strings{"[ThreadID:#] INFO - in the next"});
    CHECK(log4cpp::NDC::getDepth() == 0);
}

TEST_CASE("an exception that leaves a function closes its frame", "[diag][trace]")
{
    const LoggingOn logging{"OutputFunBeginInfo"};
    const TraceScope outer("Outer");
    try
    {
        const TraceScope inner("Inner");
        throw 7;
    }
    catch (int)
    {
        LogInfo("caught");
    }
    CHECK(logging.Lines() == Strings{"[ThreadID:#] VelUI_dll__Outer :START......",
                                     "[ThreadID:#] VelUI_dll__Inner :START......",
                                     "[ThreadID:#] VelUI_dll__Inner :End  ......", "", "[ThreadID:#] INFO - caught"});
    CHECK(log4cpp::NDC::getDepth() == 1);
}

TEST_CASE("the end of a function without a frame does no harm while logging is on", "[diag][trace]")
{
    const LoggingOn logging{"OutputFunBeginInfo"};
    TraceFunctionEnd();
    TraceFunctionEnd();
    {
        const TraceScope scope("F");
        LogInfo("still works");
    }
    TraceFunctionEnd();
    CHECK(log4cpp::NDC::getDepth() == 0);
    CHECK(logging.Has("INFO - still works"));
}

TEST_CASE("null names count as empty", "[diag][trace]")
{
    const LoggingOn logging;
    TraceFunctionBegin(nullptr, nullptr, nullptr);
    CHECK(log4cpp::NDC::get() == "..$");
    TraceFunctionEnd();
    CHECK(log4cpp::NDC::getDepth() == 0);
}

TEST_CASE("a frame is split at its first and its last point", "[diag][trace]")
{
    const auto [strText, iResult, strModule, strClass, strFunction] =
        GENERATE(table<std::string, int, std::string, std::string, std::string>({
            {"VelUI_dll..F", 0, "VelUI_dll", "", "F"},
            {"M.C.F", 0, "M", "C", "F"},
            {"M.C.D.F", 0, "M", "C.D", "F"},
            {"M.F", 0, "M", "", "F"},
            {"none", -1, "", "", ""},
        }));
    FrameName frame;
    INFO(strText);
    CHECK(SplitFrameName(strText, frame) == iResult);
    CHECK(frame.strModule == strModule);
    CHECK(frame.strClass == strClass);
    CHECK(frame.strFunction == strFunction);
}

TEST_CASE("a dump lists the frames with the outermost first", "[diag][trace]")
{
    const int iDepth = GENERATE(1, 2, 3);
    const LoggingOn logging{"OutputNDCFullmessage"};
    std::string strWanted = std::string("[ThreadID:#] ERROR - m\n") + kDumpHead;
    const char* const names[] = {"First", "Second", "Third"};
    for (int i = 0; i < iDepth; ++i)
    {
        TraceFunctionBegin(kModuleTag, nullptr, names[i]);
        strWanted += DumpRow(i + 1, i == 0 ? "VelUI_dll" : " VelUI_dll", names[i]);
    }
    LogError("m");
    for (int i = 0; i < iDepth; ++i)
    {
        TraceFunctionEnd();
    }
    INFO("depth " << iDepth);
    CHECK(logging.Text() == strWanted + kDumpEnd);
}

TEST_CASE("debug, error and fatal messages are followed by a dump, the others are not", "[diag][trace]")
{
    struct Row
    {
        LogFunction pfnLog;
        const char* pszPriority;
        bool bDump;
    };
    const auto row = GENERATE(values<Row>({{LogDebug, "DEBUG", true},
                                           {LogInfo, "", false},
                                           {LogWarning, "", false},
                                           {LogError, "ERROR", true},
                                           {LogFatal, "FATAL", true},
                                           {LogParam, "", false}}));
    LogSetup setup;
    setup.switches = {"OutputNDCFullmessage", "OutputParam"};
    setup.strPattern = "%p|%m%n";
    const LoggingOn logging(setup);
    {
        const TraceScope scope("F");
        row.pfnLog("m");
    }
    INFO(row.pszPriority);
    CHECK(logging.Has(std::string(row.pszPriority) + "|\t\t\t@_@ 1\tVelUI_dll") == row.bDump);
    CHECK(logging.Has("@_@") == row.bDump);
    CHECK(logging.Has(" - m"));
}

TEST_CASE("a function that the filter keeps back is silent but keeps its frame", "[diag][trace][filter]")
{
    LogSetup setup;
    setup.switches = {"OutputFunBeginInfo", "OutputNDCFullmessage", "OutputParam"};
    setup.strMoreLines = "filter.module=VelUI_dll\nfilter.class=\nfilter.function=B\nfilter.putoutpermission=no\n";
    const LoggingOn logging(setup);
    int iEnabledInB = 0;
    {
        const TraceScope a("A");
        const TraceScope b("B");
        iEnabledInB = IsErrorEnabled();
        LogError("kept back");
        LogFatal("kept back");
        LogParam("kept back");
        const TraceScope c("C");
        LogError("from C");
    }
    CHECK(iEnabledInB == 1); // a predicate does not ask the filter
    CHECK_FALSE(logging.Has("kept back"));
    CHECK(logging.Text() == std::string("[ThreadID:#] VelUI_dll__A :START......\n"
                                        "[ThreadID:#] VelUI_dll__C :START......\n"
                                        "[ThreadID:#] ERROR - from C\n") +
                                kDumpHead + DumpRow(1, "VelUI_dll", "A") + DumpRow(2, " VelUI_dll", "B") +
                                DumpRow(3, " VelUI_dll", "C") + kDumpEnd +
                                "[ThreadID:#] VelUI_dll__C :End  ......\n\n"
                                "[ThreadID:#] VelUI_dll__A :End  ......\n\n");
    CHECK(log4cpp::NDC::getDepth() == 0);
}
