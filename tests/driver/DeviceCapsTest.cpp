#include "tests/common/GuardedBuffer.h"
#include "tests/driver/CapsModel.h"
#include "tests/driver/CapsRoute.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

#include <algorithm>
#include <memory>

namespace
{

constexpr DWORD kRefused = 0xFFFFFFFF;

/// 0 is never an answer.
DWORD NeverZero(DWORD dw)
{
    return dw == 0 ? kRefused : dw;
}

DWORD NumberOf(const std::optional<std::wstring>& strValue)
{
    return strValue ? static_cast<DWORD>(std::stoll(*strValue)) : kRefused;
}

std::wstring Indexed(const wchar_t* pszBase, DWORD dwIndex)
{
    return pszBase + std::to_wstring(dwIndex);
}

/// The bytes that a whole list has in the caller's buffer.
std::string ListBytes(const CapModel& model, const CapKeys& keys, DWORD dwCount)
{
    std::string strBytes;
    const auto append = [&](const void* p, size_t cb) { strBytes.append(static_cast<const char*>(p), cb); };
    for (DWORD i = 0; i < dwCount; ++i)
    {
        if (model.form == Form::Names24 || model.form == Form::Names64)
        {
            std::wstring strName = FindKey(keys, Indexed(model.pszBase, i)).value_or(L"");
            strName.resize(EntryBytes(model.form) / sizeof(wchar_t));
            append(strName.data(), EntryBytes(model.form));
            continue;
        }
        const DWORD dwFirst = NumberOf(FindKey(keys, Indexed(model.pszBase, i)));
        append(&dwFirst, model.form == Form::Words ? 2 : 4);
        if (model.form == Form::Pairs)
        {
            const DWORD dwSecond = NumberOf(FindKey(keys, Indexed(model.pszSecond, i)));
            append(&dwSecond, 4);
        }
    }
    return strBytes;
}

/// What the count call or a single value answers.
DWORD FirstAnswer(const CapModel& model, const CapKeys& keys)
{
    switch (model.form)
    {
    case Form::Refused:
        return kRefused;
    case Form::Constant:
        return model.dwConstant;
    default:
        return NeverZero(NumberOf(FindKey(keys, model.pszKey)));
    }
}

/// Checks every code from 0 to 36 against a section's keys, none of which is missing within its list.
void CheckAllCodes(const CapsRoute& route, const CapKeys& keys)
{
    for (const CapModel& model : CapModels())
    {
        CAPTURE(model.iDevCap);
        const DWORD dwFirst = FirstAnswer(model, keys);
        CHECK(route.Ask(model.iDevCap, nullptr) == dwFirst);
        if (EntryBytes(model.form) == 0 || dwFirst == kRefused)
        {
            continue;
        }
        const GuardedBuffer buffer(dwFirst * EntryBytes(model.form), 0xEE);
        CHECK(route.Ask(model.iDevCap, buffer.Get()) == dwFirst);
        CHECK(std::string(buffer.As<char>(), buffer.Size()) == ListBytes(model, keys, dwFirst));
        CHECK(buffer.Intact());
    }
}

} // namespace

TEST_CASE_METHOD(ClientFixture, "every code answers from the sample printer", "[driver][caps]")
{
    const CapKeys keys = SampleKeys();
    WriteFileBytes(ConfigFile(), ReadFileBytes(BesideTests(L"sample\\Config.ini")));
    CheckAllCodes(*OpenRoad(GENERATE(Road::Direct, Road::Spooler), *this), keys);
}

TEST_CASE_METHOD(ClientFixture, "without a file constants answer and all else is refused", "[driver][caps]")
{
    CheckAllCodes(*OpenRoad(GENERATE(Road::Direct, Road::Spooler), *this), {});
}

TEST_CASE("without a client the constants answer and all else is refused", "[driver][caps]")
{
    const PrivateRegistry registry;
    const BuiltModule module;
    REQUIRE(module.DeviceCapabilities != nullptr);
    for (const CapModel& model : CapModels())
    {
        CAPTURE(model.iDevCap);
        const DWORD dwExpected = model.form == Form::Constant ? model.dwConstant : kRefused;
        CHECK(module.DeviceCapabilities(nullptr, nullptr, model.iDevCap, nullptr, nullptr) == dwExpected);
    }
}

TEST_CASE_METHOD(ClientFixture, "each missing key fails its own capability and no other", "[driver][caps]")
{
    const std::unique_ptr<CapsRoute> pRoute = OpenRoad(GENERATE(Road::Direct, Road::Spooler), *this);
    const CapKeys all = SampleKeys();
    for (const auto& missing : all)
    {
        const std::wstring& strMissing = missing.first;
        INFO("missing " << std::string(strMissing.begin(), strMissing.end()));
        CapKeys keys = all;
        keys.erase(std::remove(keys.begin(), keys.end(), missing), keys.end());
        WriteCaps(keys);
        for (const CapModel& model : CapModels())
        {
            if (model.pszKey == nullptr)
            {
                continue;
            }
            CAPTURE(model.iDevCap);
            const bool bCountMissing = strMissing == model.pszKey;
            const DWORD dwFirst = bCountMissing ? kRefused : FirstAnswer(model, all);
            CHECK(pRoute->Ask(model.iDevCap, nullptr) == dwFirst);
            if (model.pszBase == nullptr || bCountMissing)
            {
                continue;
            }
            bool bOwnEntry = false;
            for (DWORD i = 0; i < dwFirst; ++i)
            {
                bOwnEntry = bOwnEntry || strMissing == Indexed(model.pszBase, i) ||
                            (model.pszSecond != nullptr && strMissing == Indexed(model.pszSecond, i));
            }
            const bool bNames = model.form == Form::Names24 || model.form == Form::Names64;
            const GuardedBuffer buffer(dwFirst * EntryBytes(model.form), 0xEE);
            // A missing name is an empty one; a missing number fails the list.
            CHECK(pRoute->Ask(model.iDevCap, buffer.Get()) == (bOwnEntry && !bNames ? kRefused : dwFirst));
            if (!bOwnEntry || bNames)
            {
                CHECK(std::string(buffer.As<char>(), buffer.Size()) == ListBytes(model, keys, dwFirst));
            }
        }
    }
}

