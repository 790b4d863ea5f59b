#include "apps/sdc/plot/Waterfall.h"
#include "apps/sdc/plot/Plot.h"

#include "TestResults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <sstream>
#include <utility>

using namespace testing_results;
using sdc::PlotFormat;
using sdc::PlotOptions;
using sdc::Waterfall;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr std::int32_t nothing = Waterfall::nothing;

/// A sweep each minute.
sdc::ScanResult minutes(const std::vector<std::vector<std::int32_t>>& sweeps)
{
    std::vector<sdc::Sweep> all;
    for (const auto& levels : sweeps) {
        all.push_back(sweepOf(levels, aMoment + all.size() * 1min));
    }
    return resultOf({channelOf(1, all)});
}

std::string textOf(const sdc::ScanResult& result, PlotOptions options = {})
{
    options.format = PlotFormat::text;
    return written([&](std::ostream& stream) { sdc::writeWaterfall(stream, result, options); });
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string programOf(const sdc::ScanResult& result, const PlotOptions& options = {})
{
    const sdc::ChannelResult& channel = result.channels[0];
    return sdc::waterfallProgram(channel, sdc::chartOf({{"", result, channel}}, options), {.width = 1000, .height = 560});
}

} // namespace

TEST(Waterfalls, haveARowForEachSweepAndAColumnForEachSample)
{
    const auto result = minutes({{-9000, -8000, -7000}, {-6000, -5000, -4000}});
    const Waterfall waterfall = sdc::gathered(result.channels[0], {100'000, 102'000}, 3, 10);
    EXPECT_EQ(waterfall.sweeps, 2U);
    EXPECT_EQ(waterfall.sweepsOfARow, 1U);
    ASSERT_EQ(waterfall.rows.size(), 2U);
    EXPECT_THAT(waterfall.rows[0].levels, ElementsAre(-9000, -8000, -7000));
    EXPECT_THAT(waterfall.rows[1].levels, ElementsAre(-6000, -5000, -4000));
    EXPECT_EQ(waterfall.rows[1].start, aMoment + 1min);
}

TEST(Waterfalls, sampleFillsTheSliceThatItStandsFor)
{
    const auto result = minutes({{-9000, -8000, -7000}});
    EXPECT_THAT(sdc::gathered(result.channels[0], {99'500, 102'500}, 7, 10).rows[0].levels,
        ElementsAre(-9000, -9000, -8000, -8000, -7000, -7000, nothing));
    EXPECT_THAT(sdc::gathered(result.channels[0], {98'000, 104'000}, 7, 10).rows[0].levels,
        ElementsAre(nothing, nothing, -9000, -8000, -7000, nothing, nothing));
}

TEST(Waterfalls, leaveNoGapBetweenSamples)
{
    const auto result = minutes({std::vector<std::int32_t>(378, -9000)});
    for (std::size_t columns = 379; columns < 1200; ++columns) {
        const auto levels = sdc::gathered(result.channels[0], {99'500, 477'500}, columns, 10).rows[0].levels;
        ASSERT_EQ(std::count(levels.begin(), levels.end() - 1, nothing), 0) << columns;
    }
}

TEST(Waterfalls, columnShowsTheStrongestOfItsSamples)
{
    const auto result = minutes({{-9000, -3000, -7000, -8000, -4000, -9000}});
    EXPECT_THAT(sdc::gathered(result.channels[0], {100'000, 105'000}, 2, 10).rows[0].levels, ElementsAre(-3000, -4000));
}

TEST(Waterfalls, moreSweepsThanRowsAreGatheredByTheirStrongest)
{
    std::vector<std::vector<std::int32_t>> sweeps(7, {-9000, -9000});
    sweeps[4] = {-9000, -3000};
    const auto result = minutes(sweeps);
    const Waterfall waterfall = sdc::gathered(result.channels[0], {100'000, 101'000}, 2, 3);
    EXPECT_EQ(waterfall.sweepsOfARow, 3U);
    ASSERT_EQ(waterfall.rows.size(), 3U);
    EXPECT_THAT(waterfall.rows[1].levels, ElementsAre(-9000, -3000));
    EXPECT_EQ(waterfall.rows[1].start, aMoment + 3min);
    EXPECT_THAT(waterfall.rows[2].levels, ElementsAre(-9000, -9000));
    EXPECT_EQ(sdc::gathered(result.channels[0], {100'000, 101'000}, 2, 7).sweepsOfARow, 1U);
}

