#include "tools/velhost/report/Table.h"

#include <catch2/catch_test_macros.hpp>

using VelHost::DisplayWidth;
using VelHost::Table;

TEST_CASE("a wide character takes two columns and a combining mark none", "[velhost][table]")
{
    CHECK(DisplayWidth("") == 0);
    CHECK(DisplayWidth("A4") == 2);
    CHECK(DisplayWidth("大16开") == 6);
    CHECK(DisplayWidth("\xC3\xA9") == 1);         // e with acute, composed
    CHECK(DisplayWidth("e\xCC\x81") == 1);        // the same, with a combining mark
    CHECK(DisplayWidth("\xF0\xA0\x80\x80") == 2); // an ideograph outside the basic plane
}

TEST_CASE("a text that ends within a character is measured without reading on", "[velhost][table]")
{
    CHECK(DisplayWidth("\xE5\xA4") == 1);
    CHECK(DisplayWidth("\x80") == 1);
}

TEST_CASE("columns line up with wide text, numbers stand right, and line ends open further lines", "[velhost][table]")
{
    Table table({{"code", Table::Align::Right}, {"name"}, {"note"}});
    table.AddRow({"2", "大16开", "a\nb"});
    table.AddRow({"16", "A4", "c"});
    CHECK(table.Text() == "code  name    note\n"
                          "----  ------  ----\n"
                          "   2  大16开  a\n"
                          "              b\n"
                          "  16  A4      c\n");
}

TEST_CASE("missing cells are empty and lines have no blanks at their end", "[velhost][table]")
{
    Table table({{"a"}, {"b"}});
    table.AddRow({"1"});
    CHECK(table.Text() == "a  b\n-  -\n1\n");
}
