#include "bench/Benches.h"
#include "bench/floors/CapsFloor.h"
#include "bench/floors/StoreFloor.h"

#include <functional>
#include <stdexcept>
#include <vector>

namespace
{

constexpr Goal kGoal = RatioGoal(1.05);

/// Room for the longest list that is asked for.
BYTE g_abyOutput[1000 * 64 * sizeof(wchar_t)];

WORD* Words()
{
    return reinterpret_cast<WORD*>(g_abyOutput);
}
wchar_t* Names()
{
    return reinterpret_cast<wchar_t*>(g_abyOutput);
}

/// One code of the snapshot and its floor without the check of the resident client.
struct SnapshotCode
{
    const char* pszName;
    WORD iDevCap;
    std::function<DWORD()> floor;
};

SnapshotCode Number(const char* pszName, WORD iDevCap, const wchar_t* pszKey)
{
    return {pszName, iDevCap, [=] { return FloorNumber(pszKey); }};
}
SnapshotCode WordList(const char* pszName, WORD iDevCap, const wchar_t* pszCountKey, const wchar_t* pszBaseKey)
{
    return {pszName, iDevCap, [=] { return FloorWords(pszCountKey, pszBaseKey, Words()); }};
}
SnapshotCode DwordList(const char* pszName, WORD iDevCap, const wchar_t* pszCountKey, const wchar_t* pszBaseKey)
{
    return {pszName, iDevCap,
            [=] { return FloorDwords(pszCountKey, pszBaseKey, reinterpret_cast<DWORD*>(g_abyOutput)); }};
}
SnapshotCode PairList(const char* pszName, WORD iDevCap, const wchar_t* pszCountKey, const wchar_t* pszX,
                      const wchar_t* pszY)
{
    return {pszName, iDevCap,
            [=] { return FloorPairs(pszCountKey, pszX, pszY, reinterpret_cast<POINT*>(g_abyOutput)); }};
}
SnapshotCode NameList(const char* pszName, WORD iDevCap, const wchar_t* pszCountKey, const wchar_t* pszBaseKey,
                      DWORD dwWidth = 64)
{
    return {pszName, iDevCap, [=] { return FloorNames(pszCountKey, pszBaseKey, Names(), dwWidth); }};
}

const SnapshotCode kPapers = WordList("DC_PAPERS", DC_PAPERS, L"PapersCount", L"Papers");
const SnapshotCode kPaperSize = PairList("DC_PAPERSIZE", DC_PAPERSIZE, L"PaperSizeCount", L"PaperSizeX", L"PaperSizeY");
const SnapshotCode kPaperNames = NameList("DC_PAPERNAMES", DC_PAPERNAMES, L"PaperNamesCount", L"PaperNames");

std::vector<SnapshotCode> AllCodes()
{
    return {kPapers,
            kPaperSize,
            Number("DC_MINEXTENT", DC_MINEXTENT, L"MinExtent"),
            Number("DC_MAXEXTENT", DC_MAXEXTENT, L"MaxExtent"),
            WordList("DC_BINS", DC_BINS, L"BinsCount", L"Bins"),
            Number("DC_DUPLEX", DC_DUPLEX, L"Duplex"),
            NameList("DC_BINNAMES", DC_BINNAMES, L"BinNamesCount", L"BinNames", 24),
            PairList("DC_ENUMRESOLUTIONS", DC_ENUMRESOLUTIONS, L"ResolutionCount", L"ResolutionX", L"ResolutionY"),
            kPaperNames,
            Number("DC_ORIENTATION", DC_ORIENTATION, L"Orientation"),
            Number("DC_COPIES", DC_COPIES, L"Copies"),
            Number("DC_COLLATE", DC_COLLATE, L"Collate"),
            Number("DC_PRINTRATE", DC_PRINTRATE, L"PrintRate"),
            Number("DC_PRINTRATEUNIT", DC_PRINTRATEUNIT, L"PrintRateUnit"),
            Number("DC_PRINTERMEM", DC_PRINTERMEM, L"PrintMem"),
            NameList("DC_MEDIAREADY", DC_MEDIAREADY, L"MediaReadyCount", L"MediaReady"),
            Number("DC_PRINTRATEPPM", DC_PRINTRATEPPM, L"PrintPPM"),
            Number("DC_COLORDEVICE", DC_COLORDEVICE, L"ColorDevice"),
            NameList("DC_MEDIATYPENAMES", DC_MEDIATYPENAMES, L"MediaTypeNamesCount", L"MediaTypeNames"),
            DwordList("DC_MEDIATYPES", DC_MEDIATYPES, L"MediaTypesCount", L"MediaTypes")};
}

/// Measures queries of one module against their floors.
class CapsMeter
{
public:
    CapsMeter(Results& results, const BenchModule& module, DWORD dwClientPid)
        : m_results(results), m_module(module), m_dwClientPid(dwClientPid)
    {}

