// The texts of values, which are the same whether logging is on or off.

#include "diag/FunctionTrace.h"
#include "diag/LogText.h"
#include "tests/common/CrtLocale.h"
#include "tests/common/ImportHook.h"

#include <catch2/catch_test_macros.hpp>

#include <cerrno>

namespace
{

/// The lines that every dump has, for a record of zeroes.
constexpr char kAlwaysBefore[] = "{devMode.dmSpecVersion = 0000\n"
                                 "devMode.dmDriverVersion = 0000\n"
                                 "devMode.dmSize = 0000\n"
                                 "devMode.dmDriverExtra = 0000\n";
constexpr char kAlwaysBehind[] = "devMode.dmPrintQuality = 0\n"
                                 "devMode.dmPosition.x = 0\n"
                                 "devMode.dmPosition.y = 0\n"
                                 "devMode.dmDisplayOrientation = 00000000\n"
                                 "devMode.dmDisplayFixedOutput = 00000000\n";

} // namespace

TEST_CASE("numbers are decimal, with a sign where the type has one", "[diag][text]")
{
    CHECK(ToLogText(-1) == "-1");
    CHECK(ToLogText(LONG{-1}) == "-1");
    CHECK(ToLogText(DWORD{4294967295u}) == "4294967295");
    CHECK(ArgumentText(WORD{65535}) == "65535");
    CHECK(ArgumentText(SHORT{-2}) == "-2");
    CHECK(ArgumentText(18446744073709551615ull) == "18446744073709551615");
}

TEST_CASE("a pointer shows 16 upper-case digits", "[diag][text]")
{
    CHECK(ArgumentText(reinterpret_cast<void*>(0x1234ABCD)) == "0x000000001234ABCD");
    CHECK(ArgumentText(static_cast<void*>(nullptr)) == "0x0000000000000000");
}

TEST_CASE("the address of a size is followed by the size without a sign", "[diag][text]")
{
    LONG lSize = -1;
    const std::string strText = ArgumentText(&lSize);
    CHECK(strText.substr(0, 2) == "0x");
    CHECK(strText.substr(18) == " => 4294967295");
    CHECK(ArgumentText(static_cast<LONG*>(nullptr)) == "0x0000000000000000");
}

TEST_CASE("wide text is narrowed, null is empty, and what the locale can't represent is empty", "[diag][text]")
{
    const CrtLocale locale("C");
    CHECK(ToLogText(L"VelPrinter") == "VelPrinter");
    CHECK(ToLogText(static_cast<PCWSTR>(nullptr)).empty());
    CHECK(ToLogText(L"打印机").empty());
}

TEST_CASE("wide text follows the C runtime's locale", "[diag][text]")
{
    const CrtLocale locale("chs");
    CHECK(ToLogText(L"打印机") == "\xB4\xF2\xD3\xA1\xBB\xFA");
}

TEST_CASE("making a text leaves the error state alone", "[diag][text]")
{
    struct Row
    {
        const char* pszText;
        void (*pfnMake)();
    };
    static DEVMODEW s_stuDevmode = {};
    s_stuDevmode.dmFields = DM_FORMNAME;
    wcscpy(s_stuDevmode.dmFormName, L"大16开");
    static const HWND s_hDead = reinterpret_cast<HWND>(0x7FFFFFF0);
    static const PCWSTR s_pszChinese = L"打印机";
    const Row rows[] = {
        {"wide text that the locale lacks", [] { ToLogText(s_pszChinese); }},
        {"a record whose form's name the locale lacks", [] { ToLogText(s_stuDevmode); }},
        {"the same by its address", [] { ToLogText(&s_stuDevmode); }},
        {"a window that is gone", [] { ArgumentText(s_hDead); }},
        {"a call line with both",
         [] {
             FunctionTrace trace("F");
             trace.AddParam("pszChinese", &s_pszChinese);
             trace.AddParams("hDead, stuDevmode", s_hDead, s_stuDevmode);
             CallText(trace);
         }},
    };
    const CrtLocale locale("C");
    for (const Row& row : rows)
    {
        SetLastError(5);
        errno = ENOENT;
        _doserrno = 17;
        row.pfnMake();
        const DWORD dwLastError = GetLastError();
        const int iErrno = errno;
        const unsigned long ulDosErrno = _doserrno;
        INFO(row.pszText);
        CHECK(dwLastError == 5);
        CHECK(iErrno == ENOENT);
        CHECK(ulDosErrno == 17);
    }
}

