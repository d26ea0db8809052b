// A snapshot written by MakePrinterConfig, read back by GetComputerCaps.

#include "state/CapabilitySnapshot.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/GuardedBuffer.h"

#include <catch2/catch_test_macros.hpp>

#include <memory>

using namespace VelUtility;

namespace
{

/// A printer with a given number of entries in each list, every entry different.
struct BigPrinter
{
    BigPrinter(DWORD dwCount, const std::wstring& strName)
        : binNames(new NarrowName[dwCount]()), mediaReady(new WideName[dwCount]()), paperNames(new WideName[dwCount]())
    {
        for (DWORD i = 0; i < dwCount; ++i)
        {
            const std::wstring strEntry = strName + std::to_wstring(i);
            wcscpy(binNames[i], strEntry.substr(0, 21).c_str());
            wcscpy(mediaReady[i], (L"m" + strEntry).c_str());
            wcscpy(paperNames[i], (L"p" + strEntry).c_str());
            bins.push_back(static_cast<WORD>(65535 - i));
            papers.push_back(static_cast<WORD>(i + 1));
            mediaTypes.push_back(0x10000 * i + 1);
            resolutions.push_back({static_cast<LONG>(i * 2 + 1), static_cast<LONG>(i * 3 + 1)});
            paperSizes.push_back({static_cast<LONG>(1000 + i), static_cast<LONG>(2000 + i)});
        }
        caps = {};
        caps.BinNames = binNames.get();
        caps.Bins = bins.data();
        caps.MediaReady = mediaReady.get();
        caps.MediaTypeNames = paperNames.get();
        caps.MediaTypes = mediaTypes.data();
        caps.PaperNames = paperNames.get();
        caps.Papers = papers.data();
        caps.PaperSizes = paperSizes.data();
        caps.Resolutions = resolutions.data();
        caps.BinNamesCount = caps.BinsCount = caps.MediaReadyCount = caps.MediaTypeNamesCount = caps.MediaTypesCount =
            caps.PaperNamesCount = caps.PapersCount = caps.PaperSizeCount = caps.ResolutionCount = dwCount;
        DWORD dwValue = 11;
        for (DWORD* pdw :
             {&caps.Collate, &caps.ColorDevice, &caps.Copies, &caps.Duplex, &caps.MaxExtent, &caps.MinExtent,
              &caps.Orientation, &caps.PrintMem, &caps.PrintRate, &caps.PrintPPM, &caps.PrintRateUnit})
        {
            *pdw = dwValue;
            dwValue += 0x01000001;
        }
    }

    std::unique_ptr<NarrowName[]> binNames;
    std::unique_ptr<WideName[]> mediaReady;
    std::unique_ptr<WideName[]> paperNames;
    std::vector<WORD> bins;
    std::vector<WORD> papers;
    std::vector<DWORD> mediaTypes;
    std::vector<Resolution> resolutions;
    std::vector<POINT> paperSizes;
    PrinterCaps caps;
};

/// Reads a list back and compares it, byte for byte, with the array that was written.
void CheckList(WORD iDevCap, const void* pWritten, DWORD dwCount, size_t cbEntry)
{
    CAPTURE(iDevCap);
    CHECK(GetComputerCaps(iDevCap, nullptr) == dwCount);
    const GuardedBuffer buffer(dwCount * cbEntry, 0xEE);
    CHECK(GetComputerCaps(iDevCap, buffer.Get()) == dwCount);
    CHECK(std::string(buffer.As<char>(), buffer.Size()) ==
          std::string(static_cast<const char*>(pWritten), buffer.Size()));
    CHECK(buffer.Intact());
}

void CheckRoundTrip(const BigPrinter& printer)
{
    const PrinterCaps& caps = printer.caps;
    CheckList(DC_BINNAMES, caps.BinNames, caps.BinNamesCount, sizeof(NarrowName));
    CheckList(DC_BINS, caps.Bins, caps.BinsCount, sizeof(WORD));
    CheckList(DC_ENUMRESOLUTIONS, caps.Resolutions, caps.ResolutionCount, sizeof(Resolution));
    CheckList(DC_MEDIAREADY, caps.MediaReady, caps.MediaReadyCount, sizeof(WideName));
    CheckList(DC_MEDIATYPENAMES, caps.MediaTypeNames, caps.MediaTypeNamesCount, sizeof(WideName));
    CheckList(DC_MEDIATYPES, caps.MediaTypes, caps.MediaTypesCount, sizeof(DWORD));
    CheckList(DC_PAPERNAMES, caps.PaperNames, caps.PaperNamesCount, sizeof(WideName));
    CheckList(DC_PAPERS, caps.Papers, caps.PapersCount, sizeof(WORD));
    CheckList(DC_PAPERSIZE, caps.PaperSizes, caps.PaperSizeCount, sizeof(POINT));
    CHECK(GetComputerCaps(DC_COLLATE, nullptr) == caps.Collate);
    CHECK(GetComputerCaps(DC_COLORDEVICE, nullptr) == caps.ColorDevice);
    CHECK(GetComputerCaps(DC_COPIES, nullptr) == caps.Copies);
    CHECK(GetComputerCaps(DC_DUPLEX, nullptr) == caps.Duplex);
    CHECK(GetComputerCaps(DC_MAXEXTENT, nullptr) == caps.MaxExtent);
    CHECK(GetComputerCaps(DC_MINEXTENT, nullptr) == caps.MinExtent);
    CHECK(GetComputerCaps(DC_ORIENTATION, nullptr) == caps.Orientation);
    CHECK(GetComputerCaps(DC_PRINTERMEM, nullptr) == caps.PrintMem);
    CHECK(GetComputerCaps(DC_PRINTRATE, nullptr) == caps.PrintRate);
    CHECK(GetComputerCaps(DC_PRINTRATEPPM, nullptr) == caps.PrintPPM);
    CHECK(GetComputerCaps(DC_PRINTRATEUNIT, nullptr) == caps.PrintRateUnit);
}

} // namespace

TEST_CASE_METHOD(ClientFixture, "a snapshot of five entries in each list comes back entry for entry",
                 "[state][snapshot]")
{
    const BigPrinter printer(5, L"Entry ");
    const PrinterInfo info = {L"P", L"L", L"D"};
    MakePrinterConfig(&info, &printer.caps);
    CheckRoundTrip(printer);
}

TEST_CASE_METHOD(ClientFixture, "a snapshot of 300 papers comes back entry for entry", "[state][snapshot][once]")
{
    const BigPrinter printer(300, L"Entry ");
    const PrinterInfo info = {L"P", L"L", L"D"};
    MakePrinterConfig(&info, &printer.caps);
    CheckRoundTrip(printer);
}

TEST_CASE_METHOD(ClientFixture, "a snapshot with Chinese names comes back under code page 936",
                 "[state][snapshot][cp936]")
{
    REQUIRE(GetACP() == 936);
    const BigPrinter printer(5, L"大十六开");
    const PrinterInfo info = {L"办公室", L"二楼", L"彩色"};
    MakePrinterConfig(&info, &printer.caps);
    CheckRoundTrip(printer);
    wchar_t szName[64] = {};
    GetPrivateProfileStringW(L"Printer", L"PrinterName", L"", szName, 64, ConfigFile().c_str());
    CHECK(std::wstring(szName) == L"办公室");
    // In the file the text is in the system's code page.
    CHECK(ReadFileBytes(ConfigFile()).find("PrinterName=\xB0\xEC\xB9\xAB\xCA\xD2\r\n") != std::string::npos);
}