    /// A code that is answered without the snapshot: all that is left is the check of the resident client.
    void Constant(const std::string& strMeasure, WORD iDevCap, DWORD dwClientPid, Goal goal)
    {
        m_results.Measure(strMeasure, Repeat([=] { FloorClientCheck(dwClientPid); }), Query(iDevCap), goal);
    }
    Row Code(const SnapshotCode& code, const std::string& strWith, Goal goal = kGoal)
    {
        CheckAnswer(code);
        return m_results.Measure(std::string(code.pszName) + ", " + strWith, Repeat([this, &code] {
                                     FloorClientCheck(m_dwClientPid);
                                     code.floor();
                                 }),
                                 Query(code.iDevCap), goal);
    }

private:
    /// What is compared must do the same work.
    void CheckAnswer(const SnapshotCode& code) const
    {
        const DWORD dwFloor = code.floor();
        const DWORD dwOurs = m_module.pfnCaps(nullptr, nullptr, code.iDevCap, g_abyOutput, nullptr);
        if (dwFloor != dwOurs)
        {
            throw std::runtime_error(std::string(code.pszName) + ": the floor answers " + std::to_string(dwFloor) +
                                     ", the module " + std::to_string(dwOurs));
        }
    }

    Loop Query(WORD iDevCap) const
    {
        return Repeat(
            [pfnCaps = m_module.pfnCaps, iDevCap] { pfnCaps(nullptr, nullptr, iDevCap, g_abyOutput, nullptr); });
    }

    Results& m_results;
    const BenchModule& m_module;
    DWORD m_dwClientPid;
};

/// What 290 papers more cost, ours to floor.
void AddGrowth(Results& results, const char* pszName, const Row& few, const Row& many)
{
    const double dFloor = many.dFloor - few.dFloor;
    const double dOurs = many.dOurs - few.dOurs;
    results.Add({std::string(pszName) + ", growth from 10 to 300 papers", dFloor, dOurs, dOurs / dFloor, 0, kGoal});
}

} // namespace

void BenchCaps(Results& results, const BenchClient& client, const BenchModule& module, DWORD dwClientPid)
{
    CapsMeter meter(results, module, dwClientPid);
    meter.Constant("constant code (DC_SIZE), steady client", DC_SIZE, dwClientPid, kGoal);
    meter.Constant("refused code (DC_FIELDS), steady client", DC_FIELDS, dwClientPid, kGoal);
    {
        const UserName system(L"SYSTEM");
        meter.Constant("constant code (DC_SIZE), user SYSTEM", DC_SIZE, 0, RatioGoal(kNoLimit));
    }
    for (const SnapshotCode& code : AllCodes())
    {
        meter.Code(code, "sample");
    }
    for (const SnapshotCode& code : {kPapers, kPaperSize, kPaperNames})
    {
        client.UsePapers(10);
        const Row few = meter.Code(code, "10 papers");
        client.UsePapers(100);
        meter.Code(code, "100 papers");
        client.UsePapers(300);
        const Row many = meter.Code(code, "300 papers");
        AddGrowth(results, code.pszName, few, many);
    }
    client.UseSample();
}
