#include "tools/velhost/host/CapsQuery.h"

#include <catch2/catch_test_macros.hpp>

#include <cstring>

using namespace VelHost;

namespace
{

/// A printer with one list of so many bytes, written when there is room.
AskCaps ListOf(const void* pData, size_t cbData, DWORD dwCount, DWORD dwFillAnswer)
{
    return [=](WORD, void* pvRoom) {
        if (pvRoom == nullptr)
        {
            return dwCount;
        }
        std::memcpy(pvRoom, pData, cbData);
        return dwFillAnswer;
    };
}

AskCaps ListOf(const void* pData, size_t cbData, DWORD dwCount)
{
    return ListOf(pData, cbData, dwCount, dwCount);
}

} // namespace

TEST_CASE("every code from 0 to 36 has its row in order", "[velhost][caps]")
{
    REQUIRE(CapsCodes().size() == 37);
    for (size_t i = 0; i < CapsCodes().size(); ++i)
    {
        CHECK(CapsCodes()[i].wCode == i);
    }
    CHECK(FindCapsCode(DC_PAPERNAMES).form == CapsForm::WideNames);
    CHECK(FindCapsCode(999).form == CapsForm::Unspecified);
}

TEST_CASE("lists are decoded in their element forms", "[velhost][caps]")
{
    const WORD papers[] = {9, 257};
    CHECK(DecodeCaps(QueryCaps(ListOf(papers, sizeof(papers), 2), FindCapsCode(DC_PAPERS))) ==
          std::vector<std::string>{"9", "257"});
    const POINT sizes[] = {{2100, 2970}, {-5, 7}};
    CHECK(DecodeCaps(QueryCaps(ListOf(sizes, sizeof(sizes), 2), FindCapsCode(DC_PAPERSIZE))) ==
          std::vector<std::string>{"210.0 x 297.0 mm", "-0.5 x 0.7 mm"});
    const LONG resolutions[] = {600, 1200};
    CHECK(DecodeCaps(QueryCaps(ListOf(resolutions, sizeof(resolutions), 1), FindCapsCode(DC_ENUMRESOLUTIONS))) ==
          std::vector<std::string>{"600 x 1200 dpi"});
    const DWORD types[] = {0xFFFFFFFE};
    CHECK(DecodeCaps(QueryCaps(ListOf(types, sizeof(types), 1), FindCapsCode(DC_MEDIATYPES))) ==
          std::vector<std::string>{"4294967294"});
}

TEST_CASE("a name that fills its cell without a terminator is decoded whole", "[velhost][caps]")
{
    wchar_t szNames[2][24] = {L"自动选择"};
    std::fill(std::begin(szNames[1]), std::end(szNames[1]), L'x');
    const CapsAnswer answer = QueryCaps(ListOf(szNames, sizeof(szNames), 2), FindCapsCode(DC_BINNAMES));
    CHECK(DecodeCaps(answer) == std::vector<std::string>{"自动选择", std::string(24, 'x')});
    CHECK(answer.strNote.empty());
}

TEST_CASE("packed extents are shown in millimetres", "[velhost][caps]")
{
    const AskCaps ask = [](WORD, void*) { return MAKELONG(2970, 4200); };
    CHECK(DecodeCaps(QueryCaps(ask, FindCapsCode(DC_MAXEXTENT))) == std::vector<std::string>{"297.0 x 420.0 mm"});
}

TEST_CASE("bytes written behind the room are counted", "[velhost][caps]")
{
    const WORD papers[] = {1, 2, 3};
    const CapsAnswer answer = QueryCaps(ListOf(papers, sizeof(papers), 2), FindCapsCode(DC_PAPERS));
    CHECK(answer.cbOverrun == sizeof(WORD));
    CHECK(answer.strNote == "wrote 2 bytes behind the room");
}

TEST_CASE("what goes wrong with a list is noted", "[velhost][caps]")
{
    const WORD papers[] = {1, 2};
    const CapsCode code = FindCapsCode(DC_PAPERS);
    const CapsAnswer refused = QueryCaps(ListOf(papers, sizeof(papers), 2, kRefused), code);
    CHECK(refused.strNote == "the list is refused when asked with room");
    CHECK(refused.entries.empty());
    CHECK(QueryCaps(ListOf(papers, sizeof(papers), 2, 1), code).strNote ==
          "the list has 1 entries when asked with room");
    CHECK(QueryCaps(ListOf(papers, 0, 2), code).strNote == "no entry was written");
    CHECK(QueryCaps(ListOf(papers, 0, 0x7FFFFFFF), code).strNote == "too many entries, not fetched");
}

TEST_CASE("a refused code and an empty list are asked only once", "[velhost][caps]")
{
    for (const DWORD dwCount : {kRefused, DWORD{0}})
    {
        int iCalls = 0;
        const AskCaps ask = [&iCalls, dwCount](WORD, void* pvRoom) {
            ++iCalls;
            CHECK(pvRoom == nullptr);
            return dwCount;
        };
        CHECK(QueryCaps(ask, FindCapsCode(DC_PAPERS)).entries.empty());
        CHECK(iCalls == 1);
    }
}
