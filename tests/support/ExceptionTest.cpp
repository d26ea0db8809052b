#include "support/Exception.h"
#include "support/TextConversion.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ChildCase.h"
#include "tests/common/CrtLocale.h"
#include "tests/common/HeapUse.h"
#include "tests/common/ImportHook.h"
#include "tests/common/TempFolder.h"

#include <catch2/catch_test_macros.hpp>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <type_traits>

using namespace Language;

namespace
{

template <typename Thrown, typename Make>
std::string CaughtAs(Make make)
{
    try
    {
        throw make();
    }
    catch (const std::exception&)
    {
        return "standard";
    }
    catch (const Thrown&)
    {
        return "own";
    }
    catch (const Exception&)
    {
        return "base";
    }
}

/// Leaves a text and says that there is none.
DWORD WINAPI FormatWithoutLength(DWORD, LPCVOID, DWORD, DWORD, LPWSTR pszBuffer, DWORD, va_list*)
{
    auto* const pszText = static_cast<wchar_t*>(LocalAlloc(LPTR, 20));
    pszText[0] = L'x';
    *reinterpret_cast<wchar_t**>(pszBuffer) = pszText;
    return 0;
}

/// Tells a text's length and leaves none.
DWORD WINAPI FormatWithoutText(DWORD, LPCVOID, DWORD, DWORD, LPWSTR, DWORD, va_list*)
{
    return 5;
}

} // namespace

TEST_CASE("invalid data tells its message in all four texts", "[support][exceptions]")
{
    const InvalidDataException exception(L"bad data");
    CHECK(exception.What() == "bad data");
    CHECK(exception.WhatW() == L"bad data");
    CHECK(exception.Detail() == "bad data");
    CHECK(exception.DetailW() == L"bad data");
}

TEST_CASE("a file that was not found has its prefix in the wide texts alone", "[support][exceptions]")
{
    const FileNotFoundException exception(L"C:\\x.exe");
    CHECK(exception.What() == "C:\\x.exe");
    CHECK(exception.WhatW() == L"找不到文件 : C:\\x.exe");
    CHECK(exception.Detail() == "C:\\x.exe");
    CHECK(exception.DetailW() == L"找不到文件 : C:\\x.exe");
}

TEST_CASE("a failed runtime call speaks of malloc in its details and is silent otherwise", "[support][exceptions]")
{
    errno = ENOMEM;
    const CrtException exception("fopen", "ignored");
    const std::string strExpected = std::string("malloc failed. err = ") + std::strerror(ENOMEM);
    CHECK(exception.What().empty());
    CHECK(exception.WhatW().empty());
    CHECK(exception.Detail() == strExpected);
    CHECK(exception.DetailW() == std::wstring(strExpected.begin(), strExpected.end()));
    CHECK(exception.errorCode == ENOMEM);
}

TEST_CASE("a failed platform call tells its message in all four texts and keeps it when thrown",
          "[support][exceptions]")
{
    try
    {
        SetLastError(2);
        Win32::ThrowLastError(L"SomeApi");
    }
    catch (const Win32::Win32Exception& exception)
    {
        const std::wstring strExpected = Win32::FormatLastErrorText(L"SomeApi", 2, nullptr);
        const Win32::Win32Exception copy = exception;
        CHECK(copy.errorCode == 2);
        CHECK(copy.summary.empty());
        CHECK(copy.WhatW() == strExpected);
        CHECK(copy.DetailW() == strExpected);
        CHECK(copy.What() == std::string(strExpected.begin(), strExpected.end()));
        CHECK(copy.Detail() == copy.What());
        return;
    }
    FAIL("nothing was thrown");
}

