// DrvDocumentPropertySheets as the sheet library calls it, reason by reason.

#include "tests/common/ChildCase.h"
#include "tests/common/GuardedBuffer.h"
#include "tests/common/ImportHook.h"
#include "tests/common/LineAtCall.h"
#include "tests/ui/DocumentFixture.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

#include <map>

namespace
{

constexpr char kStart[] = "VelUI_dll__DrvDocumentPropertySheets :START......";
constexpr char kInvoked[] = "INFO - DrvDocumentPropertySheets was invoked.";
constexpr char kInteractive[] = "INFO - DrvDocumentPropertySheets - interactive by property pages";
constexpr char kEnd[] = "VelUI_dll__DrvDocumentPropertySheets :End  ......";

// The size of the blocks of which one allocation fails, which one (from 1), the balance of blocks by size, and what was
// freed of them, in order.
size_t s_uiFailSize = 0;
int s_iFailing = 0;
std::map<void*, size_t> s_blocks;
std::vector<void*> s_freed;

void* NotedCalloc(size_t uiCount, size_t uiSize)
{
    if (uiCount * uiSize == s_uiFailSize && --s_iFailing == 0)
    {
        return nullptr;
    }
    void* const pBlock = Platform<void*(size_t, size_t)>(L"msvcrt", "calloc")(uiCount, uiSize);
    s_blocks[pBlock] = uiCount * uiSize;
    return pBlock;
}

void NotedFree(void* pBlock)
{
    if (s_blocks.erase(pBlock) != 0)
    {
        s_freed.push_back(pBlock);
    }
    Platform<void(void*)>(L"msvcrt", "free")(pBlock);
}

/// Makes one allocation of the module fail and keeps the books on what it allocates.
class FailingMemory
{
public:
    FailingMemory(HMODULE hModule, size_t uiSize, int iFailing)
        : m_calloc(hModule, "calloc", &NotedCalloc), m_free(hModule, "free", &NotedFree)
    {
        s_blocks.clear();
        s_freed.clear();
        s_uiFailSize = uiSize;
        s_iFailing = iFailing;
    }
    ~FailingMemory() { s_uiFailSize = 0; }
    /// Blocks of a size that are still there.
    static size_t Left(size_t uiSize)
    {
        size_t uiLeft = 0;
        for (const auto& block : s_blocks)
        {
            uiLeft += block.second == uiSize ? 1 : 0;
        }
        return uiLeft;
    }

private:
    ImportHook m_calloc;
    ImportHook m_free;
};

constexpr size_t kDataBytes = 64;
constexpr size_t kRecordBytes = 232;
constexpr size_t kPageBytes = sizeof(PROPSHEETPAGEW);
constexpr size_t kListBytes = 5 * 140;

const void* s_pSheetData = nullptr;
const LoggingOn* s_pLogOfSheet = nullptr;
bool s_bEndWasTold = false;

/// Takes note of whether the log tells of a sheet's end when its data goes.
void NoteFree(void* p)
{
    if (p != nullptr && p == s_pSheetData)
    {
        s_pSheetData = nullptr;
        s_bEndWasTold = s_pLogOfSheet->Has("PROPSHEETUI_REASON_DESTROY");
    }
    Platform<void(void*)>(L"msvcrt", "free")(p);
}

} // namespace

TEST_CASE_METHOD(DocumentFixture, "a sheet without a header is refused, whatever the reason", "[driver][sheet]")
{
    calls.info.lParamInit = 0;
    for (const WORD wReason : {0, 1, 2, 3, 4, 99})
    {
        CHECK(calls.Call(wReason) == -1);
    }
    CHECK(calls.taker.calls.empty());
}

