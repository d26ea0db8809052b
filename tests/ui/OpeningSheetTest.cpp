// What a document sheet reads of its caller, and how its pages and its data are laid out when it opens.

#include "tests/common/GuardedBuffer.h"
#include "tests/common/ImportHook.h"
#include "tests/ui/DocumentFixture.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <set>

namespace
{

/// Memory that begins behind a page that can't be touched.
class GuardedFront
{
public:
    GuardedFront() : m_pbyBase(static_cast<BYTE*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS)))
    {
        VirtualAlloc(Get(), kPage, MEM_COMMIT, PAGE_READWRITE);
    }
    ~GuardedFront() { VirtualFree(m_pbyBase, 0, MEM_RELEASE); }
    GuardedFront(const GuardedFront&) = delete;
    GuardedFront& operator=(const GuardedFront&) = delete;
    BYTE* Get() const { return m_pbyBase + kPage; }

private:
    static constexpr size_t kPage = 4096;
    BYTE* m_pbyBase;
};

/// Opens a sheet on a header, delivers its result and ends it.
void PlayWhole(DocumentCalls& calls, const void* pHeader)
{
    calls.info.lParamInit = reinterpret_cast<LPARAM>(pHeader);
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    CHECK(calls.Call(PROPSHEETUI_REASON_GET_INFO_HEADER) == 1);
    CHECK(calls.SetResult(CPSUI_OK) == 1);
    CHECK(calls.Call(PROPSHEETUI_REASON_DESTROY) == 1);
    CHECK(calls.taker.pages.size() == 3);
}

std::vector<UINT> s_texts;

int WINAPI NoteLoadString(HINSTANCE hModule, UINT uiId, LPWSTR pszText, int iUnits)
{
    s_texts.push_back(uiId);
    return LoadStringW(hModule, uiId, pszText, iUnits);
}

/// A page's title that is longer than a string holds in itself: "bb..." for 102, "cc..." for 103, "dd..." for 104.
std::wstring LongTitle(UINT uiId)
{
    return std::wstring(40, static_cast<wchar_t>(L'b' + uiId - 102));
}

int WINAPI LoadLongTitle(HINSTANCE hModule, UINT uiId, LPWSTR pszText, int iUnits)
{
    if (uiId < 102 || uiId > 104)
    {
        return LoadStringW(hModule, uiId, pszText, iUnits);
    }
    const std::wstring strTitle = LongTitle(uiId);
    wcscpy_s(pszText, iUnits, strTitle.c_str());
    return static_cast<int>(strTitle.size());
}

std::vector<PROPSHEETPAGEW> s_pages;
std::vector<std::wstring> s_titles;

HPROPSHEETPAGE WINAPI NoteCreatePage(LPCPROPSHEETPAGEW pPage)
{
    s_pages.push_back(*pPage);
    s_titles.push_back(pPage->pszTitle);
    return CreatePropertySheetPageW(pPage);
}

/// Notes the pages that the module describes.
struct PageNotes
{
    explicit PageNotes(HMODULE hModule) : hook(hModule, "CreatePropertySheetPageW", &NoteCreatePage)
    {
        s_pages.clear();
        s_titles.clear();
    }
    const ImportHook hook;
};

/// The whole description of a page, but for its title and its procedure, which are the described page's own.
void CheckPage(const PROPSHEETPAGEW& page, HMODULE hModule, WORD wTemplate, LPARAM lParam)
{
    CAPTURE(wTemplate);
    PROPSHEETPAGEW expected = {};
    expected.dwSize = sizeof(expected);
    expected.dwFlags = 8; // the title and nothing else
    expected.hInstance = hModule;
    expected.pszTemplate = MAKEINTRESOURCEW(wTemplate);
    expected.lParam = lParam;
    expected.pszTitle = page.pszTitle;
    expected.pfnDlgProc = page.pfnDlgProc;
    CHECK(page.dwFlags == expected.dwFlags);
    CHECK(page.lParam == expected.lParam);
    CHECK(memcmp(&page, &expected, sizeof(expected)) == 0);
    CHECK(page.pfnDlgProc != nullptr);
}

} // namespace

TEST_CASE_METHOD(LoggedDocumentFixture, "a sheet reads neither the printer nor its name in its header",
                 "[driver][sheet]")
{
    // All that stands in front of the records lies in memory that faults.
    constexpr size_t kRecords = offsetof(DOCUMENTPROPERTYHEADER, pdmIn);
    const GuardedFront front;
    memcpy(front.Get(), reinterpret_cast<const BYTE*>(&calls.header) + kRecords, sizeof(calls.header) - kRecords);
    PlayWhole(calls, front.Get() - kRecords);
    CHECK(memcmp(&callerOut, &callerIn, 220) == 0);
}

