// What the doctor finds of the resident client and its tools: a stand-in for the client in a Program Files folder of
// the test's own, and tools in a folder that stands for the spooler's.

#include "tests/velhost/DoctorFixture.h"
#include "tools/velhost/doctor/ClientCheck.h"
#include "tools/velhost/host/Files.h"

#include <catch2/catch_test_macros.hpp>

#include <process.h>

using namespace VelHost;

namespace
{

using Codes = std::vector<std::string>;

/// A client that is installed, and a driver's folder with the tools in it.
struct DoctorClientFixture : ClientFixture
{
    DoctorClientFixture() { MakeDriverFolder(drivers); }
    static void MakeDriverFolder(const std::wstring& strFolder)
    {
        MakeFolders(strFolder);
        PlaceStandIn(strFolder + L"\\velup.exe");
        PlaceStandIn(strFolder + L"\\veldel.exe");
    }
    Codes Look() const { return Look(resident.Program()); }
    Codes Look(const std::wstring& strClient) const
    {
        return CodesOf([&](Findings& findings) { CheckClient(strClient, {drivers + L"\\VelUI.dll"}, findings); });
    }

    std::wstring drivers = folder.File(L"drivers");
    const std::wstring name = L"VelDoctor" + std::to_wstring(GetCurrentProcessId()) + L".exe";
    DoctorClient resident{*this, name.c_str()};
};

} // namespace

TEST_CASE_METHOD(DoctorClientFixture, "the doctor is silent on a client that runs with its tools in place",
                 "[velhost][doctor]")
{
    resident.Start();
    CHECK(Look().empty());
    CHECK_FALSE(WouldStartClient(resident.Program()));
}

TEST_CASE_METHOD(DoctorClientFixture, "the doctor tells of a client that does not run, but for the user SYSTEM",
                 "[velhost][doctor]")
{
    CHECK(Look() == Codes{"CLI03"});
    CHECK(WouldStartClient(resident.Program()));
    const UserName system(L"SYSTEM");
    CHECK(Look().empty());
    CHECK_FALSE(WouldStartClient(resident.Program()));
}

TEST_CASE_METHOD(DoctorClientFixture, "the doctor tells of a client that runs from another folder", "[velhost][doctor]")
{
    const std::wstring strOther = folder.File(name);
    PlaceStayingStandIn(strOther);
    ChildProcess other(strOther, {});
    REQUIRE_FALSE(WaitForRun(strOther).empty());
    CHECK(Look() == Codes{"CLI04"});
    CHECK(WouldStartClient(resident.Program())); // the launcher does not count it either
    resident.Start();
    CHECK(Look() == Codes{"CLI04"});
    other.Terminate();
    other.Wait(INFINITE);
    CHECK(Look().empty());
}

TEST_CASE_METHOD(DoctorClientFixture, "the doctor tells of a client's program that is missing", "[velhost][doctor]")
{
    REQUIRE(DeleteFileW(resident.Program().c_str()));
    CHECK(Look() == Codes{"CLI01"});
    CHECK_FALSE(WouldStartClient(resident.Program())); // there is nothing to start
    REQUIRE(CreateDirectoryW(resident.Program().c_str(), nullptr));
    CHECK(Look() == Codes{"CLI01"});
    CHECK(Look(folder.File(std::wstring(300, L'x'))) == Codes{"CLI01"});
}

TEST_CASE_METHOD(DoctorClientFixture, "the doctor tells of a client's program that is none", "[velhost][doctor]")
{
    WriteFileBytes(resident.Program(), "");
    CHECK(Look() == Codes{"CLI02"});
    WriteFileBytes(resident.Program(), std::string(4096, 'x'));
    CHECK(Look() == Codes{"CLI02"});
}

TEST_CASE_METHOD(DoctorClientFixture, "the doctor tells of each tool that is missing beside the module",
                 "[velhost][doctor]")
{
    resident.Start();
    REQUIRE(DeleteFileW((drivers + L"\\velup.exe").c_str()));
    CHECK(Look() == Codes{"CLI05"});
    REQUIRE(DeleteFileW((drivers + L"\\veldel.exe").c_str()));
    CHECK(Look() == Codes{"CLI05", "CLI05"});
}

TEST_CASE_METHOD(DoctorClientFixture, "the doctor tells of a module whose folder has a blank in its path",
                 "[velhost][doctor]")
{
    resident.Start();
    drivers = folder.File(L"my drivers");
    MakeDriverFolder(drivers);
    CHECK(Look() == Codes{"CLI06"});
    // What comes of it: such a tool is started with its path in pieces.
    const std::wstring strTool = drivers + L"\\velup.exe";
    _wspawnl(_P_WAIT, strTool.c_str(), strTool.c_str(), static_cast<const wchar_t*>(nullptr));
    CHECK(CommandLineOfRun(strTool) == strTool); // no quotation marks around it
}
