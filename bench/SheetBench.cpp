#include "bench/Benches.h"
#include "bench/SheetPlay.h"
#include "bench/floors/SheetFloor.h"

#include <functional>
#include <memory>
#include <vector>

namespace
{

stuDrvDevmode g_in = RecordOfPaper(DMPAPER_A4);

constexpr int kRounds = 101;

void Compare(Results& results, const std::string& strMeasure, const std::function<double()>& timeFloor,
             const std::function<double()>& timeOurs, Goal goal)
{
    timeFloor();
    timeOurs();
    std::vector<double> floors;
    std::vector<double> ours;
    for (int iRound = 0; iRound < kRounds; ++iRound)
    {
        const bool bFloorFirst = iRound % 2 == 0;
        double dFloor = bFloorFirst ? timeFloor() : 0;
        const double dOurs = timeOurs();
        dFloor = bFloorFirst ? dFloor : timeFloor();
        if (dFloor > 0 && dOurs > 0)
        {
            floors.push_back(dFloor);
            ours.push_back(dOurs);
        }
    }
    if (!floors.empty())
    {
        results.Add(RowOfPairs(strMeasure, floors, ours, goal));
    }
}

} // namespace

void BenchSheet(Results& results, const BenchClient& client, const BenchModule& module, DWORD dwClientPid)
{
    client.UseSample();
    const auto makeBare = [&] { return std::make_unique<BarePages>(BarePages{FloorPages(module.Handle())}); };
    const auto makeBareWithStore = [&] {
        FloorSheetStore(dwClientPid);
        return makeBare();
    };
    const auto makeOurs = [&] { return std::make_unique<HostedDocument>(module.pfnDocument, &g_in.stuDevmode); };
    const auto timeOurs = [&] { return TimeSheet(makeOurs); };
    Compare(
        results, "document sheet, INIT to visible page, sample", [&] { return TimeSheet(makeBare); }, timeOurs,
        RatioGoal(1.2));
    Compare(
        results, "the same to a bare sheet with the contract's store calls",
        [&] { return TimeSheet(makeBareWithStore); }, timeOurs, RatioGoal(kNoLimit));
}
