#include "tests/driver/CapsRoute.h"

#include "tests/common/TestPrinter.h"

#include <catch2/catch_test_macros.hpp>

#include <winspool.h>

namespace
{

class DirectRoute : public CapsRoute
{
public:
    DirectRoute() { REQUIRE(m_module.DeviceCapabilities != nullptr); }
    DWORD Ask(WORD iDevCap, void* pvOutput) const override
    {
        wchar_t szPrinter[] = L"VelPrinter";
        return m_module.DeviceCapabilities(nullptr, szPrinter, iDevCap, pvOutput, nullptr);
    }

private:
    BuiltModule m_module;
};

/// Asks for a printer of the test's own through the spooler's API.
class SpoolerRoute : public CapsRoute
{
public:
    explicit SpoolerRoute(ClientFixture& client) : m_printer(client) {}
    DWORD Ask(WORD iDevCap, void* pvOutput) const override
    {
        return static_cast<DWORD>(
            DeviceCapabilitiesW(m_printer.Name().c_str(), L"FILE:", iDevCap, static_cast<wchar_t*>(pvOutput), nullptr));
    }

private:
    TestPrinter m_printer;
};

} // namespace

std::unique_ptr<CapsRoute> OpenRoad(Road road, ClientFixture& client)
{
    if (road == Road::Direct)
    {
        return std::make_unique<DirectRoute>();
    }
    return std::make_unique<SpoolerRoute>(client);
}
