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
void BenchModuleCalls(Results& results, const BenchClient& client, const Choice& choice)
{
    const BenchModule module;
    const ResidentStandIn resident(client);
    // The first check finds the client by a walk, and knows it from then on.
    module.pfnCaps(nullptr, nullptr, DC_SIZE, nullptr, nullptr);
    if (choice.Has("caps"))
    {
        BenchCaps(results, client, module, resident.Pid());
    }
    if (choice.Has("records"))
    {
        BenchRecords(results, client, module, resident.Pid());
    }
    if (choice.Has("sheet"))
    {
        BenchSheet(results, client, module, resident.Pid());
    }
    if (choice.Has("threads"))
    {
        BenchThreads(results, client, module, resident.Pid());
    }
}

/// All subjects that are wanted.
void BenchAll(const Choice& choice)
{
    Results results;
    const BenchClient client;
    if (choice.Has("load"))
    {
        BenchLoad(results);
    }
    if (choice.Has("first"))
    {
        BenchFirst(results, client);
    }
    BenchModuleCalls(results, client, choice);
    if (choice.Has("off"))
    {
        BenchLogOff(results);
    }
    if (choice.Has("on"))
    {
        BenchLogOn(results, client);
    }
    results.Report("velbench.json");
}

} // namespace

int main(int argc, char** argv)
{
    TellProcessors();
    try
    {
        BenchAll(Choice(argc, argv));
        return 0; // whether the goals are met or not
    }
    catch (const std::exception& exception)
    {
        std::printf("velbench: %s\n", exception.what());
        return 1;
    }
}
