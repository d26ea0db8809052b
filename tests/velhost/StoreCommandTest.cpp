#include "state/ConfigFile.h"
#include "tests/common/ClientFixture.h"
#include "tools/velhost/host/StoreKeys.h"

#include <catch2/catch_test_macros.hpp>

#include <set>
#include <stdexcept>

using namespace VelHost;

TEST_CASE_METHOD(ClientFixture, "every key that has a writer gives back what was written", "[velhost][store]")
{
    const std::pair<const char*, const char*> values[] = {
        {"DisplayProjectSelection", "0"},
        {"CanSelectNoPrinter", "1"},
        {"CanSelectNoProject", "1"},
        {"DefaultPrinter", "Office"},
        {"DefaultProject", "Seven"},
        {"WaterPrintInstalled", "1"},
        {"AuditInstalled", "1"},
        {"SGIdentifyInstalled", "1"},
        {"FilterIntalled", "1"},
        {"DefaultNoWaterPrint", "-5"},
        {"Server", "print01"},
        {"IPAddress", "10.1.2.255"},
        {"Mode", "1"},
        {"SharedServer", "print02"},
        {"MessageId", "4294967295"},
        {"SaveDays", "-30"},
    };
    std::set<std::string> written;
    for (const auto& [pszKey, pszValue] : values)
    {
        CAPTURE(pszKey);
        const StoreKey* const pKey = FindStoreKey(pszKey);
        REQUIRE(pKey != nullptr);
        REQUIRE(pKey->pfnWrite != nullptr);
        CHECK(pKey->pfnWrite(L"lin", pszValue));
        const Json value = pKey->pfnRead(L"lin");
        CHECK((value.is_string() ? value.get<std::string>() : value.dump()) == pszValue);
        written.insert(pszKey);
    }
    for (const StoreKey& key : StoreKeys())
    {
        CAPTURE(key.pszKey);
        CHECK(
            (written.count(key.pszKey) == 1 || key.pfnWrite == nullptr || key.pszKey == std::string("LogonUserName")));
    }
}

TEST_CASE_METHOD(ClientFixture, "setting one flag of a file leaves the others", "[velhost][store]")
{
    const VelUtility::ServerConfigInfo before = {1, 0, 1, 0};
    REQUIRE(VelUtility::MakeServerConfig(&before) == 0);
    CHECK(FindStoreKey("auditinstalled")->pfnWrite(L"", "1"));
    VelUtility::ServerConfigInfo after = {};
    REQUIRE(VelUtility::GetServerConfig(&after) == 0);
    CHECK(after.WaterPrintInstalled == 1);
    CHECK(after.AuditInstalled == 1);
    CHECK(after.SGIdentifyInstalled == 1);
    CHECK(after.FilterIntalled == 0);
}

TEST_CASE_METHOD(ClientFixture, "a value of another form is refused and writes nothing", "[velhost][store]")
{
    const std::pair<const char*, const char*> values[] = {
        {"Mode", "2"},
        {"Mode", ""},
        {"Mode", "1x"},
        {"MessageId", "-1"},
        {"MessageId", "9e9"},
        {"SaveDays", "2147483648"},
        {"IPAddress", "1.2.3"},
        {"IPAddress", "1.2.3.256"},
        {"IPAddress", "1.2.3.4.5"},
    };
    for (const auto& [pszKey, pszValue] : values)
    {
        CAPTURE(pszKey, pszValue);
        CHECK_THROWS_AS(FindStoreKey(pszKey)->pfnWrite(L"lin", pszValue), std::logic_error);
    }
    CHECK_FALSE(PathExists(folder.File(L"QPS@VEL_server.ini")));
    CHECK_FALSE(PathExists(folder.File(L"lin_MsgConfig.ini")));
}

TEST_CASE("a key that is not there is not found", "[velhost][store]")
{
    CHECK(FindStoreKey("Nothing") == nullptr);
    CHECK(FindStoreKey("") == nullptr);
}
