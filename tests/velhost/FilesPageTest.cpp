// docs/files.md against the code: what the page says of registry values, files, locks, keys and defaults.

#include "diag/OutputSwitches.h"
#include "state/CapabilityTable.h"
#include "state/PsFolder.h"
#include "state/StoreTypes.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/LockHolder.h"
#include "tests/common/LockWatch.h"
#include "tests/common/PageTable.h"
#include "tools/velhost/host/CapsQuery.h"
#include "tools/velhost/host/StoreKeys.h"
#include "tools/velhost/report/Encoding.h"

#include <catch2/catch_test_macros.hpp>

#include <map>
#include <set>

using namespace VelHost;

namespace
{

const PageTables& Page()
{
    static const PageTables s_page(BesideTests(L"files.md"));
    return s_page;
}

/// A file's name in DataDir or TempDir as the page's pattern has it, for the user without a logon and the reader "lin".
std::wstring FileName(std::string strPattern)
{
    const bool bPersonal = strPattern.find("DOMAIN") != std::string::npos;
    const auto put = [&strPattern](const std::string& strMark, const std::string& strText) {
        const size_t uiAt = strPattern.find(strMark);
        if (uiAt != std::string::npos)
        {
            strPattern.replace(uiAt, strMark.size(), strText);
        }
    };
    put("USER", bPersonal ? "QPS" : "lin");
    put("DOMAIN", "VEL");
    return FromUtf8(strPattern);
}

/// The page's row of a file.
std::map<std::string, std::string> FileRow(const std::string& strFile)
{
    for (const auto& row : Page().Rows("file", "folder"))
    {
        if (row.at("file") == strFile)
        {
            return row;
        }
    }
    FAIL("docs/files.md has no file " << strFile);
    return {};
}

/// A value of a form that is no key's default, as it is given to a writer and as it lies in the file.
std::pair<std::string, std::wstring> SampleOf(const StoreKey& key, const std::string& strDefault)
{
    const std::string strForm = key.pszForm;
    if (strForm == "0 or 1")
    {
        const std::string strOther = strDefault == "0" ? "1" : "0";
        return {strOther, FromUtf8(strOther)};
    }
    if (strForm == "1.2.3.4")
    {
        return {"10.1.2.3", std::to_wstring(10 + 1 * 0x100 + 2 * 0x10000 + 3 * 0x1000000)};
    }
    return strForm == "number" ? std::pair<std::string, std::wstring>{"7", L"7"}
                               : std::pair<std::string, std::wstring>{"abc", L"abc"};
}

std::string AsText(const Json& value)
{
    return value.is_string() ? value.get<std::string>() : value.dump();
}

/// What the page says of the form of a list's elements, or of a number.
struct FormWords
{
    std::string operator()(const VelUtility::CapNumber&) const { return "number"; }
    std::string operator()(const VelUtility::CapExtent&) const
    {
        return "width in the low 16 bits, height in the high ones, tenths of a millimetre";
    }
    std::string operator()(const VelUtility::CapList<WORD>&) const { return "numbers of 16 bits"; }
    std::string operator()(const VelUtility::CapList<DWORD>&) const { return "numbers of 32 bits"; }
    std::string operator()(const VelUtility::CapList<VelUtility::NarrowName>&) const
    {
        return "names of at most 21 characters";
    }
    std::string operator()(const VelUtility::CapList<VelUtility::WideName>&) const
    {
        return "names of at most 61 characters";
    }
    std::string operator()(const VelUtility::CapPairs<VelUtility::Resolution>&) const { return "dots per inch"; }
    std::string operator()(const VelUtility::CapPairs<POINT>&) const { return "tenths of a millimetre"; }
};

struct ElementWords
{
    template <typename Number>
    std::string operator()(const Number&) const
    {
        return "";
    }
    template <typename Entry>
    std::string operator()(const VelUtility::CapList<Entry>& list) const
    {
        return ToUtf8(list.pszBaseKey);
    }
    template <typename Pair>
    std::string operator()(const VelUtility::CapPairs<Pair>& pairs) const
    {
        return ToUtf8(pairs.pszBaseKeyX) + ", " + ToUtf8(pairs.pszBaseKeyY);
    }
};

} // namespace

TEST_CASE("the page of files has the snapshot's keys, forms and codes in their order", "[velhost][pages]")
{
    std::vector<std::string> expected;
    for (const VelUtility::CapRow& row : VelUtility::kCapRows)
    {
        expected.push_back(ToUtf8(row.pszKey) + "|" + std::visit(ElementWords(), row.form) + "|" +
                           std::visit(FormWords(), row.form) + "|" + FindCapsCode(row.iDevCap).pszName);
    }
    std::vector<std::string> told;
    for (const auto& row : Page().Rows("key", "elements"))
    {
        told.push_back(row.at("key") + "|" + row.at("elements") + "|" + row.at("form") + "|" + row.at("told as"));
    }
    CHECK(told == expected);
}

