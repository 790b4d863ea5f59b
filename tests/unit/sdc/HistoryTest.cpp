#include "apps/sdc/result/History.h"

#include "apps/sdc/result/ReceiverData.h"

#include "TestResults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

using namespace testing_results;
using sdc::History;
using testing::ElementsAre;

namespace {

const sdc::ReceiverData aReceiver{27500.0, 5.0, 55.0, -20.0};

std::vector<std::int32_t> levelsOf(const History::Row& row)
{
    std::vector<std::int32_t> levels;
    std::ranges::transform(row.levels, std::back_inserter(levels), &SDCResult::rssi);
    return levels;
}

} // namespace

TEST(Histories, haveARowForEachSweepWhileThereIsRoom)
{
    History history(3);
    for (std::int32_t sweep = 0; sweep < 3; ++sweep) {
        history.add(sweepOf({-9000 + sweep, -8000}, aMoment + sweep * 1min), aReceiver);
    }
    ASSERT_EQ(history.rows().size(), 3U);
    EXPECT_EQ(history.sweepsOfARow(), 1U);
    EXPECT_THAT(levelsOf(history.rows()[1]), ElementsAre(-8999, -8000));
    EXPECT_EQ(history.rows()[1].start, aMoment + 1min);
}

TEST(Histories, joinNeighboursByTheirStrongestWhenRowsAreFull)
{
    for (const std::size_t mostRows : {3U, 4U}) {
        History history(mostRows);
        const std::vector<std::int32_t> levels{-9000, -3000, -8000, -7000, -6000};
        for (std::size_t sweep = 0; sweep < levels.size(); ++sweep) {
            history.add(sweepOf({levels[sweep], -9500}, aMoment + sweep * 1min), aReceiver);
        }
        EXPECT_EQ(history.sweepsOfARow(), 2U);
        ASSERT_EQ(history.rows().size(), 3U) << mostRows;
        EXPECT_THAT(levelsOf(history.rows()[0]), ElementsAre(-3000, -9500));
        EXPECT_THAT(levelsOf(history.rows()[1]), ElementsAre(-7000, -9500));
        EXPECT_THAT(levelsOf(history.rows()[2]), ElementsAre(-6000, -9500));
        EXPECT_EQ(history.rows()[1].start, aMoment + 2min);
        EXPECT_EQ(history.rows()[2].start, aMoment + 4min);
    }
}

TEST(Histories, holdEachFrequencyOfSweepsThatDiffer)
{
    History history(2);
    sdc::Sweep other = sweepOf({-5000, -4000, -6000});
    other.samples = samplesOf({-5000, -4000, -6000}, 100'500, 500);
    history.add(sweepOf({-9000, -8000}), aReceiver);
    history.add(other, aReceiver);
    history.add(sweepOf({}), aReceiver);
    ASSERT_EQ(history.rows().size(), 2U);
    EXPECT_THAT(levelsOf(history.rows()[0]), ElementsAre(-9000, -5000, -4000, -6000));
}

TEST(Histories, keepTheStrongestOfReadingsInOnePlace)
{
    History history;
    sdc::Sweep sweep = sweepOf({-9000, -3000, -8000});
    sweep.samples = samplesOf({-9000, -3000, -8000}, 100'000, 0);
    history.add(sweep, aReceiver);
    EXPECT_THAT(levelsOf(history.rows()[0]), ElementsAre(-3000));
}

TEST(Histories, takeNoMoreMemoryForManySweeps)
{
    constexpr std::size_t sweeps = 100'000;
    constexpr std::size_t burst = 77'777;
    History history;
    std::size_t mostRows = 0;
    std::size_t mostLevels = 0;
    for (std::size_t sweep = 0; sweep < sweeps; ++sweep) {
        history.add(sweepOf({-9000, sweep == burst ? -3000 : -9000}, aMoment + sweep * 1min), aReceiver);
        mostRows = std::max(mostRows, history.rows().capacity());
        mostLevels = std::max(mostLevels, history.rows().back().levels.capacity());
    }
    EXPECT_LE(mostRows, History::usualRows);
    EXPECT_EQ(mostLevels, 2U);
    EXPECT_EQ(history.rows().size(), (sweeps + history.sweepsOfARow() - 1) / history.sweepsOfARow());
    EXPECT_GT(history.rows().size(), History::usualRows / 3) << "and as many as there is room for";
    const std::size_t row = burst / history.sweepsOfARow();
    EXPECT_THAT(levelsOf(history.rows()[row]), ElementsAre(-9000, -3000));
    EXPECT_EQ(history.rows()[row].start, aMoment + row * history.sweepsOfARow() * 1min);
    EXPECT_THAT(levelsOf(history.rows()[row - 1]), ElementsAre(-9000, -9000));
}

TEST(Histories, keepNothingOfReadingsThatAreNoLevels)
{
    History history;
    history.add(sweepOf({-9000, 0, 999999, -8000}), aReceiver);
    EXPECT_THAT(levelsOf(history.rows()[0]), ElementsAre(-9000, -8000));
}
