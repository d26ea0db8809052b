// The document sheet as a person works with it: real windows, through the host that plays the sheet library and through
// the spooler's own call.

#include "tests/ui/BoxWatcher.h"
#include "tests/ui/DrivenFixture.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

TEST_CASE_METHOD(DrivenFixture, "the sheet shows its three pages with their titles", "[ui][driven]")
{
    const Road road = GENERATE(Road::Hosted, Road::Spooled);
    const OpenSheet sheet = Open(road);
    REQUIRE(sheet.PageCount() == 3);
    CHECK(sheet.TabText(0) == L"设置");
    CHECK(sheet.TabText(1) == L"高级设置");
    CHECK(sheet.TabText(2) == L"关于");
    // The page tells of a change while it comes up; Wine's sheet does not know its window yet then and misses it.
    Click(sheet.TurnTo(0), 1003);
    CHECK(sheet.ApplyEnabled());
    CHECK(GetDlgItem(sheet.TurnTo(1), 1006) != nullptr);
    CHECK(GetDlgItem(sheet.TurnTo(2), 1011) != nullptr);
}

TEST_CASE_METHOD(DrivenFixture, "each paper that is chosen and applied goes into the record and the store",
                 "[ui][driven]")
{
    const Road road = GENERATE(Road::Hosted, Road::Spooled);
    OpenSheet sheet = Open(road);
    const HWND hPage = sheet.TurnTo(0);
    const short numbers[] = {9, 8, 11, 1};
    for (int i = 3; i >= 0; --i)
    {
        Hand::ChoosePaper(GetDlgItem(hPage, 1006), i);
        sheet.Apply();
        CHECK(Stored().dmPaperSize == numbers[i]);
        CHECK(Stored().dmFields == 0x9903);
        CHECK(Stored().dmCopies == 3); // what the page does not show is kept
        if (road == Road::Hosted)
        {
            CHECK(result.stuDevmode.dmPaperSize == numbers[i]);
        }
    }
    sheet.Close(PSBTN_CANCEL);
    if (road == Road::Hosted)
    {
        CHECK(outcome.uiDeliveries == 4);
    }
}

TEST_CASE_METHOD(DrivenFixture, "OK delivers the whole record: paper, orientation, colour, binding and request",
                 "[ui][driven]")
{
    OpenSheet sheet = Open(Road::Hosted);
    const HWND hPage = sheet.TurnTo(0);
    Hand::ChoosePaper(GetDlgItem(hPage, 1006), 2);
    Click(hPage, 1012);
    Click(hPage, 1003);
    Click(hPage, 1016);
    Click(hPage, 1013);
    Click(sheet.TurnTo(1), 1006);
    sheet.Close(PSBTN_OK);

    stuDrvDevmode expected = record;
    expected.stuDevmode.dmPaperSize = 11;
    expected.stuDevmode.dmOrientation = 2;
    expected.stuDevmode.dmColor = 2;
    expected.stuDevmode.dmDuplex = 3;
    expected.dwNoWaterPrint = 1;
    CheckResult(expected);
    CHECK(StoredRequest() == L"1");
    CHECK(outcome.uiDeliveries == 2);
    CHECK(outcome.lDeliveryReturn == 1);
    CHECK(outcome.refusals.empty());
}

TEST_CASE_METHOD(DrivenFixture, "through the spooler OK stores the same choices", "[ui][driven]")
{
    OpenSheet sheet = Open(Road::Spooled);
    const HWND hPage = sheet.TurnTo(0);
    Hand::ChoosePaper(GetDlgItem(hPage, 1006), 1);
    Click(hPage, 1012);
    Click(hPage, 1003);
    Click(hPage, 1016);
    Click(sheet.TurnTo(1), 1006);
    sheet.Close(PSBTN_OK);
    CHECK(lSpooled == IDOK);
    CHECK(Stored().dmPaperSize == 8);
    CHECK(Stored().dmOrientation == 2);
    CHECK(Stored().dmColor == 2);
    CHECK(Stored().dmDuplex == 2);
    CHECK(StoredRequest() == L"1");
}

TEST_CASE_METHOD(DrivenFixture, "a typed size is stored as a custom paper, in both orientations", "[ui][driven]")
{
    const Road road = GENERATE(Road::Hosted, Road::Spooled);
    const bool bLandscape = GENERATE(false, true);
    OpenSheet sheet = Open(road);
    const HWND hPage = sheet.TurnTo(0);
    if (bLandscape)
    {
        Click(hPage, 1012);
    }
    // The width stands in the first box in portrait, in the second in landscape.
    Hand::Type(GetDlgItem(hPage, bLandscape ? 1008 : 1007), L"123");
    Hand::Type(GetDlgItem(hPage, bLandscape ? 1007 : 1008), L"456");
    CHECK(Hand::PaperOf(GetDlgItem(hPage, 1006)) == L"自定义");
    sheet.Close(PSBTN_OK);
    const DEVMODEW stored = Stored();
    CHECK(stored.dmFields == 0x190F);
    CHECK(stored.dmPaperSize == 256);
    CHECK(stored.dmPaperWidth == 1230);
    CHECK(stored.dmPaperLength == 4560);
    CHECK(stored.dmOrientation == (bLandscape ? 2 : 1));
    if (road == Road::Hosted)
    {
        CHECK(memcmp(&result, &stored, 220) == 0);
    }
}

