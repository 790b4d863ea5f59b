#include "apps/sdc/formats/Formats.h"

#include "TestResults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fmt/format.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

using namespace testing_results;
using sdc::Ending;
using testing::HasSubstr;
using testing::Not;

namespace {

std::string tableOf(const sdc::ScanResult& result, const sdc::WriteOptions& options = {})
{
    return written([&](std::ostream& stream) { sdc::writeTable(stream, result, options); });
}

std::size_t widest(const std::string& text)
{
    std::istringstream lines(text);
    std::size_t width = 0;
    for (std::string line; std::getline(lines, line);) {
        width = std::max(width, line.size());
    }
    return width;
}

} // namespace

TEST(TableOutput, oneSweepIsATableWithBarsAndASummary)
{
    EXPECT_EQ(tableOf(scanOf({-9970, -4512, -3000, -9900, -9799, -9701, -9500, -9600})),
        "      MHz      dBm  -100      -80       -60       -40       -20\n"
        "  100.000   -99.70  |\n"
        "  101.000   -45.12 *|###########################\n"
        "  102.000   -30.00 *|###################################\n"
        "  103.000   -99.00 *|#\n"
        "  104.000   -97.99  |#\n"
        "  105.000   -97.01  |#\n"
        "  106.000   -95.00  |###\n"
        "  107.000   -96.00  |##\n"
        "\n"
        "disturbed: co-channel, 64.61 dB over what else is read\n"
        "  readings are above the noise and all that can leak into the filter of what the\n"
        "    scan shows elsewhere\n"
        "\n"
        "noise floor                    -99.00 dBm  lowest tenth, 2 at each end left out\n"
        "configured *    102.000 MHz    -30.00 dBm  2.000 MHz wide, average -30.00\n"
        "peak            102.000 MHz    -30.00 dBm  under 27.500 MHz\n"
        "other channels  3 free, 1 unknown\n"
        "free            104.000 MHz    -97.99 dBm  raster +1, average -97.99\n"
        "free            108.000 MHz    -96.00 dBm  raster +3, average -96.00\n"
        "free            106.000 MHz    -95.00 dBm  raster +2, average -95.00\n");
}

TEST(TableOutput, barsHaveTheirEnds)
{
    const std::string table = tableOf(scanOf({-10000, -9900, -9901, -2000, -1000}));
    for (const char* const row : {"  100.000  -100.00  |\n", "  101.000   -99.00 *|#\n", "  102.000   -99.01 *|\n"}) {
        EXPECT_THAT(table, HasSubstr(row));
    }
    const std::string longest = "|" + std::string(40, '#') + "\n";
    EXPECT_THAT(table, HasSubstr("  103.000   -20.00 *" + longest));
    EXPECT_THAT(table, HasSubstr("  104.000   -10.00  " + longest));
}

TEST(TableOutput, columnsAreAsWideAsTheirContent)
{
    const std::string one = tableOf(scanOf({-9000, -2147483647}));
    EXPECT_THAT(one, HasSubstr("      MHz           dBm  -100 "));
    EXPECT_THAT(one, HasSubstr("  100.000        -90.00  |#####\n  101.000  -21474836.47 *|\n"));
    auto channel = channelOf(1, {sweepOf({-2147483647, -9000}), sweepOf({-9000, -9000})});
    channel.sweeps[0].samples[1].frequency_kHz = channel.sweeps[1].samples[1].frequency_kHz = 4'294'967'295;
    const std::string table = tableOf(resultOf({surveyed(channel)}));
    EXPECT_THAT(table, HasSubstr("        MHz  max dBm           avg           min  -100 "));
    EXPECT_THAT(table, HasSubstr("    100.000   -90.00        -93.01  -21474836.47  |"));
    EXPECT_THAT(table, HasSubstr("4294967.295   -90.00        -90.00        -90.00  |"));
}

