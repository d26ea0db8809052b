// DrvDevicePropertySheets as the sheet library calls it, reason by reason.

#include "tests/common/ChildCase.h"
#include "tests/common/ImportHook.h"
#include "tests/common/LogLines.h"
#include "tests/common/ModuleLedger.h"
#include "tests/driver/SheetCalls.h"

#include <catch2/catch_test_macros.hpp>

namespace
{

using Lines = std::vector<std::string>;

struct DeviceFixture : ClientFixture
{
    BuiltModule module;
    DeviceCalls calls{module.DeviceSheets};
};

/// The same through the code in the test program, whose log tests can read.
struct LoggedDeviceFixture : DeviceFixture
{
    LoggedDeviceFixture() { calls.pfnEntry = &DrvDevicePropertySheets; }
    Lines Own() const { return OwnLines(logging, "DrvDevicePropertySheets"); }

    const TextsFrom texts{module.handle};
    LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
};

constexpr char kStart[] = "VelUI_dll__DrvDevicePropertySheets :START......";
constexpr char kInvoked[] = "INFO - DrvDevicePropertySheets was invoked.";
constexpr char kEnd[] = "VelUI_dll__DrvDevicePropertySheets :End  ......";

void* FailPageMalloc(size_t uiSize)
{
    if (uiSize == sizeof(PROPSHEETPAGEW))
    {
        return nullptr;
    }
    return Platform<void*(size_t)>(L"msvcrt", "malloc")(uiSize);
}

} // namespace

TEST_CASE_METHOD(DeviceFixture, "a device sheet without its call or its header is refused with 13", "[driver][device]")
{
    SetLastError(7777);
    CHECK(module.DeviceSheets(nullptr, 0) == -1);
    CHECK(GetLastError() == 13);
    calls.info.lParamInit = 0;
    for (const WORD wReason : {0, 1, 2, 3, 4})
    {
        SetLastError(7777);
        CHECK(calls.Call(wReason) == -1);
        CHECK(GetLastError() == 13);
    }
}

TEST_CASE_METHOD(DeviceFixture, "a device sheet adds the about page and keeps nothing", "[driver][device]")
{
    calls.info.UserData = 0x777;
    calls.info.Result = 0x778;
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    REQUIRE(calls.taker.calls.size() == 1);
    CHECK(calls.taker.calls[0].uiFunction == 0);
    CHECK(calls.taker.calls[0].lParam2 == 0);
    CHECK(calls.info.UserData == 0x777);
    CHECK(calls.info.Result == 0x778);
}

TEST_CASE_METHOD(DeviceFixture, "the other calls of a device sheet do nothing and answer 1", "[driver][device]")
{
    PROPSHEETUI_INFO_HEADER header = {};
    CHECK(calls.Call(PROPSHEETUI_REASON_GET_INFO_HEADER, reinterpret_cast<LPARAM>(&header)) == 1);
    CHECK(header.pTitle == nullptr);
    CHECK(calls.SetResult(CPSUI_OK) == 1);
    CHECK(calls.Call(PROPSHEETUI_REASON_DESTROY) == 1);
    CHECK(calls.taker.calls.empty());
}

TEST_CASE_METHOD(DeviceFixture, "a device sheet refuses any other reason", "[driver][device]")
{
    for (const WORD wReason : {4, 5, 0xFFFF})
    {
        CHECK(calls.Call(wReason) == -1);
    }
}

TEST_CASE_METHOD(DeviceFixture, "a device sheet whose page is refused fails", "[driver][device]")
{
    calls.taker.uiRefused = 1;
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
}

TEST_CASE_METHOD(DeviceFixture, "a device sheet without memory for its page fails", "[driver][device]")
{
    const ImportHook hook(module.handle, "malloc", &FailPageMalloc);
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
    CHECK(calls.taker.calls.empty());
}

TEST_CASE_METHOD(DeviceFixture, "a refused page's description is given back", "[driver][device]")
{
    calls.taker.uiRefused = 1;
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1); // what a thread keeps is made
    calls.taker.calls.clear();
    const ModuleLedger ledger(module.handle);
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
    CHECK(calls.taker.calls.size() == 1);
    CHECK(ledger.Blocks() == 0);
}

