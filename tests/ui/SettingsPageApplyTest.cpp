// What an apply of the settings page leaves in the records and the store.

#include "tests/common/ChildCase.h"
#include "tests/ui/BoxWatcher.h"
#include "tests/ui/SettingsFixture.h"

#include <catch2/catch_test_macros.hpp>

namespace
{

struct ApplyFixture : SettingsFixture
{
    ApplyFixture()
    {
        out.stuDevmode.dmPaperWidth = 111;
        out.stuDevmode.dmPaperLength = 222;
        in.dwTailWord0 = in.dwNoWaterPrint = in.dwTailWord2 = 0xAAAAAAAA;
        out.dwTailWord0 = out.dwNoWaterPrint = out.dwTailWord2 = 0xBBBBBBBB;
    }
    std::string StoredRecord() const { return ReadFileBytes(DevModeFile()); }
    std::string OutRecord() const { return std::string(reinterpret_cast<const char*>(&out), 220); }
};

} // namespace

TEST_CASE_METHOD(ApplyFixture, "an apply writes the choices into both records and the user's file", "[ui][apply]")
{
    const PageWindow page = Open();
    page.ChoosePaper(1);
    page.Click(1012);
    page.Click(1003);
    page.Click(1016);
    CHECK(page.Notify(PSN_APPLY) == 0);

    stuDrvDevmode expected = PlainRecord();
    expected.stuDevmode.dmOrientation = 2;
    expected.stuDevmode.dmPaperSize = 8;
    expected.stuDevmode.dmPaperWidth = 111; // a listed paper changes its number alone
    expected.stuDevmode.dmPaperLength = 222;
    expected.stuDevmode.dmColor = 2;
    expected.stuDevmode.dmDuplex = 2;
    expected.dwTailWord0 = expected.dwNoWaterPrint = expected.dwTailWord2 = 0xBBBBBBBB;
    CHECK(memcmp(&out, &expected, 232) == 0);
    CHECK(memcmp(&in, &expected, 220) == 0);
    CHECK(in.dwTailWord0 == 0xAAAAAAAA); // the tail is left alone
    CHECK(in.dwNoWaterPrint == 0xAAAAAAAA);
    CHECK(in.dwTailWord2 == 0xAAAAAAAA);
    CHECK(StoredRecord() == OutRecord());
}

TEST_CASE_METHOD(ApplyFixture, "an apply reports a good result for the page to the sheet library", "[ui][apply]")
{
    const PageWindow page = Open();
    page.Notify(PSN_APPLY);
    REQUIRE(calls.size() == 1);
    CHECK(calls[0].hComPropSheet == static_cast<SheetDataFixture*>(this));
    CHECK(calls[0].uiFunction == 9);
    CHECK(calls[0].lParam1 == 0x5E7);
    CHECK(calls[0].lParam2 == 1);
    page.Notify(PSN_APPLY);
    CHECK(calls.size() == 2);
}

TEST_CASE_METHOD(ApplyFixture, "the records and the store are written before the library hears of the result",
                 "[ui][apply]")
{
    const PageWindow page = Open();
    page.ChoosePaper(1);
    std::string strStored;
    short nIn = 0;
    onCall = [&] {
        strStored = StoredRecord();
        nIn = in.stuDevmode.dmPaperSize;
    };
    page.Notify(PSN_APPLY);
    CHECK(nIn == 8);
    CHECK(strStored.size() == 220);
    CHECK(strStored == OutRecord());
}

// Run by the next case in a process of its own.
TEST_CASE_METHOD(SettingsFixture, "child: an apply of a settings page without data", "[.child]")
{
    const PageWindow page(module.handle, IDD_SETTINGS, &NoPage, 0);
    PSHNOTIFY notification = {};
    notification.hdr.code = static_cast<UINT>(PSN_APPLY);
    ProSetPage(page.Get(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notification));
}

TEST_CASE("an apply of a settings page without data faults", "[ui][apply]")
{
    CHECK(IsFault(ExitCodeOfCase(L"child: an apply of a settings page without data")));
}

