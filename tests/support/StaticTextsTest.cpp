#include "support/StaticTexts.h"

#include <catch2/catch_test_macros.hpp>

#include <iterator>
#include <map>
#include <string>
#include <vector>

TEST_CASE("the network error texts stand in their order, 311 of them", "[support][texts]")
{
    struct Run
    {
        DWORD dwFirst;
        DWORD dwLast;
    };
    constexpr Run kRuns[] = {
        {2102, 2107}, {2114, 2119}, {2121, 2123}, {2127, 2127}, {2131, 2131}, {2136, 2144}, {2146, 2147}, {2149, 2168},
        {2180, 2194}, {2200, 2207}, {2209, 2212}, {2214, 2217}, {2219, 2252}, {2270, 2289}, {2294, 2295}, {2297, 2300},
        {2310, 2312}, {2314, 2321}, {2331, 2335}, {2337, 2338}, {2340, 2343}, {2351, 2351}, {2354, 2354}, {2356, 2357},
        {2362, 2362}, {2370, 2375}, {2377, 2383}, {2385, 2385}, {2389, 2389}, {2391, 2392}, {2400, 2405}, {2430, 2434},
        {2440, 2440}, {2450, 2458}, {2460, 2467}, {2470, 2470}, {2480, 2484}, {2500, 2519}, {2550, 2550}, {2610, 2641},
        {2660, 2683}, {2690, 2698}, {2701, 2705},
    };
    std::vector<DWORD> expected = {0};
    for (const Run& run : kRuns)
    {
        for (DWORD dwCode = run.dwFirst; dwCode <= run.dwLast; ++dwCode)
        {
            expected.push_back(dwCode);
        }
    }
    expected.push_back(5);
    REQUIRE(expected.size() == 311);
    REQUIRE(std::size(Win32::kNetworkErrorTexts) == 311);
    for (size_t i = 0; i < expected.size(); ++i)
    {
        CAPTURE(i);
        CHECK(Win32::kNetworkErrorTexts[i].code == expected[i]);
        REQUIRE(Win32::kNetworkErrorTexts[i].text != nullptr);
        CHECK(Win32::kNetworkErrorTexts[i].text[0] != L'\0');
    }
}

TEST_CASE("the telling network error texts are worded to the letter", "[support][texts]")
{
    const std::map<DWORD, std::wstring> telling = {
        {0, L"Success"},
        {2102, L"The workstation driver is not installed."},
        {2103, L"The server could not be located."},
        {2104, L"An internal error occurred.  The network cannot access a shared memory segment."},
        {2105, L"A network resource shortage occurred ."},
        {2703, L"Password is too long"},
        {2705, L"Password doesn't meet the requirements of the filter dll's"},
        {5, L"The user does not have access to the requested information."},
    };
    size_t uiFound = 0;
    for (const Win32::NetworkErrorText& row : Win32::kNetworkErrorTexts)
    {
        const auto found = telling.find(row.code);
        if (found != telling.end())
        {
            CAPTURE(row.code);
            CHECK(std::wstring(row.text) == found->second);
            ++uiFound;
        }
    }
    CHECK(uiFound == telling.size());
}

TEST_CASE("the print environments are seven names and a closing null", "[support][texts]")
{
    const std::vector<std::wstring> expected = {L"Windows NT x86",    L"Windows IA64",         L"Windows x64",
                                                L"Windows NT R4000",  L"Windows NT Alpha_AXP", L"Windows 4.0",
                                                L"Windows NT PowerPC"};
    REQUIRE(std::size(Win32::kPrintEnvironments) == expected.size() + 1);
    for (size_t i = 0; i < expected.size(); ++i)
    {
        CHECK(Win32::kPrintEnvironments[i] == expected[i]);
    }
    CHECK(Win32::kPrintEnvironments[expected.size()] == nullptr);
}
