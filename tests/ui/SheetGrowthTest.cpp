// What a sheet leaves behind in the process that showed it.

#include "tests/common/Handles.h"
#include "tests/common/ModuleLedger.h"
#include "tests/ui/OpenSheet.h"
#include "tests/ui/SheetDataFixture.h"
#include "tools/velhost/sheet/SheetLibrary.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <vector>

namespace
{

constexpr size_t kProbes = 400;

/// Objects of a kind in use: the platform fills the free places of its table before it opens new ones, so that the
/// highest number among many new objects tells how many there are in all.
template <typename Make, typename Destroy>
size_t CountObjects(Make make, Destroy destroy)
{
    std::vector<decltype(make())> probes;
    size_t uiHighest = 0;
    for (size_t i = 0; i < kProbes; ++i)
    {
        probes.push_back(make());
        uiHighest = std::max<size_t>(uiHighest, LOWORD(reinterpret_cast<UINT_PTR>(probes.back())));
    }
    for (const auto& probe : probes)
    {
        destroy(probe);
    }
    return uiHighest;
}

/// What a process holds.
struct Holdings
{
    Holdings() : uiHandle(NextHandle())
    {
        uiUser = CountObjects(
            [] { return CreateWindowW(L"STATIC", L"", 0, 0, 0, 1, 1, HWND_MESSAGE, nullptr, nullptr, nullptr); },
            DestroyWindow);
    }
    size_t uiHandle;
    size_t uiUser;
};

} // namespace

TEST_CASE_METHOD(ClientFixture,
                 "60 sheets leave no window, no picture and no handle, and of memory their lists of papers",
                 "[ui][growth][once]")
{
    WriteCaps(PaperKeys(kPapers, kAbleKeys));
    const BuiltModule module;
    stuDrvDevmode in = {};
    stuDrvDevmode out = {};
    DOCUMENTPROPERTYHEADER header = {};
    header.cbSize = sizeof(header);
    header.pdmIn = &in.stuDevmode;
    header.pdmOut = &out.stuDevmode;
    const auto showOne = [&](WPARAM wButton) {
        OpenSheet sheet([&] {
            VelHost::SheetLibrary library(module.DocumentSheets, reinterpret_cast<LPARAM>(&header));
            library.Show(nullptr, L"VelPrinter");
        });
        SendMessageW(GetDlgItem(sheet.TurnTo(0), 1012), BM_CLICK, 0, 0); // both pictures
        sheet.TurnTo(1);
        sheet.TurnTo(2);
        sheet.Close(wButton);
    };
    // The first sheets load what the platform keeps.
    for (int i = 0; i < 20; ++i)
    {
        showOne(i % 2 == 0 ? PSBTN_OK : PSBTN_CANCEL);
    }
    const Holdings before;
    const ModuleLedger ledger(module.handle);
    for (int i = 0; i < 60; ++i)
    {
        showOne(i % 2 == 0 ? PSBTN_OK : PSBTN_CANCEL);
    }
    const Holdings after;
    CHECK(after.uiHandle == before.uiHandle);
    CHECK(after.uiUser <= before.uiUser + 2);
    // Of the third page's pictures three are given back each time: the dialog's, the one that is loaded to be drawn in
    // the control's size, and the drawn one. No other was loaded that could be lost. (The platform keeps device
    // contexts for windows to come, as many as it happens to need at once, so all objects together tell nothing.)
    CHECK(ledger.BitmapsDeleted() == 3 * 60);
    CHECK(ledger.PicturesLoaded() == 60);
    CHECK(ledger.Blocks() == 60);
    CHECK(ledger.Bytes() == 60 * (kPapers.size() + 1) * sizeof(stuPaperInfo));
}