TEST(TableOutput, widerTablesHaveFinerBars)
{
    const std::string at103 = tableOf(scanOf({-9000, -3000, -9000}), {.width = 103});
    EXPECT_EQ(tableOf(scanOf({-9000, -3000, -9000}), {.width = 102}), tableOf(scanOf({-9000, -3000, -9000})));
    EXPECT_EQ(tableOf(scanOf({-9000, -3000, -9000}), {.width = 20}), tableOf(scanOf({-9000, -3000, -9000})));
    EXPECT_THAT(at103, HasSubstr("  -100                -80                 -60                 -40                 -20\n"));
    EXPECT_THAT(at103, HasSubstr("  101.000   -30.00 *|" + std::string(70, '#') + "\n"));
}

TEST(TableOutput, nothingIsWiderThanTheTableMayBe)
{
    const std::vector<std::int32_t> levels{-2000, -9000, -2000, -9000, -2000, -9000, -2000, -9000, -2000};
    for (const int width : {80, 100, 119, 160, 200}) {
        const auto most = static_cast<std::size_t>(width);
        EXPECT_LE(widest(tableOf(scanOf(levels), {.width = width})), most);
        EXPECT_LE(widest(tableOf(resultOf({channelOf(1, {sweepOf(levels), sweepOf(levels)})}), {.width = width})), most);
    }
}

TEST(TableOutput, rowsOfSeveralSamplesShowTheStrongest)
{
    const std::string table = tableOf(scanOf({-9000, -3000, -8000, -7000, -6000}), {.rows = 2});
    EXPECT_THAT(table, testing::StartsWith("each row: a sample, the strongest of 3\n      MHz"));
    EXPECT_THAT(table,
        HasSubstr("\n  101.000   -30.00 *|###################################\n"
                  "  104.000   -60.00  |####################\n\n"));
    EXPECT_EQ(tableOf(scanOf({-9000, -3000}), {.rows = 2}), tableOf(scanOf({-9000, -3000})));
}

TEST(TableOutput, severalSweepsShowTheirHolds)
{
    const std::string table = tableOf(resultOf({channelOf(1, {sweepOf({-4000, -9000}), sweepOf({-5000, -9000})})}));
    EXPECT_THAT(table,
        testing::StartsWith("2 sweeps, by their maximum: # average power, + up to the maximum\n"
                            "      MHz  max dBm     avg     min  -100      -80       -60       -40       -20\n"
                            "  100.000   -40.00  -42.60  -50.00  |#############################+\n"
                            "  101.000   -90.00  -90.00  -90.00 *|#####\n"));
}

TEST(TableOutput, configuredChannelHasItsMaximumAndItsAverage)
{
    const auto channel =
        channelOf(1, {sweepOf({-9000, -9000, -4000, -9000, -9000}), sweepOf({-9000, -9000, -5000, -9000, -9000})});
    EXPECT_THAT(tableOf(resultOf({channel})),
        HasSubstr("\nconfigured *    102.000 MHz    -40.00 dBm  2.000 MHz wide, average -42.60\n"));
}

TEST(TableOutput, levelsAndPeaksAreOfTheTraceChosen)
{
    const auto result = resultOf({channelOf(1, {sweepOf({-9000, -4000, -9000}), sweepOf({-9000, -5000, -9000})})});
    const std::string average = tableOf(result, {.trace = sdc::TraceKind::average});
    EXPECT_THAT(average, testing::StartsWith("2 sweeps, by their average power: # "));
    EXPECT_THAT(average, HasSubstr("      MHz  avg dBm     max     min  -100"));
    EXPECT_THAT(average, HasSubstr("\n  101.000   -42.60  -40.00  -50.00 *|"));
    EXPECT_THAT(average, HasSubstr("\npeak            101.000 MHz    -42.60 dBm"));
    const std::string min = tableOf(result, {.trace = sdc::TraceKind::min});
    EXPECT_THAT(min, testing::StartsWith("2 sweeps, by their minimum: # "));
    EXPECT_THAT(min, HasSubstr("      MHz  min dBm     max     avg  -100"));
    EXPECT_THAT(min, HasSubstr("\n  101.000   -50.00  -40.00  -42.60 *|"));
    EXPECT_THAT(min, HasSubstr("\npeak            101.000 MHz    -50.00 dBm"));
    EXPECT_THAT(tableOf(result), HasSubstr("\npeak            101.000 MHz    -40.00 dBm"));
}

