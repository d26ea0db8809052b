#include "tests/common/BuiltModule.h"
#include "tests/common/ChildProcess.h"

#include <catch2/catch_test_macros.hpp>

namespace
{

constexpr DWORD kPatience = 30000; // milliseconds

DWORD ExitCodeOf(const std::vector<std::wstring>& arguments)
{
    ChildProcess program(BesideTests(L"velhost.exe"), arguments);
    return program.Wait(kPatience);
}

} // namespace

TEST_CASE("velhost ends with 0 after help, 1 when a command fails and 2 when it is called wrongly",
          "[velhost][program]")
{
    CHECK(ExitCodeOf({L"--help"}) == 0);
    CHECK(ExitCodeOf({L"convert", L"--help"}) == 0);
    CHECK(ExitCodeOf({L"caps", L"--printer", L"no such printer"}) == 1);
    CHECK(ExitCodeOf({L"caps", L"--module", L"nothing.dll"}) == 1);
    CHECK(ExitCodeOf({L"install", L"--module", L"C:\\windows\\system32\\version.dll"}) == 1);
    CHECK(ExitCodeOf({}) == 2);
    CHECK(ExitCodeOf({L"polish"}) == 2);
    CHECK(ExitCodeOf({L"caps", L"--colour"}) == 2);
    CHECK(ExitCodeOf({L"convert", L"--mode", L"1", L"--save", L"x"}) == 2);
}

TEST_CASE("velhost convert fails where the module refuses", "[velhost][program]")
{
    CHECK(ExitCodeOf({L"convert", L"--mode", L"1", L"--out-size", L"220", L"--out-extra", L"12"}) == 1);
    CHECK(ExitCodeOf({L"convert", L"--mode", L"3"}) == 1);
}
