#include "state/CapabilitySnapshot.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/LockHolder.h"

#include <catch2/catch_test_macros.hpp>

using namespace VelUtility;

namespace
{

/// A small printer, with everything that a snapshot can hold.
struct SnapshotFixture : ClientFixture
{
    SnapshotFixture()
    {
        info = {L"Office", L"Second floor", L"Colour"};
        caps = {};
        caps.BinNames = binNames;
        caps.BinNamesCount = 2;
        caps.Bins = bins;
        caps.BinsCount = 2;
        caps.Collate = 1;
        caps.ColorDevice = 1;
        caps.Copies = 999;
        caps.Duplex = 1;
        caps.Resolutions = resolutions;
        caps.ResolutionCount = 2;
        caps.MaxExtent = 275253202; // 3026 x 4200
        caps.MinExtent = 97125360;  // 1520 x 1482
        caps.MediaReady = mediaReady;
        caps.MediaReadyCount = 1;
        caps.MediaTypeNames = mediaTypeNames;
        caps.MediaTypeNamesCount = 2;
        caps.MediaTypes = mediaTypes;
        caps.MediaTypesCount = 2;
        caps.Orientation = 90;
        caps.PaperNames = paperNames;
        caps.PaperNamesCount = 2;
        caps.Papers = papers;
        caps.PapersCount = 2;
        caps.PaperSizes = paperSizes;
        caps.PaperSizeCount = 2;
        caps.PrintMem = 524288;
        caps.PrintRate = 45;
        caps.PrintPPM = 44;
        caps.PrintRateUnit = 1;
    }

    const NarrowName binNames[2] = {L"Auto", L"Tray 1"};
    const WORD bins[2] = {7, 257};
    const Resolution resolutions[2] = {{300, 300}, {1200, 600}};
    const WideName mediaReady[1] = {L"A4"};
    const WideName mediaTypeNames[2] = {L"Plain", L"Glossy"};
    const DWORD mediaTypes[2] = {1, 3};
    const WideName paperNames[2] = {L"A4", L"Letter"};
    const WORD papers[2] = {9, 1};
    const POINT paperSizes[2] = {{2100, 2970}, {2159, 2794}};
    PrinterInfo info;
    PrinterCaps caps;
};

constexpr char kWholeFile[] = "[Printer]\r\n"
                              "PrinterName=Office\r\n"
                              "Location=Second floor\r\n"
                              "Description=Colour\r\n"
                              "[DeviceCapabilities]\r\n"
                              "BinNamesCount=2\r\n"
                              "BinNames0=Auto\r\n"
                              "BinNames1=Tray 1\r\n"
                              "BinsCount=2\r\n"
                              "Bins0=7\r\n"
                              "Bins1=257\r\n"
                              "Collate=1\r\n"
                              "ColorDevice=1\r\n"
                              "Copies=999\r\n"
                              "Duplex=1\r\n"
                              "ResolutionCount=2\r\n"
                              "ResolutionX0=300\r\n"
                              "ResolutionY0=300\r\n"
                              "ResolutionX1=1200\r\n"
                              "ResolutionY1=600\r\n"
                              "MaxExtent=275253202\r\n"
                              "MinExtent=97125360\r\n"
                              "MediaReadyCount=1\r\n"
                              "MediaReady0=A4\r\n"
                              "MediaTypeNamesCount=2\r\n"
                              "MediaTypeNames0=Plain\r\n"
                              "MediaTypeNames1=Glossy\r\n"
                              "MediaTypesCount=2\r\n"
                              "MediaTypes0=1\r\n"
                              "MediaTypes1=3\r\n"
                              "Orientation=90\r\n"
                              "PaperNamesCount=2\r\n"
                              "PaperNames0=A4\r\n"
                              "PaperNames1=Letter\r\n"
                              "PapersCount=2\r\n"
                              "Papers0=9\r\n"
                              "Papers1=1\r\n"
                              "PaperSizeCount=2\r\n"
                              "PaperSizeX0=2100\r\n"
                              "PaperSizeY0=2970\r\n"
                              "PaperSizeX1=2159\r\n"
                              "PaperSizeY1=2794\r\n"
                              "PrintMem=524288\r\n"
                              "PrintRate=45\r\n"
                              "PrintPPM=44\r\n"
                              "PrintRateUnit=1\r\n";

/// Makes a section's growth fail from a given size on: the profile functions can't replace a file that another handle
/// holds without sharing.
class HeldFile
{
public:
    explicit HeldFile(const std::wstring& strPath)
        : m_hFile(CreateFileW(strPath.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr))
    {}
    ~HeldFile() { CloseHandle(m_hFile); }
    HANDLE Get() const { return m_hFile; }

private:
    HANDLE m_hFile;
};

} // namespace

