#pragma once
/// The two roads on which a capability query reaches the module: a host that loads the DLL, and the platform's spooler.

#include "tests/common/BuiltModule.h"
#include "tests/common/ClientFixture.h"

#include <memory>

/// Asks one capability.
class CapsRoute
{
public:
    virtual ~CapsRoute() = default;
    /// @param pvOutput null or room for the whole list.
    /// @return the answer as an unsigned number.
    virtual DWORD Ask(WORD iDevCap, void* pvOutput) const = 0;
};

enum class Road
{
    Direct,
    Spooler
};

/// Opens a road for a test whose registry view is already in place.
std::unique_ptr<CapsRoute> OpenRoad(Road road, ClientFixture& client);
