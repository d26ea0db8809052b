#include "tools/velhost/print/ChosenSettings.h"

#include "settings/DriverDevmode.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/DevmodeReport.h"

#include <cstddef>
#include <cstring>

namespace VelHost
{
namespace
{

constexpr char kPrintersChoice[] = "the printer's choice";

/// The public fields of a record, as far as it has them.
DEVMODEW PublicPart(const std::vector<BYTE>& record)
{
    DEVMODEW fields = {};
    std::memcpy(&fields, record.data(), std::min(record.size(), sizeof(fields)));
    return fields;
}

/// The text at a number's place in a list of names.
/// @return an empty text when the number is not listed, or has no name.
std::string NameOfNumber(const AskCaps& ask, WORD wNumbersCode, WORD wNamesCode, short sNumber)
{
    const CapsAnswer numbers = QueryCaps(ask, FindCapsCode(wNumbersCode));
    const std::vector<std::string> names = DecodeCaps(QueryCaps(ask, FindCapsCode(wNamesCode)));
    const auto* const pNumbers = reinterpret_cast<const WORD*>(numbers.entries.data());
    for (size_t ui = 0; ui < std::min(numbers.EntryCount(), names.size()); ++ui)
    {
        if (pNumbers[ui] == static_cast<WORD>(sNumber))
        {
            return names[ui];
        }
    }
    return {};
}

std::string Named(const std::string& strName, short sNumber)
{
    const std::string strNumber = "number " + std::to_string(static_cast<WORD>(sNumber));
    return strName.empty() ? strNumber : strName + " (" + strNumber + ")";
}

std::string PaperText(const DEVMODEW& fields, const AskCaps& ask)
{
    if ((fields.dmFields & DM_PAPERSIZE) != 0 && fields.dmPaperSize != DMPAPER_USER)
    {
        const std::string strName = NameOfNumber(ask, DC_PAPERS, DC_PAPERNAMES, fields.dmPaperSize);
        const std::string strSize = NameOfNumber(ask, DC_PAPERS, DC_PAPERSIZE, fields.dmPaperSize);
        return Named(strName, fields.dmPaperSize) + (strSize.empty() ? "" : ", " + strSize);
    }
    if ((fields.dmFields & DM_PAPERWIDTH) != 0 && (fields.dmFields & DM_PAPERLENGTH) != 0)
    {
        const auto millimetres = [](short sTenths) {
            return std::to_string(sTenths / 10) + "." + std::to_string(sTenths % 10);
        };
        return "of the user's own size, " + millimetres(fields.dmPaperWidth) + " x " +
               millimetres(fields.dmPaperLength) + " mm";
    }
    return kPrintersChoice;
}

std::string SidesText(const DEVMODEW& fields)
{
    switch ((fields.dmFields & DM_DUPLEX) != 0 ? fields.dmDuplex : 0)
    {
    case DMDUP_SIMPLEX:
        return "one";
    case DMDUP_VERTICAL:
        return "both, bound at the long edge";
    case DMDUP_HORIZONTAL:
        return "both, bound at the short edge";
    default:
        return kPrintersChoice;
    }
}

std::string CopiesText(const DEVMODEW& fields)
{
    const int iCopies = (fields.dmFields & DM_COPIES) != 0 ? fields.dmCopies : 1;
    const bool bCollated = (fields.dmFields & DM_COLLATE) != 0 && fields.dmCollate == DMCOLLATE_TRUE;
    return std::to_string(iCopies) + (bCollated ? ", collated" : "");
}

std::string ResolutionText(const DEVMODEW& fields)
{
    if ((fields.dmFields & DM_PRINTQUALITY) == 0 || fields.dmPrintQuality <= 0)
    {
        return kPrintersChoice;
    }
    const int iAcross = fields.dmPrintQuality;
    const int iDown = (fields.dmFields & DM_YRESOLUTION) != 0 ? fields.dmYResolution : iAcross;
    return std::to_string(iAcross) + " x " + std::to_string(iDown) + " dots per inch";
}

std::string WatermarkText(const std::vector<BYTE>& record)
{
    stuDrvDevmode whole = {};
    if (PublicPart(record).dmDriverExtra < sizeof(whole) - sizeof(whole.stuDevmode) || record.size() < sizeof(whole))
    {
        return kPrintersChoice;
    }
    std::memcpy(&whole, record.data(), sizeof(whole));
    return whole.dwNoWaterPrint == 1 ? "asked to leave it out" : "as the administrator has it";
}

} // namespace

std::vector<Setting> ChosenSettings(const std::vector<BYTE>& record, const AskCaps& ask)
{
    const DEVMODEW fields = PublicPart(record);
    const auto said = [&fields](DWORD dwField, const std::string& strChoice) {
        return (fields.dmFields & dwField) != 0 ? strChoice : std::string(kPrintersChoice);
    };
    return {
        {"paper", PaperText(fields, ask)},
        {"orientation", said(DM_ORIENTATION, fields.dmOrientation == DMORIENT_LANDSCAPE ? "landscape" : "portrait")},
        {"colour", said(DM_COLOR, fields.dmColor == DMCOLOR_COLOR ? "colour" : "black and white")},
        {"sides", SidesText(fields)},
        {"copies", CopiesText(fields)},
        {"tray", (fields.dmFields & DM_DEFAULTSOURCE) == 0
                     ? kPrintersChoice
                     : Named(NameOfNumber(ask, DC_BINS, DC_BINNAMES, fields.dmDefaultSource), fields.dmDefaultSource)},
        {"resolution", ResolutionText(fields)},
        {"watermark", WatermarkText(record)},
    };
}

bool AsksForColour(const std::vector<BYTE>& record)
{
    const DEVMODEW fields = PublicPart(record);
    return (fields.dmFields & DM_COLOR) != 0 && fields.dmColor == DMCOLOR_COLOR;
}

void RequireHonestSizes(const std::vector<BYTE>& record)
{
    const DEVMODEW fields = PublicPart(record);
    const size_t cbDeclared = size_t{fields.dmSize} + fields.dmDriverExtra;
    if (record.size() < kDevmodeHeaderBytes || cbDeclared > record.size() ||
        fields.dmSize < offsetof(DEVMODEW, dmFormName))
    {
        throw CommandError("the user's default record declares " + std::to_string(fields.dmSize) + " and " +
                           std::to_string(fields.dmDriverExtra) + " bytes in a record of " +
                           std::to_string(record.size()) + "; it comes from the user's DevMode.dat");
    }
}

} // namespace VelHost
