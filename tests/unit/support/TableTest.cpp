// Rows in columns, as people read them.

#include "support/Table.h"

#include <gtest/gtest.h>

namespace {

TEST(Table, setsItsColumnsTwoSpacesApart)
{
    EXPECT_EQ(support::table({{"name", "count", "what it is"}, {"a", "1", "one"}, {"longer", "1000", ""}}, "lrl"),
        "name    count  what it is\n"
        "a           1  one\n"
        "longer   1000  \n");
}

TEST(Table, isNotWidenedByAShortRow)
{
    EXPECT_EQ(support::table({{"a", "b", "c"}, {"1", "nothing to be told"}, {"1", "2", "3"}}, "rrr"),
        "a  b  c\n1  nothing to be told\n1  2  3\n");
}

TEST(Table, hasColumnsOfAtLeastAWidth)
{
    EXPECT_EQ(support::table({{"longer", "2", "3"}}, "lrl", {4, 3}), "longer    2  3\n");
    EXPECT_EQ(support::table({{"a", "short row"}}, "lrl", {4, 3}), "a     short row\n");
}

} // namespace
