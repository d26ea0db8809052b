// Command lines taken apart, and the programs that they start.

#include "support/CommandLine.h"
#include "support/Exception.h"
#include "tests/common/AskedAccess.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/HeapUse.h"
#include "tests/common/ImportHook.h"
#include "tests/common/StandIns.h"

#include <catch2/catch_test_macros.hpp>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <process.h>
#include <vector>

namespace
{

std::vector<std::wstring> Split(const std::wstring& strText)
{
    std::list<std::wstring> tokens;
    Language::SplitCommandLine(strText, tokens);
    return {tokens.begin(), tokens.end()};
}

/// A number of arguments that gives their array a size of its own among all allocations.
constexpr int kManyArguments = 1237;
constexpr size_t kArrayBytes = (kManyArguments + 1) * sizeof(wchar_t*);

std::wstring ManyArguments(const std::wstring& strProgram)
{
    std::wstring strLine = L"\"" + strProgram + L"\"";
    for (int i = 1; i < kManyArguments; ++i)
    {
        strLine += L" x";
    }
    return strLine;
}

/// Fails for the size of the array of so many arguments, and gives memory for every other.
void* FailArgumentArray(size_t cbSize)
{
    if (cbSize == kArrayBytes)
    {
        errno = ENOMEM;
        return nullptr;
    }
    return std::calloc(1, cbSize);
}

intptr_t s_iStartResult = 0;
bool s_bStartThrows = false;
std::vector<int> s_modes;

intptr_t __cdecl RecordStart(int iMode, const wchar_t*, const wchar_t* const*)
{
    s_modes.push_back(iMode);
    if (s_bStartThrows)
    {
        throw 1;
    }
    return s_iStartResult;
}

/// Starts nothing, but remembers how it was asked to.
struct LaunchCalls
{
    LaunchCalls()
    {
        s_iStartResult = 0;
        s_bStartThrows = false;
        s_modes.clear();
    }
    const ImportHook start{nullptr, "_wspawnv", &RecordStart};
};

int s_iArraysTaken = 0;
int s_iArraysFreed = 0;
void* s_pvArray = nullptr;
bool s_bFailBehindArray = false;
void*(__cdecl* s_pfnMalloc)(size_t) = nullptr;
void(__cdecl* s_pfnFree)(void*) = nullptr;

void* __cdecl WatchMalloc(size_t cbSize)
{
    if (s_bFailBehindArray && s_pvArray != nullptr)
    {
        s_bFailBehindArray = false;
        return nullptr;
    }
    void* const pv = s_pfnMalloc(cbSize);
    if (cbSize == kArrayBytes)
    {
        s_pvArray = pv;
        ++s_iArraysTaken;
    }
    return pv;
}

void __cdecl WatchFree(void* pv)
{
    if (pv != nullptr && pv == s_pvArray)
    {
        s_pvArray = nullptr;
        ++s_iArraysFreed;
    }
    s_pfnFree(pv);
}

/// Counts arrays of so many arguments that are taken and freed.
class ArrayWatch
{
public:
    /// @param bFailBehind whether the first allocation behind the array's fails.
    explicit ArrayWatch(bool bFailBehind = false)
    {
        s_iArraysTaken = s_iArraysFreed = 0;
        s_pvArray = nullptr;
        s_bFailBehindArray = bFailBehind;
    }

private:
    static void* Function(const char* pszName)
    {
        return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"msvcrt.dll"), pszName));
    }
    // The hooks may be called as soon as they are in place.
    const bool m_bReady = [] {
        s_pfnMalloc = reinterpret_cast<void*(__cdecl*)(size_t)>(Function("malloc"));
        s_pfnFree = reinterpret_cast<void(__cdecl*)(void*)>(Function("free"));
        return true;
    }();
    const ImportHook m_malloc{nullptr, "malloc", &WatchMalloc};
    const ImportHook m_free{nullptr, "free", &WatchFree};
};

} // namespace

TEST_CASE("a command line falls into words and quoted tokens", "[support][launch]")
{
    using Tokens = std::vector<std::wstring>;
    CHECK(Split(L"").empty());
    CHECK(Split(L" \t \n").empty());
    CHECK(Split(L"\"").empty());
    CHECK(Split(L"a") == Tokens{L"a"});
    CHECK(Split(L"  a  b\tc ") == Tokens{L"a", L"b", L"c"});
    CHECK(Split(L"\"C:\\Program Files\\a.exe\" -x") == Tokens{L"\"C:\\Program Files\\a.exe\"", L"-x"});
    CHECK(Split(L"a\"b c\"d") == Tokens{L"a\"b", L"c\"d"});
    CHECK(Split(L"\"a\"b \"c\"") == Tokens{L"\"a\"", L"b", L"\"c\""});
    CHECK(Split(L"\"a\"\"b\"") == Tokens{L"\"a\"", L"\"b\""});
    CHECK(Split(L"a \"lost b c") == Tokens{L"a"});
    CHECK(Split(L"\"\"") == Tokens{L"\"\""});
}

TEST_CASE("tokens are appended behind what the list holds", "[support][launch]")
{
    std::list<std::wstring> tokens = {L"first"};
    Language::SplitCommandLine(L"second", tokens);
    CHECK(tokens == std::list<std::wstring>{L"first", L"second"});
}

TEST_CASE("a command line without a token is invalid", "[support][launch]")
{
    for (const wchar_t* pszLine : {L"", L"   ", L"\""})
    {
        std::wstring strText;
        try
        {
            Language::LaunchCommandLine(pszLine, false);
        }
        catch (const Language::InvalidDataException& exception)
        {
            strText = exception.WhatW();
        }
        CHECK(strText == L"命令的形式不正确。");
    }
}