TEST_CASE_METHOD(ClientFixture, "the page of files has each key of the store with its file, form and default",
                 "[velhost][pages]")
{
    std::set<std::string> seen;
    for (const auto& row : Page().Rows("file", "section"))
    {
        CAPTURE(row.at("velhost name"));
        const StoreKey* const pKey = FindStoreKey(row.at("velhost name"));
        REQUIRE(pKey != nullptr);
        CHECK(seen.insert(pKey->pszKey).second);
        CHECK(row.at("velhost name") == pKey->pszKey);
        CHECK(row.at("file") == pKey->pszFile);
        CHECK(row.at("form") == pKey->pszForm);
        CHECK(row.at("default") == AsText(pKey->pfnRead(L"lin"))); // there is no file yet
        CHECK((row.at("written by") == "nobody here") == (pKey->pfnWrite == nullptr));
    }
    for (const StoreKey& key : StoreKeys())
    {
        CAPTURE(key.pszKey);
        CHECK((seen.count(key.pszKey) == 1 || key.pszFile == std::string("passport.dat")));
    }
}

TEST_CASE_METHOD(ClientFixture, "each key of the store lies in the file and section of the page, under the page's lock",
                 "[velhost][pages]")
{
    LockWatch watch;
    for (const auto& row : Page().Rows("file", "section"))
    {
        CAPTURE(row.at("velhost name"));
        const StoreKey& key = *FindStoreKey(row.at("velhost name"));
        const auto fileRow = FileRow(row.at("file"));
        const std::wstring strFile = folder.File(FileName(fileRow.at("name")));
        const auto [strGiven, strStored] = SampleOf(key, row.at("default"));
        if (key.pfnWrite != nullptr)
        {
            CHECK(key.pfnWrite(L"lin", strGiven));
            wchar_t szStored[64] = {};
            GetPrivateProfileStringW(FromUtf8(row.at("section")).c_str(), FromUtf8(row.at("key")).c_str(), L"missing",
                                     szStored, 64, strFile.c_str());
            CHECK(std::wstring(szStored) == strStored);
        }
        watch.Watch([&key] { key.pfnRead(L"lin"); });
        const auto read = std::find_if(watch.Steps().begin(), watch.Steps().end(),
                                       [&row](const LockStep& step) { return step.strWhat == "?" + row.at("key"); });
        REQUIRE(read != watch.Steps().end());
        CHECK(fileRow.at("lock").find("yes") == 0);
        CHECK(read->held == std::set<std::wstring>{MutexNameOf(strFile)});
    }
}

TEST_CASE_METHOD(ClientFixture, "the page of files has the data files under their names", "[velhost][pages]")
{
    // A stored name is a data file of the user; the message file and the record have calls of their own.
    REQUIRE(FindStoreKey("LogonUserName")->pfnWrite(L"lin", "lin"));
    CHECK(PathExists(folder.File(FileName(FileRow("passport.dat").at("name")))));
    for (const StoreKey& key : StoreKeys())
    {
        CAPTURE(key.pszFile);
        CHECK_FALSE(FileRow(key.pszFile).at("name").empty());
    }
}

TEST_CASE("the page of files names the registry value of each folder", "[velhost][pages]")
{
    using namespace VelUtility;
    DWORD iFolderId = kClientInstallDir;
    for (const auto& row : Page().Rows("value", "key"))
    {
        const bool bClient = row.at("key") == ToUtf8(kClientKey);
        if (!bClient && row.at("key") != ToUtf8(kServerKey))
        {
            continue;
        }
        for (const std::string& strValue : PageTables::List(row.at("value")))
        {
            CAPTURE(row.at("key"), strValue, iFolderId);
            PrivateRegistry registry;
            registry.SetText(FromUtf8(row.at("key")), FromUtf8(strValue), L"C:\\Here");
            wchar_t szFolder[kFolderUnits] = {};
            const auto pfnRead = bClient ? &GetClientFolder : &GetServerFolder;
            CHECK(pfnRead(iFolderId, szFolder, sizeof(szFolder)) == PSERR_OK);
            CHECK(std::wstring(szFolder) == L"C:\\Here");
            ++iFolderId;
        }
    }
    CHECK(iFolderId == kServerTempDir + 1);
}

TEST_CASE("the page of files has the switches of a log", "[velhost][pages]")
{
    std::vector<std::string> expected;
    for (const OutputSwitchName& name : kOutputSwitchNames)
    {
        expected.push_back(std::string(name.pszName) + ".CATEGORY");
    }
    std::vector<std::string> told;
    for (const auto& row : Page().Rows("key", "form"))
    {
        if (row.at("key").find("CATEGORY") != std::string::npos)
        {
            told.push_back(row.at("key"));
        }
    }
    CHECK(told == expected);
}
