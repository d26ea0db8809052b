#pragma once
/// A report of items and their values, as a table or as JSON.

#include "tools/velhost/report/Output.h"

#include <string>
#include <utility>
#include <vector>

namespace VelHost
{

/// Items in their order. A value is shown in the table as its text.
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