TEST_CASE_METHOD(LoggedDocumentFixture, "a sheet reads neither the mode nor the room in its header", "[driver][sheet]")
{
    // All that stands behind the records lies in memory that faults.
    constexpr size_t kFront = offsetof(DOCUMENTPROPERTYHEADER, cbOut);
    const GuardedBuffer front(kFront);
    memcpy(front.Get(), &calls.header, kFront);
    PlayWhole(calls, front.Get());
    CHECK(memcmp(&callerOut, &callerIn, 220) == 0);
}

TEST_CASE_METHOD(LoggedDocumentFixture,
                 "a request that can't be read when the sheet opens leaves no line of the sheet's",
                 "[driver][sheet][log]")
{
    const PrivateRegistry nothing; // no data folder
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    CHECK(calls.Data()->pdmOut->dwNoWaterPrint == 0);
    const Lines own = Own();
    REQUIRE(own.size() > 5);
    for (const std::string& strLine : own)
    {
        CAPTURE(strLine);
        CHECK(strLine.rfind("WARNING - ", 0) != 0);
        CHECK(strLine.rfind("ERROR - ", 0) != 0);
        CHECK(strLine.find("GetDefSetting") == std::string::npos);
    }
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(DocumentFixture, "the pages' titles are loaded in the order of their numbers", "[driver][sheet]")
{
    s_texts.clear();
    const ImportHook hook(module.handle, "LoadStringW", &NoteLoadString);
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    std::vector<UINT> titles;
    std::copy_if(s_texts.begin(), s_texts.end(), std::back_inserter(titles),
                 [](UINT uiId) { return uiId >= 102 && uiId <= 104; });
    CHECK(titles == std::vector<UINT>{102, 103, 104});
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(DocumentFixture, "a document sheet's pages are described by their title and their data alone",
                 "[driver][sheet]")
{
    const PageNotes notes(module.handle);
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    REQUIRE(s_pages.size() == 3);
    const auto lData = static_cast<LPARAM>(calls.info.UserData);
    CheckPage(s_pages[0], module.handle, 102, lData);
    CheckPage(s_pages[1], module.handle, 103, lData);
    CheckPage(s_pages[2], module.handle, 104, 0);
    CHECK(s_titles == std::vector<std::wstring>{L"设置", L"高级设置", L"关于"});
    const std::set<DLGPROC> procedures = {s_pages[0].pfnDlgProc, s_pages[1].pfnDlgProc, s_pages[2].pfnDlgProc};
    CHECK(procedures.size() == 3);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(DocumentFixture, "the device sheet's page is described like the document sheet's last one",
                 "[driver][device]")
{
    const PageNotes notes(module.handle);
    DeviceCalls device{module.DeviceSheets};
    REQUIRE(device.Call(PROPSHEETUI_REASON_INIT) == 1);
    REQUIRE(s_pages.size() == 1);
    CheckPage(s_pages[0], module.handle, 104, 0);
    CHECK(s_titles == std::vector<std::wstring>{L"关于"});
}

TEST_CASE_METHOD(DocumentFixture, "a page has its title whole, however long it is", "[driver][sheet][device]")
{
    const ImportHook hook(module.handle, "LoadStringW", &LoadLongTitle);
    {
        const PageNotes notes(module.handle);
        REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
        CHECK(s_titles == std::vector<std::wstring>{LongTitle(103), LongTitle(104), LongTitle(102)});
        calls.Call(PROPSHEETUI_REASON_DESTROY);
    }
    const PageNotes notes(module.handle);
    DeviceCalls device{module.DeviceSheets};
    REQUIRE(device.Call(PROPSHEETUI_REASON_INIT) == 1);
    CHECK(s_titles == std::vector<std::wstring>{LongTitle(102)});
}

TEST_CASE_METHOD(DocumentFixture, "a sheet's data lies in memory as its readers expect it", "[driver][sheet]")
{
    StoreSetting("6");
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    const auto* const pbyData = reinterpret_cast<const BYTE*>(calls.info.UserData);
    const auto pointer = [pbyData](size_t uiAt) { return *reinterpret_cast<BYTE* const*>(pbyData + uiAt); };
    const auto number = [pbyData](size_t uiAt) { return *reinterpret_cast<const DWORD*>(pbyData + uiAt); };
    // The records, told by the stored request, which the working one alone has; it stands at byte 224.
    CHECK(*reinterpret_cast<const DWORD*>(pointer(0) + 224) == 0);
    CHECK(*reinterpret_cast<const DWORD*>(pointer(8) + 224) == 6);
    CHECK(reinterpret_cast<const stuPaperInfo*>(pointer(16))[4].wPaper == 256);
    CHECK(reinterpret_cast<ULONG_PTR>(pointer(24)) == reinterpret_cast<ULONG_PTR>(&PageTaker::Take));
    CHECK(static_cast<void*>(pointer(32)) == &calls.taker);
    CHECK(reinterpret_cast<ULONG_PTR>(pointer(40)) == 0x101); // the settings page
    CHECK(reinterpret_cast<ULONG_PTR>(pointer(48)) == 0x102); // the advanced page
    CHECK(number(56) == 1);
    CHECK(number(60) == 5);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}