TEST_CASE_METHOD(SnapshotFixture, "a snapshot is written with its keys in their order", "[state][snapshot]")
{
    CHECK(MakePrinterConfig(&info, &caps) == 0);
    CHECK(ReadFileBytes(ConfigFile()) == kWholeFile);
}

TEST_CASE_METHOD(SnapshotFixture, "a second snapshot replaces the first and keeps other sections", "[state][snapshot]")
{
    WriteFileBytes(ConfigFile(), "[Setting]\r\nDefaultPrinter=x\r\n");
    MakePrinterConfig(&info, &caps);
    caps.Copies = 1;
    MakePrinterConfig(&info, &caps);
    std::string strExpected = std::string("[Setting]\r\nDefaultPrinter=x\r\n") + kWholeFile;
    strExpected.replace(strExpected.find("Copies=999"), 10, "Copies=1");
    CHECK(ReadFileBytes(ConfigFile()) == strExpected);
}

TEST_CASE_METHOD(SnapshotFixture, "a snapshot returns 0 when the temporary folder is unavailable", "[state][snapshot]")
{
    registry.SetClient(L"TempDir", L"C:\\" + std::wstring(200, L'f'));
    CHECK(MakePrinterConfig(&info, &caps) == 0);
    const PrivateRegistry bare;
    CHECK(MakePrinterConfig(&info, &caps) == 0);
    CHECK_FALSE(PathExists(ConfigFile()));
}

TEST_CASE_METHOD(SnapshotFixture, "a snapshot returns 0 when its file can't be written, and the file stays",
                 "[state][snapshot]")
{
    WriteFileBytes(ConfigFile(), "[Printer]\r\nPrinterName=old\r\n");
    {
        const HeldFile held(ConfigFile());
        REQUIRE(held.Get() != INVALID_HANDLE_VALUE);
        CHECK(MakePrinterConfig(&info, &caps) == 0);
    }
    CHECK(ReadFileBytes(ConfigFile()) == "[Printer]\r\nPrinterName=old\r\n");
}

TEST_CASE_METHOD(SnapshotFixture, "a null list of names with a count of 0 is written as an empty list",
                 "[state][snapshot]")
{
    caps.BinNames = nullptr;
    caps.BinNamesCount = 0;
    CHECK(MakePrinterConfig(&info, &caps) == 0);
    const std::string strBytes = ReadFileBytes(ConfigFile());
    CHECK(strBytes.find("BinNamesCount=0\r\nBinsCount=2\r\n") != std::string::npos);
    CHECK(strBytes.find("PrintRateUnit=1") != std::string::npos);
}

TEST_CASE_METHOD(SnapshotFixture, "a snapshot waits for the file's lock and gives it back", "[state][snapshot]")
{
    const std::wstring strName = MutexNameOf(ConfigFile());
    const HANDLE hMutex = CreateMutexW(nullptr, TRUE, strName.c_str());
    REQUIRE(hMutex != nullptr);
    const HANDLE hThread = CreateThread(
        nullptr, 0,
        [](void* pv) -> DWORD {
            auto* const pFixture = static_cast<SnapshotFixture*>(pv);
            MakePrinterConfig(&pFixture->info, &pFixture->caps);
            return 0;
        },
        static_cast<SnapshotFixture*>(this), 0, nullptr);
    CHECK(WaitForSingleObject(hThread, 300) == WAIT_TIMEOUT);
    CHECK_FALSE(PathExists(ConfigFile()));
    ReleaseMutex(hMutex);
    CHECK(WaitForSingleObject(hThread, 20000) == WAIT_OBJECT_0);
    CHECK(ReadFileBytes(ConfigFile()) == kWholeFile);
    CHECK(WaitForSingleObject(hMutex, 0) == WAIT_OBJECT_0);
    CloseHandle(hThread);
    CloseHandle(hMutex);
}
