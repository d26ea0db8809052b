#include "state/CapabilitySnapshot.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/GuardedBuffer.h"
#include "tests/common/ImportHook.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

#include <algorithm>

using namespace VelUtility;

namespace
{

using Keys = std::vector<std::pair<std::wstring, std::wstring>>;

constexpr DWORD kNone = 0xFFFFFFFF;

int s_iFailing = 0; ///< which block fails to be allocated, counted from 1
void* (*s_pfnCalloc)(size_t, size_t) = nullptr;
void* FailOneCalloc(size_t uiCount, size_t uiSize)
{
    return --s_iFailing == 0 ? nullptr : s_pfnCalloc(uiCount, uiSize);
}

/// The text of a name's entry: at most uiWidth units.
std::wstring EntryText(const wchar_t* pszEntry, size_t uiWidth)
{
    return std::wstring(pszEntry, wcsnlen(pszEntry, uiWidth));
}

} // namespace

TEST_CASE_METHOD(ClientFixture, "a null buffer gives a list's count as it stands and reads no further key",
                 "[state][caps]")
{
    WriteCaps({{L"PapersCount", L"3"}});
    CHECK(GetComputerCaps(DC_PAPERS, nullptr) == 3);
    WriteCaps({{L"PapersCount", L"0"}});
    CHECK(GetComputerCaps(DC_PAPERS, nullptr) == 0);
}

TEST_CASE_METHOD(ClientFixture, "a list of identifiers is read as 16-bit numbers", "[state][caps]")
{
    WriteCaps({{L"PapersCount", L"3"}, {L"Papers0", L"9"}, {L"Papers1", L"70000"}, {L"Papers2", L"65535"}});
    const GuardedBuffer buffer(3 * sizeof(WORD));
    CHECK(GetComputerCaps(DC_PAPERS, buffer.Get()) == 3);
    CHECK(buffer.As<WORD>()[0] == 9);
    CHECK(buffer.As<WORD>()[1] == 4464); // 70000 cut to 16 bits
    CHECK(buffer.As<WORD>()[2] == 65535);
    CHECK(buffer.Intact());
}

TEST_CASE_METHOD(ClientFixture, "a missing identifier is 0xFFFF, those before hold and those behind are 0",
                 "[state][caps]")
{
    for (const auto& [iDevCap, strBase] : {std::pair<WORD, std::wstring>{DC_PAPERS, L"Papers"}, {DC_BINS, L"Bins"}})
    {
        CAPTURE(iDevCap);
        WriteCaps({{strBase + L"Count", L"4"}, {strBase + L"0", L"1"}, {strBase + L"1", L"9"}, {strBase + L"3", L"5"}});
        const GuardedBuffer buffer(4 * sizeof(WORD));
        CHECK(GetComputerCaps(iDevCap, buffer.Get()) == kNone);
        const WORD* const pw = buffer.As<WORD>();
        CHECK(pw[0] == 1);
        CHECK(pw[1] == 9);
        CHECK(pw[2] == 0xFFFF);
        CHECK(pw[3] == 0);
        CHECK(buffer.Intact());
    }
}

TEST_CASE_METHOD(ClientFixture, "three papers of which the last is missing give two and 0xFFFF", "[state][caps]")
{
    WriteCaps({{L"PapersCount", L"3"}, {L"Papers0", L"1"}, {L"Papers1", L"9"}});
    const GuardedBuffer buffer(3 * sizeof(WORD));
    CHECK(GetComputerCaps(DC_PAPERS, buffer.Get()) == kNone);
    CHECK(buffer.As<WORD>()[0] == 1);
    CHECK(buffer.As<WORD>()[1] == 9);
    CHECK(buffer.As<WORD>()[2] == 0xFFFF);
}

TEST_CASE_METHOD(ClientFixture, "pairs are read x then y", "[state][caps]")
{
    WriteCaps({{L"PaperSizeCount", L"2"},
               {L"PaperSizeX0", L"2100"},
               {L"PaperSizeY0", L"2970"},
               {L"PaperSizeX1", L"2159"},
               {L"PaperSizeY1", L"2794"},
               {L"ResolutionCount", L"1"},
               {L"ResolutionX0", L"600"},
               {L"ResolutionY0", L"1200"}});
    const GuardedBuffer sizes(2 * sizeof(POINT));
    CHECK(GetComputerCaps(DC_PAPERSIZE, sizes.Get()) == 2);
    CHECK(sizes.As<POINT>()[0].x == 2100);
    CHECK(sizes.As<POINT>()[0].y == 2970);
    CHECK(sizes.As<POINT>()[1].x == 2159);
    CHECK(sizes.As<POINT>()[1].y == 2794);
    const GuardedBuffer resolutions(2 * sizeof(LONG));
    CHECK(GetComputerCaps(DC_ENUMRESOLUTIONS, resolutions.Get()) == 1);
    CHECK(resolutions.As<LONG>()[0] == 600);
    CHECK(resolutions.As<LONG>()[1] == 1200);
}

