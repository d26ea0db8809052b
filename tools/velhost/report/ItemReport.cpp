#include "tools/velhost/report/ItemReport.h"

#include "tools/velhost/report/Table.h"

namespace VelHost
{

Json ItemReport::ToJson() const
{
    Json value = Json::object();
    for (const auto& [strItem, item] : m_items)
    {
        value[strItem] = item;
    }
    return value;
}

void ItemReport::PrintOut(bool bJson) const
{
    if (bJson)
    {
        PrintJson(ToJson());
        return;
    }
    Table table({{"item"}, {"value"}});
    for (const auto& [strItem, item] : m_items)
    {
        table.AddRow({strItem, item.is_string() ? item.get<std::string>() : item.is_null() ? "-" : item.dump()});
    }
    Print(table.Text());
}

} // namespace VelHost
