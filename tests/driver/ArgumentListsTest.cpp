// The arguments that a function keeps while it runs, for its call line. Only one function has such a line; what the
// others keep is seen when they give it back.

#include "settings/ConvertDevmode.h"
#include "settings/DefaultRecord.h"
#include "settings/PaperCatalogue.h"
#include "support/module/PrinterInterface.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/ImportHook.h"
#include "tests/diag/LoggingOn.h"
#include "ui/Controls.h"
#include "ui/OtherControls.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <malloc.h>
#include <set>
#include <string_view>
#include <utility>

namespace
{

using Names = std::vector<std::string>;

const Names kAllNames = {"pPrinterName", "pwDeviceName",
                         "szprint",      "pdmIn",
                         "pdmOut",       "pDM",
                         "pstuIn",       "pstuOut",
                         "pstuDevIn",    "pstuDevOut",
                         "stuDefDev",    "pcbNeeded",
                         "Flags",        "cchBuf",
                         "dwCount",      "fMode",
                         "DriverEvent",  "iCount",
                         "iResult",      "hPrinter",
                         "pvOutput",     "DeviceCap",
                         "nDuplex",      "uiCount",
                         "hEdit",        "pstuPaperInfo, dwCount"};

/// What a call has allocated so far, and the names in what it has given back of it; null between two calls.
struct Watched
{
    std::set<void*> blocks;
    Names names;
};
Watched* s_pWatched = nullptr;

/// Gives memory that holds nothing of what it was before.
void* WatchMalloc(size_t cbSize)
{
    Watched* const pWatched = std::exchange(s_pWatched, nullptr); // not of what this function itself allocates
    void* const p = Platform<void*(size_t)>(L"msvcrt", "malloc")(cbSize);
    if (p != nullptr && pWatched != nullptr)
    {
        std::memset(p, 0, cbSize);
        pWatched->blocks.insert(p);
    }
    s_pWatched = pWatched;
    return p;
}

/// Whether a block holds a text, with a terminator, that is no longer one's end.
bool Holds(std::string_view strBlock, const std::string& strText)
{
    const std::string_view strWhole(strText.c_str(), strText.size() + 1);
    const size_t uiAt = strBlock.find(strWhole);
    return uiAt != std::string_view::npos &&
           (uiAt == 0 || std::isprint(static_cast<unsigned char>(strBlock[uiAt - 1])) == 0);
}

/// Takes note of the names that are in what is given back.
void WatchFree(void* p)
{
    Watched* const pWatched = std::exchange(s_pWatched, nullptr);
    if (pWatched != nullptr && pWatched->blocks.erase(p) != 0)
    {
        const std::string_view strBlock(static_cast<const char*>(p), _msize(p));
        const auto found = std::find_if(kAllNames.begin(), kAllNames.end(),
                                        [strBlock](const std::string& strName) { return Holds(strBlock, strName); });
        if (found != kAllNames.end())
        {
            pWatched->names.push_back(*found);
        }
    }
    s_pWatched = pWatched;
    Platform<void(void*)>(L"msvcrt", "free")(p);
}

/// The names that a call has given back, in order.
template <typename Call>
Names GivenBackBy(Call call)
{
    Watched watched;
    LogSetup setup;
    setup.strPriority = "FATAL"; // with which arguments are kept, and none of the calls writes a line
    const LoggingOn logging(setup);
    {
        const ImportHook mallocHook(nullptr, "malloc", &WatchMalloc);
        const ImportHook freeHook(nullptr, "free", &WatchFree);
        s_pWatched = &watched;
        call();
        s_pWatched = nullptr;
    }
    CHECK(logging.Text().empty());
    return watched.names;
}

struct ListsFixture : ClientFixture
{
    ListsFixture() { in.stuDevmode.dmSize = out.stuDevmode.dmSize = 220; }
    stuDrvDevmode in = {};
    stuDrvDevmode out = {};
};

} // namespace

TEST_CASE_METHOD(ListsFixture, "the entry points keep their arguments, in order, until they end", "[driver][log]")
{
    CHECK(GivenBackBy([] {
              LONG cbNeeded = 232;
              DrvConvertDevMode(nullptr, nullptr, nullptr, &cbNeeded, 8);
          }) == Names{"pPrinterName", "pdmIn", "pdmOut", "pcbNeeded", "fMode"});
    CHECK(GivenBackBy([] { DrvSplDeviceCaps(nullptr, nullptr, DC_BINNAMES, nullptr, 0, nullptr); }) ==
          Names{"hPrinter", "pwDeviceName", "DeviceCap", "pvOutput", "cchBuf", "pDM"});
    CHECK(GivenBackBy([] { DrvPrinterEvent(nullptr, 99, 0, 0); }) == Names{"pPrinterName", "DriverEvent", "Flags"});
}

TEST_CASE_METHOD(ListsFixture, "the functions below them keep theirs", "[driver][log]")
{
    CHECK(GivenBackBy([this] { ConvertDevmode(&in.stuDevmode, &out.stuDevmode); }) == Names{"pstuIn", "pstuOut"});
    CHECK(GivenBackBy([this] { SubSetDevMode(&out); }) == Names{"stuDefDev"});
    CHECK(GivenBackBy([this] { SubConvertDevmodeOut(in.stuDevmode, nullptr, &out.stuDevmode); }) ==
          Names{"stuDefDev", "pstuDevIn", "pstuDevOut"});
    CHECK(GivenBackBy([] {
              const stuPaperInfo paper = {};
              wchar_t szName[64] = {};
              SubCheckPaperName(&paper, 1, szName, 0, 0);
          }) == Names{"pstuPaperInfo, dwCount", "dwCount"});
    CHECK(GivenBackBy([] { On_Check_Duplex(nullptr, 1); }) == Names{"nDuplex"});
    CHECK(GivenBackBy([] { SubCheckAllNum(L"12", 2); }) == Names{"szprint", "uiCount"});
    CHECK(GivenBackBy([] {
              wchar_t szNumber[5] = {};
              int iResult = 0;
              SubGetEditToINT(nullptr, szNumber, 5, iResult);
          }) == Names{"szprint", "uiCount", "hEdit", "szprint", "iCount", "iResult"}); // SubCheckAllNum's first
}