TEST_CASE_METHOD(DrivenFixture, "a typed size of a listed paper selects it", "[ui][driven]")
{
    const Road road = GENERATE(Road::Hosted, Road::Spooled);
    OpenSheet sheet = Open(road);
    const HWND hPage = sheet.TurnTo(0);
    Hand::Type(GetDlgItem(hPage, 1007), L"148");
    Hand::Type(GetDlgItem(hPage, 1008), L"210");
    CHECK(Hand::PaperOf(GetDlgItem(hPage, 1006)) == L"A5");
    sheet.Close(PSBTN_OK);
    CHECK(Stored().dmPaperSize == 11);
    CHECK(Stored().dmFields == 0x9903);
}

TEST_CASE_METHOD(DrivenFixture, "a spin in the sheet changes the size", "[ui][driven]")
{
    OpenSheet sheet = Open(Road::Hosted);
    const HWND hPage = sheet.TurnTo(0);
    for (int i = 0; i < 6; ++i)
    {
        Hand::PressSpin(GetDlgItem(hPage, 1004), true);
    }
    CHECK(Hand::TextOf(GetDlgItem(hPage, 1007)) == L"216");
    CHECK(Hand::PaperOf(GetDlgItem(hPage, 1006)) == L"自定义");
    sheet.Close(PSBTN_OK);
    CHECK(result.stuDevmode.dmPaperWidth == 2160);
    CHECK(result.stuDevmode.dmPaperLength == 2970);
}

TEST_CASE_METHOD(DrivenFixture, "cancel changes neither the record nor the store", "[ui][driven]")
{
    const Road road = GENERATE(Road::Hosted, Road::Spooled);
    OpenSheet sheet = Open(road);
    const HWND hPage = sheet.TurnTo(0);
    Hand::ChoosePaper(GetDlgItem(hPage, 1006), 3);
    Click(hPage, 1003);
    Click(sheet.TurnTo(1), 1006);
    sheet.Close(PSBTN_CANCEL);
    CHECK(memcmp(&result, &record, 232) == 0);
    CHECK_FALSE(PathExists(folder.File(L"QPS@VEL_DevMode.dat")));
    CHECK(StoredRequest() == L"none");
    CHECK(outcome.uiDeliveries == 0);
}

TEST_CASE_METHOD(DrivenFixture, "an apply and then a cancel keeps what was applied", "[ui][driven]")
{
    OpenSheet sheet = Open(Road::Hosted);
    const HWND hPage = sheet.TurnTo(0);
    Click(hPage, 1003);
    sheet.Apply();
    Click(hPage, 1002);
    sheet.Close(PSBTN_CANCEL);
    stuDrvDevmode expected = record;
    expected.stuDevmode.dmColor = 2;
    CheckResult(expected);
}

TEST_CASE_METHOD(DrivenFixture, "a second apply delivers again", "[ui][driven]")
{
    OpenSheet sheet = Open(Road::Hosted);
    const HWND hPage = sheet.TurnTo(0);
    Click(hPage, 1003);
    sheet.Apply();
    CHECK(result.stuDevmode.dmColor == 2);
    Click(hPage, 1002);
    sheet.Apply();
    CHECK(result.stuDevmode.dmColor == 1);
    sheet.Close(PSBTN_OK);
    CHECK(outcome.uiDeliveries == 3);
    CheckResult(record);
}

TEST_CASE_METHOD(DrivenFixture, "a sheet whose advanced page was never shown delivers the stored request",
                 "[ui][driven]")
{
    WriteFileBytes(folder.File(L"QPS@VEL_defsetting.ini"), "[PrintSetting]\r\nDefaultNoWaterPrint=6\r\n");
    record.dwTailWord0 = record.dwNoWaterPrint = record.dwTailWord2 = 0x99;
    OpenSheet sheet = Open(Road::Hosted);
    sheet.Close(PSBTN_OK);
    CHECK(outcome.uiDeliveries == 1);
    CHECK(result.dwNoWaterPrint == 6);
    CHECK(StoredRequest() == L"6"); // as it is, though the page would have made a 0 of it
}

TEST_CASE_METHOD(DrivenFixture, "a request that is clicked and cancelled is not stored", "[ui][driven]")
{
    OpenSheet sheet = Open(Road::Hosted);
    Click(sheet.TurnTo(1), 1006);
    CHECK(Checked(sheet.TurnTo(1), 1006));
    sheet.Close(PSBTN_CANCEL);
    CHECK(StoredRequest() == L"none");
    CHECK(result.dwNoWaterPrint == 0);
}