TEST_CASE("a program that is not there is told with its stripped path", "[support][launch]")
{
    std::wstring strText;
    try
    {
        Language::LaunchCommandLine(L"\" C:\\no such\\a.exe \" -x", false);
    }
    catch (const Language::FileNotFoundException& exception)
    {
        strText = exception.WhatW();
    }
    CHECK(strText == L"找不到文件 : C:\\no such\\a.exe");
}

TEST_CASE("a program starts with its quoted first argument and all others", "[support][launch]")
{
    const TempFolder folder;
    const std::wstring strProgram = folder.File(L"a b.exe");
    PlaceStandIn(strProgram);
    Language::LaunchCommandLine(L"\"" + strProgram + L"\" -x \"y z\"", true); // waits for its end
    REQUIRE(PathExists(strProgram + L".ran"));
    CHECK(CommandLineOfRun(strProgram) == L"\"" + strProgram + L"\" -x \"y z\"");
}

TEST_CASE("a program is started without a wait where none is asked for", "[support][launch]")
{
    const TempFolder folder;
    const std::wstring strProgram = folder.File(L"VelprintD.exe"); // goes on until it is stopped
    PlaceStandIn(strProgram);
    Language::LaunchCommandLine(L"\"" + strProgram + L"\"", false);
    CHECK_FALSE(WaitForRun(strProgram).empty());
    CHECK(StopStandIn(strProgram)); // it was still going on when the call came back
}

TEST_CASE("an existing file that is no program raises nothing", "[support][launch]")
{
    const TempFolder folder;
    WriteFileBytes(folder.File(L"a.exe"), "no program");
    Language::LaunchCommandLine(folder.File(L"a.exe"), false);
    CHECK_FALSE(PathExists(folder.File(L"a.exe.ran")));
}

TEST_CASE_METHOD(LaunchCalls, "to start a program it is enough that its file is there", "[support][launch]")
{
    CHECK(AskedAccess([] { Language::LaunchCommandLine(L"C:\\no such\\a.exe", false); }) == 0);
    CHECK(s_modes.size() == 1);
}

TEST_CASE_METHOD(LaunchCalls, "a start that is not waited for leaves its process's handle open", "[support][launch]")
{
    const HANDLE hProcess = CreateEventW(nullptr, TRUE, FALSE, nullptr); // never signalled: a wait would not end
    s_iStartResult = reinterpret_cast<intptr_t>(hProcess);
    const std::wstring strLine = L"\"" + BesideTests(L"standin.exe") + L"\"";
    Language::LaunchCommandLine(strLine, false);
    DWORD dwFlags = 0;
    CHECK(GetHandleInformation(hProcess, &dwFlags));
    CHECK(s_modes == std::vector<int>{_P_NOWAIT});
    CloseHandle(hProcess);
    s_iStartResult = 0;
    Language::LaunchCommandLine(strLine, true);
    CHECK(s_modes == std::vector<int>{_P_NOWAIT, _P_WAIT});
}

TEST_CASE_METHOD(LaunchCalls, "the argument array is freed on every way out", "[support][launch]")
{
    const std::wstring strLine = ManyArguments(BesideTests(L"standin.exe"));
    {
        const ArrayWatch watch;
        Language::LaunchCommandLine(strLine, false);
        CHECK(s_iArraysTaken == 1);
        CHECK(s_iArraysFreed == 1);
    }
    s_iStartResult = -1; // the start fails
    {
        const ArrayWatch watch;
        Language::LaunchCommandLine(strLine, false);
        CHECK(s_iArraysTaken == 1);
        CHECK(s_iArraysFreed == 1);
    }
    s_bStartThrows = true;
    {
        const ArrayWatch watch;
        CHECK_THROWS_AS(Language::LaunchCommandLine(strLine, false), int);
        CHECK(s_iArraysTaken == 1);
        CHECK(s_iArraysFreed == 1);
    }
    const size_t uiStarts = s_modes.size();
    {
        const ArrayWatch watch(true);
        CHECK_THROWS_AS(Language::LaunchCommandLine(strLine, false), std::bad_alloc);
        CHECK(s_iArraysTaken == 1);
        CHECK(s_iArraysFreed == 1);
    }
    CHECK(s_modes.size() == uiStarts); // without memory for the guard nothing starts
}

TEST_CASE_METHOD(LaunchCalls, "1,000 launches leave the heap as it was", "[support][launch]")
{
    const std::wstring strLine = L"\"" + BesideTests(L"standin.exe") + L"\" -x \"y z\"";
    Language::LaunchCommandLine(strLine, false);
    s_modes.reserve(2000);
    const size_t cbBefore = HeapInUse();
    for (int i = 0; i < 1000; ++i)
    {
        Language::LaunchCommandLine(strLine, false);
    }
    CHECK(HeapInUse() == cbBefore);
    CHECK(s_modes.size() == 1001);
}

TEST_CASE("arguments without memory are told as a failed malloc, and start nothing", "[support][launch]")
{
    const TempFolder folder;
    const std::wstring strProgram = folder.File(L"a.exe");
    PlaceStandIn(strProgram);
    const std::wstring strLine = ManyArguments(strProgram);
    std::string strDetail;
    {
        const ImportHook hook(nullptr, "malloc", &FailArgumentArray);
        try
        {
            Language::LaunchCommandLine(strLine, false);
        }
        catch (const Language::CrtException& exception)
        {
            strDetail = exception.Detail();
        }
    }
    CHECK(strDetail == std::string("malloc failed. err = ") + std::strerror(ENOMEM));
    CHECK(WaitForRun(strProgram, 200).empty());
}
