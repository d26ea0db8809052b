#include "diag/LogText.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace
{

/// The text of one short value as msvcrt formats it, at most 255 characters; a longer one is cut.
std::string FormatText(const char* pszFormat, ...) __attribute__((format(ms_printf, 1, 2)));
std::string FormatText(const char* pszFormat, ...)
{
    char szText[256];
    va_list arguments;
    va_start(arguments, pszFormat);
    _vsnprintf_s(szText, sizeof(szText), _TRUNCATE, pszFormat, arguments);
    va_end(arguments);
    return szText;
}

struct FieldBit
{
    DWORD dwBit;
    const char* pszName;
};

#define FIELD_BIT(name)                                                                                                \
    {                                                                                                                  \
        name, #name                                                                                                    \
    }
// Required: this order, which is not that of the bit values; dumps of two versions must compare line by line.
constexpr FieldBit kFieldBits[] = {
    FIELD_BIT(DM_ORIENTATION),   FIELD_BIT(DM_PAPERSIZE),
    FIELD_BIT(DM_PAPERLENGTH),   FIELD_BIT(DM_PAPERWIDTH),
    FIELD_BIT(DM_SCALE),         FIELD_BIT(DM_COPIES),
    FIELD_BIT(DM_DEFAULTSOURCE), FIELD_BIT(DM_PRINTQUALITY),
    FIELD_BIT(DM_POSITION),      FIELD_BIT(DM_COLOR),
    FIELD_BIT(DM_DUPLEX),        FIELD_BIT(DM_YRESOLUTION),
    FIELD_BIT(DM_TTOPTION),      FIELD_BIT(DM_COLLATE),
    FIELD_BIT(DM_FORMNAME),      FIELD_BIT(DM_LOGPIXELS),
    FIELD_BIT(DM_BITSPERPEL),    FIELD_BIT(DM_PELSWIDTH),
    FIELD_BIT(DM_PELSHEIGHT),    FIELD_BIT(DM_DISPLAYFLAGS),
    FIELD_BIT(DM_NUP),           FIELD_BIT(DM_DISPLAYFREQUENCY),
    FIELD_BIT(DM_ICMMETHOD),     FIELD_BIT(DM_ICMINTENT),
    FIELD_BIT(DM_MEDIATYPE),     FIELD_BIT(DM_DITHERTYPE),
    FIELD_BIT(DM_PANNINGWIDTH),  FIELD_BIT(DM_PANNINGHEIGHT),
};
#undef FIELD_BIT

std::string NarrowText(PCWSTR pszValue)
{
    // At most two bytes a unit in the code pages that msvcrt's wcstombs serves; _TRUNCATE covers any other.
    std::vector<char> text(wcslen(pszValue) * 2 + 1);
    size_t cbConverted = 0;
    // Of what the locale lacks an empty text is made.
    wcstombs_s(&cbConverted, text.data(), text.size(), pszValue, _TRUNCATE);
    return text.data();
}

// The order of the dump's lines, what each waits for, and the odd one for dmFormName are fixed.
std::string DumpText(const DEVMODEW& stuDevmode)
{
    std::string strDump = "{";
    const DWORD dwFields = stuDevmode.dmFields;

#define DUMP_ALWAYS(field, format) strDump += FormatText("devMode." #field " = " format "\n", stuDevmode.field)
#define DUMP_FIELD(bit, field, format)                                                                                 \
    if ((dwFields & (bit)) != 0)                                                                                       \
    DUMP_ALWAYS(field, format)

    DUMP_ALWAYS(dmSpecVersion, "%04X");
    DUMP_ALWAYS(dmDriverVersion, "%04X");
    DUMP_ALWAYS(dmSize, "%04X");
    DUMP_ALWAYS(dmDriverExtra, "%04X");
    DUMP_ALWAYS(dmFields, "%08lX");

    for (const FieldBit& bit : kFieldBits)
    {
        if ((dwFields & bit.dwBit) != 0)
        {
            strDump += std::string("devMode.dmFields : ") + bit.pszName + "\n";
        }
    }

    DUMP_FIELD(DM_ORIENTATION, dmOrientation, "%d");
    DUMP_FIELD(DM_PAPERSIZE, dmPaperSize, "%d");
    DUMP_FIELD(DM_PAPERLENGTH, dmPaperLength, "%d");
    DUMP_FIELD(DM_PAPERWIDTH, dmPaperWidth, "%d");
    DUMP_FIELD(DM_SCALE, dmScale, "%d");
    DUMP_FIELD(DM_COPIES, dmCopies, "%d");
    DUMP_FIELD(DM_DEFAULTSOURCE, dmDefaultSource, "%d");
    // Required: dmPrintQuality and, below, dmCollate are printed without a look at their bits, and so are the fields
    // that share the printer fields' bytes, so that a dump always has these lines to be compared by.
    DUMP_ALWAYS(dmPrintQuality, "%d");
    DUMP_ALWAYS(dmPosition.x, "%ld");
    DUMP_ALWAYS(dmPosition.y, "%ld");
    DUMP_ALWAYS(dmDisplayOrientation, "%08lX");
    DUMP_ALWAYS(dmDisplayFixedOutput, "%08lX");
    DUMP_FIELD(DM_COLOR, dmColor, "%d");
    DUMP_FIELD(DM_DUPLEX, dmDuplex, "%d");
    DUMP_FIELD(DM_YRESOLUTION, dmYResolution, "%d");
    DUMP_FIELD(DM_TTOPTION, dmTTOption, "%d");
    DUMP_ALWAYS(dmCollate, "%d");
    if ((dwFields & DM_FORMNAME) != 0)
    {
        // Required: no label and no line end; the next line's text follows at once, the form of the dump is fixed. The
        // field may lack a terminator.
        const std::wstring strForm(stuDevmode.dmFormName, wcsnlen(stuDevmode.dmFormName, CCHFORMNAME));
        strDump += '"' + NarrowText(strForm.c_str()) + '"';
    }
    DUMP_FIELD(DM_LOGPIXELS, dmLogPixels, "%04X");
    DUMP_FIELD(DM_BITSPERPEL, dmBitsPerPel, "%08lX");
    DUMP_FIELD(DM_PELSWIDTH, dmPelsWidth, "%08lX");
    DUMP_FIELD(DM_PELSHEIGHT, dmPelsHeight, "%08lX");
    DUMP_FIELD(DM_DISPLAYFLAGS, dmDisplayFlags, "%08lX");
    DUMP_FIELD(DM_NUP, dmNup, "%08lX");
    DUMP_FIELD(DM_DISPLAYFREQUENCY, dmDisplayFrequency, "%08lX");

#undef DUMP_FIELD
#undef DUMP_ALWAYS

    return strDump + "}";
}

} // namespace

