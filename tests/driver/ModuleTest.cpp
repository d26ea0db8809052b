#include "diag/Log.h"
#include "driver/Module.h"
#include "support/module/Resource.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/LineAtCall.h"
#include "tests/common/PrivateRegistry.h"
#include "tests/common/TempFolder.h"
#include "tests/common/TextsFrom.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>

namespace
{

/// Points the library's own module handle at the built DLL, where the texts are.
struct TextsFixture
{
    BuiltModule module;
    const TextsFrom texts{module.handle};
};

int s_cchText = 0;
UINT s_uiText = 0;
HINSTANCE s_hTexts = nullptr;

/// A text of 100 characters and more, cut as the platform cuts it.
int WINAPI LoadLongText(HINSTANCE hModule, UINT uiId, LPWSTR pszText, int cchText)
{
    s_hTexts = hModule;
    s_uiText = uiId;
    s_cchText = cchText;
    std::fill_n(pszText, cchText - 1, L't');
    pszText[cchText - 1] = L'\0';
    return cchText - 1;
}

} // namespace

TEST_CASE("DllMain answers 1 for every reason and stores the handle each time", "[driver][module]")
{
    const PrivateRegistry registry;
    const HMODULE hOld = g_hModule;
    for (const DWORD dwReason : {DLL_PROCESS_ATTACH, DLL_THREAD_ATTACH, DLL_THREAD_DETACH, DLL_PROCESS_DETACH, 99})
    {
        CAPTURE(dwReason);
        g_hModule = nullptr;
        CHECK(DllMain(reinterpret_cast<HINSTANCE>(0x10000), dwReason, nullptr) == 1);
        CHECK(g_hModule == reinterpret_cast<HMODULE>(0x10000));
    }
    g_hModule = hOld;
    CHECK(loggingDisabled);
}

TEST_CASE("the module loads without any key and makes no log file", "[driver][module]")
{
    const PrivateRegistry registry;
    const TempFolder folder;
    wchar_t szOld[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, szOld);
    REQUIRE(SetCurrentDirectoryW(folder.Path().c_str()));
    {
        const BuiltModule module;
        CHECK(module.handle != nullptr);
        CHECK(module.DeviceCapabilities(nullptr, nullptr, DC_EXTRA, nullptr, nullptr) == 12);
    }
    WIN32_FIND_DATAW found;
    const HANDLE hFind = FindFirstFileW(L"*.*", &found);
    size_t uiFiles = 0;
    for (BOOL bMore = hFind != INVALID_HANDLE_VALUE; bMore; bMore = FindNextFileW(hFind, &found))
    {
        uiFiles += (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 ? 1 : 0;
    }
    FindClose(hFind);
    SetCurrentDirectoryW(szOld);
    CHECK(uiFiles == 0);
}

TEST_CASE("a log configuration that log4cpp refuses lets the module load and work without a log", "[driver][module]")
{
    const TempFolder folder;
    PrivateRegistry registry;
    registry.SetClient(L"InstallDir", folder.Path());
    const std::wstring strLog = folder.File(L"log.txt");
    const std::string strConfig = "rootCategory=ERROR\n"
                                  "category.VelUI_dll=DEBUG, file\n"
                                  "appender.file=FileAppender\n"
                                  "appender.file.fileName=" +
                                  std::string(strLog.begin(), strLog.end()) +
                                  "\n"
                                  "appender.file.layout=SimpleLayout\n";
    const auto logOf = [&](const std::string& strText) {
        WriteFileBytes(folder.File(L"LogConfig.conf"), strText);
        DeleteFileW(strLog.c_str());
        {
            const BuiltModule module;
            CHECK(module.QueryPrintEx(nullptr) == 1);
            CHECK(module.DeviceCapabilities(nullptr, nullptr, DC_EXTRA, nullptr, nullptr) == 12);
        }
        CHECK(PathExists(strLog)); // the library has read that far
        return ReadFileBytes(strLog);
    };
    CHECK(logOf(strConfig + "category.VelUI_dll.F=NONSENSE\n").empty());
    CHECK(logOf(strConfig + "category.VelUI_dll.F=ERROR, missing\n").empty());
    CHECK(logOf(strConfig + "no equals sign\n").find("DevQueryPrintEx was invoked.") != std::string::npos);
}

TEST_CASE("DevQueryPrintEx answers 1 and does not touch its argument", "[driver][module]")
{
    const BuiltModule module;
    REQUIRE(module.QueryPrintEx != nullptr);
    CHECK(module.QueryPrintEx(nullptr) == 1);
    CHECK(module.QueryPrintEx(reinterpret_cast<PDEVQUERYPRINT_INFO>(1)) == 1);
}

TEST_CASE_METHOD(TextsFixture, "every text of the string table is the module's own", "[driver][texts]")
{
    struct Row
    {
        UINT uiId;
        const wchar_t* pszText;
    };
    for (const Row& row : {Row{102, L"关于"}, Row{103, L"设置"}, Row{104, L"高级设置"}, Row{105, L"VelPrinter"},
                           Row{106, L"警告"}, Row{107, L"请确保输入的数据正确"}, Row{108, L"自定义"}})
    {
        CAPTURE(row.uiId);
        std::wstring strText;
        CHECK(SubLoadString(row.uiId, strText) == 1);
        CHECK(strText == row.pszText);
    }
}

TEST_CASE_METHOD(TextsFixture, "a text that is not there answers 0 and leaves the string alone", "[driver][texts]")
{
    std::wstring strText = L"before";
    CHECK(SubLoadString(101, strText) == 0);
    CHECK(SubLoadString(109, strText) == 0);
    CHECK(strText == L"before");
}

TEST_CASE_METHOD(TextsFixture, "the scope of a text's loading is open while Windows loads it", "[driver][texts][log]")
{
    const LoggingOn logging{"OutputFunBeginInfo"};
    const LineAtCall<decltype(LoadStringW)> line(logging, "LoadStringW");
    std::wstring strText;
    SubLoadString(105, strText);
    CHECK(line.Text() == "VelUI_dll__SubLoadString :START......");
}

TEST_CASE_METHOD(TextsFixture, "a text of 100 characters is cut at 99", "[driver][texts]")
{
    const ImportHook hook(nullptr, "LoadStringW", &LoadLongText);
    std::wstring strText;
    CHECK(SubLoadString(105, strText) == 1);
    CHECK(s_hTexts == module.handle);
    CHECK(s_uiText == 105);
    CHECK(s_cchText == 100);
    CHECK(strText == std::wstring(99, L't'));
}
