#pragma once
/// What the program prints.

#include <nlohmann/json.hpp>

#include <string>
#include <utility>
#include <vector>

namespace VelHost
{

/// JSON that keeps the order in which members were added.
using Json = nlohmann::ordered_json;

/// Makes standard output and standard error carry UTF-8 with LF line ends.
void PrepareOutput();

/// Writes a text to standard output as it is.
void Print(const std::string& strText);

/// Writes a value to standard output, indented, and a line end.
void PrintJson(const Json& value);

/// Writes "velhost: <strText>" and a line end to standard error.
void PrintError(const std::string& strText);

/// @return a value as a table's cell shows it: a text without quotation marks, nothing as "-".
std::string CellOf(const Json& value);

/// A report of items and their values in their order, as a table or as JSON.
class ItemReport
{
public:
    void Add(const std::string& strItem, const Json& value) { m_items.emplace_back(strItem, value); }
    Json ToJson() const;
    /// @param bJson whether JSON is printed in the place of the table.
    void PrintOut(bool bJson) const;

private:
    std::vector<std::pair<std::string, Json>> m_items;
};

} // namespace VelHost
