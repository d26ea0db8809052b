#include "tools/velhost/doctor/Kinds.h"

#include "tools/velhost/doctor/CapsCheck.h"
#include "tools/velhost/doctor/ClientCheck.h"
#include "tools/velhost/doctor/ConfigCheck.h"
#include "tools/velhost/doctor/LogConfigCheck.h"
#include "tools/velhost/doctor/RegistryCheck.h"
#include "tools/velhost/doctor/SpoolerCheck.h"
#include "tools/velhost/doctor/UserFilesCheck.h"

namespace VelHost
{

const std::vector<FindingKind>& AllKinds()
{
    static const std::vector<FindingKind> s_kinds = [] {
        std::vector<FindingKind> kinds;
        for (const std::vector<FindingKind>* const pTable : {
                 &RegistryKinds(),
                 &ConfigKinds(),
                 &CapsKinds(),
                 &LogConfigKinds(),
                 &ClientKinds(),
                 &SpoolerKinds(),
                 &UserFilesKinds(),
             })
        {
            kinds.insert(kinds.end(), pTable->begin(), pTable->end());
        }
        return kinds;
    }();
    return s_kinds;
}

} // namespace VelHost
