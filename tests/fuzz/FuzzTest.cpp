// Random input for what reads records, configurations, ini files and command lines.
//
// Every case follows from the seed and its number alone. A case that fails, or whose process faults, is told with what
// repeats it, and that is kept in fuzz.replay: set these variables and run the test again.
//     VELUI_FUZZ_SEED   another seed
//     VELUI_FUZZ_CASE   one case alone
//     VELUI_FUZZ_LONG   any text: the long run ("make fuzz")

#include "diag/LogConfigurator.h"
#include "diag/OutputSwitches.h"
#include "settings/ConvertDevmode.h"
#include "settings/DefaultRecord.h"
#include "settings/PaperCatalogue.h"
#include "state/CapabilitySnapshot.h"
#include "support/CommandLine.h"
#include "support/module/PrinterInterface.h"
#include "tests/common/ClientFixture.h"
#include "tests/fuzz/GuardedArena.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <cstdio>
#include <random>
#include <stdexcept>

namespace
{

/// Bytes that a record has in any case: its header up to dmFields.
constexpr size_t kHeaderBytes = 72;

using Random = std::mt19937_64;

/// Whose files the cases write.
const ClientFixture* s_pClient = nullptr;

/// The generator of one case.
Random RandomOf(unsigned long long ullSeed, unsigned long long ullCase)
{
    std::seed_seq seed{ullSeed & 0xFFFFFFFF, ullSeed >> 32, ullCase & 0xFFFFFFFF, ullCase >> 32};
    return Random(seed);
}

unsigned Below(Random& random, unsigned uiEnd)
{
    return static_cast<unsigned>(random() % uiEnd);
}

/// Ends a case as failed.
[[noreturn]] void Fail(const std::string& strWhat)
{
    throw std::runtime_error(strWhat);
}

void Require(bool bHolds, const char* pszWhat)
{
    if (!bHolds)
    {
        Fail(pszWhat);
    }
}

size_t BytesOf(const BYTE* pbyHeader)
{
    const auto* const pRecord = reinterpret_cast<const DEVMODEW*>(pbyHeader);
    return std::max<size_t>(size_t{pRecord->dmSize} + pRecord->dmDriverExtra, kHeaderBytes);
}

/// Puts a record whose header is given into guarded room of the size that it declares; the rest is filled.
DEVMODEW* Place(const GuardedArena& arena, const BYTE* pbyHeader, size_t cbHeader, BYTE byFill)
{
    const size_t cbRecord = std::max(BytesOf(pbyHeader), cbHeader);
    BYTE* const pbyRecord = arena.Of(cbRecord);
    std::memset(pbyRecord, byFill, cbRecord);
    std::memcpy(pbyRecord, pbyHeader, cbHeader);
    return reinterpret_cast<DEVMODEW*>(pbyRecord);
}

/// Runs one pair of records through both conversions and the merge.
/// @param pbyIn,pbyOut headers of kHeaderBytes; cbIn bytes of the input are given.
void ConvertPair(const BYTE* pbyIn, size_t cbIn, const BYTE* pbyOut)
{
    static const GuardedArena inArena;
    static const GuardedArena outArena;
    DEVMODEW* const pIn = Place(inArena, pbyIn, cbIn, 0x11);
    const WORD wSize = reinterpret_cast<const DEVMODEW*>(pbyOut)->dmSize;
    const WORD wExtra = reinterpret_cast<const DEVMODEW*>(pbyOut)->dmDriverExtra;
    // A public part that ends within the header lets the tail run over it.
    const auto keepsHeader = [&](const DEVMODEW* pOut) {
        return wSize < kHeaderBytes || (pOut->dmSize == wSize && pOut->dmDriverExtra == wExtra);
    };

    DEVMODEW* pOut = Place(outArena, pbyOut, kHeaderBytes, 0x22);
    const size_t cbCopied = std::min<size_t>(pIn->dmSize, wSize) + std::min<size_t>(pIn->dmDriverExtra, wExtra);
    Require(ConvertDevmode(pIn, pOut) == (cbCopied != 0 ? 0 : 1), "ConvertDevmode's result");
    Require(keepsHeader(pOut), "ConvertDevmode kept the output's sizes");

    for (const DWORD fMode : {CDM_CONVERT, CDM_CONVERT351})
    {
        pOut = Place(outArena, pbyOut, kHeaderBytes, 0x22);
        LONG cbNeeded = static_cast<LONG>(BytesOf(pbyOut));
        const BOOL bReturn = DrvConvertDevMode(nullptr, pIn, pOut, &cbNeeded, fMode);
        Require(keepsHeader(pOut), "DrvConvertDevMode kept the output's sizes");
        const bool bTold = cbNeeded == (fMode == CDM_CONVERT ? wSize + wExtra : 200);
        Require(!bReturn || bTold || wSize < kHeaderBytes, "the size that was told");
    }

    // A merge writes no more than the smaller of both inputs' public parts.
    DEVMODEW stuDefault = {};
    stuDefault.dmSize = static_cast<WORD>(pIn->dmSpecVersion % 221);
    stuDefault.dmDriverExtra = pIn->dmDriverVersion;
    const size_t cbMerged = std::min<size_t>(pIn->dmSize, stuDefault.dmSize);
    auto* const pMerged = reinterpret_cast<DEVMODEW*>(outArena.Of(std::max(cbMerged, kHeaderBytes)));
    std::memcpy(pMerged, pbyOut, kHeaderBytes);
    Require(SubConvertDevmodeOut(stuDefault, pIn, pMerged) == 1, "the merge's result");
    Require(pMerged->dmSize <= std::max<size_t>(cbMerged, stuDefault.dmSize), "the merge's size");
}

/// Every value of every single byte of a whole record, against a whole output.
void RunByte(unsigned long long /*ullSeed*/, unsigned long long ullCase)
{
    stuDrvDevmode record = {};
    record.stuDevmode.dmSize = 220;
    record.stuDevmode.dmDriverExtra = 12;
    record.stuDevmode.dmFields = 0x190F;
    const stuDrvDevmode out = record;
    auto* const pbyRecord = reinterpret_cast<BYTE*>(&record);
    pbyRecord[ullCase / 256 % sizeof(record)] = static_cast<BYTE>(ullCase);
    ConvertPair(pbyRecord, sizeof(record), reinterpret_cast<const BYTE*>(&out));
    ConvertPair(reinterpret_cast<const BYTE*>(&out), sizeof(out), pbyRecord);
}

WORD RandomSize(Random& random)
{
    static constexpr WORD kSizes[] = {0, 1, 71, 72, 199, 200, 219, 220, 221, 232, 0x7FFF, 0xFFFF};
    switch (Below(random, 4))
    {
    case 0:
        return kSizes[Below(random, std::size(kSizes))];
    case 1:
        return static_cast<WORD>(random());
    default:
        return static_cast<WORD>(Below(random, 300));
    }
}

void RunRecords(unsigned long long ullSeed, unsigned long long ullCase)
{
    Random random(ullSeed * 0x9E3779B97F4A7C15ull + ullCase); // seeding a case must be cheap here
    BYTE headers[2][kHeaderBytes];
    for (auto& header : headers)
    {
        for (size_t i = 0; i < kHeaderBytes; i += sizeof(unsigned long long))
        {
            const unsigned long long ull = random();
            std::memcpy(header + i, &ull, sizeof(ull));
        }
        reinterpret_cast<DEVMODEW*>(header)->dmSize = RandomSize(random);
        reinterpret_cast<DEVMODEW*>(header)->dmDriverExtra = RandomSize(random);
    }
    ConvertPair(headers[0], kHeaderBytes, headers[1]);
}

/// A text made of words that the reader knows, and of noise.
template <typename Char, size_t N>
std::basic_string<Char> RandomText(Random& random, const Char* const (&words)[N], unsigned uiMostWords)
{
    std::basic_string<Char> strText;
    const unsigned uiWords = Below(random, uiMostWords);
    for (unsigned i = 0; i < uiWords; ++i)
    {
        if (Below(random, 8) == 0)
        {
            strText.append(Below(random, 4) == 0 ? Below(random, 1200) : 1, static_cast<Char>(1 + Below(random, 255)));
        }
        else
        {
            strText += words[Below(random, N)];
        }
    }
    return strText;
}

void RunLogConfig(unsigned long long ullSeed, unsigned long long ullCase)
{
    static constexpr const char* kWords[] = {"\n",
                                             "\n",
                                             "\r\n",
                                             "=",
                                             "=",
                                             ".",
                                             "#",
                                             " ",
                                             "true",
                                             "TRUE",
                                             "no",
                                             "*",
                                             "filter.",
                                             "module",
                                             "class",
                                             "function",
                                             "putoutpermission",
                                             "filter",
                                             "OutputParam",
                                             "OutputFunBeginInfo",
                                             "OutputNTEventLog",
                                             "OutputNDCFullmessage",
                                             "VelUI_dll",
                                             "category."};
    Random random = RandomOf(ullSeed, ullCase);
    const std::wstring strFile = s_pClient->folder.File(L"fuzz.conf");
    WriteFileBytes(strFile, RandomText(random, kWords, 60));
    LogConfigurator configurator;
    try
    {
        configurator.configure(std::string(strFile.begin(), strFile.end()));
    }
    catch (const std::out_of_range&)
    {
        // A switch name with nothing behind it.
    }
    ClearOutputSwitches();
    delete configurator.getFilter();
}

/// Gives a file another time for each case, a day and more back: a file that has changed a moment ago the platform
/// reads anew for each key, and one whose time is the same it does not read at all.
void SetTime(const std::wstring& strFile, unsigned long long ullCase)
{
    constexpr unsigned long long kSecond = 10'000'000; // in the platform's units
    FILETIME time = {};
    GetSystemTimeAsFileTime(&time);
    ULARGE_INTEGER units = {};
    units.LowPart = time.dwLowDateTime;
    units.HighPart = time.dwHighDateTime;
    units.QuadPart -= (86'400 + ullCase) * kSecond;
    time = {units.LowPart, units.HighPart};
    const HANDLE hFile =
        CreateFileW(strFile.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    Require(SetFileTime(hFile, nullptr, nullptr, &time) != FALSE, "the file's time");
    CloseHandle(hFile);
}

void RunIni(unsigned long long ullSeed, unsigned long long ullCase)
{
    static constexpr const char* kWords[] = {
        "\r\n",
        "\r\n",
        "\n",
        "=",
        "=",
        "[DeviceCapabilities]\r\n",
        "[",
        "]",
        ";",
        "PapersCount=3\r\n",
        "PaperNamesCount=2\r\n",
        "PaperSizeCount=4\r\n",
        "Papers0=9\r\n",
        "Papers1=",
        "PaperNames0=A4\r\n",
        "PaperNames1=",
        "PaperSizeX0=2100\r\n",
        "PaperSizeY0=",
        "BinNamesCount=",
        "BinNames0=",
        "258", // absurd counts have tests of their own; a list of 65,536 takes seconds
        "-1",
        "4294967294",
        "\"",
        " ",
        "\xFF\xFE",
        "Copies=",
        "MinExtent=",
        "Orientation=90",
        "12345678901234567890"};
    Random random = RandomOf(ullSeed, ullCase);
    WriteFileBytes(s_pClient->ConfigFile(), RandomText(random, kWords, 80));
    SetTime(s_pClient->ConfigFile(), ullCase);
    static const GuardedArena arena;
    for (WORD wCap = 0; wCap < 40; ++wCap)
    {
        const DWORD dwCount = VelUtility::GetComputerCaps(wCap, nullptr);
        constexpr size_t kLargestEntry = 128;
        if (dwCount != 0 && dwCount <= GuardedArena::kMost / kLargestEntry)
        {
            // A single value ignores the room; of a list no entry is larger.
            const size_t cbEntry = wCap == DC_PAPERS || wCap == DC_BINS                 ? 2
                                   : wCap == DC_PAPERSIZE || wCap == DC_ENUMRESOLUTIONS ? 8
                                   : wCap == DC_BINNAMES                                ? 48
                                   : wCap == DC_MEDIATYPES                              ? 4
                                                                                        : kLargestEntry;
            VelUtility::GetComputerCaps(wCap, arena.Of(dwCount * cbEntry));
        }
    }
    const DWORD dwPapers = std::min<DWORD>(GetPaperInfoList(nullptr), 500);
    auto* const pList = reinterpret_cast<stuPaperInfo*>(arena.Of((size_t{dwPapers} + 1) * sizeof(stuPaperInfo)));
    Require(GetPaperInfoList(pList, dwPapers) <= dwPapers, "the list's count");
    Require(pList[dwPapers].wPaper == DMPAPER_USER || GetPaperInfoList(nullptr) < dwPapers, "the custom paper");
    SubSetDefPaperSize();
}

void RunCommandLine(unsigned long long ullSeed, unsigned long long ullCase)
{
    static constexpr const wchar_t* kWords[] = {L"\"", L"\"",   L" ",      L"\t", L"a",   L"C:\\x y\\z.exe",
                                                L"\\", L"命令", L"\x3000", L"--", L"\r\n"};
    Random random = RandomOf(ullSeed, ullCase);
    const std::wstring strLine = RandomText(random, kWords, 40);
    std::list<std::wstring> tokens;
    Language::SplitCommandLine(strLine, tokens);
    size_t uiUnits = 0;
    for (const std::wstring& strToken : tokens)
    {
        Require(!strToken.empty(), "no empty token");
        Require(strLine.find(strToken) != std::wstring::npos, "each token stands in the line");
        uiUnits += strToken.size();
    }
    Require(uiUnits <= strLine.size(), "the tokens are no longer than the line");
}

struct Kind
{
    const char* pszName;
    void (*pfnRun)(unsigned long long ullSeed, unsigned long long ullCase);
    unsigned long long ullShort; ///< cases of a short run
    unsigned long long ullLong;  ///< and of a long one
};

struct Progress
{
    const char* pszKind = "";
    unsigned long long ullSeed = 0;
    unsigned long long ullCase = 0;
} s_progress;

std::string Replay()
{
    return "VELUI_FUZZ_SEED=" + std::to_string(s_progress.ullSeed) +
           " VELUI_FUZZ_CASE=" + std::to_string(s_progress.ullCase) + " (" + s_progress.pszKind + ")";
}

void KeepReplay()
{
    if (FILE* const pFile = std::fopen("fuzz.replay", "w"))
    {
        std::fputs((Replay() + "\n").c_str(), pFile);
        std::fclose(pFile);
    }
}

LONG WINAPI OnFault(EXCEPTION_POINTERS* pException)
{
    if (pException->ExceptionRecord->ExceptionCode == EXCEPTION_ACCESS_VIOLATION)
    {
        KeepReplay();
        std::printf("fault; repeat it with %s\n", Replay().c_str());
        std::fflush(stdout);
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

/// A number from a variable of the process.
unsigned long long NumberFrom(const wchar_t* pszVariable, unsigned long long ullDefault)
{
    wchar_t szValue[32] = {};
    return GetEnvironmentVariableW(pszVariable, szValue, 32) != 0 ? _wcstoui64(szValue, nullptr, 10) : ullDefault;
}

void RunKind(const ClientFixture& client, const Kind& kind)
{
    constexpr unsigned long long kAll = ~0ull;
    s_pClient = &client;
    const unsigned long long ullSeed = NumberFrom(L"VELUI_FUZZ_SEED", 20261121);
    const unsigned long long ullOne = NumberFrom(L"VELUI_FUZZ_CASE", kAll);
    const bool bLong = GetEnvironmentVariableW(L"VELUI_FUZZ_LONG", nullptr, 0) != 0;
    const unsigned long long ullCases = bLong ? kind.ullLong : kind.ullShort;
    void* const pHandler = AddVectoredExceptionHandler(1, &OnFault);
    std::string strFailure;
    for (unsigned long long ull = ullOne == kAll ? 0 : ullOne; ull < (ullOne == kAll ? ullCases : ullOne + 1); ++ull)
    {
        s_progress = {kind.pszName, ullSeed, ull};
        if (bLong && ull != 0 && ull % (kind.ullLong / 100) == 0)
        {
            std::printf("%s: %llu of %llu cases\n", kind.pszName, ull, ullCases);
            std::fflush(stdout);
        }
        try
        {
            kind.pfnRun(ullSeed, ull);
        }
        catch (const std::exception& error)
        {
            KeepReplay();
            strFailure = std::string(error.what()) + "; repeat it with " + Replay();
            break;
        }
    }
    RemoveVectoredExceptionHandler(pHandler);
    std::printf("%s: %llu cases, seed %llu\n", kind.pszName, ullOne == kAll ? ullCases : 1, ullSeed);
    CHECK(strFailure.empty());
    if (!strFailure.empty())
    {
        FAIL(strFailure);
    }
}

} // namespace

TEST_CASE_METHOD(ClientFixture, "every value of every byte of a record passes both conversions and the merge", "[fuzz]")
{
    RunKind(*this, {"bytes", &RunByte, 232 * 256, 232 * 256});
}

TEST_CASE_METHOD(ClientFixture, "random pairs of records pass both conversions and the merge", "[fuzz]")
{
    RunKind(*this, {"records", &RunRecords, 500'000, 5'000'000});
}

TEST_CASE_METHOD(ClientFixture, "random log configurations pass the reader of switches and rules", "[fuzz]")
{
    RunKind(*this, {"log configurations", &RunLogConfig, 2'000, 1'000'000});
}

TEST_CASE_METHOD(ClientFixture, "random snapshots pass every query and the list of papers", "[fuzz]")
{
    RunKind(*this, {"ini files", &RunIni, 100, 1'000'000});
}

TEST_CASE_METHOD(ClientFixture, "random command lines pass the splitting", "[fuzz]")
{
    RunKind(*this, {"command lines", &RunCommandLine, 20'000, 1'000'000});
}
