#include "bench/Benches.h"
#include "tests/common/Handles.h"
#include "tools/velhost/host/Files.h"

#include <psapi.h>

namespace
{

constexpr double kBytesPerKiB = 1024;

void LoadAndUnload(const std::wstring& strFile)
{
    FreeLibrary(LoadLibraryW(strFile.c_str()));
}

/// KiB of this process in memory, and KiB that are its own.
struct Memory
{
    Memory()
    {
        PROCESS_MEMORY_COUNTERS counters = {};
        GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
        dWorkingSet = static_cast<double>(counters.WorkingSetSize) / kBytesPerKiB;
        dPagefile = static_cast<double>(counters.PagefileUsage) / kBytesPerKiB;
    }
    double dWorkingSet;
    double dPagefile;
};

/// Grows by one with each handle that is lost; a handle's number is four times its place.
double HandlePlace()
{
    return static_cast<double>(NextHandle()) / 4;
}

/// What a file adds to the process while it is loaded, and what is left of it.
void TellMemory(Results& results, const char* pszName, const std::wstring& strFile)
{
    const std::string strName = pszName;
    const Memory before;
    const HMODULE hModule = LoadLibraryW(strFile.c_str());
    const Memory loaded;
    FreeLibrary(hModule);
    const Memory unloaded;
    const double dPlace = HandlePlace();
    for (int i = 0; i < 500; ++i)
    {
        LoadAndUnload(strFile);
    }
    const Memory later;
    const Goal told = PlainGoal("KiB");
    results.AddNumber(strName + ": working set, first load", loaded.dWorkingSet - before.dWorkingSet, told);
    results.AddNumber(strName + ": own memory, first load", loaded.dPagefile - before.dPagefile, told);
    results.AddNumber(strName + ": working set left by 500 loads", later.dWorkingSet - unloaded.dWorkingSet, told);
    results.AddNumber(strName + ": handles left by 500 loads", HandlePlace() - dPlace, PlainGoal("handles"));
}

} // namespace

void BenchLoad(Results& results)
{
    const std::wstring strEmpty = VelHost::BesideProgram(L"EmptyModule.dll");
    const std::wstring strLog4cpp = VelHost::BesideProgram(L"EmptyWithLog4cpp.dll");
    const std::wstring strOurs = VelHost::BesideProgram(L"VelUI.dll");
    TellMemory(results, "EmptyModule.dll", strEmpty);
    TellMemory(results, "VelUI.dll", strOurs);
    results.Measure("load and unload", Repeat([&] { LoadAndUnload(strEmpty); }),
                    Repeat([&] { LoadAndUnload(strOurs); }), RatioGoal(1.5));
    results.Measure("of which log4cpp and the C++ run-time: an empty module with them",
                    Repeat([&] { LoadAndUnload(strEmpty); }), Repeat([&] { LoadAndUnload(strLog4cpp); }),
                    RatioGoal(kNoLimit));
}