TEST_CASE_METHOD(ClientFixture, "a missing x or y of a pair leaves the buffer untouched", "[state][caps]")
{
    const Keys all = {{L"ResolutionCount", L"2"},
                      {L"ResolutionX0", L"300"},
                      {L"ResolutionY0", L"300"},
                      {L"ResolutionX1", L"600"},
                      {L"ResolutionY1", L"600"}};
    for (const wchar_t* pszMissing : {L"ResolutionX0", L"ResolutionX1", L"ResolutionY0", L"ResolutionY1"})
    {
        Keys keys = all;
        keys.erase(std::find_if(keys.begin(), keys.end(), [&](const auto& key) { return key.first == pszMissing; }));
        WriteCaps(keys);
        const GuardedBuffer buffer(4 * sizeof(LONG), 0xEE);
        CHECK(GetComputerCaps(DC_ENUMRESOLUTIONS, buffer.Get()) == kNone);
        CHECK(std::all_of(buffer.Get(), buffer.Get() + buffer.Size(), [](BYTE by) { return by == 0xEE; }));
    }
}

TEST_CASE_METHOD(ClientFixture, "media types are full 32-bit numbers read straight into the buffer", "[state][caps]")
{
    WriteCaps({{L"MediaTypesCount", L"3"}, {L"MediaTypes0", L"65536"}, {L"MediaTypes1", L"257"}});
    const GuardedBuffer buffer(3 * sizeof(DWORD), 0xEE);
    CHECK(GetComputerCaps(DC_MEDIATYPES, buffer.Get()) == kNone);
    CHECK(buffer.As<DWORD>()[0] == 65536);
    CHECK(buffer.As<DWORD>()[1] == 257);
    CHECK(buffer.As<DWORD>()[2] == kNone);
}

TEST_CASE_METHOD(ClientFixture, "a stored -1 is taken as a missing key", "[state][caps]")
{
    WriteCaps({{L"MediaTypesCount", L"2"}, {L"MediaTypes0", L"-1"}, {L"MediaTypes1", L"1"}, {L"Copies", L"-1"}});
    const GuardedBuffer buffer(2 * sizeof(DWORD), 0xEE);
    CHECK(GetComputerCaps(DC_MEDIATYPES, buffer.Get()) == kNone);
    CHECK(buffer.As<DWORD>()[1] == 0xEEEEEEEE);
    CHECK(GetComputerCaps(DC_COPIES, nullptr) == kNone);
}

TEST_CASE_METHOD(ClientFixture, "a name of 64 wide characters fails at 62 and 63 and passes cut at 64 and more",
                 "[state][caps]")
{
    struct Row
    {
        WORD iDevCap;
        const wchar_t* pszBase;
    };
    for (const Row& row : {Row{DC_PAPERNAMES, L"PaperNames"}, Row{DC_MEDIAREADY, L"MediaReady"},
                           Row{DC_MEDIATYPENAMES, L"MediaTypeNames"}})
    {
        for (const size_t uiLength : {0u, 1u, 61u, 62u, 63u, 64u, 65u, 200u})
        {
            CAPTURE(row.iDevCap, uiLength);
            const std::wstring strBase = row.pszBase;
            const std::wstring strName(uiLength, L'n');
            WriteCaps({{strBase + L"Count", L"2"}, {strBase + L"0", strName}, {strBase + L"1", L"second"}});
            const GuardedBuffer buffer(2 * 64 * sizeof(wchar_t), 0xEE);
            const bool bFails = uiLength == 62 || uiLength == 63;
            CHECK(GetComputerCaps(row.iDevCap, buffer.Get()) == (bFails ? kNone : 2));
            const wchar_t* const psz = buffer.As<wchar_t>();
            CHECK(EntryText(psz, 64) == strName.substr(0, 64));
            if (bFails)
            {
                CHECK(psz[64] == 0xEEEE); // reading stopped
            }
            else
            {
                CHECK(EntryText(psz + 64, 64) == L"second");
            }
            CHECK(buffer.Intact());
        }
    }
}