TEST_CASE_METHOD(ApplyFixture, "each listed paper goes into the record by its number", "[ui][apply]")
{
    const PageWindow page = Open();
    const short numbers[] = {9, 8, 11, 1};
    for (int i = 3; i >= 0; --i)
    {
        page.ChoosePaper(i);
        page.Notify(PSN_APPLY);
        CHECK(out.stuDevmode.dmPaperSize == numbers[i]);
        CHECK(in.stuDevmode.dmPaperSize == numbers[i]);
        CHECK(out.stuDevmode.dmFields == 0x9903);
    }
}

TEST_CASE_METHOD(ApplyFixture, "the bits of colour and duplex are set behind the copy into the input record",
                 "[ui][apply]")
{
    out.stuDevmode.dmFields = DM_PAPERSIZE | DM_COLLATE;
    const PageWindow page = Open();
    page.Notify(PSN_APPLY);
    CHECK(in.stuDevmode.dmFields == (DM_PAPERSIZE | DM_COLLATE));
    CHECK(out.stuDevmode.dmFields == (DM_PAPERSIZE | DM_COLLATE | DM_COLOR | DM_DUPLEX));
    CHECK(StoredRecord() == OutRecord());
}

TEST_CASE_METHOD(ApplyFixture, "a custom paper's apply sets its size in tenths and drops all other fields",
                 "[ui][apply]")
{
    in.stuDevmode.dmPaperSize = 256;
    const PageWindow page = Open();
    page.Type(1007, L"100");
    page.Type(1008, L"200");
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmFields == 0x190F);
    CHECK(in.stuDevmode.dmFields == 0x190F);
    CHECK(out.stuDevmode.dmPaperSize == 256);
    CHECK(out.stuDevmode.dmPaperWidth == 1000);
    CHECK(out.stuDevmode.dmPaperLength == 2000);
}

TEST_CASE_METHOD(ApplyFixture, "in landscape a custom paper's width is read from the second box", "[ui][apply]")
{
    in.stuDevmode.dmPaperSize = 256;
    const PageWindow page = Open();
    page.Type(1007, L"100");
    page.Type(1008, L"200");
    page.Click(1012); // the texts are exchanged, and the roles with them
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmOrientation == 2);
    CHECK(out.stuDevmode.dmPaperWidth == 1000);
    CHECK(out.stuDevmode.dmPaperLength == 2000);
}

TEST_CASE_METHOD(ApplyFixture, "five digits are stored in full, cut to 16 bits, while the search sees four",
                 "[ui][apply]")
{
    in.stuDevmode.dmPaperSize = 256;
    UsePapers({{L"long", 300, 12340, 12340}});
    const PageWindow page = Open();
    page.Type(1007, L"12345");
    CHECK(page.Paper() == L"自定义");
    page.Type(1008, L"12345");
    CHECK(page.Paper() == L"long"); // 1234 by 1234
    page.ChoosePaper(1);
    page.Notify(PSN_APPLY);
    // 123450 is 0x1E23A.
    CHECK(static_cast<WORD>(out.stuDevmode.dmPaperWidth) == 0xE23A);
    CHECK(static_cast<WORD>(out.stuDevmode.dmPaperLength) == 0xE23A);
}

TEST_CASE_METHOD(ApplyFixture, "reopening on the custom paper and applying stores a size of 0 by 0", "[ui][apply]")
{
    in.stuDevmode.dmPaperSize = 256;
    in.stuDevmode.dmPaperWidth = 1000;
    in.stuDevmode.dmPaperLength = 2000;
    out = in;
    const PageWindow page = Open();
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmPaperWidth == 0);
    CHECK(out.stuDevmode.dmPaperLength == 0);
    CHECK(out.stuDevmode.dmPaperSize == 256);
}

