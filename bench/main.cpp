// Measures the module against the floor. Every figure comes from one run.

#include "bench/Benches.h"

#include <cstdio>
#include <cstring>
#include <exception>

namespace
{

/// Which subjects are wanted; without any named, all.
class Choice
{
public:
    Choice(int argc, char** argv) : m_ppszNames(argv + 1), m_iNames(argc - 1) {}
    bool Has(const char* pszName) const
    {
        bool bFound = m_iNames == 0;
        for (int i = 0; i < m_iNames; ++i)
        {
            bFound = bFound || std::strcmp(m_ppszNames[i], pszName) == 0;
        }
        return bFound;
    }

private:
    char** m_ppszNames;
    int m_iNames;
};

void TellProcessors()
{
    DWORD_PTR ulProcess = 0;
    DWORD_PTR ulSystem = 0;
    GetProcessAffinityMask(GetCurrentProcess(), &ulProcess, &ulSystem);
    std::printf("processors: mask %llX of %llX\n", ulProcess, ulSystem);
}

/// What needs the loaded module and the resident client.
/// @return whether the module could be loaded.
bool BenchModuleCalls(Table& table, const BenchClient& client, const Choice& choice)
{
    const BenchModule module;
    if (module.handle == nullptr)
    {
        return false;
    }
    const ResidentStandIn resident(client);
    // The first check finds the client by a walk, and knows it from then on.
    module.pfnCaps(nullptr, nullptr, DC_SIZE, nullptr, nullptr);
    if (choice.Has("caps"))
    {
        BenchCaps(table, client, module, resident.Pid());
    }
    if (choice.Has("records"))
    {
        BenchRecords(table, client, module, resident.Pid());
    }
    if (choice.Has("sheet"))
    {
        BenchSheet(table, client, module, resident.Pid());
    }
    if (choice.Has("threads"))
    {
        BenchThreads(table, client, module, resident.Pid());
    }
    return true;
}

/// All subjects that are wanted.
/// @return the program's code: 0 whether the goals are met or not.
int BenchAll(const Choice& choice)
{
    Table table;
    const BenchClient client;
    if (choice.Has("load"))
    {
        BenchLoad(table);
    }
    if (!BenchModuleCalls(table, client, choice))
    {
        std::printf("velbench: VelUI.dll beside the program can't be loaded\n");
        return 1;
    }
    if (choice.Has("off"))
    {
        BenchLogOff(table);
    }
    if (choice.Has("on"))
    {
        BenchLogOn(table, client);
    }
    table.Report("velbench.json");
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    TellProcessors();
    try
    {
        return BenchAll(Choice(argc, argv));
    }
    catch (const std::exception& exception)
    {
        std::printf("velbench: %s\n", exception.what());
        return 1;
    }
}
