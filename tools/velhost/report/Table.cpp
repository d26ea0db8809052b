#include "tools/velhost/report/Table.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace VelHost
{
namespace
{

struct CharacterRange
{
    unsigned uFirst;
    unsigned uLast;
};

// Unicode's East Asian Width W and F, in the blocks that names of paper, bins and media can hold.
const CharacterRange kWide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x33FF},  {0x3400, 0x4DBF},
                                {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},   {0xA960, 0xA97F},  {0xAC00, 0xD7A3},
                                {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF01, 0xFF60},  {0xFFE0, 0xFFE6},
                                {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

const CharacterRange kCombining[] = {{0x0300, 0x036F}, {0x200B, 0x200F}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}};

template <size_t N>
bool IsInRanges(unsigned uCharacter, const CharacterRange (&ranges)[N])
{
    return std::any_of(std::begin(ranges), std::end(ranges), [uCharacter](const CharacterRange& range) {
        return uCharacter >= range.uFirst && uCharacter <= range.uLast;
    });
}

/// Takes one character off a UTF-8 text. A wrong byte counts as a character of its own.
unsigned NextCharacter(const std::string& strText, size_t& position)
{
    const auto byLead = static_cast<unsigned char>(strText[position++]);
    const int iFollowing = byLead >= 0xF0 ? 3 : byLead >= 0xE0 ? 2 : byLead >= 0xC0 ? 1 : 0;
    unsigned uCharacter = iFollowing == 3 ? byLead & 0x07u : iFollowing == 2 ? byLead & 0x0Fu : byLead & 0x1Fu;
    if (iFollowing == 0)
    {
        return byLead;
    }
    for (int i = 0; i < iFollowing && position < strText.size(); ++i)
    {
        uCharacter = (uCharacter << 6) | (static_cast<unsigned char>(strText[position++]) & 0x3Fu);
    }
    return uCharacter;
}

std::vector<std::string> SplitLines(const std::string& strText)
{
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t end = strText.find('\n'); end != std::string::npos; end = strText.find('\n', start))
    {
        lines.push_back(strText.substr(start, end - start));
        start = end + 1;
    }
    lines.push_back(strText.substr(start));
    return lines;
}

} // namespace

size_t DisplayWidth(const std::string& strText)
{
    size_t width = 0;
    for (size_t position = 0; position < strText.size();)
    {
        const unsigned uCharacter = NextCharacter(strText, position);
        width += IsInRanges(uCharacter, kCombining) ? 0 : IsInRanges(uCharacter, kWide) ? 2 : 1;
    }
    return width;
}

Table::Table(std::vector<Column> columns) : m_columns(std::move(columns)) {}

void Table::AddRow(std::vector<std::string> cells)
{
    cells.resize(m_columns.size());
    std::vector<std::vector<std::string>> cellLines;
    size_t lineCount = 1;
    for (const std::string& strCell : cells)
    {
        cellLines.push_back(SplitLines(strCell));
        lineCount = std::max(lineCount, cellLines.back().size());
    }
    for (size_t line = 0; line < lineCount; ++line)
    {
        std::vector<std::string> row;
        for (const std::vector<std::string>& lines : cellLines)
        {
            row.push_back(line < lines.size() ? lines[line] : std::string());
        }
        m_rows.push_back(std::move(row));
    }
}

std::string Table::Text() const
{
    std::vector<size_t> widths;
    std::vector<std::string> titles;
    std::vector<std::string> rules;
    for (size_t i = 0; i < m_columns.size(); ++i)
    {
        size_t width = DisplayWidth(m_columns[i].strTitle);
        for (const std::vector<std::string>& row : m_rows)
        {
            width = std::max(width, DisplayWidth(row[i]));
        }
        widths.push_back(width);
        titles.push_back(m_columns[i].strTitle);
        rules.push_back(std::string(width, '-'));
    }
    std::string strText = Line(titles, widths) + Line(rules, widths);
    for (const std::vector<std::string>& row : m_rows)
    {
        strText += Line(row, widths);
    }
    return strText;
}

std::string Table::Line(const std::vector<std::string>& cells, const std::vector<size_t>& widths) const
{
    std::string strLine;
    for (size_t i = 0; i < cells.size(); ++i)
    {
        const std::string strPadding(widths[i] - DisplayWidth(cells[i]), ' ');
        strLine += i == 0 ? "" : "  ";
        strLine += m_columns[i].align == Align::Right ? strPadding + cells[i] : cells[i] + strPadding;
    }
    strLine.erase(strLine.find_last_not_of(' ') + 1);
    return strLine + "\n";
}

} // namespace VelHost
