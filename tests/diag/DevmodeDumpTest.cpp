// The dump of a DEVMODE: every bit of dmFields alone, all of them, none; and the holders of a function's arguments.

#include "diag/FunctionTrace.h"
#include "diag/LogText.h"

#include <catch2/catch_test_macros.hpp>

#include <string>

namespace
{

/// A record with a different value in every field that the dump shows.
DEVMODEW FullRecord()
{
    DEVMODEW record = {};
    record.dmSpecVersion = 0x401;
    record.dmDriverVersion = 0x500;
    record.dmSize = 220;
    record.dmDriverExtra = 12;
    record.dmOrientation = 1;
    record.dmPaperSize = 9;
    record.dmPaperLength = 2970;
    record.dmPaperWidth = 2100;
    record.dmScale = 100;
    record.dmCopies = 3;
    record.dmDefaultSource = 15;
    record.dmPrintQuality = -4;
    record.dmColor = 2;
    record.dmDuplex = 3;
    record.dmYResolution = 600;
    record.dmTTOption = 4;
    record.dmCollate = 1;
    wcscpy(record.dmFormName, L"A4");
    record.dmLogPixels = 600;
    record.dmBitsPerPel = 24;
    record.dmPelsWidth = 1920;
    record.dmPelsHeight = 1080;
    record.dmNup = 5;
    record.dmDisplayFrequency = 75;
    return record;
}

struct Bit
{
    DWORD dwBit;
    const char* pszName;
};

/// The bits that have a name, in the order in which they are shown.
constexpr Bit kBits[] = {
    {0x00000001, "DM_ORIENTATION"},   {0x00000002, "DM_PAPERSIZE"},
    {0x00000004, "DM_PAPERLENGTH"},   {0x00000008, "DM_PAPERWIDTH"},
    {0x00000010, "DM_SCALE"},         {0x00000100, "DM_COPIES"},
    {0x00000200, "DM_DEFAULTSOURCE"}, {0x00000400, "DM_PRINTQUALITY"},
    {0x00000020, "DM_POSITION"},      {0x00000800, "DM_COLOR"},
    {0x00001000, "DM_DUPLEX"},        {0x00002000, "DM_YRESOLUTION"},
    {0x00004000, "DM_TTOPTION"},      {0x00008000, "DM_COLLATE"},
    {0x00010000, "DM_FORMNAME"},      {0x00020000, "DM_LOGPIXELS"},
    {0x00040000, "DM_BITSPERPEL"},    {0x00080000, "DM_PELSWIDTH"},
    {0x00100000, "DM_PELSHEIGHT"},    {0x00200000, "DM_DISPLAYFLAGS"},
    {0x00000040, "DM_NUP"},           {0x00400000, "DM_DISPLAYFREQUENCY"},
    {0x00800000, "DM_ICMMETHOD"},     {0x01000000, "DM_ICMINTENT"},
    {0x02000000, "DM_MEDIATYPE"},     {0x04000000, "DM_DITHERTYPE"},
    {0x08000000, "DM_PANNINGWIDTH"},  {0x10000000, "DM_PANNINGHEIGHT"},
};

struct Value
{
    DWORD dwBit; ///< 0 for a line that is always there
    const char* pszText;
};

/// The values of FullRecord, in the order in which they are shown.
constexpr Value kValues[] = {
    {0x00000001, "devMode.dmOrientation = 1\n"},
    {0x00000002, "devMode.dmPaperSize = 9\n"},
    {0x00000004, "devMode.dmPaperLength = 2970\n"},
    {0x00000008, "devMode.dmPaperWidth = 2100\n"},
    {0x00000010, "devMode.dmScale = 100\n"},
    {0x00000100, "devMode.dmCopies = 3\n"},
    {0x00000200, "devMode.dmDefaultSource = 15\n"},
    {0, "devMode.dmPrintQuality = -4\n"},
    // The bytes of the printer fields read anew: orientation and paper, length and width, scale and copies, source and
    // quality.
    {0, "devMode.dmPosition.x = 589825\n"},
    {0, "devMode.dmPosition.y = 137628570\n"},
    {0, "devMode.dmDisplayOrientation = 00030064\n"},
    {0, "devMode.dmDisplayFixedOutput = FFFC000F\n"},
    {0x00000800, "devMode.dmColor = 2\n"},
    {0x00001000, "devMode.dmDuplex = 3\n"},
    {0x00002000, "devMode.dmYResolution = 600\n"},
    {0x00004000, "devMode.dmTTOption = 4\n"},
    {0, "devMode.dmCollate = 1\n"},
    {0x00010000, "\"A4\""},
    {0x00020000, "devMode.dmLogPixels = 0258\n"},
    {0x00040000, "devMode.dmBitsPerPel = 00000018\n"},
    {0x00080000, "devMode.dmPelsWidth = 00000780\n"},
    {0x00100000, "devMode.dmPelsHeight = 00000438\n"},
    {0x00200000, "devMode.dmDisplayFlags = 00000005\n"}, // the same word as dmNup
    {0x00000040, "devMode.dmNup = 00000005\n"},
    {0x00400000, "devMode.dmDisplayFrequency = 0000004B\n"},
};

std::string ExpectedDump(DWORD dwFields, const char* pszFields)
{
    std::string strDump = "{devMode.dmSpecVersion = 0401\ndevMode.dmDriverVersion = 0500\ndevMode.dmSize = 00DC\n"
                          "devMode.dmDriverExtra = 000C\ndevMode.dmFields = ";
    strDump += std::string(pszFields) + "\n";
    for (const Bit& bit : kBits)
    {
        strDump += (dwFields & bit.dwBit) != 0 ? std::string("devMode.dmFields : ") + bit.pszName + "\n" : "";
    }
    for (const Value& value : kValues)
    {
        strDump += value.dwBit == 0 || (dwFields & value.dwBit) != 0 ? value.pszText : "";
    }
    return strDump + "}";
}

std::string HexOf(DWORD dwValue)
{
    char szHex[9];
    _snprintf_s(szHex, sizeof(szHex), _TRUNCATE, "%08X", static_cast<unsigned>(dwValue));
    return szHex;
}

std::string DumpWith(DWORD dwFields)
{
    DEVMODEW record = FullRecord();
    record.dmFields = dwFields;
    return ToLogText(record);
}

} // namespace