TEST_CASE_METHOD(ClientFixture, "a bin name of 24 wide characters fails at 22 and 23 and passes cut at 24 and more",
                 "[state][caps]")
{
    for (const size_t uiLength : {0u, 1u, 21u, 22u, 23u, 24u, 25u, 100u})
    {
        CAPTURE(uiLength);
        const std::wstring strName(uiLength, L'b');
        WriteCaps({{L"BinNamesCount", L"1"}, {L"BinNames0", strName}});
        const GuardedBuffer buffer(24 * sizeof(wchar_t), 0xEE);
        const bool bFails = uiLength == 22 || uiLength == 23;
        CHECK(GetComputerCaps(DC_BINNAMES, buffer.Get()) == (bFails ? kNone : 1));
        CHECK(EntryText(buffer.As<wchar_t>(), 24) == strName.substr(0, 24));
        CHECK(buffer.Intact());
    }
}

TEST_CASE_METHOD(ClientFixture, "a missing name is an empty one and not a failure", "[state][caps]")
{
    WriteCaps({{L"PaperNamesCount", L"2"}, {L"PaperNames1", L"B5"}});
    const GuardedBuffer buffer(2 * 64 * sizeof(wchar_t), 0xEE);
    CHECK(GetComputerCaps(DC_PAPERNAMES, buffer.Get()) == 2);
    CHECK(buffer.As<wchar_t>()[0] == L'\0');
    CHECK(EntryText(buffer.As<wchar_t>() + 64, 64) == L"B5");
}

TEST_CASE_METHOD(ClientFixture, "Chinese names come back whole", "[state][caps]")
{
    WriteCaps({{L"PaperNamesCount", L"1"}, {L"PaperNames0", L"大16开"}});
    const GuardedBuffer buffer(64 * sizeof(wchar_t));
    CHECK(GetComputerCaps(DC_PAPERNAMES, buffer.Get()) == 1);
    CHECK(EntryText(buffer.As<wchar_t>(), 64) == L"大16开");
}

TEST_CASE_METHOD(ClientFixture, "a list of count 0 touches no buffer", "[state][caps]")
{
    WriteCaps(
        {{L"PapersCount", L"0"}, {L"PaperSizeCount", L"0"}, {L"PaperNamesCount", L"0"}, {L"MediaTypesCount", L"0"}});
    const GuardedBuffer buffer(8, 0xEE);
    for (const WORD iDevCap : {DC_PAPERS, DC_PAPERSIZE, DC_PAPERNAMES, DC_MEDIATYPES})
    {
        CAPTURE(iDevCap);
        CHECK(GetComputerCaps(iDevCap, buffer.Get()) == 0);
    }
    CHECK(buffer.As<unsigned __int64>()[0] == 0xEEEEEEEEEEEEEEEE);
}

TEST_CASE_METHOD(ClientFixture, "a code outside the snapshot is refused", "[state][caps]")
{
    WriteCaps({{L"PapersCount", L"1"}, {L"Papers0", L"9"}});
    for (const WORD iDevCap : {DC_FIELDS, DC_SIZE, DC_EXTRA, DC_VERSION, DC_DRIVER, DC_TRUETYPE, DC_STAPLE, DC_NUP})
    {
        CAPTURE(iDevCap);
        CHECK(GetComputerCaps(iDevCap, nullptr) == kNone);
    }
    CHECK(GetComputerCaps(0, nullptr) == kNone);
    CHECK(GetComputerCaps(36, nullptr) == kNone);
    CHECK(GetComputerCaps(0xFFFF, nullptr) == kNone);
}

TEST_CASE_METHOD(ClientFixture, "an absent file, section or key all look alike", "[state][caps]")
{
    CHECK(GetComputerCaps(DC_COPIES, nullptr) == kNone);
    WriteFileBytes(ConfigFile(), "[Printer]\r\nCopies=3\r\n");
    CHECK(GetComputerCaps(DC_COPIES, nullptr) == kNone);
    WriteCaps({{L"Duplex", L"1"}});
    CHECK(GetComputerCaps(DC_COPIES, nullptr) == kNone);
    CHECK(GetComputerCaps(DC_PAPERS, nullptr) == kNone);
}

TEST_CASE("without the client's folder every query is refused", "[state][caps]")
{
    const PrivateRegistry registry;
    CHECK(GetComputerCaps(DC_COPIES, nullptr) == kNone);
    const GuardedBuffer buffer(4, 0xEE);
    CHECK(GetComputerCaps(DC_PAPERS, buffer.Get()) == kNone);
    CHECK(buffer.As<DWORD>()[0] == 0xEEEEEEEE);
}

