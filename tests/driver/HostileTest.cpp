// What another user of the machine could plant, and what then happens. docs/security.md has the whole table.

#include "settings/DriverDevmode.h"
#include "tests/common/ChildProcess.h"
#include "tests/common/GuardedBuffer.h"
#include "tests/common/LockHolder.h"
#include "tests/common/Threads.h"
#include "tests/driver/SheetCalls.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

namespace
{

struct HostileFixture : ClientFixture
{
    /// A snapshot of two papers that claims more of them.
    void Claim(const std::wstring& strCount)
    {
        CapKeys keys = PaperKeys({{L"A5", 11, 1480, 2100}, {L"B5", 13, 1820, 2570}}, kAbleKeys);
        for (auto& [strKey, strValue] : keys)
        {
            strValue = strKey.find(L"Count") != std::wstring::npos ? strCount : strValue;
        }
        WriteCaps(keys);
    }
    BuiltModule module;
};

/// Milliseconds that a call takes.
template <typename Call>
DWORD Time(Call call)
{
    const DWORD dwStart = GetTickCount();
    call();
    return GetTickCount() - dwStart;
}

constexpr DWORD kSoon = 5000; // milliseconds; a hang takes minutes

} // namespace

TEST_CASE_METHOD(HostileFixture, "a snapshot that claims an absurd number of papers gives A4 as the default, and soon",
                 "[driver][hostile]")
{
    Claim(GENERATE(L"4294967294", L"10000000", L"65537"));
    stuDrvDevmode record = {};
    LONG cbNeeded = sizeof(record);
    BOOL bReturn = FALSE;
    CHECK(Time([&] {
              bReturn = module.ConvertDevMode(nullptr, nullptr, &record.stuDevmode, &cbNeeded, CDM_DRIVER_DEFAULT);
          }) < kSoon);
    CHECK(bReturn == 1);
    CHECK(record.stuDevmode.dmPaperSize == DMPAPER_A4);
}