TEST_CASE("each bit of dmFields alone shows its name and its value", "[diag][text][dump]")
{
    DWORD dwNamed = 0;
    for (int i = 0; i < 32; ++i)
    {
        const DWORD dwBit = 1u << i;
        CAPTURE(i);
        CHECK(DumpWith(dwBit) == ExpectedDump(dwBit, HexOf(dwBit).c_str()));
    }
    for (const Bit& bit : kBits)
    {
        dwNamed |= bit.dwBit;
    }
    CHECK(dwNamed == 0x1FFFFF7F); // 0x80, and the three above, have no name
}

TEST_CASE("all bits and none of dmFields show everything and what is always there", "[diag][text][dump]")
{
    CHECK(DumpWith(0xFFFFFFFF) == ExpectedDump(0xFFFFFFFF, "FFFFFFFF"));
    CHECK(DumpWith(0) == ExpectedDump(0, "00000000"));
}

TEST_CASE("a form's name without a terminator ends with its field", "[diag][text][dump]")
{
    DEVMODEW record = {};
    record.dmFields = DM_FORMNAME;
    wmemset(record.dmFormName, L'f', CCHFORMNAME);
    record.dmLogPixels = L'x';
    CHECK(ToLogText(record).find('"' + std::string(32, 'f') + '"') != std::string::npos);
}

TEST_CASE("a window's argument tells whether the window is there, and not its value", "[diag][text]")
{
    HWND hEdit = CreateWindowW(L"EDIT", L"", 0, 0, 0, 1, 1, HWND_MESSAGE, nullptr, nullptr, nullptr);
    REQUIRE(hEdit != nullptr);
    FunctionTrace trace("F");
    trace.AddParam("hEdit", &hEdit);
    CHECK(CallText(trace) == "F([hEdit] = (Valid windows handle), )");
    DestroyWindow(hEdit);
    CHECK(CallText(trace) == "F([hEdit] = (Invalid windows handle), )");
}

TEST_CASE("each kind of argument has its text", "[diag][text]")
{
    PWSTR pszNothing = nullptr;
    wchar_t szText[] = L"text";
    PWSTR pszText = szText;
    DEVMODEW* pdmIn = nullptr;
    DWORD dwCount = 4294967295;
    int iResult = -7;
    WORD wCap = 65535;
    SHORT nDuplex = -3;
    size_t uiCount = 18446744073709551615u;
    void* pvOutput = reinterpret_cast<void*>(0x1234ABCD);
    FunctionTrace trace("F");
    trace.AddParam("a", &pszNothing);
    trace.AddParam("b", &pszText);
    trace.AddParam("c", &pdmIn);
    trace.AddParam("d", &dwCount);
    trace.AddParam("e", &iResult);
    trace.AddParam("f", &wCap);
    trace.AddParam("g", &nDuplex);
    trace.AddParam("h", &uiCount);
    trace.AddParam("i", &pvOutput);
    CHECK(CallText(trace) == "F([a] = , [b] = text, [c] = 0x0000000000000000, [d] = 4294967295, [e] = -7, [f] = 65535, "
                             "[g] = -3, [h] = 18446744073709551615, [i] = 0x000000001234ABCD, )");
}
