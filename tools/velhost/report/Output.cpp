#include "tools/velhost/report/Output.h"

#include "tools/velhost/report/Table.h"

#include <windows.h>

#include <cstdio>
#include <fcntl.h>
#include <io.h>

namespace VelHost
{

void PrepareOutput()
{
    SetConsoleOutputCP(CP_UTF8);
    // Text mode would turn LF into CR LF.
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

void Print(const std::string& strText)
{
    std::fwrite(strText.data(), 1, strText.size(), stdout);
    std::fflush(stdout);
}

void PrintJson(const Json& value)
{
    Print(value.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

void PrintError(const std::string& strText)
{
    const std::string strLine = "velhost: " + strText + "\n";
    std::fwrite(strLine.data(), 1, strLine.size(), stderr);
    std::fflush(stderr);
}

std::string CellOf(const Json& value)
{
    return value.is_string() ? value.get<std::string>() : value.is_null() ? "-" : value.dump();
}

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
        table.AddRow({strItem, CellOf(item)});
    }
    Print(table.Text());
}

} // namespace VelHost
