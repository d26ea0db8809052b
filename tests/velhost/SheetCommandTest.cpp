// velhost sheet as a program.

#include "tests/common/BuiltModule.h"
#include "tests/common/ChildProcess.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/TempFolder.h"

#include <catch2/catch_test_macros.hpp>

namespace
{

DWORD ExitCodeOf(const std::vector<std::wstring>& arguments)
{
    ChildProcess program(BesideTests(L"velhost.exe"), arguments);
    return program.Wait(60000);
}

/// Width and height of a PNG file, from its header.
std::pair<DWORD, DWORD> SizeOfPng(const std::wstring& strFile)
{
    const std::string strBytes = ReadFileBytes(strFile);
    REQUIRE(strBytes.size() > 24);
    CHECK(strBytes.substr(1, 3) == "PNG");
    const auto number = [&strBytes](size_t uiAt) {
        DWORD dwNumber = 0;
        for (size_t i = 0; i < 4; ++i)
        {
            dwNumber = dwNumber << 8 | static_cast<BYTE>(strBytes[uiAt + i]);
        }
        return dwNumber;
    };
    return {number(16), number(20)};
}

} // namespace

TEST_CASE("velhost sheet saves a picture of each page and closes the sheet", "[velhost][program][sheets]")
{
    const UserName system(L"SYSTEM"); // so that no client is started
    const TempFolder folder;
    CHECK(ExitCodeOf({L"sheet", L"document", L"--pictures", folder.Path(), L"--save", folder.File(L"record.bin")}) ==
          0);
    for (const wchar_t* const pszPage : {L"page1.png", L"page2.png", L"page3.png"})
    {
        const auto [dwWidth, dwHeight] = SizeOfPng(folder.File(pszPage));
        CHECK(dwWidth > 400);
        CHECK(dwHeight > 400);
    }
    CHECK_FALSE(PathExists(folder.File(L"page4.png")));
    CHECK(ReadFileBytes(folder.File(L"record.bin")).size() == 232);
}

TEST_CASE("velhost sheet shows the device sheet's one page", "[velhost][program][sheets]")
{
    const UserName system(L"SYSTEM");
    const TempFolder folder;
    CHECK(ExitCodeOf({L"sheet", L"device", L"--pictures", folder.Path(), L"--press", L"ok"}) == 0);
    CHECK(PathExists(folder.File(L"page1.png")));
    CHECK_FALSE(PathExists(folder.File(L"page2.png")));
}

TEST_CASE("velhost sheet fails where there is no folder, no module, no printer, and refuses a wrong call",
          "[velhost][program][sheets]")
{
    const UserName system(L"SYSTEM");
    CHECK(ExitCodeOf({L"sheet", L"document", L"--pictures", L"C:\\no such folder"}) == 1);
    CHECK(ExitCodeOf({L"sheet", L"document", L"--module", L"nothing.dll"}) == 1);
    CHECK(ExitCodeOf({L"sheet", L"document", L"--spooler", L"--printer", L"no such printer"}) == 1);
    CHECK(ExitCodeOf({L"sheet"}) == 2);
    CHECK(ExitCodeOf({L"sheet", L"window"}) == 2);
    CHECK(ExitCodeOf({L"sheet", L"document", L"--press", L"help"}) == 2);
}