TEST(TableOutput, widthThatIsResolvedIsShown)
{
    auto channel = channelOf(1, {sweepOf({-9000, -3300, -3000, -3300, -9000})});
    channel.receiver.filterWidth_kHz = 2000.0;
    EXPECT_THAT(tableOf(resultOf({channel})), HasSubstr("  2.000 MHz wide\n"));
}

TEST(TableOutput, rowOfSeveralFrequenciesIsThatOfTheStrongestByTheTraceChosen)
{
    const auto result = resultOf({channelOf(1, {sweepOf({-4000, -6000}), sweepOf({-5000, -2000})})});
    EXPECT_THAT(tableOf(result, {.rows = 1}), HasSubstr("\n  101.000   -20.00  -23.01  -60.00 *|"));
    EXPECT_THAT(
        tableOf(result, {.rows = 1, .trace = sdc::TraceKind::min}), HasSubstr("\n  100.000   -50.00  -40.00  -42.60  |"));
}

TEST(TableOutput, onATerminalHasAsManyRowsAsFitAndSaysHowToSeeAll)
{
    std::vector<std::int32_t> levels(500, -9000);
    for (std::size_t index = 0; index < levels.size(); index += 2) {
        levels[index] = -9010;
    }
    const std::string table = tableOf(scanOf(levels), {.width = 80, .height = 40});
    EXPECT_LT(std::ranges::count(table, '\n'), 40) << "a line is the prompt's";
    EXPECT_GE(std::ranges::count(table, '|'), 18);
    EXPECT_THAT(table, testing::StartsWith("each row: a sample, the strongest of 17; --rows 0 shows all\n"));
    EXPECT_EQ(tableOf(scanOf({-9000, -3000}), {.height = 40}), tableOf(scanOf({-9000, -3000})));
    EXPECT_GE(std::ranges::count(tableOf(scanOf(levels), {.height = 3}), '|'), 8);
}

TEST(TableOutput, sweepsThatAreForgottenAreStillCounted)
{
    auto channel = channelOf(1, {sweepOf({-4000, -9000})});
    channel.add(cutShort(sweepOf({-5000, -9000}), 1, Ending::failed, "tuning failed"), sdc::Keep::last);
    channel.add(cutShort(sweepOf({-5000, -9000}), 1, Ending::failed, "tuning failed"), sdc::Keep::last);
    EXPECT_THAT(tableOf(resultOf({channel})), HasSubstr("3 sweeps, by "));
    EXPECT_THAT(tableOf(resultOf({channel})), HasSubstr("\n2 failed; the last: PARTIAL 1/2, failed: tuning failed\n"));
    channel.add(sweepOf({-6000, -9000}), sdc::Keep::last);
    EXPECT_THAT(tableOf(resultOf({channel})), HasSubstr("\n2 failed\n"));
    EXPECT_THAT(tableOf(resultOf({channel})), HasSubstr("  100.000   -40.00  -45.19  -60.00  |"));
}

TEST(TableOutput, severalChannelsHaveHeadlines)
{
    const std::string table = tableOf(resultOf({channelOf(3, {sweepOf({-4000})}), channelOf(5, {sweepOf({-5000})})}));
    EXPECT_THAT(table, testing::StartsWith("channel 3: KLM6 18G\n      MHz"));
    EXPECT_THAT(table, HasSubstr("\n\nchannel 5: KLM6 18G\n      MHz"));
}

