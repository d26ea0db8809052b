#include "tools/velhost/doctor/RegistryCheck.h"

#include "state/PsFolder.h"
#include "support/RegistryKey.h"

namespace VelHost
{

const std::vector<FindingKind>& RegistryKinds()
{
    static const std::vector<FindingKind> s_kinds = {
        {"REG01", "The client's registry key is missing", "Install the client, or run velhost install."},
    };
    return s_kinds;
}

void CheckRegistry(Findings& findings)
{
    RegistryKey key;
    if (key.Open(HKEY_LOCAL_MACHINE, VelUtility::kClientKey, KEY_READ) != ERROR_SUCCESS)
    {
        findings.Add("REG01", std::wstring(L"HKEY_LOCAL_MACHINE\\") + VelUtility::kClientKey, L"");
    }
}

} // namespace VelHost
