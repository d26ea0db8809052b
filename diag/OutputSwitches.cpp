#include "diag/OutputSwitches.h"

#include <windows.h>

#include <map>

namespace
{

/// The switch map with its lock. Static initialisation builds it, before DllMain runs; unloading tears it down.
class SwitchMap
{
public:
    SwitchMap() { InitializeCriticalSection(&m_lock); }
    ~SwitchMap() { DeleteCriticalSection(&m_lock); }
    SwitchMap(const SwitchMap&) = delete;
    SwitchMap& operator=(const SwitchMap&) = delete;

    /// Holds the lock and reaches the map.
    class Access
    {
    public:
        explicit Access(SwitchMap& map) : m_map(map) { EnterCriticalSection(&m_map.m_lock); }
        ~Access() { LeaveCriticalSection(&m_map.m_lock); }
        Access(const Access&) = delete;
        Access& operator=(const Access&) = delete;
        std::map<std::string, OutputSwitches>* operator->() noexcept { return &m_map.m_records; }

    private:
        SwitchMap& m_map;
    };

private:
    CRITICAL_SECTION m_lock;
    std::map<std::string, OutputSwitches> m_records;
};

SwitchMap s_switchMap;

} // namespace

void SetOutputSwitch(const std::string& strCategory, const std::string& strSwitch, bool bOn)
{
    SwitchMap::Access records(s_switchMap);
    OutputSwitches& switches = records->try_emplace(strCategory).first->second;
    for (const OutputSwitchName& name : kOutputSwitchNames)
    {
        if (strSwitch == name.pszName)
        {
            switches.*name.pSwitch = bOn;
        }
    }
}

int GetOutputSwitches(const std::string& strCategory, OutputSwitches& switches)
{
    SwitchMap::Access records(s_switchMap);
    const auto found = records->find(strCategory);
    if (found == records->end())
    {
        return -1;
    }
    switches = found->second;
    return 0;
}

void RemoveOutputSwitches(const std::string& strCategory)
{
    SwitchMap::Access(s_switchMap)->erase(strCategory);
}

void ClearOutputSwitches()
{
    SwitchMap::Access(s_switchMap)->clear();
}
