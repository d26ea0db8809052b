#include "tests/common/ClientFixture.h"

#include "state/CapabilitySnapshot.h"
#include "tools/velhost/host/Snapshot.h"

#include <catch2/catch_test_macros.hpp>

#include <cwchar>

using namespace VelHost;

namespace
{

/// A printer with two papers, a duplex unit, and a list of bins that can't be fetched.
DWORD AskSmallPrinter(WORD wCode, void* pvRoom)
{
    switch (wCode)
    {
    case DC_PAPERS:
        if (pvRoom != nullptr)
        {
            static_cast<WORD*>(pvRoom)[0] = DMPAPER_A4;
            static_cast<WORD*>(pvRoom)[1] = 257;
        }
        return 2;
    case DC_PAPERNAMES:
        if (pvRoom != nullptr)
        {
            std::wcscpy(static_cast<wchar_t*>(pvRoom), L"A4");
            std::wcscpy(static_cast<wchar_t*>(pvRoom) + 64, L"大16开");
        }
        return 2;
    case DC_BINS:
        return pvRoom == nullptr ? 3 : kRefused;
    case DC_DUPLEX:
        return 1;
    default:
        return kRefused;
    }
}

} // namespace

TEST_CASE("a snapshot takes what is answered and leaves the rest missing", "[velhost][snapshot]")
{
    const Snapshot snapshot(&AskSmallPrinter);
    const VelUtility::PrinterCaps& stuCaps = snapshot.Caps();
    REQUIRE(stuCaps.PapersCount == 2);
    CHECK(stuCaps.Papers[1] == 257);
    REQUIRE(stuCaps.PaperNamesCount == 2);
    CHECK(std::wstring(stuCaps.PaperNames[1]) == L"大16开");
    CHECK(stuCaps.Duplex == 1);
    CHECK(stuCaps.BinsCount == 0);
    CHECK(stuCaps.Bins == nullptr);
    CHECK(stuCaps.MediaTypesCount == 0);
    CHECK(stuCaps.Collate == 0xFFFFFFFF);
}

TEST_CASE_METHOD(ClientFixture, "a snapshot that was written answers as the printer did", "[velhost][snapshot]")
{
    WriteCaps({});
    const Snapshot snapshot(&AskSmallPrinter);
    const VelUtility::PrinterInfo stuInfo = {L"Small", L"", L""};
    VelUtility::MakePrinterConfig(&stuInfo, &snapshot.Caps());

    wchar_t szNames[2][64] = {};
    CHECK(VelUtility::GetComputerCaps(DC_PAPERNAMES, szNames) == 2);
    CHECK(std::wstring(szNames[1]) == L"大16开");
    CHECK(VelUtility::GetComputerCaps(DC_DUPLEX, nullptr) == 1);
    CHECK(VelUtility::GetComputerCaps(DC_BINS, nullptr) == 0);
    CHECK(VelUtility::GetComputerCaps(DC_COLLATE, nullptr) == 0xFFFFFFFF);
}
