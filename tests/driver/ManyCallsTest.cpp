// Entry points called very often: what the process holds afterwards.

#include "tests/common/BuiltModule.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/Handles.h"
#include "tests/common/HeapUse.h"
#include "tests/common/ModuleLedger.h"
#include "tests/driver/SheetCalls.h"

#include <catch2/catch_test_macros.hpp>

#include <cstdlib>

namespace
{

struct ManyCallsFixture : ClientFixture
{
    /// Makes a call often, and checks what is left of it.
    /// @param cbOfEach bytes that each call leaves by design.
    template <typename Call>
    void Repeat(int iCalls, size_t cbOfEach, Call call)
    {
        call(); // what the platform keeps from a first call
        const size_t uiHandle = NextHandle();
        const size_t cbHeap = HeapInUse();
        {
            // To the byte, whatever the platform keeps.
            const ModuleLedger ledger(module.handle);
            for (int i = 0; i < iCalls; ++i)
            {
                call();
            }
            CHECK(ledger.Bytes() == cbOfEach * iCalls);
        }
        CHECK(NextHandle() == uiHandle);
        // What the platform keeps for the module would show in the heap. Where blocks stay by design that tells
        // nothing: the heap's own share of each differs from one version of the platform to the next.
        if (cbOfEach == 0)
        {
            const auto cbGrowth = static_cast<ptrdiff_t>(HeapInUse()) - static_cast<ptrdiff_t>(cbHeap);
            CHECK(std::abs(cbGrowth) <= 4096);
        }
    }
    template <typename Function>
    Function Bare(const CheckedEntry<Function>& entry) const
    {
        return entry; // the checks of each call would take far longer than the calls
    }
    BuiltModule module;
};

constexpr int kOften = 100000;

} // namespace

TEST_CASE_METHOD(ManyCallsFixture, "100,000 capability queries leave no handle and no memory", "[driver][often][once]")
{
    const auto pfnCaps = Bare(module.DeviceCapabilities);
    Repeat(kOften, 0, [=] { pfnCaps(nullptr, nullptr, DC_SIZE, nullptr, nullptr); });
    wchar_t szNames[64];
    const auto pfnSpl = Bare(module.SplDeviceCaps);
    Repeat(kOften, 0, [&] { pfnSpl(nullptr, nullptr, DC_SIZE, szNames, 64, nullptr); });
}

TEST_CASE_METHOD(ManyCallsFixture, "1,000 queries of the snapshot leave no handle and no memory",
                 "[driver][often][once]")
{
    WriteCaps(PaperKeys(kPapers, kAbleKeys));
    wchar_t aszNames[4][64];
    const auto pfnCaps = Bare(module.DeviceCapabilities);
    Repeat(1000, 0, [&] { pfnCaps(nullptr, nullptr, DC_PAPERNAMES, aszNames, nullptr); });
}

TEST_CASE_METHOD(ManyCallsFixture, "100,000 conversions leave no handle and no memory", "[driver][often][once]")
{
    const auto pfnConvert = Bare(module.ConvertDevMode);
    stuDrvDevmode in = PlainRecord();
    stuDrvDevmode out = in;
    for (const DWORD fMode : {CDM_CONVERT, CDM_CONVERT351, 99})
    {
        Repeat(kOften, 0, [&] {
            LONG cbNeeded = 232;
            pfnConvert(nullptr, &in.stuDevmode, &out.stuDevmode, &cbNeeded, fMode);
        });
    }
    Repeat(1000, 0, [&] {
        LONG cbNeeded = 232;
        pfnConvert(nullptr, nullptr, &out.stuDevmode, &cbNeeded, CDM_DRIVER_DEFAULT);
    });
}

TEST_CASE_METHOD(ManyCallsFixture, "100,000 questions for the record's size, and 1,000 for the record, leave nothing",
                 "[driver][often][once]")
{
    const auto pfnSheet = Bare(module.DocumentSheets);
    DOCUMENTPROPERTYHEADER header = {};
    Repeat(kOften, 0, [&] { pfnSheet(nullptr, reinterpret_cast<LPARAM>(&header)); });
    stuDrvDevmode out = PlainRecord();
    header.pdmOut = &out.stuDevmode;
    header.fMode = DM_OUT_BUFFER;
    Repeat(1000, 0, [&] { pfnSheet(nullptr, reinterpret_cast<LPARAM>(&header)); });
}

TEST_CASE_METHOD(ManyCallsFixture,
                 "1,000 sheets that are opened and ended without a window leave their lists of papers",
                 "[driver][often][once]")
{
    WriteCaps(PaperKeys(kPapers, kAbleKeys));
    stuDrvDevmode in = PlainRecord();
    Repeat(1000, 5 * sizeof(stuPaperInfo), [&] {
        DocumentCalls calls(module.DocumentSheets);
        calls.header.pdmIn = &in.stuDevmode;
        calls.Call(PROPSHEETUI_REASON_INIT);
        calls.Call(PROPSHEETUI_REASON_DESTROY);
    });
}

TEST_CASE_METHOD(ManyCallsFixture,
                 "10,000 device sheets leave their page's description, and 100,000 other calls nothing",
                 "[driver][often]")
{
    Repeat(10000, sizeof(PROPSHEETPAGEW), [&] {
        DeviceCalls calls(module.DeviceSheets);
        calls.Call(PROPSHEETUI_REASON_INIT);
    });
    DeviceCalls calls(module.DeviceSheets);
    Repeat(kOften, 0, [&] { calls.Call(PROPSHEETUI_REASON_GET_INFO_HEADER); });
}

TEST_CASE_METHOD(ManyCallsFixture, "100,000 questions whether a job may print leave nothing", "[driver][often]")
{
    const auto pfnQuery = Bare(module.QueryPrintEx);
    Repeat(kOften, 0, [=] { pfnQuery(nullptr); });
}

TEST_CASE_METHOD(ManyCallsFixture, "100,000 printer events that start nothing leave nothing", "[driver][often]")
{
    const auto pfnEvent = reinterpret_cast<decltype(&DrvPrinterEvent)>(
        reinterpret_cast<void*>(GetProcAddress(module.handle, "DrvPrinterEvent")));
    wchar_t szPrinter[] = L"VelPrinter";
    Repeat(kOften, 0, [&] { pfnEvent(szPrinter, PRINTER_EVENT_INITIALIZE, 0, 0); });
}