TEST_CASE_METHOD(LoggedDeviceFixture, "a device sheet's calls log their reasons", "[driver][device][log]")
{
    calls.Call(PROPSHEETUI_REASON_INIT);
    calls.Call(PROPSHEETUI_REASON_GET_INFO_HEADER);
    calls.SetResult(CPSUI_OK);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
    Lines expected;
    for (const char* const pszReason : {"INIT", "GET_INFO_HEADER", "SET_RESULT", "DESTROY"})
    {
        const Lines once = {kStart, kInvoked,
                            std::string("DEBUG - VelUI(#) : pPSUIInfo->Reason = PROPSHEETUI_REASON_") + pszReason,
                            "Param - VelUI(#) : lReturn = 1", kEnd};
        expected.insert(expected.end(), once.begin(), once.end());
    }
    CHECK(Own() == expected);
    Lines opened = Outline(logging, "DrvDevicePropertySheets");
    opened.resize(5);
    CHECK(opened == Lines{"INFO - DrvDevicePropertySheets was invoked.", "DEBUG - VelUI(#) : pPSUIInfo->Reason",
                          "> SubLoadString", "> SubAddpropertySheet", "Param - VelUI(#) : lReturn"});
}

TEST_CASE_METHOD(LoggedDeviceFixture, "a device sheet's unknown reason is logged with its number",
                 "[driver][device][log]")
{
    CHECK(calls.Call(4) == -1);
    CHECK(Own() ==
          Lines{kStart, kInvoked, "DEBUG - VelUI(#) : Unexpected value : 4", "Param - VelUI(#) : lReturn = -1", kEnd});
}

TEST_CASE_METHOD(LoggedDeviceFixture, "a device sheet without a header leaves two errors and no result line",
                 "[driver][device][log]")
{
    calls.info.lParamInit = 0;
    SetLastError(7777);
    CHECK(calls.Call(0) == -1);
    CHECK(GetLastError() == 13);
    const Lines own = Own();
    REQUIRE(own.size() == 5);
    CHECK(own[2].find("ERROR - VelUI(#) : pPSUIInfo = 0x") == 0);
    CHECK(own[3] == "ERROR - VelUI(#) : (PDEVICEPROPERTYHEADER)pPSUIInfo->lParamInit = 0x00000000");
}

TEST_CASE_METHOD(LoggedDeviceFixture, "a device sheet's refused page is logged", "[driver][device][log]")
{
    calls.taker.uiRefused = 1;
    calls.Call(PROPSHEETUI_REASON_INIT);
    CHECK(Own().at(3) == "ERROR - VelUI(#) : SubAddpropertySheet returns NULL");
}

TEST_CASE_METHOD(LoggedDeviceFixture, "a device sheet's missing memory is logged", "[driver][device][log]")
{
    {
        const ImportHook hook(nullptr, "malloc", &FailPageMalloc);
        CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
    }
    CHECK(Own().at(3) == "ERROR - VelUI(#) : malloc failed. size = " + std::to_string(sizeof(PROPSHEETPAGEW)));
    CHECK(Own().at(4) == "Param - VelUI(#) : lReturn = -1");
}

// Run by the next case in a process of its own.
TEST_CASE("child: a device sheet without its call while errors are logged", "[.child]")
{
    const LoggingOn logging{"OutputParam"};
    DrvDevicePropertySheets(nullptr, 0);
}

// So is this. The filter keeps the two lines back, but it is asked only behind the read.
TEST_CASE("child: a device sheet without its call while a filter keeps its errors back", "[.child]")
{
    LogSetup setup;
    setup.strMoreLines = "filter.module=VelUI_dll\n"
                         "filter.class=\n"
                         "filter.function=DrvDevicePropertySheets\n"
                         "filter.putoutpermission=no\n";
    const LoggingOn logging{setup};
    PROPSHEETUI_INFO info = {};
    REQUIRE(DrvDevicePropertySheets(&info, 0) == -1);
    REQUIRE_FALSE(logging.Has("pPSUIInfo = "));
    DrvDevicePropertySheets(nullptr, 0);
}

TEST_CASE("a device sheet without its call faults while its category lets errors through", "[driver][device]")
{
    CHECK(IsFault(ExitCodeOfCase(L"child: a device sheet without its call while errors are logged")));
    CHECK(IsFault(ExitCodeOfCase(L"child: a device sheet without its call while a filter keeps its errors back")));
}

TEST_CASE("a device sheet without its call is refused while its category lets no errors through", "[driver][device]")
{
    LogSetup setup;
    setup.strPriority = "FATAL";
    const LoggingOn logging{setup};
    SetLastError(7777);
    CHECK(DrvDevicePropertySheets(nullptr, 0) == -1);
    CHECK(GetLastError() == 13);
}
