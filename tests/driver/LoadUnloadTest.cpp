#include "tests/common/BuiltModule.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/Handles.h"
#include "tests/common/HeapUse.h"
#include "tests/common/PrivateRegistry.h"
#include "tests/common/TempFolder.h"

#include <catch2/catch_test_macros.hpp>

#include <tlhelp32.h>

#include <filesystem>
#include <vector>

namespace
{

/// How many TLS and fiber-local indexes are free, by taking them all and giving them back.
size_t FreeTlsIndexes()
{
    std::vector<DWORD> taken;
    for (DWORD dw = TlsAlloc(); dw != TLS_OUT_OF_INDEXES; dw = TlsAlloc())
    {
        taken.push_back(dw);
    }
    for (const DWORD dw : taken)
    {
        TlsFree(dw);
    }
    return taken.size();
}

size_t FreeFlsIndexes()
{
    std::vector<DWORD> taken;
    for (DWORD dw = FlsAlloc(nullptr); dw != FLS_OUT_OF_INDEXES && taken.size() < 5000; dw = FlsAlloc(nullptr))
    {
        taken.push_back(dw);
    }
    for (const DWORD dw : taken)
    {
        FlsFree(dw);
    }
    return taken.size();
}

size_t LoadedModules()
{
    const HANDLE hSnapshot = CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, 0);
    REQUIRE(hSnapshot != INVALID_HANDLE_VALUE);
    MODULEENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    size_t uiModules = 0;
    for (BOOL bMore = Module32FirstW(hSnapshot, &entry); bMore; bMore = Module32NextW(hSnapshot, &entry))
    {
        ++uiModules;
    }
    CloseHandle(hSnapshot);
    return uiModules;
}

/// Loads the module, asks it two things, and unloads it. The second question makes it throw and catch inside.
void UseOnce()
{
    const BuiltModule module;
    REQUIRE(module.handle != nullptr);
    REQUIRE(module.DeviceCapabilities(nullptr, nullptr, DC_SIZE, nullptr, nullptr) == 220);
    REQUIRE(module.DeviceCapabilities(nullptr, nullptr, DC_COPIES, nullptr, nullptr) == 0xFFFFFFFF);
}

void UseOften(int iTimes)
{
    for (int i = 0; i < iTimes; ++i)
    {
        UseOnce();
    }
}

/// A client whose Config.ini has a full path that is too long for a lock's name: the folder is relative to a deep
/// current folder. The lock's constructor then throws and catches, which takes the C++ run-time's thread-local storage
/// into use.
class ThrowingClient
{
public:
    ThrowingClient() : m_folder(160)
    {
        GetCurrentDirectoryW(MAX_PATH, m_szOld);
        REQUIRE(SetCurrentDirectoryW(m_folder.Path().c_str()));
        m_registry.SetClient(L"InstallDir", m_folder.Path()); // the road with a key, and without a log configuration
        m_registry.SetClient(L"TempDir", std::wstring(120, L'r'));
    }
    ~ThrowingClient() { SetCurrentDirectoryW(m_szOld); }

private:
    wchar_t m_szOld[MAX_PATH];
    UserName m_system{L"SYSTEM"}; // no look after the resident client
    TempFolder m_folder;
    PrivateRegistry m_registry;
};

} // namespace

TEST_CASE("3,000 loads and unloads leave indexes, modules, handles and memory as before the first",
          "[driver][load][once]")
{
    const ThrowingClient client;
    UseOften(100); // what the platform itself keeps after the first loads
    const size_t uiTls = FreeTlsIndexes();
    const size_t uiFls = FreeFlsIndexes();
    const size_t uiModules = LoadedModules();
    const size_t uiHandle = NextHandle();
    const size_t cbStart = HeapInUse();
    UseOften(2000); // Wine 10's heap fills a stock of its own meanwhile
    const size_t cbHeap = HeapInUse();
    UseOften(1000);
    CHECK(GetModuleHandleW(L"VelUI.dll") == nullptr);
    CHECK(FreeTlsIndexes() == uiTls);
    CHECK(FreeFlsIndexes() == uiFls);
    CHECK(LoadedModules() == uiModules);
    CHECK(NextHandle() == uiHandle);
    // A block lost at each load, of whatever size, would show as more than this; less is the heap's own noise.
    const size_t cbAfter = HeapInUse();
    CAPTURE(cbStart, cbHeap, cbAfter);
    CHECK(cbAfter < cbHeap + 1000 * 16);
    CHECK(cbAfter < cbStart + kHeapsStock);
}

