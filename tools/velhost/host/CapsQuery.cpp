#include "tools/velhost/host/CapsQuery.h"

#include "state/CapabilityTable.h"
#include "tools/velhost/host/CanaryBuffer.h"
#include "tools/velhost/host/Spooler.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Table.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <variant>

namespace VelHost
{
namespace
{

/// Lists of more entries are not fetched: no printer has so many, and the count may be nonsense.
constexpr DWORD kMostEntries = 65535;

/// How a capability of the snapshot answers.
struct FormOf
{
    CapsForm operator()(const VelUtility::CapNumber&) const { return CapsForm::Number; }
    CapsForm operator()(const VelUtility::CapExtent&) const { return CapsForm::Extent; }
    CapsForm operator()(const VelUtility::CapList<WORD>&) const { return CapsForm::Identifiers; }
    CapsForm operator()(const VelUtility::CapList<DWORD>&) const { return CapsForm::Numbers; }
    CapsForm operator()(const VelUtility::CapList<VelUtility::NarrowName>&) const { return CapsForm::BinNames; }
    CapsForm operator()(const VelUtility::CapList<VelUtility::WideName>&) const { return CapsForm::WideNames; }
    CapsForm operator()(const VelUtility::CapPairs<VelUtility::Resolution>&) const { return CapsForm::Resolutions; }
    CapsForm operator()(const VelUtility::CapPairs<POINT>&) const { return CapsForm::Sizes; }
};

/// A code's published name, and the form of what the snapshot does not know.
struct PublishedCode
{
    const char* pszName;
    CapsForm form = CapsForm::Unspecified;
};

/// By code, from 0 on.
constexpr PublishedCode kPublished[] = {
    {"-"},
    {"DC_FIELDS", CapsForm::Number},
    {"DC_PAPERS"},
    {"DC_PAPERSIZE"},
    {"DC_MINEXTENT"},
    {"DC_MAXEXTENT"},
    {"DC_BINS"},
    {"DC_DUPLEX"},
    {"DC_SIZE", CapsForm::Number},
    {"DC_EXTRA", CapsForm::Number},
    {"DC_VERSION", CapsForm::Number},
    {"DC_DRIVER", CapsForm::Number},
    {"DC_BINNAMES"},
    {"DC_ENUMRESOLUTIONS"},
    {"DC_FILEDEPENDENCIES", CapsForm::WideNames},
    {"DC_TRUETYPE", CapsForm::Number},
    {"DC_PAPERNAMES"},
    {"DC_ORIENTATION"},
    {"DC_COPIES"},
    {"DC_BINADJUST", CapsForm::Number},
    {"DC_EMF_COMPLIANT", CapsForm::Number},
    {"DC_DATATYPE_PRODUCED"},
    {"DC_COLLATE"},
    {"DC_MANUFACTURER"},
    {"DC_MODEL"},
    {"DC_PERSONALITY", CapsForm::LanguageNames},
    {"DC_PRINTRATE"},
    {"DC_PRINTRATEUNIT"},
    {"DC_PRINTERMEM"},
    {"DC_MEDIAREADY"},
    {"DC_STAPLE", CapsForm::Number},
    {"DC_PRINTRATEPPM"},
    {"DC_COLORDEVICE"},
    {"DC_NUP", CapsForm::Numbers},
    {"DC_MEDIATYPENAMES"},
    {"DC_MEDIATYPES"},
    {"-"},
};
static_assert(std::size(kPublished) == 37, "codes 0 to 36");

/// Reads an entry, whose place need not be aligned.
template <class Entry>
Entry EntryAt(const CapsAnswer& answer, size_t index)
{
    Entry entry;
    std::memcpy(&entry, answer.entries.data() + index * sizeof(Entry), sizeof(Entry));
    return entry;
}

/// @return tenths of a millimetre as millimetres, "210.0".
std::string Millimetres(LONG lTenths)
{
    const unsigned long ulTenths = lTenths < 0 ? 0UL - static_cast<unsigned long>(lTenths) : lTenths;
    return (lTenths < 0 ? "-" : "") + std::to_string(ulTenths / 10) + "." + std::to_string(ulTenths % 10);
}

std::string DecodeName(const CapsAnswer& answer, size_t index)
{
    const size_t cchCell = EntryBytes(answer.code.form) / sizeof(wchar_t);
    std::vector<wchar_t> cell(cchCell);
    std::memcpy(cell.data(), answer.entries.data() + index * cchCell * sizeof(wchar_t), cchCell * sizeof(wchar_t));
    return ToUtf8(CellText(cell.data(), cchCell));
}

std::string DecodeEntry(const CapsAnswer& answer, size_t index)
{
    switch (answer.code.form)
    {
    case CapsForm::Identifiers:
        return std::to_string(EntryAt<WORD>(answer, index));
    case CapsForm::Numbers:
        return std::to_string(EntryAt<DWORD>(answer, index));
    case CapsForm::Sizes:
    {
        const POINT size = EntryAt<POINT>(answer, index);
        return Millimetres(size.x) + " x " + Millimetres(size.y) + " mm";
    }
    case CapsForm::Resolutions:
    {
        const POINT resolution = EntryAt<POINT>(answer, index);
        return std::to_string(resolution.x) + " x " + std::to_string(resolution.y) + " dpi";
    }
    default:
        return DecodeName(answer, index);
    }
}

std::string AnswerText(const CapsAnswer& answer)
{
    return answer.IsRefused() ? std::string("refused") : std::to_string(answer.dwAnswer);
}

} // namespace

const std::vector<CapsCode>& CapsCodes()
{
    static const std::vector<CapsCode> codes = [] {
        std::vector<CapsCode> rows;
        for (WORD wCode = 0; wCode < std::size(kPublished); ++wCode)
        {
            const VelUtility::CapRow* const pRow = VelUtility::FindCapRow(wCode);
            rows.push_back({wCode, kPublished[wCode].pszName,
                            pRow != nullptr ? std::visit(FormOf(), pRow->form) : kPublished[wCode].form});
        }
        return rows;
    }();
    return codes;
}

CapsCode FindCapsCode(WORD wCode)
{
    const auto found = std::find_if(CapsCodes().begin(), CapsCodes().end(),
                                    [wCode](const CapsCode& code) { return code.wCode == wCode; });
    return found == CapsCodes().end() ? CapsCode{wCode, "-", CapsForm::Unspecified} : *found;
}

size_t EntryBytes(CapsForm form)
{
    switch (form)
    {
    case CapsForm::Identifiers:
        return sizeof(WORD);
    case CapsForm::Numbers:
        return sizeof(DWORD);
    case CapsForm::Sizes:
        return sizeof(POINT);
    case CapsForm::Resolutions:
        return 2 * sizeof(LONG);
    case CapsForm::LanguageNames:
        return 32 * sizeof(wchar_t);
    case CapsForm::BinNames:
        return sizeof(VelUtility::NarrowName);
    case CapsForm::WideNames:
        return sizeof(VelUtility::WideName);
    default:
        return 0;
    }
}

CapsAnswer QueryCaps(const AskCaps& ask, const CapsCode& code)
{
    CapsAnswer answer;
    answer.code = code;
    answer.dwAnswer = ask(code.wCode, nullptr);
    const size_t cbEntry = EntryBytes(code.form);
    if (cbEntry == 0 || answer.IsRefused() || answer.dwAnswer == 0)
    {
        return answer;
    }
    if (answer.dwAnswer > kMostEntries)
    {
        answer.strNote = "too many entries, not fetched";
        return answer;
    }

    CanaryBuffer buffer(answer.dwAnswer * cbEntry);
    buffer.FillWithCanary();
    answer.dwFillAnswer = ask(code.wCode, buffer.Data());
    answer.cbOverrun = buffer.OverrunBytes();
    if (answer.cbOverrun != 0)
    {
        answer.strNote = "wrote " + std::to_string(answer.cbOverrun) + " bytes behind the room";
    }
    else if (answer.dwFillAnswer == kRefused)
    {
        answer.strNote = "the list is refused when asked with room";
    }
    else if (answer.dwFillAnswer != answer.dwAnswer)
    {
        answer.strNote = "the list has " + std::to_string(answer.dwFillAnswer) + " entries when asked with room";
    }
    else if (!buffer.WasWritten())
    {
        answer.strNote = "no entry was written";
    }
    if (answer.dwFillAnswer != kRefused && buffer.WasWritten())
    {
        answer.entries.assign(buffer.Data(), buffer.Data() + buffer.Size());
    }
    return answer;
}

std::vector<CapsAnswer> QueryAllCaps(const AskCaps& ask)
{
    std::vector<CapsAnswer> answers;
    for (const CapsCode& code : CapsCodes())
    {
        answers.push_back(QueryCaps(ask, code));
    }
    return answers;
}

AskCaps SpoolerCaps(const std::wstring& strPrinter)
{
    // Some spoolers answer 0 for an unknown printer, which would look like an empty list.
    const PrinterDescription description = DescribePrinter(strPrinter);
    return [description](WORD wCode, void* pvBuffer) {
        return static_cast<DWORD>(DeviceCapabilitiesW(description.strName.c_str(), description.strPort.c_str(), wCode,
                                                      static_cast<LPWSTR>(pvBuffer), nullptr));
    };
}

std::vector<std::string> DecodeCaps(const CapsAnswer& answer)
{
    std::vector<std::string> texts;
    if (answer.code.form == CapsForm::Extent && !answer.IsRefused())
    {
        texts.push_back(Millimetres(LOWORD(answer.dwAnswer)) + " x " + Millimetres(HIWORD(answer.dwAnswer)) + " mm");
    }
    for (size_t index = 0; index < answer.EntryCount(); ++index)
    {
        texts.push_back(DecodeEntry(answer, index));
    }
    return texts;
}

Json CapsToJson(const CapsAnswer& answer)
{
    Json value;
    value["code"] = answer.code.wCode;
    value["name"] = answer.code.pszName;
    value["refused"] = answer.IsRefused();
    value["answer"] = answer.dwAnswer;
    if (EntryBytes(answer.code.form) != 0 && !answer.IsRefused())
    {
        value["entries"] = DecodeCaps(answer);
    }
    else if (answer.code.form == CapsForm::Extent && !answer.IsRefused())
    {
        value["meaning"] = DecodeCaps(answer).front();
    }
    if (!answer.strNote.empty())
    {
        value["note"] = answer.strNote;
    }
    return value;
}

std::string CapsTable(const std::vector<CapsAnswer>& answers)
{
    Table table({{"code", Table::Align::Right}, {"name"}, {"answer", Table::Align::Right}, {"entries"}});
    for (const CapsAnswer& answer : answers)
    {
        std::vector<std::string> texts = DecodeCaps(answer);
        if (!answer.strNote.empty())
        {
            texts.insert(texts.begin(), "! " + answer.strNote);
        }
        std::string strEntries;
        for (const std::string& strText : texts)
        {
            strEntries += (strEntries.empty() ? "" : "\n") + strText;
        }
        table.AddRow({std::to_string(answer.code.wCode), answer.code.pszName, AnswerText(answer), strEntries});
    }
    return table.Text();
}

} // namespace VelHost