TEST_CASE_METHOD(DocumentFixture, "opening adds three pages in order and keeps the sheet's data", "[driver][sheet]")
{
    StoreSetting("6");
    calls.info.Result = 77;
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    REQUIRE(calls.taker.calls.size() == 3);
    for (const LibraryCall& call : calls.taker.calls)
    {
        CHECK(call.hComPropSheet == &calls.taker);
        CHECK(call.uiFunction == 0);
        CHECK(call.lParam1 != 0);
        CHECK(call.lParam2 == 0);
    }
    CHECK(calls.info.Result == 0);
    const stuPassData* const pData = calls.Data();
    REQUIRE(pData != nullptr);
    CHECK(pData->pfnComPropSheet == &PageTaker::Take);
    CHECK(pData->hComPropSheet == &calls.taker);
    CHECK(pData->hSetPage == 0x101);
    CHECK(pData->hSeniorPage == 0x102);
    CHECK(pData->bPassResult == 1);
    CHECK(pData->dwCount == 5);
    CHECK(std::wstring(pData->pstuPaperInfo[4].aszPaperName) == L"自定义");
    // The public part is the caller's; the tail is not, but for the stored request.
    CHECK(memcmp(&pData->pdmIn->stuDevmode, &callerIn, 220) == 0);
    CHECK(memcmp(&pData->pdmOut->stuDevmode, &callerIn, 220) == 0);
    CHECK(pData->pdmIn->dwTailWord0 == 0);
    CHECK(pData->pdmIn->dwNoWaterPrint == 0);
    CHECK(pData->pdmIn->dwTailWord2 == 0);
    CHECK(pData->pdmOut->dwNoWaterPrint == 6);
    CHECK(callerOut.dwNoWaterPrint == 0x32323232);
    CHECK(calls.Call(PROPSHEETUI_REASON_DESTROY) == 1);
    CHECK(calls.info.UserData == 0);
}

