#pragma once

#include <string>
#include <vector>

namespace VelHost
{

/// Columns that a terminal gives to a UTF-8 text: East Asian wide characters take two, combining marks none.
size_t DisplayWidth(const std::string& strText);

/// A table of UTF-8 texts whose columns line up on a terminal of fixed pitch.
class Table
{
public:
    enum class Align
    {
        Left,
        Right
    };

    struct Column
    {
        std::string strTitle;
        Align align = Align::Left;
    };

    explicit Table(std::vector<Column> columns);

    /// Adds a row; a cell that holds line ends goes on below, in its own column.
    /// @param cells as many as there are columns; missing ones are empty.
    void AddRow(std::vector<std::string> cells);

    /// @return the title line, a rule and the rows, each ended by LF.
    std::string Text() const;

private:
    std::string Line(const std::vector<std::string>& cells, const std::vector<size_t>& widths) const;

    std::vector<Column> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};

} // namespace VelHost