TEST_CASE_METHOD(ClientFixture, "a value of 0, -1 or 4294967295 looks like a failure for every capability",
                 "[driver][caps]")
{
    const std::unique_ptr<CapsRoute> pRoute = OpenRoad(GENERATE(Road::Direct, Road::Spooler), *this);
    for (const wchar_t* pszValue : {L"0", L"-1", L"4294967295"})
    {
        CapKeys keys = SampleKeys();
        for (const CapModel& model : CapModels())
        {
            for (auto& [strKey, strValue] : keys)
            {
                if (model.pszKey != nullptr && strKey == model.pszKey)
                {
                    strValue = pszValue;
                }
            }
        }
        WriteCaps(keys);
        for (const CapModel& model : CapModels())
        {
            CAPTURE(model.iDevCap);
            const DWORD dwExpected = model.form == Form::Constant ? model.dwConstant : kRefused;
            GuardedBuffer buffer(16, 0xEE);
            CHECK(pRoute->Ask(model.iDevCap, nullptr) == dwExpected);
            CHECK(pRoute->Ask(model.iDevCap, buffer.Get()) == dwExpected);
            CHECK(buffer.As<unsigned __int64>()[0] == 0xEEEEEEEEEEEEEEEE);
        }
    }
}

TEST_CASE_METHOD(ClientFixture, "names fail at exactly two lengths on both roads", "[driver][caps]")
{
    const std::unique_ptr<CapsRoute> pRoute = OpenRoad(GENERATE(Road::Direct, Road::Spooler), *this);
    for (const size_t uiLength : {21u, 22u, 23u, 24u, 25u, 61u, 62u, 63u, 64u, 65u})
    {
        CAPTURE(uiLength);
        const std::wstring strName(uiLength, L'n');
        const CapKeys keys = {{L"BinNamesCount", L"1"},       {L"BinNames0", strName},      {L"PaperNamesCount", L"1"},
                              {L"PaperNames0", strName},      {L"MediaReadyCount", L"1"},   {L"MediaReady0", strName},
                              {L"MediaTypeNamesCount", L"1"}, {L"MediaTypeNames0", strName}};
        WriteCaps(keys);
        for (const CapModel& model : CapModels())
        {
            const size_t uiWidth = EntryBytes(model.form) / sizeof(wchar_t);
            if (model.form != Form::Names24 && model.form != Form::Names64)
            {
                continue;
            }
            CAPTURE(model.iDevCap);
            const bool bFails = uiLength == uiWidth - 1 || uiLength == uiWidth - 2;
            const GuardedBuffer buffer(uiWidth * sizeof(wchar_t), 0xEE);
            CHECK(pRoute->Ask(model.iDevCap, buffer.Get()) == (bFails ? kRefused : 1));
            CHECK(std::string(buffer.As<char>(), buffer.Size()) == ListBytes(model, keys, 1));
        }
    }
}

TEST_CASE_METHOD(ClientFixture, "duplex is 1 for 1 and a failure for 0 and for no key", "[driver][caps]")
{
    const std::unique_ptr<CapsRoute> pRoute = OpenRoad(GENERATE(Road::Direct, Road::Spooler), *this);
    WriteCaps({{L"Duplex", L"1"}});
    CHECK(pRoute->Ask(DC_DUPLEX, nullptr) == 1);
    WriteCaps({{L"Duplex", L"0"}});
    CHECK(pRoute->Ask(DC_DUPLEX, nullptr) == kRefused);
    WriteCaps({});
    CHECK(pRoute->Ask(DC_DUPLEX, nullptr) == kRefused);
}

TEST_CASE_METHOD(ClientFixture, "an empty list of papers looks like a failure", "[driver][caps]")
{
    const std::unique_ptr<CapsRoute> pRoute = OpenRoad(GENERATE(Road::Direct, Road::Spooler), *this);
    WriteCaps({{L"PapersCount", L"0"}});
    CHECK(pRoute->Ask(DC_PAPERS, nullptr) == kRefused);
}

TEST_CASE_METHOD(ClientFixture, "codes beyond the table are refused", "[driver][caps]")
{
    const BuiltModule module;
    for (const WORD iDevCap : {WORD{36}, WORD{37}, WORD{255}, WORD{0x8000}, WORD{0xFFFF}})
    {
        CAPTURE(iDevCap);
        CHECK(module.DeviceCapabilities(nullptr, nullptr, iDevCap, nullptr, nullptr) == kRefused);
    }
}

TEST_CASE_METHOD(ClientFixture, "a capability query leaves the last error alone", "[driver][caps]")
{
    WriteFileBytes(ConfigFile(), ReadFileBytes(BesideTests(L"sample\\Config.ini")));
    const BuiltModule module;
    for (const WORD iDevCap : {DC_SIZE, DC_FIELDS})
    {
        SetLastError(1234);
        module.DeviceCapabilities(nullptr, nullptr, iDevCap, nullptr, nullptr);
        CHECK(GetLastError() == 1234);
    }
}
