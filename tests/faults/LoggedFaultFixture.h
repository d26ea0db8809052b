#pragma once
/// Failing functions while everything is logged, beside the same without a log.

#include "diag/LogRules.h"
#include "tests/common/Handles.h"
#include "tests/diag/LoggingOn.h"
#include "tests/faults/FaultFixture.h"

#include <log4cpp/NDC.hh>

#include <catch2/catch_get_random_seed.hpp>

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <utility>

/// _open with its mode as a fixed argument, which is how the target passes it.
using OpenFunction = int(const char*, int, int);

inline const FaultyFunctions kLoggedFunctions = {
    FAULTY(malloc, nullptr, ERROR_NOT_ENOUGH_MEMORY),
    FAULTY(realloc, nullptr, ERROR_NOT_ENOUGH_MEMORY),
    FAULTY(RegOpenKeyExW, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED),
    FAULTY(RegOpenKeyExA, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED),
    FAULTY(RegQueryValueExW, ERROR_FILE_NOT_FOUND, ERROR_FILE_NOT_FOUND),
    FAULTY(RegQueryValueExA, ERROR_FILE_NOT_FOUND, ERROR_FILE_NOT_FOUND),
    FAULTY(RegCreateKeyExA, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED),
    FAULTY(RegSetValueExA, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED),
    FAULTY(RegisterEventSourceA, nullptr, RPC_S_SERVER_UNAVAILABLE),
    FAULTY(ReportEventA, FALSE, ERROR_LOG_FILE_FULL),
    FAULTY(GetPrivateProfileStringW, 0, ERROR_FILE_NOT_FOUND),
    FAULTY(WritePrivateProfileStringW, FALSE, ERROR_DISK_FULL),
    FAULTY(_wfopen, nullptr, ERROR_TOO_MANY_OPEN_FILES),
    FAULTY(fopen, nullptr, ERROR_TOO_MANY_OPEN_FILES),
    FAULTY(fread, 0, ERROR_READ_FAULT),
    FAULTY(fwrite, 0, ERROR_DISK_FULL),
    FAULTY_AS(_open, OpenFunction, -1, ERROR_TOO_MANY_OPEN_FILES),
    FAULTY(_write, -1, ERROR_DISK_FULL),
    FAULTY(_lseek, -1, ERROR_SEEK),
    FAULTY(_access, -1, ERROR_FILE_NOT_FOUND),
    FAULTY(_waccess, -1, ERROR_FILE_NOT_FOUND),
    FAULTY(rename, -1, ERROR_ACCESS_DENIED),
    FAULTY(remove, -1, ERROR_ACCESS_DENIED),
};

/// Runs one call of the module with the plan in force. What the test itself does around it, and what the module calls
/// back, does not count.
/// @return the answer as a text; "no memory" for the exception that memory leaves as.
template <typename Call>
std::string Armed(Call call)
{
    decltype(call()) result = {};
    bool bMemory = true;
    const bool bOld = std::exchange(s_faultPlan.bArmed, true);
    try
    {
        result = call();
    }
    catch (const std::bad_alloc&)
    {
        bMemory = false;
    }
    s_faultPlan.bArmed = bOld;
    return bMemory ? std::to_string(static_cast<long long>(result)) + " " : "no memory ";
}

/// Lets the test's own code inside a call of the module run without the plan.
class Disarmed
{
public:
    Disarmed() : m_bOld(std::exchange(s_faultPlan.bArmed, false)) {}
    ~Disarmed() { s_faultPlan.bArmed = m_bOld; }
    Disarmed(const Disarmed&) = delete;
    Disarmed& operator=(const Disarmed&) = delete;

private:
    bool m_bOld;
};

/// Bytes as hexadecimal digits.
inline std::string Hex(const void* pvBytes, size_t cbBytes)
{
    std::string strHex;
    for (const auto* pby = static_cast<const BYTE*>(pvBytes); cbBytes != 0; ++pby, --cbBytes)
    {
        strHex += "0123456789abcdef"[*pby >> 4];
        strHex += "0123456789abcdef"[*pby & 15];
    }
    return strHex;
}

/// Everything that can be logged, in one file.
inline LogSetup EverythingLogged()
{
    LogSetup setup;
    setup.switches = {"OutputParam", "OutputFunBeginInfo", "OutputNTEventLog", "OutputNDCFullmessage"};
    setup.strPattern = "%d %p %c %t %x %m%n";
    setup.strMoreLines =
        "filter.module=VelUI_dll\nfilter.class=\nfilter.function=Another\nfilter.putoutpermission=no\n";
    return setup;
}

/// The same without the call stacks, which make ten lines of one: for work that logs much.
inline LogSetup LinesLogged()
{
    LogSetup setup = EverythingLogged();
    setup.switches.pop_back();
    return setup;
}

/// The same, in a file that is renamed and made anew every few lines.
inline LogSetup RollingLog()
{
    LogSetup setup = LinesLogged();
    setup.strAppender = "RollingFileAppender";
    setup.strMoreLines += "appender.logFile.maxFileSize=700\nappender.logFile.maxBackupIndex=2\n";
    return setup;
}

/// What the runs of a work answered, in order.
using Answers = std::vector<std::string>;

/// The answers without the repetitions that follow each other.
inline Answers Changes(Answers answers)
{
    answers.erase(std::unique(answers.begin(), answers.end()), answers.end());
    return answers;
}