TEST(Waterfalls, showWhatWasKeptOfSweepsThatAreGone)
{
    auto channel = channelOf(1, {sweepOf({-9000, -9000})});
    channel.sweeps.clear();
    channel.survey = {};
    for (std::size_t sweep = 0; sweep < 1025; ++sweep) {
        channel.add(sweepOf({-9000, sweep == 700 ? -3000 : -9000}, aMoment + sweep * 1min), sdc::Keep::history);
    }
    ASSERT_EQ(channel.sweeps.size(), 1U);
    const Waterfall waterfall = sdc::gathered(channel, {100'000, 101'000}, 2, 100);
    EXPECT_EQ(waterfall.sweeps, 1025U);
    EXPECT_EQ(waterfall.sweepsOfARow, 12U) << "of a history with 257 rows of 4 sweeps";
    ASSERT_EQ(waterfall.rows.size(), 86U);
    EXPECT_THAT(waterfall.rows[700 / 12].levels, ElementsAre(-9000, -3000));
    EXPECT_EQ(waterfall.rows[700 / 12].start, aMoment + 696min);
    const auto result = resultOf({channel});
    EXPECT_THAT(textOf(result), HasSubstr("2026-01-02 03:04:05 UTC, 1025 sweeps"));
}

TEST(Waterfalls, showSweepsThatWereKeptWholeBeforeOnlyTheirHistoryWas)
{
    auto channel = channelOf(1, {sweepOf({-9000, -8000}, aMoment), sweepOf({-9000, -7000}, aMoment + 1min)});
    channel.add(sweepOf({-9000, -6000}, aMoment + 2min), sdc::Keep::history);
    channel.add(sweepOf({-9000, -5000}, aMoment + 3min), sdc::Keep::history);
    EXPECT_EQ(channel.sweeps.size(), 1U);
    const Waterfall waterfall = sdc::gathered(channel, {100'000, 101'000}, 2, 10);
    ASSERT_EQ(waterfall.rows.size(), 4U);
    for (std::size_t row = 0; row < 4; ++row) {
        EXPECT_THAT(waterfall.rows[row].levels, ElementsAre(-9000, -8000 + 1000 * static_cast<int>(row)));
        EXPECT_EQ(waterfall.rows[row].start, aMoment + row * 1min);
    }
}

TEST(Waterfalls, sampleOfAScanInOnePlaceFillsTheChannel)
{
    auto result = minutes({{-9000}});
    result.channels[0].plan.step_kHz = 0;
    EXPECT_THAT(sdc::gathered(result.channels[0], {98'000, 102'000}, 5, 10).rows[0].levels,
        ElementsAre(nothing, -9000, -9000, nothing, nothing));
}

