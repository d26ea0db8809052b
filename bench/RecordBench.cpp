#include "bench/Benches.h"
#include "bench/floors/RecordFloor.h"
#include "bench/floors/StoreFloor.h"
#include "settings/DefaultRecord.h"

#include <cstring>

namespace
{

/// Over bare copies, for what copies only.
constexpr Goal kCopyGoal = OverGoal(60);
/// For what reads files.
constexpr Goal kFileGoal = RatioGoal(1.05);

stuDrvDevmode g_in = RecordOfPaper(0);
stuDrvDevmode g_out = RecordOfPaper(0);

Loop ConvertLoop(const BenchModule& module, DWORD fMode)
{
    return Repeat([pfnConvert = module.pfnConvert, fMode] {
        LONG cbNeeded = kRecordSize;
        pfnConvert(nullptr, &g_in.stuDevmode, &g_out.stuDevmode, &cbNeeded, fMode);
    });
}

void BenchCopies(Results& results, const BenchModule& module)
{
    const Loop copies = Repeat([] { FloorConvert(g_in, g_out); });
    results.Measure("DrvConvertDevMode, CDM_CONVERT", copies, ConvertLoop(module, CDM_CONVERT), kCopyGoal);
    results.Measure("DrvConvertDevMode, CDM_CONVERT351", copies, ConvertLoop(module, CDM_CONVERT351), kCopyGoal);
    results.Measure(
        "merge (SubConvertDevmodeOut)", Repeat([] { FloorMerge(g_in.stuDevmode, g_in.stuDevmode, g_out.stuDevmode); }),
        Repeat([] { SubConvertDevmodeOut(g_in.stuDevmode, &g_in.stuDevmode, &g_out.stuDevmode); }), kCopyGoal);
}

void FloorDefault(HMODULE hModule)
{
    stuDrvDevmode record;
    FloorDefaultRecord(hModule, record);
    record.dwNoWaterPrint = FloorDefSetting();
    std::memcpy(&g_out, &record, sizeof(g_out));
}

void FloorFill(HMODULE hModule)
{
    stuDrvDevmode record;
    FloorDefaultRecord(hModule, record);
    FloorMerge(record.stuDevmode, g_in.stuDevmode, g_out.stuDevmode);
    g_out.dwNoWaterPrint = FloorDefSetting();
}

/// What reads the user's record.
/// @param strWith the record that the user has.
void BenchFileReaders(Results& results, const BenchModule& module, DWORD dwClientPid, const std::string& strWith)
{
    const HMODULE hModule = module.Handle();
    results.Measure("DrvConvertDevMode, CDM_DRIVER_DEFAULT, " + strWith, Repeat([=] { FloorDefault(hModule); }),
                    ConvertLoop(module, CDM_DRIVER_DEFAULT), kFileGoal);

    results.Measure("background DrvDocumentPropertySheets, fill, " + strWith, Repeat([=] {
                        FloorClientCheck(dwClientPid);
                        FloorFill(hModule);
                    }),
                    Repeat([pfnDocument = module.pfnDocument] {
                        DOCUMENTPROPERTYHEADER header = {};
                        header.cbSize = sizeof(header);
                        header.fMode = DM_COPY;
                        header.pdmIn = &g_in.stuDevmode;
                        header.pdmOut = &g_out.stuDevmode;
                        pfnDocument(nullptr, reinterpret_cast<LPARAM>(&header));
                    }),
                    kFileGoal);
}

} // namespace

void BenchRecords(Results& results, const BenchClient& client, const BenchModule& module, DWORD dwClientPid)
{
    BenchCopies(results, module);
    results.Measure("background DrvDocumentPropertySheets, size query", Repeat([=] { FloorClientCheck(dwClientPid); }),
                    Repeat([pfnDocument = module.pfnDocument] {
                        DOCUMENTPROPERTYHEADER header = {};
                        header.cbSize = sizeof(header);
                        pfnDocument(nullptr, reinterpret_cast<LPARAM>(&header));
                    }),
                    kFileGoal);
    client.StoreRecord(true);
    BenchFileReaders(results, module, dwClientPid, "DevMode.dat");
    client.StoreRecord(false);
    BenchFileReaders(results, module, dwClientPid, "hard-coded");
}
