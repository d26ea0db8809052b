// The texts of values, which are the same whether logging is on or off.

#include "diag/FunctionTrace.h"
#include "diag/LogText.h"

#include <catch2/catch_test_macros.hpp>

#include <clocale>

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
    CHECK(ToLogText(L"VelPrinter") == "VelPrinter");
    CHECK(ToLogText(static_cast<PCWSTR>(nullptr)).empty());
    CHECK(ToLogText(L"打印机").empty());
}

TEST_CASE("wide text follows the C runtime's locale", "[diag][text]")
{
    const std::string strOld = std::setlocale(LC_ALL, nullptr);
    REQUIRE(std::setlocale(LC_ALL, "chs") != nullptr);
    CHECK(ToLogText(L"打印机") == "\xB4\xF2\xD3\xA1\xBB\xFA");
    std::setlocale(LC_ALL, strOld.c_str());
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