TEST(Waterfalls, hundredThousandSweepsFit)
{
    const std::vector<std::vector<std::int32_t>> sweeps(100'000, {-9000, -3000});
    const auto result = minutes(sweeps);
    const auto lines = linesOf(textOf(result, {.height = 24}));
    EXPECT_LE(lines.size(), 25U);
    EXPECT_THAT(lines.back(), testing::ContainsRegex("^each row shows the strongest levels of [0-9]+ sweeps$"));
}

TEST(Waterfalls, whatWasNotReadIsEmpty)
{
    auto result = minutes({{-9000, -8000, -7000}, {-9000, -8000, -7000}});
    result.channels[0] =
        channelOf(1, {sweepOf({-9000, -8000, -7000}), cutShort(sweepOf({-9000, -8000, -7000}), 1, sdc::Ending::stopped)});
    EXPECT_THAT(
        sdc::gathered(result.channels[0], {100'000, 102'000}, 3, 10).rows[1].levels, ElementsAre(-9000, nothing, nothing));
    EXPECT_THAT(programOf(result), HasSubstr(" NaN NaN "));
    EXPECT_THAT(textOf(result), HasSubstr("PARTIAL 4/6,\n  stopped; "));
}

TEST(Waterfalls, scaleHoldsAllThatAReceiverReads)
{
    const auto scaleOf = [](const std::vector<std::int32_t>& levels) {
        const auto result = neverSaturated(scanOf(levels));
        const sdc::Range scale = sdc::waterfallScale(sdc::chartOf({{"", result, result.channels[0]}}, {}));
        return std::pair(scale.lowest, scale.highest);
    };
    EXPECT_EQ(scaleOf({-9970, -3001}), std::pair(std::int64_t{-100}, std::int64_t{-30}));
    EXPECT_EQ(scaleOf({-9000}), std::pair(std::int64_t{-90}, std::int64_t{-85}));
    EXPECT_EQ(scaleOf({}), std::pair(std::int64_t{-100}, std::int64_t{-60})) << "some scale";
    EXPECT_EQ(scaleOf({-9000, 2147483647}), std::pair(std::int64_t{-90}, std::int64_t{60}));
}

TEST(WaterfallTexts, strongerLevelsHaveOtherSigns)
{
    const auto lines = linesOf(textOf(minutes({{-9900, -9900, -9900}, {-6200, -6200, -6200}, {-3100, -3100, -3100}})));
    EXPECT_THAT(lines[5], testing::StartsWith("03:04:05 +.."));
    EXPECT_THAT(lines[6], HasSubstr("|+++"));
    EXPECT_THAT(lines[7], HasSubstr("|@@@"));
    EXPECT_THAT(lines, testing::Contains(testing::StartsWith(". -100.0 dBm and up   : -92.2   - ")));
}

TEST(WaterfallTexts, fitTheirSize)
{
    const std::vector<std::vector<std::int32_t>> sweeps(300, {-9000, -8000, -3000});
    for (const int width : {40, 80, 200}) {
        for (const int height : {15, 16, 24, 50}) {
            const auto lines = linesOf(textOf(minutes(sweeps), {.width = width, .height = height}));
            EXPECT_TRUE(std::ranges::all_of(
                lines, [&](const std::string& line) { return line.size() <= static_cast<std::size_t>(width); }));
            EXPECT_LE(lines.size(), static_cast<std::size_t>(height + 2)) << "with the lines that are said below";
        }
    }
}

TEST(WaterfallTexts, rowsOfMoreThanADayBearTheDay)
{
    auto result = minutes({{-9000}, {-9000}, {-9000}, {-9000}, {-9000}});
    EXPECT_THAT(textOf(result), HasSubstr("\n03:08:05 +"));
    result.channels[0].sweeps[4].start = aMoment + 24h;
    EXPECT_THAT(textOf(result), HasSubstr("\n03 03:04 +"));
}

TEST(WaterfallTexts, channelsStandBelowOneAnother)
{
    const auto result = resultOf({channelOf(1, {sweepOf({-9000})}), channelOf(2, {sweepOf({-9000})})});
    const std::string text = textOf(result);
    EXPECT_THAT(text, HasSubstr("scan, channel 1\n"));
    EXPECT_THAT(text, HasSubstr("\n\ntest-link, KLM6 18G, sub-band scan, channel 2\n"));
}

TEST(WaterfallPrograms, haveColoursForLevelsAndAxesForSweepsAndTheirTimes)
{
    const std::string program = programOf(minutes({{-9970, -3001}, {-9000, -9000}}));
    EXPECT_THAT(program, HasSubstr("set cbrange [-100:-30]\n"));
    EXPECT_THAT(program, HasSubstr("set yrange [2.5:0.5]\n"));
    EXPECT_THAT(program, HasSubstr("set ytics (\"1\" 1, \"2\" 2)\n"));
    EXPECT_THAT(program, HasSubstr("\"03:04:05\" 1, \"03:05:05\" 2)\n"));
    EXPECT_THAT(program, HasSubstr("plot $levels matrix using (99.500+$1*"));
    EXPECT_THAT(program, HasSubstr(":(1+$2*1):3 with image"));
    EXPECT_THAT(program, Not(testing::ContainsRegex("rectangle[^\n]*graph 0"))) << "levels would hide the own channel";
}

TEST(WaterfallPrograms, rowsOfSeveralSweepsStandInTheirMiddle)
{
    const std::vector<std::vector<std::int32_t>> sweeps(1000, {-9000, -3000});
    const std::string program = programOf(minutes(sweeps));
    EXPECT_THAT(program, HasSubstr(":(2+$2*3):3 with image"));
    EXPECT_THAT(program, HasSubstr("set yrange [1002.5:0.5]\n"));
    EXPECT_THAT(program, HasSubstr("\"each row shows the strongest levels of 3 sweeps\""));
}

TEST(WaterfallPrograms, singleSweepIsAnImageOfTwoRows)
{
    const std::string program = programOf(minutes({{-9000, -8000}}));
    EXPECT_THAT(program, testing::ContainsRegex("levels << end\n[^\n]*-80.00[^\n]*\n[^\n]*-80.00[^\n]*\nend\n"));
    EXPECT_THAT(program, HasSubstr(":(0.75+$2*0.5):3 with image"));
    EXPECT_THAT(program, HasSubstr("set yrange [1.5:0.5]\n"));
}

TEST(WaterfallPrograms, areDrawn)
{
    for (const auto& [format, beginning] : {std::pair{PlotFormat::svg, "<?xml"}, {PlotFormat::png, "\x89PNG"}}) {
        const auto picture = written([&, kind = format](std::ostream& stream) {
            sdc::writeWaterfall(stream, minutes({{-9970, -3001}, {-9000, -9000}}), {.format = kind});
        });
        EXPECT_THAT(picture, testing::StartsWith(beginning));
    }
}
