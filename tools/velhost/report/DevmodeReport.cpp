#include "tools/velhost/report/DevmodeReport.h"

#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Table.h"

#include <algorithm>
#include <cstring>

namespace VelHost
{
namespace
{

enum class FieldForm
{
    Short,  ///< signed 16 bits
    Word,   ///< unsigned 16 bits
    Double, ///< unsigned 32 bits
    Name,   ///< 32 wide characters
};

struct DevmodeField
{
    const char* pszName;
    size_t offset; ///< bytes
    FieldForm form;
};

#define VELHOST_FIELD(name, form) DevmodeFieldOf(#name, offsetof(DEVMODEW, name), FieldForm::form)

constexpr DevmodeField DevmodeFieldOf(const char* pszName, size_t offset, FieldForm form)
{
    return DevmodeField{pszName, offset, form};
}

// The fields of a printer's record; of the unions, the printer's side.
const DevmodeField kFields[] = {
    VELHOST_FIELD(dmDeviceName, Name),     VELHOST_FIELD(dmSpecVersion, Word),
    VELHOST_FIELD(dmDriverVersion, Word),  VELHOST_FIELD(dmSize, Word),
    VELHOST_FIELD(dmDriverExtra, Word),    VELHOST_FIELD(dmFields, Double),
    VELHOST_FIELD(dmOrientation, Short),   VELHOST_FIELD(dmPaperSize, Short),
    VELHOST_FIELD(dmPaperLength, Short),   VELHOST_FIELD(dmPaperWidth, Short),
    VELHOST_FIELD(dmScale, Short),         VELHOST_FIELD(dmCopies, Short),
    VELHOST_FIELD(dmDefaultSource, Short), VELHOST_FIELD(dmPrintQuality, Short),
    VELHOST_FIELD(dmColor, Short),         VELHOST_FIELD(dmDuplex, Short),
    VELHOST_FIELD(dmYResolution, Short),   VELHOST_FIELD(dmTTOption, Short),
    VELHOST_FIELD(dmCollate, Short),       VELHOST_FIELD(dmFormName, Name),
    VELHOST_FIELD(dmLogPixels, Word),      VELHOST_FIELD(dmBitsPerPel, Double),
    VELHOST_FIELD(dmPelsWidth, Double),    VELHOST_FIELD(dmPelsHeight, Double),
    VELHOST_FIELD(dmNup, Double),          VELHOST_FIELD(dmDisplayFrequency, Double),
    VELHOST_FIELD(dmICMMethod, Double),    VELHOST_FIELD(dmICMIntent, Double),
    VELHOST_FIELD(dmMediaType, Double),    VELHOST_FIELD(dmDitherType, Double),
    VELHOST_FIELD(dmReserved1, Double),    VELHOST_FIELD(dmReserved2, Double),
    VELHOST_FIELD(dmPanningWidth, Double), VELHOST_FIELD(dmPanningHeight, Double),
};

#undef VELHOST_FIELD

struct DevmodeBit
{
    DWORD dwBit;
    const char* pszName;
};

const DevmodeBit kDevmodeBits[] = {
    {DM_ORIENTATION, "DM_ORIENTATION"},
    {DM_PAPERSIZE, "DM_PAPERSIZE"},
    {DM_PAPERLENGTH, "DM_PAPERLENGTH"},
    {DM_PAPERWIDTH, "DM_PAPERWIDTH"},
    {DM_SCALE, "DM_SCALE"},
    {DM_POSITION, "DM_POSITION"},
    {DM_NUP, "DM_NUP"},
    {DM_COPIES, "DM_COPIES"},
    {DM_DEFAULTSOURCE, "DM_DEFAULTSOURCE"},
    {DM_PRINTQUALITY, "DM_PRINTQUALITY"},
    {DM_COLOR, "DM_COLOR"},
    {DM_DUPLEX, "DM_DUPLEX"},
    {DM_YRESOLUTION, "DM_YRESOLUTION"},
    {DM_TTOPTION, "DM_TTOPTION"},
    {DM_COLLATE, "DM_COLLATE"},
    {DM_FORMNAME, "DM_FORMNAME"},
    {DM_LOGPIXELS, "DM_LOGPIXELS"},
    {DM_BITSPERPEL, "DM_BITSPERPEL"},
    {DM_PELSWIDTH, "DM_PELSWIDTH"},
    {DM_PELSHEIGHT, "DM_PELSHEIGHT"},
    {DM_DISPLAYFLAGS, "DM_DISPLAYFLAGS"},
    {DM_DISPLAYFREQUENCY, "DM_DISPLAYFREQUENCY"},
    {DM_ICMMETHOD, "DM_ICMMETHOD"},
    {DM_ICMINTENT, "DM_ICMINTENT"},
    {DM_MEDIATYPE, "DM_MEDIATYPE"},
    {DM_DITHERTYPE, "DM_DITHERTYPE"},
    {DM_PANNINGWIDTH, "DM_PANNINGWIDTH"},
    {DM_PANNINGHEIGHT, "DM_PANNINGHEIGHT"},
};

size_t FieldBytes(FieldForm form)
{
    switch (form)
    {
    case FieldForm::Short:
    case FieldForm::Word:
        return sizeof(WORD);
    case FieldForm::Name:
        return CCHFORMNAME * sizeof(wchar_t);
    default:
        return sizeof(DWORD);
    }
}

template <class Value>
Value ValueAt(const BYTE* pbyRecord, size_t offset)
{
    Value value;
    std::memcpy(&value, pbyRecord + offset, sizeof(value));
    return value;
}

Json FieldValue(const BYTE* pbyRecord, const DevmodeField& field)
{
    switch (field.form)
    {
    case FieldForm::Short:
        return ValueAt<short>(pbyRecord, field.offset);
    case FieldForm::Word:
        return ValueAt<WORD>(pbyRecord, field.offset);
    case FieldForm::Double:
        return ValueAt<DWORD>(pbyRecord, field.offset);
    default:
    {
        wchar_t szName[CCHFORMNAME];
        std::memcpy(szName, pbyRecord + field.offset, sizeof(szName));
        return ToUtf8(CellText(szName, CCHFORMNAME));
    }
    }
}

std::string HexText(DWORD dwValue)
{
    static const char kDigits[] = "0123456789ABCDEF";
    std::string strText = "0x";
    for (int iShift = 28; iShift >= 0; iShift -= 4)
    {
        strText += kDigits[(dwValue >> iShift) & 0xF];
    }
    return strText;
}

std::vector<std::string> FieldBitNames(DWORD dwFields)
{
    std::vector<std::string> names;
    for (const DevmodeBit& bit : kDevmodeBits)
    {
        if ((dwFields & bit.dwBit) != 0)
        {
            names.push_back(bit.pszName);
            dwFields &= ~bit.dwBit;
        }
    }
    if (dwFields != 0)
    {
        names.push_back(HexText(dwFields));
    }
    return names;
}

} // namespace

void RequireDevmodeHeader(const std::vector<BYTE>& record, const std::string& strFile)
{
    if (record.size() < kDevmodeHeaderBytes)
    {
        throw CommandError(strFile + " has " + std::to_string(record.size()) + " bytes; a record's header has " +
                           std::to_string(kDevmodeHeaderBytes));
    }
}

size_t DevmodeDeclaredBytes(const BYTE* pbyRecord)
{
    return size_t{ValueAt<WORD>(pbyRecord, offsetof(DEVMODEW, dmSize))} +
           ValueAt<WORD>(pbyRecord, offsetof(DEVMODEW, dmDriverExtra));
}

DevmodeReport ReadDevmode(const BYTE* pbyRecord, size_t cbRecord)
{
    DevmodeReport report;
    const size_t cbPublic = ValueAt<WORD>(pbyRecord, offsetof(DEVMODEW, dmSize));
    for (const DevmodeField& field : kFields)
    {
        // The header is shown even when the declared size ends within it.
        const size_t cbEnd = field.offset + FieldBytes(field.form);
        if (cbEnd <= kDevmodeHeaderBytes || (cbEnd <= cbPublic && cbEnd <= cbRecord))
        {
            report.fields.emplace_back(field.pszName, FieldValue(pbyRecord, field));
        }
    }
    const size_t cbFieldsEnd = offsetof(DEVMODEW, dmFields) + sizeof(DWORD);
    if (cbFieldsEnd <= cbPublic && cbFieldsEnd <= cbRecord)
    {
        report.fieldNames = FieldBitNames(ValueAt<DWORD>(pbyRecord, offsetof(DEVMODEW, dmFields)));
    }
    const size_t cbWhole = std::min(DevmodeDeclaredBytes(pbyRecord), cbRecord);
    for (size_t offset = cbPublic; offset + sizeof(DWORD) <= cbWhole; offset += sizeof(DWORD))
    {
        report.tailWords.push_back(ValueAt<DWORD>(pbyRecord, offset));
    }
    return report;
}

Json DevmodeToJson(const DevmodeReport& report)
{
    Json value;
    for (const auto& field : report.fields)
    {
        value[field.first] = field.second;
    }
    value["dmFieldsNames"] = report.fieldNames;
    value["tailWords"] = report.tailWords;
    return value;
}

std::string DevmodeTable(const DevmodeReport& report)
{
    Table table({{"field"}, {"value"}});
    for (const auto& field : report.fields)
    {
        std::string strValue =
            field.second.is_string() ? "\"" + field.second.get<std::string>() + "\"" : field.second.dump();
        if (field.first == "dmFields")
        {
            strValue = HexText(field.second.get<DWORD>());
            for (const std::string& strName : report.fieldNames)
            {
                strValue += "\n" + strName;
            }
        }
        table.AddRow({field.first, strValue});
    }
    for (size_t i = 0; i < report.tailWords.size(); ++i)
    {
        table.AddRow({"tail word " + std::to_string(i), std::to_string(report.tailWords[i])});
    }
    return table.Text();
}

} // namespace VelHost
