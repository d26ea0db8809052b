#include "tests/common/BuiltModule.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/GuardedBuffer.h"

#include <catch2/catch_test_macros.hpp>

namespace
{

constexpr DWORD kRefused = 0xFFFFFFFF;

struct SplFixture : ClientFixture
{
    SplFixture() { REQUIRE(module.SplDeviceCaps != nullptr); }
    DWORD Ask(WORD wCap, void* pvOutput, DWORD cchBuf) const
    {
        wchar_t szPrinter[] = L"VelPrinter";
        return module.SplDeviceCaps(nullptr, szPrinter, wCap, pvOutput, cchBuf, nullptr);
    }
    /// Writes dwCount names of papers, and as many of loaded media and of bins.
    void WriteNames(DWORD dwCount)
    {
        std::vector<std::pair<std::wstring, std::wstring>> keys = {
            {L"PaperNamesCount", std::to_wstring(dwCount)},
            {L"MediaReadyCount", std::to_wstring(dwCount)},
            {L"BinNamesCount", std::to_wstring(dwCount)},
        };
        for (DWORD i = 0; i < dwCount; ++i)
        {
            keys.emplace_back(L"PaperNames" + std::to_wstring(i), L"Paper " + std::to_wstring(i));
            keys.emplace_back(L"MediaReady" + std::to_wstring(i), L"Media " + std::to_wstring(i));
            keys.emplace_back(L"BinNames" + std::to_wstring(i), L"Bin " + std::to_wstring(i));
        }
        WriteCaps(keys);
    }

    BuiltModule module;
};

} // namespace

TEST_CASE_METHOD(SplFixture, "a room of 63 characters is refused although the buffer is valid", "[driver][splcaps]")
{
    WriteNames(1);
    const GuardedBuffer buffer(64 * sizeof(wchar_t), 0xEE);
    CHECK(Ask(DC_PAPERNAMES, buffer.Get(), 63) == kRefused);
    CHECK(buffer.As<WORD>()[0] == 0xEEEE);
}

TEST_CASE_METHOD(SplFixture, "a null buffer is refused whatever the room", "[driver][splcaps]")
{
    WriteNames(1);
    CHECK(Ask(DC_PAPERNAMES, nullptr, 1000) == kRefused);
}

TEST_CASE_METHOD(SplFixture, "three names need a room of 384 characters, twice what they fill", "[driver][splcaps]")
{
    WriteNames(3);
    // What is really written is 3 x 64 characters; the guard page stands right behind them.
    const GuardedBuffer buffer(3 * 64 * sizeof(wchar_t), 0xEE);
    CHECK(Ask(DC_PAPERNAMES, buffer.Get(), 383) == kRefused);
    CHECK(buffer.As<WORD>()[0] == 0xEEEE);
    CHECK(Ask(DC_PAPERNAMES, buffer.Get(), 384) == 3);
    CHECK(std::wstring(buffer.As<wchar_t>()) == L"Paper 0");
    CHECK(std::wstring(buffer.As<wchar_t>() + 128) == L"Paper 2");
    CHECK(buffer.Intact());
}

TEST_CASE_METHOD(SplFixture, "loaded media are answered like papers", "[driver][splcaps]")
{
    WriteNames(2);
    const GuardedBuffer buffer(2 * 64 * sizeof(wchar_t), 0xEE);
    CHECK(Ask(DC_MEDIAREADY, buffer.Get(), 255) == kRefused);
    CHECK(Ask(DC_MEDIAREADY, buffer.Get(), 256) == 2);
    CHECK(std::wstring(buffer.As<wchar_t>() + 64) == L"Media 1");
}

TEST_CASE_METHOD(SplFixture, "one name passes at 128 and is refused at 64 and 127", "[driver][splcaps]")
{
    WriteNames(1);
    const GuardedBuffer buffer(64 * sizeof(wchar_t), 0xEE);
    CHECK(Ask(DC_PAPERNAMES, buffer.Get(), 64) == kRefused);
    CHECK(Ask(DC_PAPERNAMES, buffer.Get(), 127) == kRefused);
    CHECK(Ask(DC_PAPERNAMES, buffer.Get(), 128) == 1);
}

TEST_CASE_METHOD(SplFixture, "only the names of papers and of loaded media pass", "[driver][splcaps]")
{
    WriteNames(1);
    const GuardedBuffer buffer(64 * sizeof(wchar_t), 0xEE);
    for (WORD wCap = 0; wCap <= 36; ++wCap)
    {
        if (wCap != DC_PAPERNAMES && wCap != DC_MEDIAREADY)
        {
            CAPTURE(wCap);
            CHECK(Ask(wCap, buffer.Get(), 100000) == kRefused);
        }
    }
    CHECK(buffer.As<WORD>()[0] == 0xEEEE);
}

TEST_CASE_METHOD(SplFixture, "a missing or empty list of names is refused", "[driver][splcaps]")
{
    const GuardedBuffer buffer(64 * sizeof(wchar_t), 0xEE);
    CHECK(Ask(DC_PAPERNAMES, buffer.Get(), 0xFFFFFFFF) == kRefused);
    WriteNames(0);
    CHECK(Ask(DC_PAPERNAMES, buffer.Get(), 0xFFFFFFFF) == kRefused);
    CHECK(buffer.As<WORD>()[0] == 0xEEEE);
}

TEST_CASE_METHOD(SplFixture, "the needed size is cut to 32 bits before it is doubled", "[driver][splcaps]")
{
    // 67108865 x 64 is 64 in 32 bits, so a room of 128 passes the comparison; the third name, which is missing, then
    // fails the list.
    WriteCaps({{L"PaperNamesCount", L"67108865"}, {L"PaperNames0", L"A4"}, {L"PaperNames1", std::wstring(62, L'x')}});
    const GuardedBuffer buffer(2 * 64 * sizeof(wchar_t), 0xEE);
    CHECK(Ask(DC_PAPERNAMES, buffer.Get(), 127) == kRefused);
    CHECK(buffer.As<WORD>()[0] == 0xEEEE);
    CHECK(Ask(DC_PAPERNAMES, buffer.Get(), 128) == kRefused);
    CHECK(std::wstring(buffer.As<wchar_t>()) == L"A4");
}

TEST_CASE_METHOD(SplFixture, "a query for names leaves the last error alone when it is refused", "[driver][splcaps]")
{
    SetLastError(1234);
    CHECK(Ask(DC_PAPERNAMES, nullptr, 0) == kRefused);
    CHECK(GetLastError() == 1234);
}