TEST_CASE_METHOD(DocumentFixture, "a record of 220 bytes is enough as input", "[driver][sheet]")
{
    const GuardedBuffer in(220, 0x44);
    calls.header.pdmIn = in.As<DEVMODEW>();
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    CHECK(memcmp(calls.Data()->pdmIn, in.Get(), 220) == 0);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(DocumentFixture, "without an input both records come from the user's default", "[driver][sheet]")
{
    WriteFileBytes(folder.File(L"QPS@VEL_DevMode.dat"), std::string(220, 'q'));
    calls.header.pdmIn = nullptr;
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    CHECK(std::string(reinterpret_cast<char*>(calls.Data()->pdmIn), 220) == std::string(220, 'q'));
    CHECK(std::string(reinterpret_cast<char*>(calls.Data()->pdmOut), 220) == std::string(220, 'q'));
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(DocumentFixture, "a request that can't be read becomes 0 in the working record", "[driver][sheet]")
{
    const PrivateRegistry nothing;
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    CHECK(calls.Data()->pdmOut->dwNoWaterPrint == 0);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(DocumentFixture, "without papers the sheet opens with the custom one alone", "[driver][sheet]")
{
    WriteCaps({{L"PapersCount", L"0"}});
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    CHECK(calls.Data()->dwCount == 1);
    CHECK(calls.Data()->pstuPaperInfo[0].wPaper == 256);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(DocumentFixture, "the header is left to the library", "[driver][sheet]")
{
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    PROPSHEETUI_INFO_HEADER header;
    memset(&header, 0x5C, sizeof(header));
    CHECK(calls.Call(PROPSHEETUI_REASON_GET_INFO_HEADER, reinterpret_cast<LPARAM>(&header)) == 1);
    const std::string strUntouched(sizeof(header), 0x5C);
    CHECK(std::string(reinterpret_cast<char*>(&header), sizeof(header)) == strUntouched);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(DocumentFixture, "a good result delivers all 232 bytes of the working record", "[driver][sheet]")
{
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    memset(calls.Data()->pdmOut, 0x66, 232);
    GuardedBuffer out(232, 0);
    calls.header.pdmOut = out.As<DEVMODEW>();
    calls.header.cbOut = 1; // not looked at
    CHECK(calls.SetResult(CPSUI_OK) == 1);
    CHECK(std::string(out.As<char>(), 232) == std::string(232, 0x66));
    CHECK(out.Intact());
    memset(calls.Data()->pdmOut, 0x67, 232);
    CHECK(calls.SetResult(CPSUI_OK) == 1); // a second apply delivers again
    CHECK(std::string(out.As<char>(), 232) == std::string(232, 0x67));
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(DocumentFixture, "any other result delivers nothing", "[driver][sheet]")
{
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    for (const LRESULT lResult : {LRESULT{CPSUI_CANCEL}, LRESULT{2}, LRESULT{-1}})
    {
        CHECK(calls.SetResult(lResult) == 1);
    }
    CHECK(std::string(reinterpret_cast<char*>(&callerOut), 232) == std::string(232, 0x32));
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(DocumentFixture, "a result without the sheet's data is refused", "[driver][sheet]")
{
    calls.info.UserData = 0;
    CHECK(calls.SetResult(CPSUI_OK) == -1);
    CHECK(calls.SetResult(CPSUI_CANCEL) == 1);
    CHECK(callerOut.dwTailWord0 == 0x32323232);
}

TEST_CASE_METHOD(DocumentFixture, "a sheet that is not to pass its result delivers nothing", "[driver][sheet]")
{
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    calls.Data()->bPassResult = 0;
    CHECK(calls.SetResult(CPSUI_OK) == 1);
    CHECK(callerOut.dwTailWord0 == 0x32323232);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(DocumentFixture, "any other reason is refused", "[driver][sheet]")
{
    for (const WORD wReason : {PROPSHEETUI_REASON_GET_ICON, 5, 6, 0xFFFF})
    {
        CHECK(calls.Call(wReason) == -1);
    }
    CHECK(calls.info.UserData == 0);
}

TEST_CASE_METHOD(DocumentFixture, "an opened and ended sheet leaves its list of papers behind and nothing else",
                 "[driver][sheet][memory]")
{
    const FailingMemory memory(module.handle, 0, 0);
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    CHECK(memory.Left(kDataBytes) == 1);
    CHECK(memory.Left(kRecordBytes) == 2);
    CHECK(memory.Left(kPageBytes) == 0); // they don't outlive the call
    CHECK(memory.Left(kListBytes) == 1);
    CHECK(calls.Call(PROPSHEETUI_REASON_DESTROY) == 1);
    CHECK(s_blocks.size() == 1);
    CHECK(memory.Left(kListBytes) == 1);
}

TEST_CASE_METHOD(DocumentFixture, "the end of a sheet frees the working record, then the other, then the data",
                 "[driver][sheet][memory]")
{
    const FailingMemory memory(module.handle, 0, 0);
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    const std::vector<void*> expected = {calls.Data()->pdmOut, calls.Data()->pdmIn, calls.Data()};
    s_freed.clear();
    CHECK(calls.Call(PROPSHEETUI_REASON_DESTROY) == 1);
    CHECK(s_freed == expected);
}

TEST_CASE_METHOD(DocumentFixture, "no memory for the sheet's data refuses the sheet", "[driver][sheet][memory]")
{
    calls.info.UserData = 0x777;
    const FailingMemory memory(module.handle, kDataBytes, 1);
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
    CHECK(calls.info.UserData == 0x777); // as it was
    CHECK(calls.taker.calls.empty());
    CHECK(s_blocks.empty());
}

TEST_CASE_METHOD(DocumentFixture, "no memory for a page refuses the sheet and leaves what was made before it",
                 "[driver][sheet][memory]")
{
    const int iPage = GENERATE(1, 2, 3);
    CAPTURE(iPage);
    calls.info.UserData = 0x777;
    calls.info.Result = 0x778;
    const FailingMemory memory(module.handle, kPageBytes, iPage);
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
    CHECK(calls.info.UserData == 0x777);
    CHECK(calls.info.Result == 0x778);
    CHECK(calls.taker.calls.empty());
    CHECK(memory.Left(kDataBytes) == 1);
    CHECK(memory.Left(kRecordBytes) == 2);
    CHECK(memory.Left(kPageBytes) == static_cast<size_t>(iPage - 1));
    CHECK(memory.Left(kListBytes) == 0);
}

TEST_CASE_METHOD(DocumentFixture, "no memory for the list of papers refuses the sheet and frees the rest",
                 "[driver][sheet][memory]")
{
    const FailingMemory memory(module.handle, kListBytes, 1);
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
    CHECK(calls.info.UserData != 0); // the address of what was freed
    CHECK(calls.info.Result == 0);
    CHECK(calls.taker.calls.empty());
    CHECK(s_blocks.empty());
}

TEST_CASE_METHOD(DocumentFixture, "a list of papers that can't be filled opens a sheet with none",
                 "[driver][sheet][memory]")
{
    const FailingMemory memory(module.handle, 4 * 128, 1); // the names, on their way into the list
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    CHECK(calls.Data()->dwCount == 0);
    CHECK(calls.taker.pages.size() == 3);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(DocumentFixture,
                 "a page that the library refuses ends the sheet, and earlier ones stay with the library",
                 "[driver][sheet][memory]")
{
    const size_t uiRefused = GENERATE(1u, 2u, 3u);
    CAPTURE(uiRefused);
    calls.taker.uiRefused = uiRefused;
    const FailingMemory memory(module.handle, 0, 0);
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
    CHECK(calls.taker.calls.size() == uiRefused);
    CHECK(calls.taker.pages.size() == uiRefused - 1);
    CHECK(calls.info.UserData != 0);
    CHECK(calls.info.Result == 0);
    CHECK(s_blocks.size() == 1); // the list of papers
    CHECK(memory.Left(kListBytes) == 1);
}

namespace
{

int s_iPagesDestroyed = 0;

HPROPSHEETPAGE WINAPI FailCreatePage(LPCPROPSHEETPAGEW)
{
    return nullptr;
}

BOOL WINAPI CountDestroyPage(HPROPSHEETPAGE hPage)
{
    ++s_iPagesDestroyed;
    return DestroyPropertySheetPage(hPage);
}

} // namespace

TEST_CASE_METHOD(DocumentFixture, "a page that can't be made is not offered to the library", "[driver][sheet]")
{
    const ImportHook hook(module.handle, "CreatePropertySheetPageW", &FailCreatePage);
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
    CHECK(calls.taker.calls.empty());
}

TEST_CASE_METHOD(DocumentFixture, "a refused page is destroyed", "[driver][sheet]")
{
    s_iPagesDestroyed = 0;
    const ImportHook hook(module.handle, "DestroyPropertySheetPage", &CountDestroyPage);
    calls.taker.uiRefused = 2;
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
    CHECK(s_iPagesDestroyed == 1);
}

// Each of the following three is run by the next case in a process of its own.
TEST_CASE_METHOD(DocumentFixture, "child: no memory for the input record", "[.child]")
{
    const FailingMemory memory(module.handle, kRecordBytes, 1);
    calls.Call(PROPSHEETUI_REASON_INIT);
}

TEST_CASE_METHOD(DocumentFixture, "child: no memory for the working record", "[.child]")
{
    const FailingMemory memory(module.handle, kRecordBytes, 2);
    calls.Call(PROPSHEETUI_REASON_INIT);
}

TEST_CASE_METHOD(DocumentFixture, "child: the end of a sheet that has no data", "[.child]")
{
    calls.info.UserData = 0;
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(DocumentFixture, "child: a result for a caller without a record", "[.child]")
{
    calls.header.pdmOut = nullptr;
    calls.Call(PROPSHEETUI_REASON_INIT);
    calls.SetResult(CPSUI_OK);
}

TEST_CASE("the process faults where a null pointer is trusted", "[driver][sheet]")
{
    CHECK(IsFault(ExitCodeOfCase(L"child: no memory for the input record")));
    CHECK(IsFault(ExitCodeOfCase(L"child: no memory for the working record")));
    CHECK(IsFault(ExitCodeOfCase(L"child: the end of a sheet that has no data")));
    CHECK(IsFault(ExitCodeOfCase(L"child: a result for a caller without a record")));
}

TEST_CASE_METHOD(LoggedDocumentFixture, "an opened sheet logs its road", "[driver][sheet][log]")
{
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    const Lines own = Own();
    REQUIRE(own.size() > 7);
    CHECK(own[0] == kStart);
    CHECK(own[1] == kInvoked);
    CHECK(own[2] == kInteractive);
    CHECK(own[3] == "INFO - DrvDocumentPropertySheets - pPSUIInfo->Reason = PROPSHEETUI_REASON_INIT");
    CHECK(own[4].find(
              "DEBUG - VelUI(#) : (DEVMODE *)((DOCUMENTPROPERTYHEADER *)(pPSUIInfo->lParamInit))->pdmIn = 0x") == 0);
    CHECK(own[own.size() - 2] == "Param - VelUI(#) : lReturn = 1");
    CHECK(own.back() == kEnd);
    Lines outline = Outline(logging, "DrvDocumentPropertySheets");
    REQUIRE(outline.size() > 4);
    outline.erase(outline.begin(), outline.begin() + 3); // as above
    CHECK(outline == Lines{"DEBUG - VelUI(#) : (DEVMODE *)((DOCUMENTPROPERTYHEADER *)(pPSUIInfo->lParamInit))->pdmIn",
                           "> SubLoadString", "> SubLoadString", "> SubLoadString", "> VelUtility::GetDefSetting",
                           "> GetPaperInfoList", "> GetPaperInfoList", "> SubAddpropertySheet", "> SubAddpropertySheet",
                           "> SubAddpropertySheet", "Param - VelUI(#) : lReturn"});
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(LoggedDocumentFixture, "the scope of a page's adding is open while Windows makes the page",
                 "[driver][sheet][log]")
{
    const LineAtCall<decltype(CreatePropertySheetPageW)> line(logging, "CreatePropertySheetPageW");
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    CHECK(line.Text() == "VelUI_dll__SubAddpropertySheet :START......");
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(LoggedDocumentFixture, "a sheet without an input logs where its record comes from",
                 "[driver][sheet][log]")
{
    calls.header.pdmIn = nullptr;
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    const Lines own = Own();
    CHECK(own.at(4) == "INFO - SubSetDevMode to pstuPassData->pdmIn");
    CHECK(own.at(5) == "DEBUG - VelUI(#) : pstuPassData->pdmIn->stuDevmode = {devMode.dmSpecVersion = 0401");
    const Lines outline = Outline(logging, "DrvDocumentPropertySheets");
    CHECK(outline.at(3) == "INFO - SubSetDevMode to pstuPassData->pdmIn");
    CHECK(outline.at(4) == "> SubSetDevMode");
    CHECK(outline.at(5) == "DEBUG - VelUI(#) : pstuPassData->pdmIn->stuDevmode");
    CHECK_FALSE(logging.Has("SubSetDevMode to pstuPassData->pdmOut"));
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(LoggedDocumentFixture, "the header's and the end's calls log their reasons", "[driver][sheet][log]")
{
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    const size_t uiBefore = Own().size();
    calls.Call(PROPSHEETUI_REASON_GET_INFO_HEADER);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
    Lines own = Own();
    own.erase(own.begin(), own.begin() + static_cast<ptrdiff_t>(uiBefore));
    CHECK(own == Lines{kStart, kInvoked, kInteractive,
                       "INFO - DrvDocumentPropertySheets - pPSUIInfo->Reason = PROPSHEETUI_REASON_GET_INFO_HEADER",
                       "Param - VelUI(#) : lReturn = 1", kEnd, kStart, kInvoked, kInteractive,
                       "INFO - DrvDocumentPropertySheets - pPSUIInfo->Reason = PROPSHEETUI_REASON_DESTROY",
                       "Param - VelUI(#) : lReturn = 1", kEnd});
}

TEST_CASE_METHOD(LoggedDocumentFixture, "the end of a sheet is told before its data goes", "[driver][sheet][log]")
{
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    s_pSheetData = calls.Data();
    s_pLogOfSheet = &logging;
    const ImportHook hook(nullptr, "free", &NoteFree);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
    CHECK(s_pSheetData == nullptr);
    CHECK(s_bEndWasTold); // a sheet without data faults there, and then this line is the log's last word
}

TEST_CASE_METHOD(LoggedDocumentFixture, "no result leaves a result line", "[driver][sheet][log]")
{
    REQUIRE(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    const size_t uiBefore = Own().size();
    calls.SetResult(CPSUI_OK);
    calls.SetResult(CPSUI_CANCEL);
    const ULONG_PTR ulData = calls.info.UserData;
    calls.info.UserData = 0;
    calls.SetResult(CPSUI_OK);
    calls.info.UserData = ulData;
    Lines own = Own();
    own.erase(own.begin(), own.begin() + static_cast<ptrdiff_t>(uiBefore));
    const Lines once = {kStart, kInvoked, kInteractive,
                        "INFO - DrvDocumentPropertySheets - pPSUIInfo->Reason = PROPSHEETUI_REASON_SET_RESULT", kEnd};
    Lines expected = once;
    expected.insert(expected.end(), once.begin(), once.end());
    expected.insert(expected.end(), once.begin(), once.end());
    CHECK(own == expected);
    calls.Call(PROPSHEETUI_REASON_DESTROY);
}

TEST_CASE_METHOD(LoggedDocumentFixture, "an unknown reason leaves a warning with its number", "[driver][sheet][log]")
{
    CHECK(calls.Call(4) == -1);
    CHECK(Own() == Lines{kStart, kInvoked, kInteractive,
                         "WARNING - VelUI(#) : Unexpected condition. pPSUIInfo->Reason = 4",
                         "Param - VelUI(#) : lReturn = -1", kEnd});
}

TEST_CASE_METHOD(LoggedDocumentFixture, "a sheet without a header leaves two lines and no result line",
                 "[driver][sheet][log]")
{
    calls.info.lParamInit = 0;
    CHECK(calls.Call(0) == -1);
    CHECK(Own() == Lines{kStart, kInvoked, kInteractive, "DEBUG - VelUI(#) : lReturn = 4294967295",
                         "WARNING - VelUI(#) : DrvDocumentPropertySheets - NULL == (DOCUMENTPROPERTYHEADER "
                         "*)(pPSUIInfo->lParamInit)",
                         kEnd});
}

TEST_CASE_METHOD(LoggedDocumentFixture, "a list of papers without memory is logged with its size",
                 "[driver][sheet][log]")
{
    {
        const FailingMemory memory(nullptr, kListBytes, 1);
        CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
    }
    const Lines own = Own();
    CHECK(own.at(own.size() - 3) == "ERROR - VelUI(#) : malloc failed. size = 700");
    CHECK(own.at(own.size() - 2) == "Param - VelUI(#) : lReturn = -1");
}

TEST_CASE_METHOD(LoggedDocumentFixture, "a refused page is logged", "[driver][sheet][log]")
{
    calls.taker.uiRefused = GENERATE(1u, 2u, 3u);
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
    const Lines own = Own();
    CHECK(own.at(own.size() - 3) == "ERROR - VelUI(#) : SubAddpropertySheet returns NULL");
    CHECK(own.at(own.size() - 2) == "Param - VelUI(#) : lReturn = -1");
}

TEST_CASE_METHOD(LoggedDocumentFixture, "memory that fails earlier leaves no line but the result's",
                 "[driver][sheet][log]")
{
    {
        const FailingMemory memory(nullptr, kDataBytes, 1);
        CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
    }
    CHECK(Own() == Lines{kStart, kInvoked, kInteractive,
                         "INFO - DrvDocumentPropertySheets - pPSUIInfo->Reason = PROPSHEETUI_REASON_INIT",
                         "Param - VelUI(#) : lReturn = -1", kEnd});
}
