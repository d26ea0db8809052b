#include "bench/floors/RecordFloor.h"

#include "bench/floors/CapsFloor.h"
#include "bench/floors/StoreFloor.h"
#include "support/module/Resource.h"

#include <cstdio>
#include <cstring>

namespace
{

/// The file's bytes, read under its lock; closed behind it.
bool ReadDevModeFile(stuDrvDevmode& record)
{
    wchar_t szPath[kFloorPathUnits];
    FloorPersonalPath(L"DevMode.dat", szPath);
    FILE* pFile = nullptr;
    {
        const FloorLock lock(szPath);
        pFile = _wfopen(szPath, L"rb");
        if (pFile == nullptr)
        {
            return false;
        }
        std::fread(&record.stuDevmode, sizeof(record.stuDevmode), 1, pFile);
    }
    std::fclose(pFile);
    return true;
}

} // namespace

[[gnu::noinline]] void FloorConvert(const stuDrvDevmode& in, stuDrvDevmode& out)
{
    std::memcpy(&out.stuDevmode, &in.stuDevmode, kDevmodeSize);
    std::memcpy(&out.dwTailWord0, &in.dwTailWord0, kDriverExtra);
}

[[gnu::noinline]] void FloorMerge(DEVMODEW /*stuDefDev*/, const DEVMODEW& in, DEVMODEW& out)
{
    std::memcpy(&out, &in, kDevmodeSize);
}

void FloorDefaultRecord(HMODULE hModule, stuDrvDevmode& record)
{
    if (ReadDevModeFile(record))
    {
        return;
    }
    LoadStringW(hModule, IDS_DEVICE_NAME, record.stuDevmode.dmDeviceName, CCHDEVICENAME);
    FloorNumber(L"PapersCount");
    WORD wPapers[1000];
    FloorWords(L"PapersCount", L"Papers", wPapers);
    record.stuDevmode.dmPaperSize = static_cast<short>(wPapers[0]);
}

DWORD FloorDefSetting()
{
    wchar_t szPath[kFloorPathUnits];
    FloorPersonalPath(L"defsetting.ini", szPath);
    const FloorLock lock(szPath);
    return GetPrivateProfileIntW(L"PrintSetting", L"DefaultNoWaterPrint", 0, szPath);
}
