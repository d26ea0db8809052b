#include "tools/velhost/host/CapsQuery.h"

#include "tools/velhost/report/Table.h"
#include "tools/velhost/report/Utf8.h"

#include <cstring>

namespace VelHost
{
namespace
{

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