TEST_CASE_METHOD(ApplyFixture, "a width that is no number is stored as 0, a height as the width's value", "[ui][apply]")
{
    BoxWatcher watcher;
    in.stuDevmode.dmPaperSize = 256;
    const PageWindow page = Open();
    bPaperSync = 0;
    page.Type(1007, L"x");
    page.Type(1008, L"70");
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmPaperWidth == 0);
    CHECK(out.stuDevmode.dmPaperLength == 700);
    CHECK(watcher.Count() == 1);
    page.Type(1007, L"60");
    page.Type(1008, L"x");
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmPaperWidth == 600);
    CHECK(out.stuDevmode.dmPaperLength == 600);
    CHECK(watcher.Count() == 2);
    CHECK(calls.size() == 2); // good results all the same
    bPaperSync = 1;
}

TEST_CASE_METHOD(ApplyFixture, "an empty box of a custom paper is stored as 0", "[ui][apply]")
{
    in.stuDevmode.dmPaperSize = 256;
    const PageWindow page = Open();
    page.Type(1007, L"100");
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmPaperWidth == 1000);
    CHECK(out.stuDevmode.dmPaperLength == 0);
}

TEST_CASE_METHOD(ApplyFixture, "the bindings are stored as the platform's numbers", "[ui][apply]")
{
    const PageWindow page = Open();
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmDuplex == 1);
    page.Click(1016);
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmDuplex == 2);
    page.Click(1013);
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmDuplex == 3);
    page.Click(1016);
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmDuplex == 1);
}

TEST_CASE_METHOD(ApplyFixture, "what was applied is what duplex comes back to", "[ui][apply]")
{
    const PageWindow page = Open();
    page.Click(1016);
    page.Click(1013);
    page.Notify(PSN_APPLY);
    page.Click(1014); // not applied
    page.Click(1016);
    page.Click(1016);
    CHECK(page.Checked(1013));
}

TEST_CASE_METHOD(ApplyFixture, "with both bindings checked the short edge is stored", "[ui][apply]")
{
    in.stuDevmode.dmDuplex = 2;
    const PageWindow page = Open();
    CheckDlgButton(page.Get(), 1013, BST_CHECKED);
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmDuplex == 3);
}

TEST_CASE_METHOD(ApplyFixture, "without a selection the number is read one entry in front of the list", "[ui][apply]")
{
    // Room in front of the list makes the read a safe one.
    std::vector<stuPaperInfo> room(list.size() + 1);
    std::copy(list.begin(), list.end(), room.begin() + 1);
    room[0].wPaper = 0x4D4D;
    data.pstuPaperInfo = room.data() + 1;
    const PageWindow page = Open();
    SendMessageW(page.Item(1006), CB_SETCURSEL, static_cast<WPARAM>(-1), 0);
    REQUIRE(page.PaperIndex() == CB_ERR);
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmPaperSize == 0x4D4D);
    CHECK(out.stuDevmode.dmFields == 0x9903); // no custom paper
}

TEST_CASE_METHOD(ApplyFixture, "a store that can't be written leaves a good result and an applied record",
                 "[ui][apply]")
{
    const PageWindow page = Open();
    CreateDirectoryW(DevModeFile().c_str(), nullptr); // in the file's place
    page.ChoosePaper(1);
    page.Notify(PSN_APPLY);
    CHECK(out.stuDevmode.dmPaperSize == 8);
    REQUIRE(calls.size() == 1);
    CHECK(calls[0].lParam2 == 1);
}

TEST_CASE_METHOD(ApplyFixture, "a reset changes nothing", "[ui][apply]")
{
    const PageWindow page = Open();
    const stuDrvDevmode inBefore = in;
    const stuDrvDevmode outBefore = out;
    page.ChoosePaper(2);
    page.Click(1003);
    page.Notify(PSN_RESET);
    CHECK(memcmp(&in, &inBefore, 232) == 0);
    CHECK(memcmp(&out, &outBefore, 232) == 0);
    CHECK(calls.empty());
    CHECK_FALSE(PathExists(DevModeFile()));
}
