#include "support/StaticTexts.h"

#include <catch2/catch_test_macros.hpp>

#include <cstdint>
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

namespace
{

// A number for each row's text, in the table's order: FNV-1a over its characters, 32 bits. They were not made of the
// table but of a list of its own, the comments of lmerr.h as Free Pascal 3.2.2 renders them in its unit JwaLmErr
// ("released November 2001"), read against a second one, the Java interface LMErr of JNA ("Windows SDK 6.0A"). Where
// the first list differs from the table:
//
//   code              the list has                        the table has, and why
//   2140              An internal Windows 2000 error ...  An internal Windows error ...: SDK 6.0A's words
//   2191              pause,continue, or stop             pause, continue, or stop: SDK 6.0A's, the blank was forgotten
//   2697              the first sentence                  all three sentences: SDK 6.0A's
//   2204, 2206,       "@W " in front                      no such mark: it tells the maker of the message file that the
//   2298, 2375                                            message is a warning, and is in no message
//   0, 5              nothing, another code's name        the texts that the table is known by
//
// The second list has three texts with a bracket or an equals sign spoilt by its conversion (2470, 2550, 2640); the
// first has those whole.
constexpr std::uint32_t kSums[] = {
    0x6D8303B0, 0x7085A12C, 0xD147D9E4, 0xCA530AC4, 0x7F7C01B0, 0x9F8DC162, 0x0429464A, 0x8BDBEF6E, 0xB735729A,
    0x5FE30FFF, 0x1B119805, 0xA65FEE36, 0x533F56A1, 0xBE23AC04, 0xA07F64EA, 0x9B636721, 0x42A9C3F3, 0x5972EC23,
    0x8B52110B, 0x2C131C6A, 0x10D01566, 0xEBB3EFBE, 0x70431D53, 0xF35EB042, 0xD3359888, 0x5DBC8330, 0xEA51BEFB,
    0x74443510, 0x24B6E7EC, 0x578C31CC, 0xD582E697, 0xE7A9BF27, 0x476396B6, 0x5EA85E9E, 0x4B83A311, 0xCE3D5689,
    0xE296CCC5, 0x800865D1, 0x1C9A3CDE, 0x0A3D0D14, 0x64D0228B, 0x4CC58A9C, 0x518F9E20, 0x67218E90, 0x17FD2BB7,
    0x685F2D62, 0x574575E3, 0x5D24890A, 0xDE2B0FF8, 0x33A42B58, 0x8C1A6B94, 0xA56675F8, 0x7434A233, 0x38FFBEF1,
    0xFF1A9A85, 0xF7CF3364, 0x4D5CCDF3, 0x16A403C7, 0xDE1AD2D5, 0x61A90BB8, 0xC137F83D, 0x43123CA3, 0x61DC0AB2,
    0x51B38C8C, 0x54BD525C, 0x1EC51E52, 0xA885D627, 0x8FD5508D, 0x99860922, 0x99860922, 0x09A0A2A4, 0x09A0A2A4,
    0x8C6E0151, 0x5FA9FB41, 0xDD6E9146, 0x8436C347, 0x38DA60D3, 0xC3ECCDFF, 0x78A89893, 0x097658CA, 0x48DBD672,
    0x71AB33AB, 0x8221C47B, 0x902E0892, 0x57044CB9, 0x396C09ED, 0x411025A3, 0xA932403E, 0xEAE0F37D, 0xFF578578,
    0x5845E6D9, 0xEFF3B723, 0x6A68DC0D, 0x3909FBBC, 0x079A9F10, 0xF7FE600C, 0x66307D2A, 0x12D6217F, 0x1A4CB776,
    0x1757DFF1, 0x03604B90, 0x561C486F, 0x6E8FA5C2, 0x504DE40E, 0x090FECBE, 0x3140B797, 0xAB5044E7, 0xBA45D6EF,
    0x327266E1, 0x4AD1563D, 0x36DD6A6A, 0x173D2F5F, 0x900402BE, 0x1FAA352B, 0xF06FAC8F, 0x0C81CBA5, 0xD7FD7318,
    0xA2DF9B4A, 0xA84E6F8E, 0x51B13689, 0xBC848F94, 0x705D5C78, 0x1DB2C3EA, 0x1BAC45CB, 0xE0C2388E, 0xF0EF270A,
    0xF289AD49, 0x02FD7AE8, 0x442DFD22, 0x6159A754, 0xDBB262A6, 0x08214524, 0xA017F74E, 0x58EA1A23, 0x9A154512,
    0xB2F8DBE8, 0x6520421C, 0xF1276262, 0x8BA9C947, 0x8C03F225, 0x936CE005, 0x050A6A9F, 0xC687B8C0, 0xAC1401B5,
    0x9431B79D, 0xC0EA32E9, 0x37C98361, 0x8BB1AC58, 0x88524E7E, 0x99B5EA1F, 0xEA0D8CFA, 0xD8E51059, 0xAEC6DCB4,
    0x74BB536F, 0x8361DA6F, 0xFA833B06, 0xC973CDAA, 0x05AE06A1, 0x2469D260, 0x9BDC3435, 0xCEA420D9, 0x7F5A1480,
    0xDA5FDF9E, 0xF345630E, 0x7FBC0994, 0x2920584A, 0x58E2ED01, 0xD83A71FF, 0x69EC4097, 0x8AA3C377, 0x66C67314,
    0x4C2B9590, 0xE026FCCC, 0xD8EE43BA, 0x4E990854, 0x7D8B68D8, 0x56F04DE2, 0xA8B47488, 0xD7CC9103, 0x7B6B7440,
    0xD8834B6D, 0x362CA738, 0x57AD0155, 0xEDF2C9CB, 0x81F82D96, 0x605833EE, 0x3973CF03, 0x36648028, 0xC93C2CBB,
    0x841CB316, 0xAD10FF8B, 0x5C79E403, 0x1EA0AF51, 0x955A41D6, 0xC8EF40C1, 0x74A0BD05, 0x107D12DA, 0x300F099E,
    0x9CEEEDCE, 0x9494A339, 0x1F2504B8, 0xF2BEC82F, 0x54795C32, 0x36BBF050, 0x39720F03, 0x0777DFC0, 0xFC158082,
    0x0AE05812, 0xE9AD6944, 0xB1E9CE6E, 0x5A401DCE, 0x78B795B6, 0x7CF29978, 0x11BC366C, 0x698A4013, 0x08625A93,
    0x6FECD20B, 0x8F1C1199, 0xA9B6727E, 0x4211D249, 0x5F4E18F2, 0x31E84647, 0xB4BEBD27, 0xC067356E, 0xE3435192,
    0xAB07E92E, 0x04282C45, 0x2484BFDB, 0xED0A2646, 0x6FCD6A8F, 0x549AEE92, 0x1FDE59CE, 0x506C6B33, 0x92D219CC,
    0x390C8820, 0x390C8820, 0xDA9DF6BA, 0x3D45AA8F, 0xF17391ED, 0xCCD77ABE, 0x2052384A, 0x4EB82754, 0xA02F14F6,
    0xDDF3E739, 0x42D13089, 0xBEA816D9, 0x28C40CBF, 0x7E0CB37D, 0x0AC87519, 0x93D17F9D, 0x9297931F, 0x01391BF1,
    0xE6F81424, 0x2AA5BA3C, 0x4E7831FC, 0xED256384, 0x3A702631, 0x09A66B7F, 0x8ADF0483, 0xF24E2CA9, 0x617B48B4,
    0x378DC2A9, 0x982E581A, 0xC99BAA8D, 0x0499F347, 0x9E6F5D30, 0x7F102283, 0xF992A8E5, 0x4815A39E, 0x431D29F2,
    0xDF5C0DBB, 0x14844B53, 0xAF1D6BD1, 0x04C0F8D9, 0x8A1703FC, 0x07AE5262, 0xEB16BB72, 0x6700D8EC, 0x4F2E9169,
    0x4F2E9169, 0xD6D26678, 0x23F118A6, 0x6DD34809, 0xECA62993, 0x17CF7BDA, 0x633C8E8F, 0xCAB2B05D, 0x38BCFF98,
    0xA7456666, 0xC1B0705A, 0xFFFD44EE, 0x384F5CFA, 0xCF9D95A7, 0xEBAC30E1, 0x8B2AAB56, 0xB4C24A20, 0x7418AB8F,
    0xEC3B1DF7, 0xBA123154, 0x61CB6AB5, 0xAD70FE75, 0x6650D7EA, 0x6F6716A4, 0xE6BF5BD0, 0x4606B530, 0xA9970D2E,
    0x341DBC32, 0x4A90BB00, 0x70BFC98C, 0xB7D580F8, 0xC5735623,
};

std::uint32_t SumOf(const wchar_t* pszText)
{
    std::uint32_t uiSum = 0x811C9DC5u;
    for (; *pszText != L'\0'; ++pszText)
    {
        uiSum = (uiSum ^ *pszText) * 0x01000193u;
    }
    return uiSum;
}

} // namespace

TEST_CASE("every network error text is worded as the published lists have it", "[support][texts]")
{
    REQUIRE(std::size(kSums) == std::size(Win32::kNetworkErrorTexts));
    for (size_t i = 0; i < std::size(kSums); ++i)
    {
        CAPTURE(Win32::kNetworkErrorTexts[i].code);
        CHECK(SumOf(Win32::kNetworkErrorTexts[i].text) == kSums[i]);
    }
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