// Numbers of 32 bits are short enough for a string's own room: they take no memory.
std::string ToLogText(int iValue) noexcept
{
    return std::to_string(iValue);
}

std::string ToLogText(LONG lValue) noexcept
{
    return std::to_string(lValue);
}

std::string ToLogText(DWORD dwValue) noexcept
{
    return std::to_string(dwValue);
}

std::string ToLogText(PCWSTR pszValue) noexcept
{
    return pszValue == nullptr ? std::string() : QuietText([=] { return NarrowText(pszValue); });
}

std::string ToLogText(const DEVMODEW* pstuDevmode) noexcept
{
    return QuietText([=] {
        const std::string strAddress = FormatText("0x%p", static_cast<const void*>(pstuDevmode));
        return pstuDevmode == nullptr ? strAddress : strAddress + " => " + DumpText(*pstuDevmode);
    });
}

std::string ToLogText(const DEVMODEW& stuDevmode) noexcept
{
    return QuietText([&] { return DumpText(stuDevmode); });
}

std::string ArgumentText(WORD wValue) noexcept
{
    return std::to_string(wValue);
}

std::string ArgumentText(SHORT nValue) noexcept
{
    return std::to_string(nValue);
}

std::string ArgumentText(unsigned __int64 uiValue) noexcept
{
    return QuietText([=] { return FormatText("%I64u", uiValue); });
}

std::string ArgumentText(void* pValue) noexcept
{
    return QuietText([=] { return FormatText("0x%p", pValue); });
}

std::string ArgumentText(LONG* plValue) noexcept
{
    return QuietText([=] {
        const std::string strAddress = FormatText("0x%p", static_cast<void*>(plValue));
        return plValue == nullptr ? strAddress : strAddress + " => " + std::to_string(static_cast<DWORD>(*plValue));
    });
}

std::string ArgumentText(HWND hWindow) noexcept
{
    return QuietText([=] { return IsWindow(hWindow) ? "(Valid windows handle)" : "(Invalid windows handle)"; });
}
