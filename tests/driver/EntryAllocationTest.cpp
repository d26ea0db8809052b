// What the entry points take of the heap for themselves while logging is off: nothing.

#include "settings/DriverDevmode.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/ImportHook.h"
#include "tests/ui/SheetDataFixture.h"

#include <catch2/catch_test_macros.hpp>

namespace
{

int s_iAllocations = 0;

void* CountMalloc(size_t cbSize)
{
    ++s_iAllocations;
    return Platform<void*(size_t)>(L"msvcrt", "malloc")(cbSize);
}

void* CountCalloc(size_t uiCount, size_t cbEach)
{
    ++s_iAllocations;
    return Platform<void*(size_t, size_t)>(L"msvcrt", "calloc")(uiCount, cbEach);
}

void* CountRealloc(void* pv, size_t cbSize)
{
    ++s_iAllocations;
    return Platform<void*(void*, size_t)>(L"msvcrt", "realloc")(pv, cbSize);
}

void* WINAPI CountHeapAlloc(HANDLE hHeap, DWORD dwFlags, SIZE_T cbSize)
{
    ++s_iAllocations;
    return Platform<void * WINAPI(HANDLE, DWORD, SIZE_T)>(L"kernel32", "HeapAlloc")(hHeap, dwFlags, cbSize);
}

/// The module with every way to memory counted.
struct CountedModule : ClientFixture
{
    BuiltModule module;
    const ImportHook mallocHook{module.handle, "malloc", &CountMalloc};
    const ImportHook callocHook{module.handle, "calloc", &CountCalloc};
    const ImportHook reallocHook{module.handle, "realloc", &CountRealloc};
    const ImportHook heapHook{module.handle, "HeapAlloc", &CountHeapAlloc};
};

} // namespace

TEST_CASE_METHOD(CountedModule, "while logging is off the frame of an entry point allocates nothing", "[driver][off]")
{
    const auto pfnEvent = reinterpret_cast<decltype(&DrvPrinterEvent)>(
        reinterpret_cast<void*>(GetProcAddress(module.handle, "DrvPrinterEvent")));
    REQUIRE(pfnEvent != nullptr);
    wchar_t szPrinter[] = L"a printer's name that no short string holds";
    wchar_t szNames[64] = {};
    stuDrvDevmode in = PlainRecord();
    stuDrvDevmode out = {};
    out.stuDevmode.dmSize = 220;
    LONG cbNeeded = sizeof(out);
    DOCUMENTPROPERTYHEADER header = {};
    s_iAllocations = 0;
    CHECK(module.DeviceCapabilities(nullptr, szPrinter, DC_SIZE, nullptr, nullptr) == 220);
    CHECK(s_iAllocations == 0);
    CHECK(module.DeviceCapabilities(nullptr, szPrinter, DC_FIELDS, nullptr, nullptr) == 0xFFFFFFFF);
    CHECK(s_iAllocations == 0);
    CHECK(module.SplDeviceCaps(nullptr, szPrinter, DC_PAPERNAMES, szNames, 63, nullptr) == 0xFFFFFFFF);
    CHECK(s_iAllocations == 0);
    CHECK(module.ConvertDevMode(szPrinter, &in.stuDevmode, &out.stuDevmode, &cbNeeded, CDM_CONVERT) == 1);
    CHECK(s_iAllocations == 0);
    CHECK(module.ConvertDevMode(szPrinter, &in.stuDevmode, &out.stuDevmode, &cbNeeded, 8) == 0);
    CHECK(s_iAllocations == 0);
    CHECK(module.DocumentSheets(nullptr, reinterpret_cast<LPARAM>(&header)) == 232);
    CHECK(s_iAllocations == 0);
    CHECK(module.DeviceSheets(nullptr, 0) == -1);
    CHECK(s_iAllocations == 0);
    CHECK(pfnEvent(szPrinter, 99, 0, 0) == 1);
    CHECK(s_iAllocations == 0);
    CHECK(module.QueryPrintEx(nullptr) == 1);
    CHECK(s_iAllocations == 0);
    // The count works: a query of the store takes memory for its lock's name.
    WriteCaps(PaperKeys(kPapers));
    CHECK(module.DeviceCapabilities(nullptr, szPrinter, DC_PAPERS, nullptr, nullptr) == 4);
    CHECK(s_iAllocations > 0);
}
