#include "bench/Benches.h"
#include "bench/floors/LogFloor.h"
#include "diag/LogSite.h"

#include <filesystem>
#include <fstream>

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace
{

constexpr Goal kGoal = RatioGoal(1.5);
constexpr char kWords[] = "GetClientFolder failed.";
constexpr wchar_t kFolder[] = L"C:\\Program Files\\Vel-soft\\Client\\Data";

/// The configuration of the sample, without an appender: those are put on by hand.
std::string WriteConfig(const BenchClient& client)
{
    const std::filesystem::path path = client.folder.File(L"BenchLog.conf");
    std::ofstream(path) << "rootCategory=ERROR\n"
                           "category.VelUI_dll=DEBUG\n"
                           "additivity.VelUI_dll=false\n"
                           "OutputParam.VelUI_dll=true\n"
                           "OutputFunBeginInfo.VelUI_dll=true\n"
                           "OutputNTEventLog.VelUI_dll=false\n"
                           "OutputNDCFullmessage.VelUI_dll=false\n";
    return path.string();
}

/// Our category and a bare one, each with an appender of its own.
class Pair
{
public:
    /// @param strTo what the measures' names say of the appenders.
    Pair(Results& results, const std::string& strTo, log4cpp::Appender& ours, log4cpp::Appender& bare)
        : m_results(results), m_strTo(strTo), m_ours(ours), m_bareAppender(bare)
    {
        Bare().setPriority(log4cpp::Priority::DEBUG);
        Bare().setAdditivity(false);
        Bare().addAppender(bare);
        Ours().addAppender(ours);
    }
    ~Pair()
    {
        Bare().removeAppender(&m_bareAppender);
        Ours().removeAppender(&m_ours);
    }
    Pair(const Pair&) = delete;
    Pair& operator=(const Pair&) = delete;

    static log4cpp::Category& Bare() { return log4cpp::Category::getInstance("Bare"); }

    template <typename Floor, typename Call>
    void Measure(const std::string& strLine, Floor floor, Call ours, Goal goal = kGoal)
    {
        m_results.Measure("logging on, " + m_strTo + ": " + strLine,
                          Repeat([floor, pBare = &Bare()] { floor(*pBare); }), Repeat(ours), goal);
    }

private:
    static log4cpp::Category& Ours() { return log4cpp::Category::getInstance(kModuleTag); }

    Results& m_results;
    std::string m_strTo;
    log4cpp::Appender& m_ours;
    log4cpp::Appender& m_bareAppender;
};

void BenchLines(Pair& pair)
{
    const FunctionScope scope("VelUtility::GetClientFolder");
    pair.Measure(
        "error line with words",
        [](log4cpp::Category& bare) { FloorWordsLine(bare, kPriorityError, "ERROR", kSourceModule, __LINE__, kWords); },
        [] { LOG_ERROR("%s", kWords); });
    pair.Measure(
        "debug line with words",
        [](log4cpp::Category& bare) { FloorWordsLine(bare, kPriorityDebug, "DEBUG", kSourceModule, __LINE__, kWords); },
        [] { LOG_DEBUG("%s", kWords); });
    pair.Measure(
        "debug line with a wide text",
        [](log4cpp::Category& bare) { FloorWideLine(bare, kSourceModule, __LINE__, kFolder); },
        [] { LOG_DEBUG("szFolder = %S", kFolder); });
    pair.Measure(
        "info line", [](log4cpp::Category& bare) { FloorInvokedLine(bare, "VelUtility::GetClientFolder"); },
        [] { LOG_INFO("%s was invoked.", "VelUtility::GetClientFolder"); });
    pair.Measure(
        "result line", [](log4cpp::Category& bare) { FloorResultLine(bare, kSourceModule, __LINE__, 1); },
        [] {
            const int lReturn = 1;
            LOG_RESULT("lReturn", lReturn);
        });
    pair.Measure(
        "trace pair", [](log4cpp::Category& bare) { FloorTracePair(bare, "VelUtility::SubCmpCaps_Rtn"); },
        [] { const FunctionScope scope("VelUtility::SubCmpCaps_Rtn"); });
}

} // namespace

void BenchLogOn(Results& results, const BenchClient& client)
{
    StartLogging(WriteConfig(client).c_str());
    if (loggingDisabled)
    {
        return;
    }
    {
        CountingAppender ours("ours");
        CountingAppender bare("bare");
        Pair pair(results, "counting appender", ours, bare);
        BenchLines(pair);
    }
    {
        const auto pOurs = MakeFileAppender("ours", std::filesystem::path(client.folder.File(L"ours.log")).string());
        const auto pBare = MakeFileAppender("bare", std::filesystem::path(client.folder.File(L"bare.log")).string());
        Pair pair(results, "file", *pOurs, *pBare);
        BenchLines(pair);
    }
    StopLogging();
}