TEST(TableOutput, resultThatIsNotCompleteSaysSoFirst)
{
    auto channel = channelOf(1, {sweepOf({-4000, -5000, -6000})});
    channel.sweeps[0] = cutShort(channel.sweeps[0], 2, Ending::stopped);
    EXPECT_THAT(tableOf(resultOf({channel})), testing::StartsWith("PARTIAL 2/3, stopped\n"));
    channel.sweeps[0] = cutShort(channel.sweeps[0], 1, Ending::failed, "tuning failed");
    EXPECT_THAT(tableOf(resultOf({channel})), testing::StartsWith("PARTIAL 1/3, failed: tuning failed\n"));
    channel.sweeps[0] = cutShort(channel.sweeps[0], 3, Ending::failed, "not put back");
    EXPECT_THAT(tableOf(resultOf({channel})), testing::StartsWith("3/3, failed: not put back\n"));
    channel.sweeps.insert(channel.sweeps.begin(), sweepOf({-4000, -5000, -6000}));
    EXPECT_THAT(tableOf(resultOf({surveyed(channel)})),
        HasSubstr("the maximum\n1 failed; the last: 3/3, failed: not put back\n      MHz"));
}

TEST(TableOutput, foreignTextsAreShownSoThatNoTerminalObeysThem)
{
    auto channel = channelOf(1, {sweepOf({-4000})});
    channel.sweeps[0] = cutShort(channel.sweeps[0], 1, Ending::failed, "not \xC2\x9B\nput back");
    channel.unitTypeText = "\033[2J";
    const std::string table = tableOf(resultOf({channel, channelOf(2, {sweepOf({-4000})})}));
    EXPECT_THAT(table, HasSubstr("channel 1: \\x1B[2J\n1/1, failed: not \\u009B\\x0Aput back\n"));
}

TEST(TableOutput, scanWithoutSamplesHasNoSummary)
{
    EXPECT_EQ(tableOf(scanOf({})),
        "      MHz      dBm  -100      -80       -60       -40       -20\n"
        "\n"
        "cannot tell\n"
        "  no sample was taken in the channel\n"
        "  would help: scan the channel\n");
}

TEST(TableOutput, summaryShowsTheFirstFewAndCountsTheOthers)
{
    std::vector<std::int32_t> levels{-9500, -9510, -9500};
    for (std::int32_t peak = 0; peak < 7; ++peak) {
        levels.insert(levels.end(), {-9500, -4000 - peak * 100});
    }
    for (std::int32_t quiet = 0; quiet < 12; ++quiet) {
        levels.push_back(-9500 + quiet);
    }
    const std::string table = tableOf(scanOf(levels), {.rows = 100});
    EXPECT_THAT(table, HasSubstr("-44.00 dBm  under 27.500 MHz\n              and 2 weaker peaks\nother channels"));
    EXPECT_THAT(table, Not(HasSubstr("-45.00 dBm  under")));
    const std::regex line("\nfree ");
    EXPECT_EQ(std::distance(std::sregex_iterator(table.begin(), table.end(), line), std::sregex_iterator()), 3);
}

namespace {

/// Channels of 2 MHz that a filter of 1.5 MHz tells apart, in the second of two sweeps.
sdc::ScanResult busyBand()
{
    std::vector<std::int32_t> levels(41, -9970);
    for (const std::size_t sample : {8U, 12U, 16U, 20U, 24U}) {
        levels[sample] = -5000 - static_cast<std::int32_t>(sample) * 10;
    }
    std::vector<std::int32_t> before = levels;
    for (const std::size_t sample : {16U, 20U}) {
        before[sample] = -9970;
    }
    auto channel = channelOf(1, {sweepOf(before), sweepOf(levels)});
    channel.receiver.filterWidth_kHz = 1500.0;
    return resultOf({surveyed(channel)});
}

std::vector<std::string> linesWith(const std::string& what, const std::string& table)
{
    std::vector<std::string> found;
    std::istringstream lines(table);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(what, 0) == 0) {
            found.push_back(line);
        }
    }
    return found;
}

} // namespace