TEST_CASE_METHOD(DrivenFixture, "a sheet reopens on what was applied, a custom paper with empty boxes", "[ui][driven]")
{
    {
        OpenSheet sheet = Open(Road::Hosted);
        const HWND hPage = sheet.TurnTo(0);
        Hand::Type(GetDlgItem(hPage, 1007), L"100");
        Hand::Type(GetDlgItem(hPage, 1008), L"200");
        Click(hPage, 1003);
        Click(hPage, 1016);
        Click(hPage, 1013);
        sheet.Close(PSBTN_OK);
    }
    record = result;
    OpenSheet sheet = Open(Road::Hosted);
    const HWND hPage = sheet.TurnTo(0);
    CHECK(Hand::PaperOf(GetDlgItem(hPage, 1006)) == L"自定义");
    CHECK(Hand::TextOf(GetDlgItem(hPage, 1007)).empty());
    CHECK(Hand::TextOf(GetDlgItem(hPage, 1008)).empty());
    CHECK(Checked(hPage, 1003));
    CHECK(Checked(hPage, 1016));
    CHECK(Checked(hPage, 1013));
    sheet.Close(PSBTN_OK);
    CHECK(result.stuDevmode.dmPaperWidth == 0);
    CHECK(result.stuDevmode.dmPaperLength == 0);
}

TEST_CASE_METHOD(DrivenFixture, "a non-digit typed into the sheet brings the warning, and typing goes on",
                 "[ui][driven]")
{
    const Road road = GENERATE(Road::Hosted, Road::Spooled);
    BoxWatcher watcher;
    OpenSheet sheet = Open(road);
    const HWND hPage = sheet.TurnTo(0);
    const HWND hBox = GetDlgItem(hPage, 1007);
    Hand::Type(hBox, L"1z");
    REQUIRE(watcher.Count() == 1);
    CHECK(watcher.Boxes()[0].strText == L"请确保输入的数据正确");
    CHECK(watcher.Boxes()[0].strCaption == L"警告");
    CHECK(Hand::TextOf(hBox) == L"1z");
    SendMessageW(hBox, WM_CHAR, VK_BACK, 1);
    SendMessageW(hBox, WM_CHAR, L'4', 1);
    SendMessageW(hBox, WM_CHAR, L'8', 1);
    CHECK(Hand::TextOf(hBox) == L"148");
    CHECK(watcher.Count() == 1);
    sheet.Close(PSBTN_CANCEL);
}

TEST_CASE_METHOD(DrivenFixture, "a non-digit holds the sheet back neither on another page nor at OK", "[ui][driven]")
{
    BoxWatcher watcher;
    OpenSheet sheet = Open(Road::Hosted);
    const HWND hPage = sheet.TurnTo(0);
    Hand::Type(GetDlgItem(hPage, 1007), L"1z");
    sheet.TurnTo(1);
    CHECK(watcher.Count() == 1);
    sheet.Close(PSBTN_OK);
    CHECK(watcher.Count() == 2); // the apply reads the box of the custom paper once more
    CHECK(result.stuDevmode.dmPaperSize == 256);
    CHECK(result.stuDevmode.dmPaperWidth == 0);
    CHECK(result.stuDevmode.dmPaperLength == 2970);
}

TEST_CASE_METHOD(DrivenFixture, "two sheets of one process share the roles of the size boxes", "[ui][driven]")
{
    DrivenFixture other;
    other.WriteCaps(PaperKeys(kPapers, kAbleKeys));
    WriteCaps(PaperKeys(kPapers, kAbleKeys));
    OpenSheet first = Open(Road::Hosted);
    OpenSheet second = other.Open(Road::Hosted);
    Click(second.TurnTo(0), 1012);
    const HWND hPage = first.TurnTo(0);
    CHECK(Checked(hPage, 1011));
    Hand::ChoosePaper(GetDlgItem(hPage, 1006), 1);
    CHECK(Hand::TextOf(GetDlgItem(hPage, 1007)) == L"420"); // the width's box is the second one for both
    CHECK(Hand::TextOf(GetDlgItem(hPage, 1008)) == L"297");
    second.Close(PSBTN_OK);
    first.Close(PSBTN_OK);
    CHECK(result.stuDevmode.dmPaperSize == 8);
    CHECK(result.stuDevmode.dmOrientation == 1);
    CHECK(other.result.stuDevmode.dmOrientation == 2);
}

TEST_CASE_METHOD(DrivenFixture, "the device sheet shows the about page alone", "[ui][driven]")
{
    DEVICEPROPERTYHEADER header = {};
    header.cbSize = sizeof(header);
    VelHost::SheetLibrary library(module.DeviceSheets, reinterpret_cast<LPARAM>(&header));
    OpenSheet sheet([&] { outcome = library.Show(nullptr, L"VelPrinter"); });
    REQUIRE(sheet.PageCount() == 1);
    CHECK(sheet.TabText(0) == L"关于");
    CHECK(GetDlgItem(sheet.TurnTo(0), 1011) != nullptr);
    CHECK_FALSE(sheet.ApplyEnabled());
    sheet.Close(PSBTN_OK);
    CHECK(outcome.lInitReturn == 1);
    CHECK(outcome.uiDeliveries == 0);
}