TEST_CASE("a handler for standard exceptions does not see the family, nor one class another", "[support][exceptions]")
{
    const auto data = [] { return InvalidDataException(L"x"); };
    const auto file = [] { return FileNotFoundException(L"x"); };
    const auto crt = [] { return CrtException("x", "y"); };
    const auto win32 = [] { return Win32::Win32Exception(1); };
    CHECK(CaughtAs<InvalidDataException>(data) == "own");
    CHECK(CaughtAs<InvalidDataException>(file) == "base");
    CHECK(CaughtAs<FileNotFoundException>(data) == "base");
    CHECK(CaughtAs<InvalidDataException>(crt) == "base");
    CHECK(CaughtAs<InvalidDataException>(win32) == "base");
    CHECK_FALSE(std::is_base_of<std::exception, Exception>::value);
}

TEST_CASE("the text of a system error ends without the system's line break", "[support][exceptions]")
{
    wchar_t* pszSystem = nullptr;
    REQUIRE(FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 2, 0x0800,
                           reinterpret_cast<wchar_t*>(&pszSystem), 0, nullptr) != 0);
    std::wstring strSystem = pszSystem;
    LocalFree(pszSystem);
    REQUIRE(strSystem.substr(strSystem.size() - 2) == L"\r\n");
    strSystem.resize(strSystem.size() - 2);
    CHECK(Win32::FormatLastErrorText(L"CreateFile", 2, nullptr) ==
          L"CreateFile failed. last error = 2 (" + strSystem + L")");
    CHECK(Win32::FormatLastErrorText(L"CreateFile", 2, L"Open:") ==
          L"Open: CreateFile failed. last error = 2 (" + strSystem + L")");
}

TEST_CASE("a code without a system text is unknown", "[support][exceptions]")
{
    CHECK(Win32::FormatLastErrorText(L"Api", 4000000000u, nullptr) == L"Api failed. last error = 4000000000 (unknown)");
}

TEST_CASE("a system text is unknown unless Windows tells both its length and where it is", "[support][exceptions]")
{
    {
        const ImportHook hook(nullptr, "FormatMessageW", &FormatWithoutLength);
        CHECK(Win32::FormatLastErrorText(L"Api", 2, nullptr) == L"Api failed. last error = 2 (unknown)");
    }
    const ImportHook hook(nullptr, "FormatMessageW", &FormatWithoutText);
    CHECK(Win32::FormatLastErrorText(L"Api", 2, nullptr) == L"Api failed. last error = 2 (unknown)");
}

TEST_CASE("texts convert both ways in the C locale up to the first NUL", "[support][conversion]")
{
    const CrtLocale locale("C");
    CHECK(ToNarrow(L"") == "");
    CHECK(ToNarrow(L"C:\\x.exe") == "C:\\x.exe");
    CHECK(ToNarrow(std::wstring(L"ab\0cd", 5)) == "ab");
    CHECK(ToWide("") == L"");
    CHECK(ToWide("C:\\x.exe") == L"C:\\x.exe");
    CHECK(ToNarrow(L"\u00E9") == "\xE9");
}

TEST_CASE("texts convert both ways in the Chinese locale", "[support][conversion]")
{
    const CrtLocale locale("chs");
    CHECK(ToNarrow(L"找不到") == "\xD5\xD2\xB2\xBB\xB5\xBD");
    CHECK(ToWide("\xD5\xD2\xB2\xBB\xB5\xBD") == L"找不到");
    CHECK(InvalidDataException(L"命令").What() == "\xC3\xFC\xC1\xEE");
    CHECK(FileNotFoundException(L"C:\\命").What() == "C:\\\xC3\xFC");
}

TEST_CASE("texts convert under code page 936 as under any other: the C locale decides", "[support][conversion][cp936]")
{
    REQUIRE(GetACP() == 936);
    CHECK(ToNarrow(L"abc") == "abc");
    const CrtLocale locale("chs");
    CHECK(ToNarrow(L"找") == "\xD5\xD2");
}

