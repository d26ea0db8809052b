// Measures the module against the floor. Every figure is a ratio taken in one run.

#include "bench/Measure.h"
#include "bench/floors/CapsFloor.h"
#include "diag/LogSite.h"
#include "support/PrinterInterface.h"

#include <cstdio>
#include <vector>

namespace
{

std::wstring Beside(const wchar_t* pszName)
{
    wchar_t szPath[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, szPath, MAX_PATH);
    const std::wstring strPath = szPath;
    return strPath.substr(0, strPath.rfind(L'\\') + 1) + pszName;
}

/// A registry view whose client has the sample printer: TempDir is the folder beside the program that holds it.
class BenchClient
{
public:
    BenchClient()
    {
        RegCreateKeyExW(HKEY_CURRENT_USER, kRoot, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_hRoot, nullptr);
        HKEY hClient = nullptr;
        RegCreateKeyExW(m_hRoot, L"Software\\Vel-soft\\Client", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &hClient,
                        nullptr);
        const std::wstring strFolder = Beside(L"sample");
        RegSetValueExW(hClient, L"TempDir", 0, REG_SZ, reinterpret_cast<const BYTE*>(strFolder.c_str()),
                       static_cast<DWORD>((strFolder.size() + 1) * sizeof(wchar_t)));
        RegCloseKey(hClient);
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_hRoot);
        // The user for whom the module does not look after the resident client: one GetUserNameW a query.
        SetEnvironmentVariableW(L"WINEUSERNAME", L"SYSTEM");
    }
    ~BenchClient()
    {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        RegCloseKey(m_hRoot);
        RegDeleteTreeW(HKEY_CURRENT_USER, kRoot);
    }

private:
    static constexpr wchar_t kRoot[] = L"Software\\VelUIBench";
    HKEY m_hRoot = nullptr;
};

VELUI_SOURCE_MODULE("Bench");

[[gnu::noinline]] void Unlikely()
{
    std::puts("logging is on");
}

void KeepLoop()
{
    __asm__ volatile("" ::: "memory");
}

} // namespace

int main()
{
    const BenchClient client;
    const HMODULE hModule = LoadLibraryW(Beside(L"VelUI.dll").c_str());
    const auto pfnCaps = reinterpret_cast<decltype(&DrvDeviceCapabilities)>(
        reinterpret_cast<void*>(hModule != nullptr ? GetProcAddress(hModule, "DrvDeviceCapabilities") : nullptr));
    if (pfnCaps == nullptr)
    {
        std::printf("velbench: VelUI.dll beside the program can't be loaded\n");
        return 1;
    }

    std::vector<Measurement> measurements;
    // The floor of a log call while logging is off: the load of a byte and a branch, and the loop around them.
    const Loop loadAndBranch = [](int iCalls) {
        for (int i = 0; i < iCalls; ++i)
        {
            if (!loggingDisabled)
            {
                Unlikely();
            }
            KeepLoop();
        }
    };
    const auto offRow = [&](const char* pszName, const Loop& ours) {
        measurements.push_back(Measure(pszName, loadAndBranch, ours, 1000000, 31));
    };
    offRow("logging off: a predicate and its log line", [](int iCalls) {
        for (int i = 0; i < iCalls; ++i)
        {
            LOG_ERROR("%d", i);
            KeepLoop();
        }
    });
    offRow("logging off: LogParam with an argument's text", [](int iCalls) {
        for (int i = 0; i < iCalls; ++i)
        {
            LOG_RESULT(i);
            KeepLoop();
        }
    });
    offRow("logging off: a trace scope, its begin and its end", [](int iCalls) {
        for (int i = 0; i < iCalls; ++i)
        {
            const TraceScope scope("Bench");
            KeepLoop();
        }
    });
    offRow("logging off: a scope, FunctionTrace, an argument", [](int iCalls) {
        for (int i = 0; i < iCalls; ++i)
        {
            TRACE_FUNCTION("Bench");
            if (IsFatalEnabled())
            {
                TRACE_ARGUMENT(i);
            }
            KeepLoop();
        }
    });
    measurements.push_back(Measure(
        "DrvDeviceCapabilities, number (DC_COPIES)",
        [](int iCalls) {
            for (int i = 0; i < iCalls; ++i)
            {
                FloorNumber(L"Copies");
            }
        },
        [&](int iCalls) {
            for (int i = 0; i < iCalls; ++i)
            {
                pfnCaps(nullptr, nullptr, DC_COPIES, nullptr, nullptr);
            }
        },
        100, 31));
    std::vector<WORD> papers(1000);
    measurements.push_back(Measure(
        "DrvDeviceCapabilities, list (DC_PAPERS of the sample)",
        [&](int iCalls) {
            for (int i = 0; i < iCalls; ++i)
            {
                FloorWords(L"PapersCount", L"Papers", papers.data());
            }
        },
        [&](int iCalls) {
            for (int i = 0; i < iCalls; ++i)
            {
                pfnCaps(nullptr, nullptr, DC_PAPERS, papers.data(), nullptr);
            }
        },
        100, 31));
    Report(measurements, "velbench.json");
    FreeLibrary(hModule);
    return 0;
}