namespace
{

/// A client that has the module's log in log.txt.
class LoggingClient : public ClientFixture
{
public:
    LoggingClient()
    {
        const std::string strLog = std::filesystem::path(folder.File(L"log.txt")).string();
        WriteFileBytes(folder.File(L"LogConfig.conf"), "rootCategory=ERROR\n"
                                                       "category.VelUI_dll=DEBUG, log\n"
                                                       "appender.log=FileAppender\n"
                                                       "appender.log.fileName=" +
                                                           strLog + "\nappender.log.layout=SimpleLayout\n");
    }
};

} // namespace

TEST_CASE_METHOD(LoggingClient, "200 loads and unloads with a log leave handles and memory as before",
                 "[driver][load][once]")
{
    UseOften(20);
    const size_t uiHandle = NextHandle();
    const size_t cbHeap = HeapInUse();
    UseOften(200);
    CHECK(ReadFileBytes(folder.File(L"log.txt")).find("DrvDeviceCapabilities was invoked.") != std::string::npos);
    CHECK(NextHandle() == uiHandle);
    const size_t cbAfter = HeapInUse();
    CAPTURE(cbHeap, cbAfter);
    CHECK(cbAfter < cbHeap + 200 * 16);
}

TEST_CASE_METHOD(LoggingClient, "1,000 loads with a log and no call between leave memory as before",
                 "[driver][load][once]")
{
    const auto load = [](int iTimes) {
        for (int i = 0; i < iTimes; ++i)
        {
            const HMODULE hModule = LoadLibraryW(ModulePath().c_str());
            REQUIRE(hModule != nullptr);
            FreeLibrary(hModule);
        }
    };
    load(20);
    REQUIRE(PathExists(folder.File(L"log.txt")));
    const size_t cbHeap = HeapInUse();
    load(1000);
    // The call stack that the start's own line makes on the thread has some 32 bytes.
    const size_t cbAfter = HeapInUse();
    CAPTURE(cbHeap, cbAfter);
    CHECK(cbAfter < cbHeap + 1000 * 16);
}

TEST_CASE("the module can be unloaded while threads that used it go on", "[driver][load]")
{
    HANDLE hDone = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE hUsed = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    struct Work
    {
        const BuiltModule* pModule;
        HANDLE hUsed;
        HANDLE hDone;
    };
    HANDLE hThread = nullptr;
    {
        const BuiltModule module;
        Work work = {&module, hUsed, hDone};
        hThread = CreateThread(
            nullptr, 0,
            [](void* pv) -> DWORD {
                const Work work = *static_cast<Work*>(pv);
                work.pModule->DeviceCapabilities(nullptr, nullptr, DC_PAPERS, nullptr, nullptr);
                SetEvent(work.hUsed);
                return WaitForSingleObject(work.hDone, 20000) == WAIT_OBJECT_0 ? 42 : 1;
            },
            &work, 0, nullptr);
        REQUIRE(WaitForSingleObject(hUsed, 20000) == WAIT_OBJECT_0);
    }
    CHECK(GetModuleHandleW(L"VelUI.dll") == nullptr);
    SetEvent(hDone);
    REQUIRE(WaitForSingleObject(hThread, 20000) == WAIT_OBJECT_0);
    DWORD dwCode = 0;
    GetExitCodeThread(hThread, &dwCode);
    CHECK(dwCode == 42);
    CloseHandle(hThread);
    CloseHandle(hUsed);
    CloseHandle(hDone);
}