TEST_CASE_METHOD(ClientFixture, "nothing of the snapshot is cached", "[state][caps]")
{
    WriteCaps({{L"Copies", L"5"}});
    CHECK(GetComputerCaps(DC_COPIES, nullptr) == 5);
    WriteCaps({{L"Copies", L"99"}});
    CHECK(GetComputerCaps(DC_COPIES, nullptr) == 99);
}

TEST_CASE_METHOD(ClientFixture, "a short name behind a long one has nothing of it behind its terminator",
                 "[state][caps]")
{
    // Too long ones are cut to 64 and 24 characters, and fill their places.
    const auto [uiPaper, uiBin] = GENERATE(table<size_t, size_t>({{61, 21}, {64, 24}, {70, 30}}));
    CAPTURE(uiPaper, uiBin);
    WriteCaps({{L"PaperNamesCount", L"3"},
               {L"PaperNames0", std::wstring(uiPaper, L'l')},
               {L"PaperNames1", L"A4"},
               {L"PaperNames2", L""},
               {L"BinNamesCount", L"2"},
               {L"BinNames0", std::wstring(uiBin, L'l')},
               {L"BinNames1", L"b"}});
    const GuardedBuffer papers(3 * 64 * sizeof(wchar_t), 0xEE);
    CHECK(GetComputerCaps(DC_PAPERNAMES, papers.Get()) == 3);
    CHECK(std::wstring(papers.As<wchar_t>() + 64, 64) == L"A4" + std::wstring(62, L'\0'));
    CHECK(std::wstring(papers.As<wchar_t>() + 128, 64) == std::wstring(64, L'\0'));
    const GuardedBuffer bins(2 * 24 * sizeof(wchar_t), 0xEE);
    CHECK(GetComputerCaps(DC_BINNAMES, bins.Get()) == 2);
    CHECK(std::wstring(bins.As<wchar_t>() + 24, 24) == L"b" + std::wstring(23, L'\0'));
}

TEST_CASE_METHOD(ClientFixture, "a list that is whole in the file is refused when there is no memory to read it with",
                 "[state][caps]")
{
    WriteCaps({{L"PapersCount", L"1"},
               {L"Papers0", L"9"},
               {L"PaperSizeCount", L"1"},
               {L"PaperSizeX0", L"2100"},
               {L"PaperSizeY0", L"2970"},
               {L"PaperNamesCount", L"1"},
               {L"PaperNames0", L"A4"},
               {L"MediaTypesCount", L"1"},
               {L"MediaTypes0", L"1"}});
    struct Row
    {
        WORD iDevCap;
        int iBlocks; // that the answer needs
    };
    for (const Row& row : {Row{DC_PAPERS, 1}, Row{DC_PAPERSIZE, 2}, Row{DC_PAPERNAMES, 1}, Row{DC_MEDIATYPES, 0}})
    {
        for (int iFailing = 1; iFailing <= row.iBlocks + 1; ++iFailing)
        {
            CAPTURE(row.iDevCap, iFailing);
            const GuardedBuffer buffer(64 * sizeof(wchar_t), 0xEE);
            DWORD dwAnswer = 0;
            {
                const ImportHook hook(nullptr, "calloc", &FailOneCalloc);
                s_pfnCalloc = reinterpret_cast<decltype(s_pfnCalloc)>(hook.Original());
                s_iFailing = iFailing;
                dwAnswer = GetComputerCaps(row.iDevCap, buffer.Get());
            }
            const bool bRefused = iFailing <= row.iBlocks;
            CHECK(dwAnswer == (bRefused ? kNone : 1));
            CHECK((buffer.As<DWORD>()[0] == 0xEEEEEEEE) == bRefused);
        }
    }
}

TEST_CASE_METHOD(ClientFixture, "a count that no file holds is read up to the first missing number", "[state][caps]")
{
    // Straight into the caller's buffer, of which nothing behind the first entry may be touched.
    WriteCaps({{L"MediaTypesCount", L"4294967294"}});
    const GuardedBuffer buffer(sizeof(DWORD), 0xEE);
    CHECK(GetComputerCaps(DC_MEDIATYPES, nullptr) == 4294967294u);
    CHECK(GetComputerCaps(DC_MEDIATYPES, buffer.Get()) == kNone);
    CHECK(buffer.As<DWORD>()[0] == kNone);
    CHECK(buffer.Intact());
}