// Run by the next case in a process of its own.
TEST_CASE("child: narrowing what the locale can't represent", "[.child]")
{
    wchar_t szProof[MAX_PATH] = {};
    REQUIRE(GetEnvironmentVariableW(L"VELUI_TEST_PROOF", szProof, MAX_PATH) != 0);
    WriteFileBytes(std::wstring(szProof) + L".before", "");
    const std::string strText = InvalidDataException(L"命令").What();
    WriteFileBytes(std::wstring(szProof) + L".after", strText);
}

TEST_CASE("narrowing what the locale can't represent stops the process", "[support][conversion]")
{
    const TempFolder folder;
    SetEnvironmentVariableW(L"VELUI_TEST_PROOF", folder.File(L"proof").c_str());
    ChildProcess child(BesideTests(L"veltests.exe"), {L"child: narrowing what the locale can't represent"});
    const DWORD dwCode = child.Wait(60000);
    SetEnvironmentVariableW(L"VELUI_TEST_PROOF", nullptr);
    CHECK(dwCode == 3); // what the C runtime's abort ends a process with
    CHECK(PathExists(folder.File(L"proof.before")));
    CHECK_FALSE(PathExists(folder.File(L"proof.after")));
}

namespace
{

/// Whether the host's own handling of an invalid parameter ends the process, as a child's variable says.
constexpr wchar_t kHostEnds[] = L"VELUI_TEST_HOST_ENDS";

/// Plays the C runtime with a handler that the host has set.
void InvalidParameter(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t)
{
    if (GetEnvironmentVariableW(kHostEnds, nullptr, 0) != 0)
    {
        ExitProcess(42);
    }
    std::puts("the host was asked");
}

FARPROC WINAPI FindInvalidParameter(HMODULE hModule, LPCSTR pszName)
{
    CHECK(hModule == GetModuleHandleW(L"msvcrt"));
    CHECK(std::string(pszName) == "_invalid_parameter");
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&InvalidParameter));
}

} // namespace

// Run by the next case in processes of its own.
TEST_CASE("child: narrowing under a host with its own handling", "[.child]")
{
    const ImportHook hook(nullptr, "GetProcAddress", &FindInvalidParameter);
    InvalidDataException(L"命令").What();
}

TEST_CASE("the host's own handling of invalid parameters decides what narrowing ends in", "[support][conversion]")
{
    CHECK(GetProcAddress(GetModuleHandleW(L"msvcrt"), "_invalid_parameter") != nullptr);
    SetEnvironmentVariableW(kHostEnds, L"1");
    CHECK(ExitCodeOfCase(L"child: narrowing under a host with its own handling") == 42);
    SetEnvironmentVariableW(kHostEnds, nullptr);
    CHECK(ExitCodeOfCase(L"child: narrowing under a host with its own handling") == 3); // its handler returns
}

TEST_CASE("the texts of 1,000 exceptions are given back", "[support][exceptions]")
{
    const auto throwOnce = [] {
        try
        {
            SetLastError(ERROR_FILE_NOT_FOUND);
            Win32::ThrowLastError(L"SomeApi");
        }
        catch (const Exception& exception)
        {
            return exception.Detail().size() + exception.WhatW().size();
        }
        return size_t{0};
    };
    REQUIRE(throwOnce() > 40);
    const size_t cbRuntime = HeapInUse();
    const size_t cbSystem = HeapInUse(GetProcessHeap()); // where the system's texts come from
    size_t uiLength = 0;
    for (int i = 0; i < 1000; ++i)
    {
        uiLength += throwOnce();
    }
    CHECK(uiLength == 1000 * throwOnce());
    CHECK(HeapInUse() <= cbRuntime);
    CHECK(HeapInUse(GetProcessHeap()) <= cbSystem);
}

TEST_CASE("the wide texts of what the locale can't represent are whole", "[support][exceptions]")
{
    CHECK(InvalidDataException(L"命令的形式不正确。").WhatW() == L"命令的形式不正确。");
    CHECK(InvalidDataException(L"命令").DetailW() == L"命令");
}