/// The answers that are not the last, the one of a run without a failure.
inline Answers Failures(Answers answers)
{
    const std::string strGood = answers.back();
    answers.erase(std::remove(answers.begin(), answers.end(), strGood), answers.end());
    return answers;
}

/// Whether some answers stand among others in the same order.
inline bool IsPart(const Answers& some, const Answers& all)
{
    auto it = all.begin();
    for (const std::string& strAnswer : some)
    {
        it = std::find(it, all.end(), strAnswer);
        if (it == all.end())
        {
            return false;
        }
        ++it;
    }
    return true;
}

/// Work of the module with and without a log.
struct LoggedFaults : FaultFixture
{
    /// Does the work with each function failing, without a log and with one, and compares the answers. A failing call
    /// of the log's own work must give the answer of a run without a failure; the module's own calls must give, one
    /// after the other, what they give without a log. With all calls behind the first failing too, the answers must
    /// change as they do without a log.
    /// @param work does its calls by Armed, and gives their answers.
    template <typename Work>
    void Compare(const char* pszWork, Work work, const LogSetup& setup = LinesLogged())
    {
        work(); // what the first run of all makes once for the process
        std::map<std::string, int> reached;
        for (const FaultyFunction& function : kLoggedFunctions)
        {
            CAPTURE(pszWork, function.pszName);
            reached[function.pszName] = 0;
            if (LoggedCalls(function, work, setup) == 0)
            {
                continue;
            }
            const Answers quietAlone = Sweep(function, false, work);
            const Answers quietOnwards = Sweep(function, true, work);
            const LoggingOn logging(setup);
            const Answers alone = Sweep(function, false, work);
            const Answers onwards = Sweep(function, true, work);
            CHECK(alone.back() == quietAlone.back());
            CHECK(onwards.back() == quietOnwards.back());
            if (iMostRuns == 0)
            {
                CHECK(Failures(alone) == Failures(quietAlone));
                CHECK(Changes(onwards) == Changes(quietOnwards));
            }
            else
            {
                CHECK(IsPart(Failures(alone), Failures(quietAlone)));
                CHECK(IsPart(Changes(onwards), Changes(quietOnwards)));
            }
            reached[function.pszName] = static_cast<int>(alone.size() + onwards.size() - 2);
            if (setup.strAppender == EverythingLogged().strAppender)
            {
                const size_t cbBefore = logging.Bytes();
                work();
                CHECK(logging.Bytes() > cbBefore); // lines come again
            }
        }
        TellRow(pszWork, kLoggedFunctions, reached);
        CheckFaultRow(pszWork, reached);
    }

    /// One run for each call of the function, and a last one without a failure.
    template <typename Work>
    Answers Sweep(const FaultyFunction& function, bool bOnwards, Work work)
    {
        Answers answers;
        bool bReached = true;
        const int iStep = StepOver(function, work);
        const size_t uiHandle = NextHandle();
        for (int iFailing = 1 + static_cast<int>(Catch::getSeed() % iStep); bReached; iFailing += iStep)
        {
            CAPTURE(iFailing, bOnwards);
            RestoreWritten();
            {
                const FaultScope scope(nullptr, function, iFailing, bOnwards);
                s_faultPlan.bArmed = false;
                answers.push_back(work());
                bReached = FaultScope::Reached();
            }
            CHECK(log4cpp::NDC::getDepth() == 0);
        }
        CHECK(NextHandle() <= uiHandle); // less where the log's own file could not be opened again
        return answers;
    }

    /// How many calls of a function the work makes as logging stands.
    template <typename Work>
    int Calls(const FaultyFunction& function, Work work) const
    {
        RestoreWritten();
        const FaultScope scope(nullptr, function, 0, false);
        s_faultPlan.bArmed = false;
        work();
        return s_faultPlan.iCalls;
    }
    template <typename Work>
    int LoggedCalls(const FaultyFunction& function, Work work, const LogSetup& setup) const
    {
        const LoggingOn logging(setup);
        return Calls(function, work);
    }
    /// How many calls of a function a sweep goes on by: 1, which is each call, unless the work is long.
    template <typename Work>
    int StepOver(const FaultyFunction& function, Work work) const
    {
        const bool bEach =
            iMostRuns == 0 || loggingDisabled || GetEnvironmentVariableW(L"VELUI_FAULTS_AT_LENGTH", nullptr, 0) != 0;
        return bEach ? 1 : 1 + Calls(function, work) / iMostRuns;
    }

    /// The files that the work of some of these tests changes.
    void RestoreWritten() const
    {
        if (!bWrites)
        {
            return;
        }
        WriteFileBytes(DevModeFile(), BytesOf(PlainRecord().stuDevmode));
        WriteFileBytes(DefSettingFile(), "[PrintSetting]\r\nDefaultNoWaterPrint=0\r\n");
    }
    std::wstring DefSettingFile() const { return folder.File(L"QPS@VEL_defsetting.ini"); }

    /// How many runs a sweep makes at most while everything is logged, spread over the calls, from another first call
    /// with each seed; 0 for one run for each call. With VELUI_FAULTS_AT_LENGTH in the environment it is as with 0.
    int iMostRuns = 0;
    bool bWrites = false; ///< whether the work writes files
    const BuiltModule module;
    const TextsFrom texts{module.handle};
};
