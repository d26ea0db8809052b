#pragma once
/// The tables of a page of docs/, for tests that hold the code against it. A copy of the page lies beside the tests.

#include <map>
#include <string>
#include <vector>

/// All tables of a page.
class PageTables
{
public:
    using Row = std::map<std::string, std::string>; ///< by column; without the quotation marks of code

    /// The test fails where the page can't be read or has no table.
    explicit PageTables(const std::wstring& strFile);

    /// The rows of the one table whose first two columns have these titles; the test fails where there is none, or a
    /// row has other columns than its table.
    std::vector<Row> Rows(const std::string& strFirst, const std::string& strSecond) const;

    /// The parts of a cell that lists several.
    static std::vector<std::string> List(const std::string& strCell);

private:
    using Cells = std::vector<std::string>;
    std::vector<std::vector<Cells>> m_tables; ///< a table's title line first
};
