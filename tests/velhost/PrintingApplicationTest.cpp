// An application of the platform's own prints with the driver.

#include "tests/common/BuiltModule.h"
#include "tests/common/ChildProcess.h"
#include "tests/common/InstallFixture.h"

#include <catch2/catch_test_macros.hpp>

#include <functional>

namespace
{

constexpr DWORD kPatience = 60000; // milliseconds, for all that the application does

/// Asks again and again until there is an answer, or the patience is at its end.
template <typename Answer>
Answer Await(const std::function<Answer()>& ask)
{
    const ULONGLONG ullEnd = GetTickCount64() + kPatience;
    Answer answer = ask();
    while (!answer && GetTickCount64() < ullEnd)
    {
        Sleep(20);
        answer = ask();
    }
    return answer;
}

/// A visible window of a process.
struct WindowSearch
{
    DWORD dwProcess;
    const wchar_t* pszClass;
    HWND hFound = nullptr;
};

HWND FindWindowOf(DWORD dwProcess, const wchar_t* pszClass)
{
    WindowSearch search = {dwProcess, pszClass};
    EnumWindows(
        [](HWND hWindow, LPARAM lParam) -> BOOL {
            auto& search = *reinterpret_cast<WindowSearch*>(lParam);
            wchar_t szClass[64] = {};
            DWORD dwProcess = 0;
            GetWindowThreadProcessId(hWindow, &dwProcess);
            GetClassNameW(hWindow, szClass, 64);
            if (dwProcess == search.dwProcess && IsWindowVisible(hWindow) && wcscmp(szClass, search.pszClass) == 0)
            {
                search.hFound = hWindow;
            }
            return search.hFound == nullptr;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.hFound;
}

/// Loads a library into another program. @return whether it loaded.
bool PutInto(HANDLE hProcess, const std::wstring& strLibrary)
{
    const size_t cbPath = (strLibrary.size() + 1) * sizeof(wchar_t);
    void* const pvPath = VirtualAllocEx(hProcess, nullptr, cbPath, MEM_COMMIT, PAGE_READWRITE);
    REQUIRE(pvPath != nullptr);
    REQUIRE(WriteProcessMemory(hProcess, pvPath, strLibrary.c_str(), cbPath, nullptr));
    // kernel32 lies at one address in all programs.
    const auto pfnLoad = reinterpret_cast<LPTHREAD_START_ROUTINE>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW")));
    const HANDLE hThread = CreateRemoteThread(hProcess, nullptr, 0, pfnLoad, pvPath, 0, nullptr);
    REQUIRE(hThread != nullptr);
    DWORD dwModule = 0;
    WaitForSingleObject(hThread, kPatience);
    GetExitCodeThread(hThread, &dwModule);
    CloseHandle(hThread);
    return dwModule != 0;
}

/// Makes a printer the user's default one, and puts back what was.
class DefaultPrinter
{
public:
    explicit DefaultPrinter(const std::wstring& strDevice)
    {
        GetProfileStringW(L"windows", L"device", L"", m_szBefore, 512);
        WriteProfileStringW(L"windows", L"device", strDevice.c_str());
    }
    ~DefaultPrinter() { WriteProfileStringW(L"windows", L"device", m_szBefore[0] == L'\0' ? nullptr : m_szBefore); }
    DefaultPrinter(const DefaultPrinter&) = delete;
    DefaultPrinter& operator=(const DefaultPrinter&) = delete;

private:
    wchar_t m_szBefore[512] = {};
};

} // namespace

TEST_CASE_METHOD(InstallFixture, "an application prints a text through the driver and ends within a minute",
                 "[velhost][print][alone]")
{
    REQUIRE(Install().iExitCode == 0);
    const DefaultPrinter printer(PrinterName() + L",winspool," + PortFile());
    const std::wstring strText = folder.File(L"letter.txt");
    WriteFileBytes(strText, "The quick brown fox\r\njumps over the lazy dog\r\n");

    SetEnvironmentVariableW(L"VELUI_VIEW", registry.Root().c_str());
    ChildProcess application(L"C:\\windows\\system32\\notepad.exe", {strText});
    SetEnvironmentVariableW(L"VELUI_VIEW", nullptr);
    const HWND hWindow = Await<HWND>([&] { return FindWindowOf(application.Id(), L"Notepad"); });
    REQUIRE(hWindow != nullptr);
    REQUIRE(PutInto(application.Get(), BesideTests(L"viewtaker.dll")));

    constexpr WPARAM kPrint = 0x104; // File, Print
    PostMessageW(hWindow, WM_COMMAND, kPrint, 0);
    const HWND hDialog = Await<HWND>([&] { return FindWindowOf(application.Id(), L"#32770"); });
    REQUIRE(hDialog != nullptr);
    PostMessageW(hDialog, WM_COMMAND, IDOK, 0);
    const auto ended = [&] { return ReadFileBytes(PortFile()).find("%%EOF") != std::string::npos; };
    CHECK(Await<bool>(ended));
    PostMessageW(hWindow, WM_CLOSE, 0, 0);
    CHECK(application.Wait(kPatience) == 0);

    const std::string strJob = ReadFileBytes(PortFile());
    CHECK(strJob.find("%%Title: letter.txt") != std::string::npos);
    CHECK(strJob.find("/PageSize [595 842]") != std::string::npos);
    // Letters of that text, and no page that goes on and on.
    CHECK(strJob.find("/q glyphshow") != std::string::npos);
    CHECK(strJob.find("/z glyphshow") != std::string::npos);
    CHECK(strJob.find("%%Pages: 1\n") != std::string::npos);
    CHECK(strJob.size() < 200000);
}
