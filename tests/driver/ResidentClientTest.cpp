// The resident client's launcher, through the built DLL: each test loads the module anew, and so starts from the
// unknown state. The client's program is a stand-in in a Program Files folder of the test's own.

#include "diag/CallStack.h"
#include "driver/ResidentClient.h"
#include "tests/common/ChildProcess.h"
#include "tests/common/Handles.h"
#include "tests/common/LogLines.h"
#include "tests/driver/LauncherFixture.h"

#include <memory>
#include <vector>

namespace
{

int s_iOthers = 0;

/// Counts a call of any other function, and answers 0. Its arguments are of no matter: the caller clears them away.
INT_PTR WINAPI CountOther()
{
    ++s_iOthers;
    return 0;
}

} // namespace

TEST_CASE_METHOD(LauncherFixture, "the first check starts the client with its quoted path as the only argument",
                 "[driver][client]")
{
    PlaceStandIn(strClient);
    Check();
    CHECK(CommandLineOfRun(strClient) == L"\"" + strClient + L"\"");
    CHECK(s_iWalks == 1);
    CHECK(s_iVersions == 0);
}

TEST_CASE_METHOD(LauncherFixture, "the second check finds the client by a walk and the third does no walk",
                 "[driver][client]")
{
    PlaceStandIn(strClient);
    Check();
    WaitForRunning(strClient, 1);
    ResetCounts();
    Check();
    CHECK(s_iWalks == 1);
    CHECK(Running(strClient) == 1);
    ResetCounts();
    Check();
    CHECK(s_iWalks == 0);
    CHECK(s_iUserNames == 1);
    CHECK(s_iVersions == 1);
    CHECK(Running(strClient) == 1);
}

TEST_CASE_METHOD(LauncherFixture, "a check of a known client makes two platform calls and no other", "[driver][client]")
{
    PlaceStandIn(strClient);
    Check();
    WaitForRunning(strClient, 1);
    Check();
    ResetCounts();
    s_iOthers = 0;
    // All else that the module's code can reach the platform by on this road.
    std::vector<std::unique_ptr<ImportHook>> others;
    for (const char* pszFunction : {"SHGetFolderPathW",
                                    "OpenProcessToken",
                                    "LookupPrivilegeValueW",
                                    "AdjustTokenPrivileges",
                                    "CloseHandle",
                                    "Process32FirstW",
                                    "Process32NextW",
                                    "Module32FirstW",
                                    "Module32NextW",
                                    "GetFullPathNameW",
                                    "_waccess",
                                    "_wspawnv",
                                    "RegOpenKeyExW",
                                    "RegQueryValueExW",
                                    "CreateMutexW",
                                    "WaitForSingleObject",
                                    "FormatMessageW",
                                    "GetPrivateProfileIntW",
                                    "GetPrivateProfileStringW",
                                    "WritePrivateProfileStringW",
                                    "GetCurrentProcess",
                                    "GetModuleFileNameW",
                                    "GetComputerNameW",
                                    "_wfopen",
                                    "malloc"})
    {
        others.push_back(std::make_unique<ImportHook>(module.handle, pszFunction, &CountOther));
    }
    for (int i = 0; i < 10; ++i)
    {
        Check();
    }
    others.clear();
    CHECK(s_iUserNames == 10);
    CHECK(s_iVersions == 10);
    CHECK(s_iWalks == 0);
    CHECK(s_iOthers == 0);
}

TEST_CASE_METHOD(LauncherFixture, "a client that ended is found dead and started again in the same call",
                 "[driver][client]")
{
    PlaceStandIn(strClient);
    Check();
    WaitForRunning(strClient, 1);
    Check();
    StopClient(strClient);
    // The platform answers for a dead id for up to two seconds more; the check goes by that answer.
    const DWORD dwStart = GetTickCount();
    do
    {
        CheckThatStarts();
        Sleep(50);
    } while (!PathExists(strClient + L".ran") && GetTickCount() - dwStart < 10000);
    CHECK(CommandLineOfRun(strClient) == L"\"" + strClient + L"\"");
    WaitForRunning(strClient, 1);
}

TEST_CASE_METHOD(LauncherFixture, "a client that was found dead is not asked for again", "[driver][client]")
{
    PlaceStandIn(strClient);
    Check();
    WaitForRunning(strClient, 1);
    Check();
    StopClient(strClient);
    REQUIRE(DeleteFileW(strClient.c_str())); // so that none is started
    const DWORD dwStart = GetTickCount();
    do // as above, until the answer has come
    {
        Sleep(50);
        ResetCounts();
        Check();
    } while (s_iWalks == 0 && GetTickCount() - dwStart < 10000);
    CHECK(s_iVersions == 1);
    ResetCounts();
    Check();
    CHECK(s_iVersions == 0);
    CHECK(s_iWalks == 1);
}

TEST_CASE_METHOD(LauncherFixture, "a client of the same name from another folder does not count", "[driver][client]")
{
    const std::wstring strOther = folder.File(L"velprintd.exe");
    PlaceStandIn(strOther);
    ChildProcess other(strOther, {});
    REQUIRE_FALSE(WaitForRun(strOther).empty());
    PlaceStandIn(strClient);
    Check();
    CHECK_FALSE(WaitForRun(strClient).empty());
    StopClient(strOther);
}

