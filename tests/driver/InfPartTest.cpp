// The part that a printer driver's INF takes in for the module, read as the platform's setup reads it.

#include "tests/common/BuiltModule.h"
#include "tests/common/TempFolder.h"

#include <catch2/catch_test_macros.hpp>

#include <windows.h>

#include <setupapi.h>

#include <string>
#include <vector>

namespace
{

/// Fields of a line: a key, if there is one, is field 0.
using Fields = std::vector<std::wstring>;

/// The part beside the test program, opened by the platform.
class InfPart
{
public:
    InfPart()
        : m_hInf(SetupOpenInfFileW(BesideTests(L"VelUI.inf.part").c_str(), L"Printer", INF_STYLE_WIN4, &m_uiErrorLine))
    {
        INFO("error " << GetLastError() << ", line " << m_uiErrorLine);
        REQUIRE(m_hInf != INVALID_HANDLE_VALUE);
    }
    ~InfPart() { SetupCloseInfFile(m_hInf); }
    InfPart(const InfPart&) = delete;
    InfPart& operator=(const InfPart&) = delete;

    /// All lines of a section.
    std::vector<Fields> Section(const wchar_t* pszSection) const
    {
        std::vector<Fields> lines;
        INFCONTEXT context = {};
        for (BOOL bLine = SetupFindFirstLineW(m_hInf, pszSection, nullptr, &context); bLine;
             bLine = SetupFindNextLine(&context, &context))
        {
            Fields fields;
            for (DWORD dwField = 0; dwField <= SetupGetFieldCount(&context); ++dwField)
            {
                wchar_t szText[MAX_PATH] = {};
                SetupGetStringFieldW(&context, dwField, szText, MAX_PATH, nullptr);
                fields.push_back(szText);
            }
            lines.push_back(fields);
        }
        return lines;
    }
    /// The value of a key; empty without one.
    std::wstring Value(const wchar_t* pszSection, const wchar_t* pszKey) const
    {
        INFCONTEXT context = {};
        wchar_t szText[MAX_PATH] = {};
        return SetupFindFirstLineW(m_hInf, pszSection, pszKey, &context) &&
                       SetupGetStringFieldW(&context, 1, szText, MAX_PATH, nullptr)
                   ? szText
                   : L"";
    }

private:
    UINT m_uiErrorLine = 0;
    HINF m_hInf;
};

/// The four numbers of the built module's version resource.
std::wstring ModuleVersion()
{
    std::vector<BYTE> info(GetFileVersionInfoSizeW(ModulePath().c_str(), nullptr));
    REQUIRE(GetFileVersionInfoW(ModulePath().c_str(), 0, static_cast<DWORD>(info.size()), info.data()));
    VS_FIXEDFILEINFO* pFixed = nullptr;
    UINT cbFixed = 0;
    REQUIRE(VerQueryValueW(info.data(), L"\\", reinterpret_cast<void**>(&pFixed), &cbFixed));
    std::wstring strVersion;
    for (const DWORD dwPart : {pFixed->dwFileVersionMS, pFixed->dwFileVersionLS})
    {
        strVersion += (strVersion.empty() ? L"" : L".") + std::to_wstring(HIWORD(dwPart)) + L"." +
                      std::to_wstring(LOWORD(dwPart));
    }
    return strVersion;
}

} // namespace

TEST_CASE("the part for a driver's INF names the module as config file, in its version", "[driver][file]")
{
    const InfPart part;
    CHECK(part.Value(L"Version", L"Signature") == L"$Windows NT$");
    CHECK(part.Value(L"Version", L"Class") == L"Printer");
    CHECK(part.Value(L"VelUI.Data", L"ConfigFile") == L"VelUI.dll");
    // What prints is another's, and must not be named here.
    CHECK(part.Value(L"VelUI.Data", L"DriverFile").empty());
    CHECK(part.Value(L"VelUI.Data", L"DataFile").empty());
    CHECK(part.Value(L"VelUI.Part", L"Module") == L"VelUI.dll");
    CHECK(part.Value(L"VelUI.Part", L"ModuleVersion") == ModuleVersion());
}

TEST_CASE("each file that the part lets setup copy is there, on a disk, and goes to the spooler's folder",
          "[driver][file]")
{
    const InfPart part;
    const auto copies = part.Section(L"VelUI.Files");
    REQUIRE(copies.size() == 1);
    for (const Fields& line : copies)
    {
        REQUIRE(line.size() == 2);
        CHECK(PathExists(BesideTests(line[1])));
        const std::wstring strDisk = part.Value(L"SourceDisksFiles", line[1].c_str());
        CHECK_FALSE(strDisk.empty());
        CHECK_FALSE(part.Value(L"SourceDisksNames.amd64", strDisk.c_str()).empty());
    }
    CHECK(part.Value(L"DestinationDirs", L"VelUI.Files") == L"66000");
}

TEST_CASE("the part for a driver's INF has a text for each of its names in percent signs", "[driver][file]")
{
    const InfPart part;
    std::wstring strVersion = ModuleVersion();
    strVersion.erase(strVersion.rfind(L'.')); // three numbers, as users see them
    CHECK(part.Value(L"SourceDisksNames.amd64", L"1") == L"VelUI " + strVersion);
}
