// What a sheet leaves behind in the process that showed it.

#include "tests/common/Handles.h"
#include "tests/common/HeapUse.h"
#include "tests/ui/OpenSheet.h"
#include "tests/ui/SheetDataFixture.h"
#include "tools/velhost/sheet/SheetLibrary.h"

#include <catch2/catch.hpp>

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
        uiGdi = CountObjects([] { return CreatePen(PS_SOLID, 3, RGB(1, 2, 3)); }, DeleteObject);
        cbPlatformHeap = HeapInUse(GetProcessHeap());
        cbModuleHeap = HeapInUse();
    }
    size_t uiHandle;
    size_t uiUser;
    size_t uiGdi;
    size_t cbPlatformHeap; ///< bytes
    size_t cbModuleHeap;   ///< bytes that the C runtime has given to the module and the tests
};

} // namespace

TEST_CASE_METHOD(ClientFixture,
                 "200 sheets leave no window, no picture and no handle, and of memory their lists of papers",
                 "[ui][growth]")
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
    for (int i = 0; i < 200; ++i)
    {
        showOne(i % 2 == 0 ? PSBTN_OK : PSBTN_CANCEL);
    }
    const Holdings after;
    CHECK(after.uiHandle == before.uiHandle);
    CHECK(after.uiUser <= before.uiUser + 2);
    // The platform keeps device contexts that have been used for windows to come; how many it needs at once is chance.
    // A picture that is lost with each sheet makes 200.
    constexpr size_t kKeptContexts = 150;
    CHECK(after.uiGdi <= before.uiGdi + kKeptContexts);
    // A list of five papers takes 700 bytes.
    const auto growth = [](size_t cbBefore, size_t cbAfter) {
        return static_cast<ptrdiff_t>(cbAfter) - static_cast<ptrdiff_t>(cbBefore);
    };
    const ptrdiff_t cbPlatform = growth(before.cbPlatformHeap, after.cbPlatformHeap);
    const ptrdiff_t cbModule = growth(before.cbModuleHeap, after.cbModuleHeap);
    CAPTURE(cbPlatform, cbModule);
    CHECK(cbPlatform < 4096);
    CHECK(cbModule >= 200 * 700);
    CHECK(cbModule < 200 * 700 + 4096);
}