TEST_CASE_METHOD(LauncherFixture, "the user SYSTEM starts nothing and walks over nothing", "[driver][client]")
{
    PlaceStandIn(strClient);
    const UserName system(L"SYSTEM");
    Check();
    Check();
    CHECK(s_iUserNames == 2);
    CHECK(s_iWalks == 0);
    CHECK(s_iVersions == 0);
    CHECK(WaitForRun(strClient, 300).empty());
}

TEST_CASE_METHOD(LauncherFixture, "the user system in small letters starts the client", "[driver][client]")
{
    PlaceStandIn(strClient);
    const UserName system(L"system");
    Check();
    CHECK_FALSE(WaitForRun(strClient).empty());
}

TEST_CASE_METHOD(LauncherFixture, "a missing client starts nothing and the query answers as ever", "[driver][client]")
{
    WriteCaps({{L"Copies", L"7"}});
    CHECK(module.DeviceCapabilities(nullptr, nullptr, DC_COPIES, nullptr, nullptr) == 7);
    CHECK(module.DeviceCapabilities(nullptr, nullptr, DC_FIELDS, nullptr, nullptr) == 0xFFFFFFFF);
    CHECK(s_iWalks == 2); // each check looks anew
}

TEST_CASE_METHOD(LauncherFixture, "a user whose name can't be had starts nothing", "[driver][client]")
{
    PlaceStandIn(strClient);
    const UserName nobody(nullptr);
    Check();
    CHECK(s_iWalks == 0);
    CHECK(WaitForRun(strClient, 300).empty());
}

TEST_CASE_METHOD(LauncherFixture, "a failing walk starts nothing and the query answers as ever", "[driver][client]")
{
    PlaceStandIn(strClient);
    s_bFailWalk = true;
    Check();
    CHECK(WaitForRun(strClient, 300).empty());
    s_bFailWalk = false;
    CheckThatStarts();
    CHECK_FALSE(WaitForRun(strClient).empty());
}

TEST_CASE_METHOD(LauncherFixture, "a client's file that is no program raises nothing", "[driver][client]")
{
    WriteFileBytes(strClient, "not a program");
    Check();
    Check();
    CHECK(s_iWalks == 2);
}

TEST_CASE_METHOD(LauncherFixture, "DrvSplDeviceCaps checks for no client", "[driver][client]")
{
    PlaceStandIn(strClient);
    module.SplDeviceCaps(nullptr, nullptr, DC_PAPERNAMES, nullptr, 0, nullptr);
    CHECK(s_iUserNames == 0);
    CHECK(s_iWalks == 0);
}

TEST_CASE_METHOD(LauncherFixture, "1,000 checks with a known client lose no handle", "[driver][client][once]")
{
    PlaceStandIn(strClient);
    Check();
    WaitForRunning(strClient, 1);
    Check();
    const size_t uiBefore = NextHandle();
    for (int i = 0; i < 1000; ++i)
    {
        Check();
    }
    CHECK(NextHandle() == uiBefore);
}

TEST_CASE("a failed start is logged only on a thread inside a traced function", "[driver][client][log]")
{
    PrivateRegistry registry;
    const TempFolder folder;
    registry.SetText(L"Software\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir", folder.Path());
    const UserName user(L"mei");
    const LoggingOn logging{"OutputParam"};
    CheckResidentClient();
    CHECK(logging.Lines().empty());
    {
        const TraceScope scope("Outer");
        CheckResidentClient();
        CheckResidentClient();
    }
    // The path was built by the first check of this process, which may have been another test's.
    const std::vector<std::string> lines = Masked(logging);
    REQUIRE(lines.size() == 2);
    const std::string strHead = "FATAL - VelUI(#)Failed to launch apps. err = ";
    const std::string strTail = "\\Vel-soft\\Client\\VelprintD.exe";
    for (const std::string& strLine : lines)
    {
        CHECK(strLine.substr(0, strHead.size()) == strHead);
        CHECK(strLine.substr(strLine.size() - strTail.size()) == strTail);
    }
}

namespace
{

BOOL WINAPI ThrowOther(LPWSTR, LPDWORD)
{
    throw 1;
}

} // namespace

TEST_CASE("an exception of another kind ends a check, and leaves a line inside a traced function",
          "[driver][client][log]")
{
    const ImportHook hook(nullptr, "GetUserNameW", &ThrowOther);
    const LoggingOn logging{"OutputParam"};
    {
        const TraceScope scope("Outer");
        CheckResidentClient();
    }
    const std::vector<std::string> lines = Masked(logging);
    REQUIRE(lines.size() == 1);
    CHECK(lines[0] == "FATAL - VelUI(#) : Caught unexpected C++ exception.");
}

TEST_CASE("a process that is gone is not alive, and leaves a line inside a traced function", "[driver][client][log]")
{
    CHECK(IsClientProcessAlive(GetCurrentProcessId()));
    const LoggingOn logging;
    const TraceScope scope("Outer");
    CHECK_FALSE(IsClientProcessAlive(0x7FFFFFF0));
    const std::vector<std::string> lines = Masked(logging);
    REQUIRE(lines.size() == 1);
    CHECK(lines[0] == "ERROR - VelUI(#) : ::GetLastError() = 87");
}