namespace
{

/// Memory that is there for no one, and what asking for it leaves.
void* NoMemory(size_t)
{
    errno = ENOMEM;
    _doserrno = ERROR_NOT_ENOUGH_MEMORY;
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

} // namespace

TEST_CASE("without memory a text is empty and an argument is missing, and no exception comes out", "[diag][text]")
{
    const DEVMODEW stuDevmode = {};
    const std::wstring strLong(100, L'x');
    const PCWSTR pszLong = strLong.c_str();
    const DWORD fMode = 1;
    const DWORD* const pfMode = &fMode;
    FunctionTrace before("F");
    before.AddParam("pszLong", &pszLong);
    FunctionTrace trace("F");
    SetLastError(5);
    errno = ENOENT;
    _doserrno = 17;
    std::string texts[7];
    {
        const ImportHook hook(nullptr, "malloc", &NoMemory);
        texts[0] = ToLogText(pszLong);
        texts[1] = ToLogText(stuDevmode);
        texts[2] = ToLogText(&stuDevmode);
        texts[3] = ArgumentText(reinterpret_cast<void*>(0x1234));
        texts[4] = ArgumentText(reinterpret_cast<HWND>(0x7FFFFFF0));
        texts[5] = ArgumentText(18446744073709551615ull);
        texts[6] = CallText(before);
        trace.AddParam("fMode", &fMode);
        trace.AddParam("array", &pfMode, 1);
        trace.AddParams("fMode, pszLong", fMode, pszLong);
    }
    const DWORD dwLastError = GetLastError();
    const int iErrno = errno;
    const unsigned long ulDosErrno = _doserrno;
    CHECK(dwLastError == 5);
    CHECK(iErrno == ENOENT);
    CHECK(ulDosErrno == 17);
    for (const std::string& strText : texts)
    {
        CHECK(strText.empty());
    }
    CHECK(trace.Params().empty());
    CHECK(CallText(trace) == "F()");
}

TEST_CASE("a null record shows its address and nothing else", "[diag][text]")
{
    CHECK(ToLogText(static_cast<const DEVMODEW*>(nullptr)) == "0x0000000000000000");
}

TEST_CASE("a record's address is followed by its dump", "[diag][text]")
{
    const DEVMODEW stuDevmode = {};
    CHECK(ToLogText(&stuDevmode).substr(18) == " => " + ToLogText(stuDevmode));
}

TEST_CASE("a dump without field bits has the lines that are always there", "[diag][text]")
{
    const DEVMODEW stuDevmode = {};
    CHECK(ToLogText(stuDevmode) ==
          std::string(kAlwaysBefore) + "devMode.dmFields = 00000000\n" + kAlwaysBehind + "devMode.dmCollate = 0\n}");
}

TEST_CASE("the form's name stands in quotation marks with the next line's text at once behind it", "[diag][text]")
{
    DEVMODEW stuDevmode = {};
    stuDevmode.dmFields = DM_FORMNAME | DM_LOGPIXELS;
    wcscpy(stuDevmode.dmFormName, L"A4");
    stuDevmode.dmLogPixels = 600;
    CHECK(ToLogText(stuDevmode) == std::string(kAlwaysBefore) +
                                       "devMode.dmFields = 00030000\n"
                                       "devMode.dmFields : DM_FORMNAME\n"
                                       "devMode.dmFields : DM_LOGPIXELS\n" +
                                       kAlwaysBehind +
                                       "devMode.dmCollate = 0\n"
                                       "\"A4\"devMode.dmLogPixels = 0258\n}");
}

TEST_CASE("field bits are named in their own order, and unknown ones print nothing", "[diag][text]")
{
    DEVMODEW stuDevmode = {};
    stuDevmode.dmFields = DM_POSITION | DM_PRINTQUALITY | DM_COLOR | DM_NUP | DM_ORIENTATION | 0x80000000;
    stuDevmode.dmOrientation = 2;
    stuDevmode.dmColor = 2;
    const std::string strDump = ToLogText(stuDevmode);
    CHECK(strDump.find("devMode.dmFields : DM_ORIENTATION\n"
                       "devMode.dmFields : DM_PRINTQUALITY\n"
                       "devMode.dmFields : DM_POSITION\n"
                       "devMode.dmFields : DM_COLOR\n"
                       "devMode.dmFields : DM_NUP\n"
                       "devMode.dmOrientation = 2\n"
                       "devMode.dmPrintQuality = 0\n") != std::string::npos);
    CHECK(strDump.find("devMode.dmColor = 2\n") != std::string::npos);
    CHECK(strDump.find("devMode.dmNup = 00000000\n}") != std::string::npos);
}

TEST_CASE("a call line without arguments is the name and empty brackets", "[diag][text]")
{
    const FunctionTrace trace("DrvConvertDevMode");
    CHECK(CallText(trace) == "DrvConvertDevMode()");
}

TEST_CASE("a call line's separator also follows the last argument, and values are read late", "[diag][text]")
{
    FunctionTrace trace("F");
    DWORD fMode = 1;
    WORD DeviceCap = 16;
    trace.AddParam("fMode", &fMode);
    trace.AddParam("DeviceCap", &DeviceCap);
    fMode = 4;
    CHECK(CallText(trace) == "F([fMode] = 4, [DeviceCap] = 16, )");
}

TEST_CASE("a snapshot of an argument no longer depends on it", "[diag][text]")
{
    int iValue = 5;
    const ValueParam<int> param("iValue", &iValue);
    Param snapshot;
    param.Clone(snapshot);
    iValue = 6;
    std::string strText;
    CHECK(snapshot->ValueText(strText) == "5");
    CHECK(snapshot->Name() == "iValue");
    CHECK(param.ValueText(strText) == "6");
    Param second;
    snapshot->Clone(second);
    CHECK(second->ValueText(strText) == "5");
    CHECK(second->Name() == "iValue");
}