TEST(TableOutput, namesTheChannelsInUseTheStrongestFirst)
{
    const std::string table = tableOf(busyBand());
    EXPECT_THAT(linesWith("occupied", table),
        testing::ElementsAre("occupied        108.000 MHz    -50.80 dBm  raster +3, on 100.00 % of 2 sweeps",
            "occupied        112.000 MHz    -51.20 dBm  raster +5, on 100.00 % of 2 sweeps",
            "occupied        124.000 MHz    -52.40 dBm  raster +11, on 100.00 % of 2 sweeps"));
    EXPECT_THAT(linesWith("intermittent", table),
        testing::ElementsAre("intermittent    116.000 MHz    -51.60 dBm  raster +7, on 50.00 % of 2 sweeps",
            "intermittent    120.000 MHz    -52.00 dBm  raster +9, on 50.00 % of 2 sweeps"));
}

TEST(TableOutput, listOfChannelsIsShortWhereTheTableIsAndSaysHowToSeeAll)
{
    const std::string all = tableOf(busyBand());
    EXPECT_GT(linesWith("free", all).size(), 3U);
    EXPECT_THAT(all, Not(HasSubstr(" more ")));
    for (const sdc::WriteOptions& options : {sdc::WriteOptions{.rows = 5}, sdc::WriteOptions{.width = 80, .height = 24}}) {
        const std::string table = tableOf(busyBand(), options);
        EXPECT_EQ(linesWith("free", table).size(), 3U);
        EXPECT_EQ(linesWith("occupied", table).size(), 3U);
        EXPECT_THAT(table,
            testing::EndsWith(
                fmt::format("              and {} more free; --rows 0 shows all\n", linesWith("free", all).size() - 3)));
    }
}

TEST(TableOutput, readingsThatAreNoLevelsHaveNoBar)
{
    const std::string table = tableOf(scanOf({-9000, 0, -9000, 999999}));
    EXPECT_THAT(
        table, HasSubstr("\n  101.000     0.00 *|refused\n  102.000   -90.00 *|#####\n  103.000  9999.99 *|no level\n"));
    const std::string few = tableOf(scanOf({-9000, 0, 0, 0}), {.rows = 2});
    EXPECT_THAT(few, HasSubstr("\n  100.000   -90.00  |#####\n  102.000     0.00 *|refused\n"));
    EXPECT_THAT(few, Not(HasSubstr("peak")));
}

TEST(TableOutput, ofReadingsThatWereAllRefusedSaysSo)
{
    EXPECT_EQ(tableOf(resultOf({channelOf(1, {sweepOf({0, 0}), sweepOf({0, 0})})})),
        "4 of 4 readings were refused by the radio and stand as 0.00 dBm\n"
        "2 sweeps, by their maximum: # average power, + up to the maximum\n"
        "      MHz  max dBm     avg     min  -100      -80       -60       -40       -20\n"
        "\n"
        "cannot tell\n"
        "  no reading in the channel is one that a receiver can give\n"
        "  would help: check the receiver\n");
}

TEST(TableOutput, oddReadingsAreToldFirst)
{
    EXPECT_THAT(tableOf(scanOf({-4512, -4512, -4512, -4512})),
        testing::StartsWith("all 4 readings are equal, -45.12 dBm: the receiver may be dead\n"));
}

TEST(TableOutput, coloursAreNeverTheOnlySign)
{
    auto channel = channelOf(1, {sweepOf({-4000, -9900, -3000, -9900, -9900, -9301, -9300, -9500})});
    channel.sweeps[0] = cutShort(channel.sweeps[0], 8, Ending::failed, "not put back");
    const std::string plain = tableOf(resultOf({channel}));
    const std::string colored = tableOf(resultOf({channel}), {.isColored = true});
    EXPECT_THAT(plain, Not(HasSubstr("\033")));
    EXPECT_EQ(std::regex_replace(colored, std::regex("\033\\[[0-9;]*m"), ""), plain);
    EXPECT_THAT(colored, HasSubstr("\033[1;31m8/8, failed: not put back\033[0m\n\033[1m      MHz"));
    EXPECT_THAT(colored, HasSubstr("-30.00 *|\033[32m###################################\033[0m\n"))
        << "the configured channel";
    EXPECT_THAT(colored, HasSubstr("-93.00  |\033[33m####\033[0m\n")) << "6 dB above the floor";
    EXPECT_THAT(colored, HasSubstr("-93.01  |###\n"));
}
