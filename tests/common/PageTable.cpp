#include "tests/common/PageTable.h"

#include "tests/common/TempFolder.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <sstream>

namespace
{

/// The cells of a table's line "| a | b | c |"; none for any other line.
std::vector<std::string> Cells(const std::string& strLine)
{
    std::vector<std::string> cells;
    if (strLine.empty() || strLine[0] != '|')
    {
        return cells;
    }
    for (size_t uiStart = 1; uiStart < strLine.size();)
    {
        // A bar between quotation marks of code is no column's end.
        size_t uiEnd = uiStart;
        for (bool bCode = false; uiEnd < strLine.size() && (bCode || strLine[uiEnd] != '|'); ++uiEnd)
        {
            bCode = bCode != (strLine[uiEnd] == '`');
        }
        std::string strCell = strLine.substr(uiStart, uiEnd - uiStart);
        strCell.erase(std::remove(strCell.begin(), strCell.end(), '`'), strCell.end());
        strCell.erase(0, std::min(strCell.find_first_not_of(' '), strCell.size()));
        strCell.resize(strCell.find_last_not_of(' ') + 1);
        cells.push_back(strCell);
        uiStart = uiEnd + 1;
    }
    return cells;
}

} // namespace

PageTables::PageTables(const std::wstring& strFile)
{
    std::istringstream page(ReadFileBytes(strFile));
    bool bInTable = false;
    for (std::string strLine; std::getline(page, strLine);)
    {
        if (!strLine.empty() && strLine.back() == '\r')
        {
            strLine.pop_back();
        }
        const Cells cells = ::Cells(strLine);
        const bool bRule = strLine.rfind("|--", 0) == 0;
        if (!cells.empty() && !bRule)
        {
            if (!bInTable)
            {
                m_tables.emplace_back();
            }
            m_tables.back().push_back(cells);
        }
        bInTable = !cells.empty();
    }
    REQUIRE_FALSE(m_tables.empty());
}

std::vector<PageTables::Row> PageTables::Rows(const std::string& strFirst, const std::string& strSecond) const
{
    std::vector<Row> rows;
    for (const std::vector<PageTables::Cells>& table : m_tables)
    {
        const PageTables::Cells& titles = table[0];
        if (titles.size() < 2 || titles[0] != strFirst || titles[1] != strSecond)
        {
            continue;
        }
        for (size_t i = 1; i < table.size(); ++i)
        {
            CAPTURE(table[i]);
            REQUIRE(table[i].size() == titles.size());
            Row& row = rows.emplace_back();
            for (size_t uiColumn = 0; uiColumn < titles.size(); ++uiColumn)
            {
                row[titles[uiColumn]] = table[i][uiColumn];
            }
        }
    }
    CAPTURE(strFirst, strSecond);
    REQUIRE_FALSE(rows.empty());
    return rows;
}

std::vector<std::string> PageTables::List(const std::string& strCell)
{
    std::vector<std::string> parts;
    std::istringstream cell(strCell);
    for (std::string strPart; std::getline(cell, strPart, ',');)
    {
        parts.push_back(strPart.substr(std::min(strPart.find_first_not_of(' '), strPart.size())));
    }
    return parts;
}
