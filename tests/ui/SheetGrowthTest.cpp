// What a sheet leaves behind in the process that showed it.

#include "tests/common/Handles.h"
#include "tests/ui/OpenSheet.h"
#include "tests/ui/SheetDataFixture.h"
#include "tools/velhost/SheetLibrary.h"

#include <catch2/catch.hpp>

#include <malloc.h>

namespace
{

/// Bytes of a heap that are in use.
size_t InUse(HANDLE hHeap)
{
    size_t cbUsed = 0;
    PROCESS_HEAP_ENTRY entry = {};
    HeapLock(hHeap);
    while (HeapWalk(hHeap, &entry))
    {
        cbUsed += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
    }
    HeapUnlock(hHeap);
    return cbUsed;
}

/// What a process holds, as the number that the next object of each kind gets: the first free place of its table.
struct Holdings
{
    Holdings() : uiHandle(NextHandle())
    {
        const HWND hWindow = CreateWindowW(L"STATIC", L"", 0, 0, 0, 1, 1, HWND_MESSAGE, nullptr, nullptr, nullptr);
        uiUser = LOWORD(reinterpret_cast<UINT_PTR>(hWindow));
        DestroyWindow(hWindow);
        const HPEN hPen = CreatePen(PS_SOLID, 3, RGB(1, 2, 3));
        uiGdi = LOWORD(reinterpret_cast<UINT_PTR>(hPen));
        DeleteObject(hPen);
        cbPlatformHeap = InUse(GetProcessHeap());
        cbModuleHeap = InUse(reinterpret_cast<HANDLE>(_get_heap_handle()));
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
    CHECK(after.uiGdi <= before.uiGdi + 2);
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
