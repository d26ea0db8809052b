// The log calls while logging is off, which is how the module runs without a usable configuration.

#include "diag/LogFilter.h"
#include "diag/LogSite.h"
#include "tests/common/TempFolder.h"

#include <catch2/catch_test_macros.hpp>

#include <cstdlib>

VELUI_SOURCE_MODULE("Test");

namespace
{

/// Sets an error state that no call may change, and checks it at the end.
struct KeptErrorState
{
    KeptErrorState()
    {
        SetLastError(5);
        errno = ENOENT;
        _doserrno = 17;
    }
    void Check() const
    {
        const DWORD dwLastError = GetLastError();
        const int iErrno = errno;
        const unsigned long ulDosErrno = _doserrno;
        CHECK(dwLastError == 5);
        CHECK(iErrno == ENOENT);
        CHECK(ulDosErrno == 17);
    }
};

int s_iCounted = 0;

int Count()
{
    return ++s_iCounted;
}

} // namespace

TEST_CASE("logging is off from the start", "[diag][off]")
{
    CHECK(loggingDisabled);
}

TEST_CASE("every predicate answers 0 while logging is off and keeps the error state", "[diag][off]")
{
    const KeptErrorState state;
    CHECK(IsDebugEnabled() + IsInfoEnabled() + IsNoticeEnabled() + IsWarnEnabled() + IsErrorEnabled() +
              IsCritEnabled() + IsAlertEnabled() + IsEmergEnabled() + IsFatalEnabled() ==
          0);
    KeptErrorState().Check();
    SetLastError(5);
    errno = ENOENT;
    _doserrno = 17;
    IsFatalEnabled();
    IsDebugEnabled();
    state.Check();
}

TEST_CASE("every log call returns at once while logging is off and keeps the error state", "[diag][off]")
{
    const KeptErrorState state;
    LogDebug("%s(%d) : %s", "a", 1, "b");
    LogInfo("%S", L"wide");
    LogWarning("%p", nullptr);
    LogError("%I64u", 1ull);
    LogFatal("%d", 1);
    LogParam("%s", "p");
    LogBufferDump("title", "bytes", 5, LogDebug);
    state.Check();
}

TEST_CASE("no message is allowed while logging is off", "[diag][off]")
{
    CHECK_FALSE(IsLogAllowed("VelUI_dll..DrvPrinterEvent"));
}

TEST_CASE("a trace begins with three null strings and ends without a frame, and keeps the error state", "[diag][off]")
{
    const KeptErrorState state;
    TraceFunctionBegin(nullptr, nullptr, nullptr);
    TraceFunctionEnd();
    TraceFunctionEnd();
    state.Check();
}

TEST_CASE("a missing, an empty and a null configuration leave logging off", "[diag][off]")
{
    const TempFolder folder;
    const std::wstring strFile = folder.File(L"absent.conf");
    CHECK(StartLogging("") == 0);
    CHECK(loggingDisabled);
    CHECK(StartLogging(nullptr) == 0);
    CHECK(loggingDisabled);
    CHECK(StartLogging(std::string(strFile.begin(), strFile.end()).c_str()) == 0);
    CHECK(loggingDisabled);
}

TEST_CASE("a log call after the end of logging is silent", "[diag][off]")
{
    StopLogging();
    StopLogging();
    CHECK(loggingDisabled);
    CHECK(IsFatalEnabled() == 0);
    SetLastError(5);
    LogFatal("%s", "late");
    const DWORD dwLastError = GetLastError();
    CHECK(dwLastError == 5);
}

TEST_CASE("no argument of a log line is built while logging is off", "[diag][off]")
{
    s_iCounted = 0;
    LOG_DEBUG("%d", Count());
    LOG_WARNING("%d", Count());
    LOG_ERROR("%d", Count());
    LOG_INFO("%d", Count());
    LOG_PARAM("%d", Count());
    CHECK(s_iCounted == 0);
}

TEST_CASE("a trace scope ends on every way out, an exception included", "[diag][off]")
{
    bool bCaught = false;
    try
    {
        const FunctionScope scope("Thrower");
        throw 7;
    }
    catch (int iValue)
    {
        bCaught = iValue == 7;
    }
    CHECK(bCaught);
}
