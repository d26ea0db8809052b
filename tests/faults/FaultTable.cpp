#include "tests/faults/FaultTable.h"

#include "tests/common/BuiltModule.h"
#include "tests/common/TempFolder.h"

#include <catch2/catch_test_macros.hpp>

#include <regex>
#include <sstream>

namespace
{

/// The cells of a table's line "| a | b | c |", without the blanks around them; none for any other line.
std::vector<std::string> Cells(const std::string& strLine)
{
    std::vector<std::string> cells;
    size_t uiStart = strLine.compare(0, 2, "| ") == 0 ? 2 : std::string::npos;
    while (uiStart != std::string::npos)
    {
        const size_t uiEnd = strLine.find(" |", uiStart);
        if (uiEnd == std::string::npos)
        {
            break;
        }
        cells.push_back(strLine.substr(uiStart, uiEnd - uiStart));
        uiStart = uiEnd + 3 <= strLine.size() ? uiEnd + 3 : std::string::npos;
    }
    return cells;
}

/// A row's second cell: "`fopen` 2, `malloc` 10+".
FaultRow ParseRow(const std::string& strText)
{
    static const std::regex entry("`(\\w+)` (\\d+)(\\+?)(, )?");
    FaultRow row;
    auto it = strText.begin();
    for (std::smatch match; it != strText.end(); it = match[0].second)
    {
        INFO("row: " << strText);
        REQUIRE(std::regex_search(it, strText.end(), match, entry, std::regex_constants::match_continuous));
        row[match[1]] = {std::stoi(match[2]), match[3].length() != 0};
    }
    return row;
}

std::map<std::string, FaultRow> ReadTable()
{
    std::istringstream document(ReadFileBytes(BesideTests(L"faults.md")));
    std::map<std::string, FaultRow> table;
    for (std::string strLine; std::getline(document, strLine);)
    {
        if (!strLine.empty() && strLine.back() == '\r')
        {
            strLine.pop_back();
        }
        const std::vector<std::string> cells = Cells(strLine);
        if (cells.size() == 2 && cells[1][0] == '`')
        {
            CAPTURE(cells[0]);
            REQUIRE(table.emplace(cells[0], ParseRow(cells[1])).second); // no work twice
        }
    }
    REQUIRE_FALSE(table.empty());
    return table;
}

} // namespace

const std::map<std::string, FaultRow>& FaultTable()
{
    static const std::map<std::string, FaultRow> s_table = ReadTable();
    return s_table;
}

void CheckFaultRow(const std::string& strWork, const std::map<std::string, int>& reached)
{
    CAPTURE(strWork);
    const auto found = FaultTable().find(strWork);
    CHECK(found != FaultTable().end()); // or docs/faults.md lacks a row
    FaultRow row = found != FaultTable().end() ? found->second : FaultRow();
    for (const auto& [strFunction, iCount] : reached)
    {
        CAPTURE(strFunction, iCount);
        const ReachedFailures expected = row[strFunction]; // 0 for a function that the row does not name
        CHECK((expected.bAtLeast ? iCount >= expected.iCount : iCount == expected.iCount));
        row.erase(strFunction);
    }
    for (const auto& [strFunction, expected] : row)
    {
        CAPTURE(strFunction, expected.iCount);
        FAIL_CHECK("the row names a function that was not made to fail");
    }
}

bool IsFaultReached(const std::string& strFunction)
{
    for (const auto& [strWork, row] : FaultTable())
    {
        if (row.count(strFunction) != 0)
        {
            return true;
        }
    }
    return false;
}
