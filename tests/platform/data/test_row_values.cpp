// SPDX-License-Identifier: MIT
#include "platform/data/store/RowValues.h"

#include <gtest/gtest.h>

#include <random>

namespace Korvane {

namespace {

TEST(RowValues, hold_what_was_written_last)
{
    std::mt19937 random(7);
    const auto below = [&](unsigned limit) { return random() % limit; };
    constexpr int columns = 5;
    TRowValues row(columns);
    std::vector<std::string> texts(columns);
    for (int step = 0; step < 20'000; ++step) {
        const int column = int(below(columns));
        const int other = int(below(columns));
        switch (below(4)) {
        case 0:
            row.SetNull(column);
            texts[size_t(column)].clear();
            break;
        case 1: // from a piece of the row itself
            row.SetText(column, row.GetText(other).substr(0, 40));
            texts[size_t(column)] = texts[size_t(other)].substr(0, 40);
            break;
        default:
            texts[size_t(column)] = std::string(below(step % 1000 == 0 ? 5000 : 60), char('a' + below(26)));
            row.SetText(column, texts[size_t(column)]);
        }
        for (int i = 0; i < columns; ++i)
            ASSERT_EQ(row.GetText(i), texts[size_t(i)]) << step;
    }
    EXPECT_LT(row.MemoryUsage(), 64 * 1024) << "texts that have been replaced take no room for ever";

    TRowValues copy = row;
    copy.SetText(0, "other");
    EXPECT_EQ(row.GetText(0), texts[0]);
}

TEST(RowValues, numbers_texts_and_nulls_take_turns)
{
    TRowValues row(2);
    row.SetInt(0, 1LL << 40);
    row.SetText(1, "text");
    row.SetText(0, "");
    row.SetDouble(1, 2.5);
    EXPECT_FALSE(row.IsNull(0));
    EXPECT_EQ(row.GetText(0), "");
    EXPECT_EQ(row.GetDouble(1), 2.5);
    row.SetNull(1);
    EXPECT_TRUE(row.IsNull(1));
    EXPECT_EQ(row.GetDouble(1), 0);
    EXPECT_EQ(row.GetText(1), "");
}

} // namespace

} // namespace Korvane
