// The test program as its own supervisor, on cases that are there for this alone. They are hidden, and run when they
// are named whole.

#include "tests/common/BuiltModule.h"
#include "tests/common/ChildProcess.h"

#include <catch2/catch_test_macros.hpp>

namespace
{

constexpr DWORD kPatience = 60000; // milliseconds

DWORD SelfTestOf(std::vector<std::wstring> parts)
{
    parts.insert(parts.begin(), L"--selftest");
    return ChildProcess(BesideTests(L"veltests.exe"), parts).Wait(kPatience);
}

} // namespace

TEST_CASE("supervised: passes", "[.]")
{
    CHECK(true);
}

TEST_CASE("supervised: fails", "[.]")
{
    CHECK(false);
}

TEST_CASE("supervised: ends its process well, and too early", "[.]")
{
    ExitProcess(0);
}

TEST_CASE("supervised: lets its process end badly, alone", "[.][alone]")
{
    static const struct AtEnd
    {
        ~AtEnd() { TerminateProcess(GetCurrentProcess(), 7); }
    } s_atEnd;
}

TEST_CASE("the selftest succeeds where all cases passed, and where a case is lost goes on in another process",
          "[selftest]")
{
    CHECK(SelfTestOf({L"supervised: passes"}) == 0);
    CHECK(SelfTestOf({L"supervised: fails"}) == 1);
    CHECK(SelfTestOf({L"supervised: ends its process well, and too early", L"supervised: passes"}) == 1);
    CHECK(SelfTestOf({L"supervised: lets its process end badly, alone"}) == 1);
    CHECK(SelfTestOf({L"no case has this in its name"}) == 1);
    CHECK(SelfTestOf({L"supervised: "}) == 1); // hidden ones are not found by a part
}