TEST_CASE_METHOD(HostileFixture,
                 "a snapshot that claims an absurd number of papers of which two are there opens the "
                 "sheet with a list of 65,536, and soon",
                 "[driver][hostile]")
{
    CapKeys keys = PaperKeys({{L"A5", 11, 1480, 2100}, {L"B5", 13, 1820, 2570}}, kAbleKeys);
    keys[0].second = GENERATE(L"65536", L"65537", L"10000000", L"4294967294"); // the papers' count alone
    WriteCaps(keys);
    DocumentCalls calls(module.DocumentSheets);
    stuDrvDevmode record = {};
    calls.header.pdmIn = &record.stuDevmode;
    LONG lReturn = 0;
    CHECK(Time([&] { lReturn = calls.Call(PROPSHEETUI_REASON_INIT); }) < kSoon);
    REQUIRE(lReturn == 1);
    CHECK(calls.Data()->dwCount == 65537);
    CHECK(calls.Data()->pstuPaperInfo[1].wPaper == 13);
    CHECK(calls.Data()->pstuPaperInfo[2].wPaper == 0xFFFF);
    CHECK(calls.Data()->pstuPaperInfo[65535].wPaper == 0);
    CHECK(calls.Data()->pstuPaperInfo[65536].wPaper == 256);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(HostileFixture, "an absurd count is told to whoever asks for it, as the file has it",
                 "[driver][hostile]")
{
    Claim(L"4294967294");
    for (const WORD wCap : {DC_PAPERS, DC_PAPERNAMES, DC_PAPERSIZE})
    {
        DWORD dwReturn = 0;
        CHECK(Time([&] { dwReturn = module.DeviceCapabilities(nullptr, nullptr, wCap, nullptr, nullptr); }) < kSoon);
        CHECK(dwReturn == 4294967294u);
    }
}

TEST_CASE_METHOD(HostileFixture, "a sheet waits for a lock of its snapshot that another process keeps, until that ends",
                 "[driver][hostile]")
{
    Claim(L"2");
    LockHolder holder(ConfigFile());
    DocumentCalls calls(module.DocumentSheets);
    stuDrvDevmode record = {};
    calls.header.pdmIn = &record.stuDevmode;
    LONG lReturn = 0;
    const HANDLE hDone = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    struct Work
    {
        DocumentCalls* pCalls;
        LONG* plReturn;
        HANDLE hDone;
    } work = {&calls, &lReturn, hDone};
    const HANDLE hThread = CreateThread(
        nullptr, 0,
        [](void* pv) -> DWORD {
            auto* const pWork = static_cast<Work*>(pv);
            *pWork->plReturn = pWork->pCalls->Call(PROPSHEETUI_REASON_INIT);
            SetEvent(pWork->hDone);
            return 0;
        },
        &work, 0, nullptr);
    CHECK(WaitForSingleObject(hDone, 500) == WAIT_TIMEOUT);
    holder.End();
    CHECK(WaitForSingleObject(hDone, 20000) == WAIT_OBJECT_0);
    WaitForSingleObject(hThread, 20000);
    CloseHandle(hThread);
    CloseHandle(hDone);
    CHECK(lReturn == 1);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(HostileFixture, "another kind of object under a lock's name leaves the work without a lock",
                 "[driver][hostile]")
{
    Claim(L"2");
    const HANDLE hEvent = CreateEventW(nullptr, TRUE, FALSE, MutexNameOf(ConfigFile()).c_str());
    REQUIRE(hEvent != nullptr);
    CHECK(module.DeviceCapabilities(nullptr, nullptr, DC_PAPERS, nullptr, nullptr) == 2);
    CloseHandle(hEvent);
}

TEST_CASE_METHOD(HostileFixture, "a stored record of any bytes is handed out within its 220 bytes", "[driver][hostile]")
{
    WriteFileBytes(folder.File(L"QPS@VEL_DevMode.dat"), std::string(4096, '\xFF'));
    stuDrvDevmode out;
    memset(&out, 0x22, sizeof(out));
    out.stuDevmode.dmSize = 220;
    out.stuDevmode.dmDriverExtra = 0;
    DOCUMENTPROPERTYHEADER header = {};
    header.pdmOut = &out.stuDevmode;
    header.fMode = DM_OUT_BUFFER;
    CHECK(module.DocumentSheets(nullptr, reinterpret_cast<LPARAM>(&header)) == 1);
    CHECK(out.stuDevmode.dmPaperSize == -1);
    CHECK(out.dwTailWord0 == 0x22222222);
    CHECK(out.dwTailWord2 == 0x22222222);
}

TEST_CASE_METHOD(HostileFixture, "a stored record that declares a great size lets a merge take all of the input",
                 "[driver][hostile]")
{
    DEVMODEW stored = {};
    stored.dmSize = 1000;
    WriteFileBytes(folder.File(L"QPS@VEL_DevMode.dat"), std::string(reinterpret_cast<char*>(&stored), 220));
    const GuardedBuffer in(400, 0x11);
    in.As<DEVMODEW>()->dmSize = 400;
    in.As<DEVMODEW>()->dmDriverExtra = 0;
    const GuardedBuffer out(400, 0x22);
    out.As<DEVMODEW>()->dmSize = 220; // what it declares is of no matter
    out.As<DEVMODEW>()->dmDriverExtra = 12;
    DOCUMENTPROPERTYHEADER header = {};
    header.cbOut = 232;
    header.pdmIn = in.As<DEVMODEW>();
    header.pdmOut = out.As<DEVMODEW>();
    header.fMode = DM_OUT_BUFFER;
    CHECK(module.DocumentSheets(nullptr, reinterpret_cast<LPARAM>(&header)) == 1);
    CHECK(out.As<DEVMODEW>()->dmSize == 400);
    CHECK(out.Get()[399] == 0x11);
}

TEST_CASE_METHOD(HostileFixture, "a folder in the place of each of the user's files is a failure and not a crash",
                 "[driver][hostile]")
{
    Claim(L"2");
    CreateDirectoryW(folder.File(L"QPS@VEL_DevMode.dat").c_str(), nullptr);
    CreateDirectoryW(folder.File(L"QPS@VEL_defsetting.ini").c_str(), nullptr);
    stuDrvDevmode record = {};
    LONG cbNeeded = sizeof(record);
    CHECK(module.ConvertDevMode(nullptr, nullptr, &record.stuDevmode, &cbNeeded, CDM_DRIVER_DEFAULT) == 1);
    CHECK(record.stuDevmode.dmFields == 0x9903); // the hard-coded default
    CHECK(record.dwNoWaterPrint == 0);
}
