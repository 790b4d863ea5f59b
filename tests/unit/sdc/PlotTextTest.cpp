// Plots as text, read back from what is drawn.

#include "apps/sdc/plot/Looks.h"
#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/result/Analysis.h"
#include "apps/sdc/result/Raster.h"

#include "TestResults.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <map>
#include <ostream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using namespace testing_results;
using sdc::PlotFormat;
using sdc::PlotOptions;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

std::string textOf(const sdc::ScanResult& result, PlotOptions options = {})
{
    options.format = PlotFormat::text;
    return written([&](std::ostream& stream) { sdc::writePlot(stream, result, options); });
}

std::string overlayOf(const std::vector<sdc::Plotted>& results, PlotOptions options = {})
{
    options.format = PlotFormat::text;
    return written([&](std::ostream& stream) { sdc::writeOverlay(stream, results, options); });
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

/// The labels of levels, by the rows where they stand.
std::map<int, double> scaleOf(const std::vector<std::string>& lines)
{
    constexpr std::size_t left = 6; // side of the frame
    std::map<int, double> scale;
    for (int row = 2; row < static_cast<int>(lines.size()); ++row) {
        const std::string& line = lines[static_cast<std::size_t>(row)];
        const bool isLabelled = line.size() > left && line[left] == '+' && line.find_first_not_of(" -0123456789") == left;
        if (isLabelled) {
            scale[row] = std::stod(line);
        }
    }
    return scale;
}

/// A sign's rows in a column of the plot.
std::vector<int> rowsOf(const std::vector<std::string>& lines, std::size_t column, char sign)
{
    std::vector<int> rows;
    for (int row = 2; row < static_cast<int>(lines.size()); ++row) {
        const std::string& line = lines[static_cast<std::size_t>(row)];
        if (line.size() > column && line[column] == sign && !line.starts_with("*")) {
            rows.push_back(row);
        }
    }
    return rows;
}

/// Where a level belongs between the first and the last label.
double placeOf(const std::map<int, double>& scale, double level_dBm)
{
    const auto [top, highest] = *scale.begin();
    const auto [bottom, lowest] = *scale.rbegin();
    return top + (highest - level_dBm) * (bottom - top) / (highest - lowest);
}

/// Of the own channel, those below have a carrier each, those above have nothing.
sdc::ScanResult threeChannels(int onEachSide = 1)
{
    std::vector<std::int32_t> levels;
    for (int channel = -onEachSide; channel <= onEachSide; ++channel) {
        levels.push_back((channel < 0 ? -4000 : -9480) + channel % 3 * 10);
    }
    auto result = scanOf(levels);
    sdc::ChannelResult& channel = result.channels[0];
    channel.receiver = {1000.0, 20.0, 60.0, -20.0};
    channel.plan.channelSpacing_kHz = 1000;
    channel.plan.rxFrequency_kHz = 100'000 + static_cast<std::uint32_t>(onEachSide) * 1000;
    return surveyed(std::move(result));
}

} // namespace

TEST(TextPlots, labelsAndSamplesStandOnTheRightRowsInEverySize)
{
    for (int height = 15; height <= 60; ++height) {
        for (const int width : {40, 41, 79, 80, 120, 200}) {
            for (const std::int32_t level : {-9500, -7350, -4512, -3000}) {
                const auto lines = linesOf(textOf(scanOf({level, level, level}), {.width = width, .height = height}));
                const auto scale = scaleOf(lines);
                ASSERT_GE(scale.size(), 3U) << width << "x" << height;
                for (const auto& [row, label] : scale) {
                    ASSERT_LE(std::abs(row - placeOf(scale, label)), 0.5) << width << "x" << height << ", " << label;
                }
                const auto rows = rowsOf(lines, static_cast<std::size_t>(width) / 2, '*');
                ASSERT_EQ(rows.size(), 1U) << width << "x" << height << "\n" << testing::PrintToString(lines);
                ASSERT_LE(std::abs(rows[0] - placeOf(scale, level / 100.0)), 0.5) << width << "x" << height << ", " << level;
            }
        }
    }
}

TEST(TextPlots, endsOfTheScaleAreTheFirstAndTheLastRowOfTheFrame)
{
    for (int height = 15; height <= 60; ++height) {
        const auto lines = linesOf(textOf(scanOf({-9000, -3000, -9000}), {.height = height}));
        const auto scale = scaleOf(lines);
        EXPECT_THAT(lines.at(static_cast<std::size_t>(scale.begin()->first)), testing::ContainsRegex("^ +-?[0-9]+ [+]-"));
        EXPECT_THAT(lines.at(static_cast<std::size_t>(scale.rbegin()->first) + 1), testing::StartsWith(" MHz "));
    }
}

TEST(TextPlots, samplesStandInTheRightColumns)
{
    for (int width = 40; width <= 200; ++width) {
        // Of 100 to 106 MHz, half a MHz more at both ends: the peak is at 102.
        auto result = scanOf({-9000, -9000, -3000, -9000, -9000, -9000, -9000});
        result.channels[0].receiver.filterWidth_kHz = 999.0; // no lines between the samples
        const auto lines = linesOf(textOf(result, {.width = width}));
        const auto top =
            std::ranges::find_if(lines, [](const std::string& line) { return line.find('*') != std::string::npos; });
        ASSERT_NE(top, lines.end());
        const double place = 7.0 + (width - 9) * 2.5 / 7.0;
        EXPECT_LE(std::abs(static_cast<double>(top->find('*')) - place), 0.5) << width;
        EXPECT_THAT(lines, testing::Contains(testing::StartsWith(" MHz ")));
    }
}

TEST(TextPlots, fitTheirSize)
{
    for (const int width : {40, 80, 120, 200}) {
        for (const int height : {15, 16, 24, 50}) {
            const std::string text = textOf(scanOf({-9000, -9000, -3000, -9000, -9000}), {.width = width, .height = height});
            const auto lines = linesOf(text);
            for (const std::string& line : lines) {
                EXPECT_LE(line.size(), static_cast<std::size_t>(width));
                EXPECT_TRUE(line.empty() || line.back() != ' ');
            }
            EXPECT_EQ(lines.size(), static_cast<std::size_t>(height));
            EXPECT_THAT(text, HasSubstr("test-link, "));
            EXPECT_THAT(text, Not(HasSubstr("\033")));
        }
    }
    EXPECT_EQ(linesOf(textOf(scanOf({-9000}), {.width = -5, .height = -5})).size(), 15U);
    EXPECT_EQ(linesOf(textOf(scanOf({-9000}), {.height = 501})).size(), 500U);
    EXPECT_EQ(linesOf(textOf(scanOf({-9000}))).size(), 24U);
}

TEST(TextPlots, tracesAreToldApartByTheirSigns)
{
    const auto result = resultOf({channelOf(1, {sweepOf({-3000, -3000, -3000}), sweepOf({-8000, -8000, -8000})})});
    const auto lines = linesOf(textOf(result));
    for (const char sign : {'*', '^', 'v'}) {
        EXPECT_GE(rowsOf(lines, 40, sign).size(), 1U) << sign;
    }
    EXPECT_THAT(lines, testing::Contains("^ max hold   * average power   v min hold   - lowest reading -99.70 dBm"));
}

TEST(TextPlots, traceChosenIsInFrontAndBearsThePeaks)
{
    // Alone the third sweep has something at 103 MHz; all have the same at 101.
    const std::vector<std::int32_t> quiet{-9000, -8000, -9000, -9000, -9000, -9000, -9000};
    const std::vector<std::int32_t> burst{-9000, -8000, -9000, -3000, -9000, -9000, -9000};
    const auto result = resultOf({channelOf(1, {sweepOf(quiet), sweepOf(quiet), sweepOf(burst)})});
    const auto linesWith = [&](sdc::TraceKind trace) { return linesOf(textOf(result, {.trace = trace})); };
    const auto ofMax = linesWith(sdc::TraceKind::max);
    EXPECT_THAT(ofMax, testing::Contains(HasSubstr(" 103 ")));
    EXPECT_TRUE(rowsOf(ofMax, 18, '*').empty()) << "where all traces have the same level";
    const auto ofMin = linesWith(sdc::TraceKind::min);
    EXPECT_THAT(ofMin, Not(testing::Contains(HasSubstr(" 103 "))));
    EXPECT_EQ(rowsOf(ofMin, 18, 'v').size(), 1U);
    EXPECT_THAT(ofMin, testing::Contains("v min hold   ^ max hold   * average power   - lowest reading -99.70 dBm"));
}

TEST(TextPlots, saysTheSameInColourAndWithout)
{
    const auto result = resultOf({channelOf(1, {sweepOf({-3000, -9000, -3000}), sweepOf({-8000, -8000, -8000})})});
    const std::string plain = textOf(result, {.limit = -8500});
    const std::string colored = textOf(result, {.isColored = true, .limit = -8500});
    EXPECT_THAT(colored, HasSubstr("\033[38;5;27m*\033[0m average power"));
    EXPECT_EQ(std::regex_replace(colored, std::regex("\033\\[[0-9;]*m"), ""), plain);
}

TEST(TextPlots, coloursAreSeenOnBlackAndOnWhite)
{
    const auto luminance = [](int color) {
        const auto part = [&](int weight) {
            const int step = (color - 16) / weight % 6;
            const double value = (step == 0 ? 0 : 55 + 40 * step) / 255.0;
            return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(36) + 0.7152 * part(6) + 0.0722 * part(1);
    };
    std::vector<sdc::Look> looks{sdc::levelLook, sdc::maxLook, sdc::minLook, sdc::limitLook, sdc::lowestLook};
    looks.insert(looks.end(), sdc::overlayLooks.begin(), sdc::overlayLooks.end());
    for (const sdc::Look& look : looks) {
        ASSERT_GE(look.ansi, 16) << "others look as each terminal likes";
        EXPECT_GE((luminance(look.ansi) + 0.05) / 0.05, 3.9) << look.ansi << " on black";
        EXPECT_GE(1.05 / (luminance(look.ansi) + 0.05), 3.9) << look.ansi << " on white";
    }
}

TEST(TextPlots, frameAndTextsHaveTheColourOfTheTerminal)
{
    const std::string colored = textOf(scanOf({-9000, -9000, -9000}), {.isColored = true});
    EXPECT_THAT(colored, HasSubstr("\n  -50 +--"));
    EXPECT_THAT(colored, HasSubstr("\n      |"));
}

TEST(TextPlots, everyOverlaidResultHasASignOfItsOwn)
{
    std::set<char> signs;
    for (const sdc::Look& look : sdc::overlayLooks) {
        signs.insert(look.sign);
    }
    EXPECT_EQ(signs.size(), sdc::mostPlotted);
    const auto a = scanOf({-9000, -9000, -9000});
    const auto b = scanOf({-5000, -5000, -5000});
    const auto lines = linesOf(overlayOf({{"a.json", a}, {"b.json", b}}));
    EXPECT_EQ(rowsOf(lines, 40, '*').size(), 1U);
    EXPECT_EQ(rowsOf(lines, 40, 'o').size(), 1U);
    EXPECT_EQ(lines[0], "test-link, KLM6 18G, sub-band scan, 2 results");
    EXPECT_EQ(lines[lines.size() - 2], "* a.json, 2026-01-02 03:04:05 UTC   o b.json, 2026-01-02 03:04:05 UTC");
}

TEST(TextPlots, overlayHasAPlotForEachChannelOfAnyResult)
{
    const auto a = resultOf({channelOf(1, {sweepOf({-9000})}), channelOf(2, {sweepOf({-9000})})});
    const auto b = resultOf({channelOf(3, {sweepOf({-9000})}), channelOf(2, {sweepOf({-9000})})});
    const std::string text = overlayOf({{"a.json", a}, {"b.json", b}});
    EXPECT_THAT(text, HasSubstr("channel 1 is not in b.json\n"));
    EXPECT_THAT(text, HasSubstr("channel 2, 2 results\n"));
    EXPECT_THAT(text, HasSubstr("channel 3 is not in a.json\n"));
    EXPECT_THAT(text, Not(HasSubstr("channel 2 is not")));
}

TEST(TextPlots, overlaySaysOfEachResultWhatIsMissing)
{
    auto cut = resultOf({channelOf(1, {cutShort(sweepOf({-9000, -9000, -9000}), 1, sdc::Ending::stopped)})});
    cut.channels[0].plan = planOf(3);
    cut = surveyed(std::move(cut));
    const std::string text = overlayOf({{"a.json", cut}, {"b.json", cut}});
    EXPECT_THAT(text, HasSubstr("\n* a.json, 2026-01-02 03:04:05 UTC, PARTIAL 1/3, stopped\n"));
    EXPECT_THAT(text, HasSubstr("\no b.json, 2026-01-02 03:04:05 UTC, PARTIAL 1/3, stopped\n"));
}

TEST(TextPlots, overlayShowsTheTraceChosen)
{
    const auto a = scanOf({-9000, -9000, -9000});
    const auto b = resultOf({channelOf(1, {sweepOf({-3000, -3000, -3000}), sweepOf({-8000, -8000, -8000})})});
    const std::string text = overlayOf({{"a.json", a}, {"b.json", b}}, {.trace = sdc::TraceKind::min});
    EXPECT_THAT(text, HasSubstr("o b.json, 2026-01-02 03:04:05 UTC, 2 sweeps, min hold"));
    const auto lines = linesOf(text);
    EXPECT_LE(std::abs(rowsOf(lines, 40, 'o').at(0) - placeOf(scaleOf(lines), -80.0)), 0.5);
}

TEST(TextPlots, overlayShowsTheStrongestOfSeveralSweeps)
{
    const auto a = scanOf({-9000, -9000, -9000});
    const auto b = resultOf({channelOf(1, {sweepOf({-3000, -3000, -3000}), sweepOf({-8000, -8000, -8000})})});
    const std::string text = overlayOf({{"a.json", a}, {"b.json", b}});
    EXPECT_THAT(text, HasSubstr("o b.json, 2026-01-02 03:04:05 UTC, 2 sweeps, max hold"));
    const auto lines = linesOf(text);
    EXPECT_LE(std::abs(rowsOf(lines, 40, 'o').at(0) - placeOf(scaleOf(lines), -30.0)), 0.5);
}

TEST(TextPlots, pointsThatAreNotConnectedStandOnStems)
{
    auto result = scanOf({-9000, -3000, -9000});
    result.channels[0].receiver.filterWidth_kHz = 999.0;
    const auto lines = linesOf(textOf(result));
    const std::size_t column = 43; // of the sample in the middle
    EXPECT_EQ(rowsOf(lines, column, '*').size(), 1U);
    EXPECT_GT(rowsOf(lines, column, '|').size(), 5U);
    EXPECT_TRUE(rowsOf(lines, column - 3, '*').empty());
}

TEST(TextPlots, whatTheScaleDoesNotReachIsAtItsEnds)
{
    const std::string text = textOf(neverSaturated(scanOf({-9000, 2147483647, -9000, -9000, -2147483647 - 1, -9000})));
    const auto lines = linesOf(text);
    const auto scale = scaleOf(lines);
    EXPECT_THAT(lines[static_cast<std::size_t>(scale.begin()->first)], HasSubstr("^"));
    EXPECT_THAT(lines[static_cast<std::size_t>(scale.rbegin()->first)], HasSubstr("v"));
    EXPECT_THAT(text, HasSubstr("\n^ above the plot, the strongest level: 21474836.47 dBm at 101.000 MHz\n"));
    EXPECT_THAT(text, HasSubstr("\nv below the plot, the weakest level: -21474836.48 dBm at 104.000 MHz\n"));
    EXPECT_EQ(scale.begin()->second, -50.0) << "the scale is that of the others";
}

TEST(TextPlots, peaksBearTheirFrequencyAboveThem)
{
    const auto lines = linesOf(textOf(scanOf({-9000, -9000, -9000, -3000, -9000, -9000, -9000})));
    const auto label =
        std::ranges::find_if(lines, [](const std::string& line) { return line.find(" 103 ") != std::string::npos; });
    ASSERT_NE(label, lines.end());
    EXPECT_THAT(*std::next(label), HasSubstr("*"));
}

TEST(TextPlots, marksAndOwnChannelsAreDrawn)
{
    const auto lines = linesOf(textOf(scanOf({-9000, -9000, -9000, -9000, -9000, -9000, -9000}),
        {.marks_kHz = {104'000}, .limit = -5000, .duplex_kHz = 4000}));
    const auto top = static_cast<std::size_t>(scaleOf(lines).begin()->first);
    const std::string& below = lines[top + 1];
    EXPECT_EQ(std::ranges::count(below, ':'), 3) << "both edges of the receive channel, one of the other is the plot's end";
    EXPECT_EQ(std::ranges::count(below, '!'), 1);
    EXPECT_EQ(lines[top][below.find('!')], '1');
    EXPECT_THAT(lines, testing::Contains(HasSubstr("RX")));
    EXPECT_THAT(lines, testing::Contains(HasSubstr("TX")));
    EXPECT_THAT(lines, testing::Contains(testing::ContainsRegex("=====")));
    EXPECT_THAT(lines, testing::Contains(HasSubstr("= limit -50.00 dBm")));
}

TEST(TextPlots, rasterIsNumberedAbove)
{
    const auto lines = linesOf(textOf(scanOf({-9000, -9000, -9000, -9000, -9000, -9000, -9000})));
    EXPECT_THAT(lines[2], testing::ContainsRegex("^ +-1 +0 +[+]1 +[+]2$"));
    EXPECT_THAT(lines[4], testing::ContainsRegex("^  -50 [+]-+:-+:-+[+]-+[+]$"));
}

TEST(TextPlots, lettersAboveTheFrameTellWhatIsInEachChannel)
{
    const sdc::ScanResult result = threeChannels();
    const auto lines = linesOf(textOf(result));
    const auto raster = sdc::analyse(result.channels[0]).raster;
    ASSERT_EQ(raster.size(), 3U);
    ASSERT_EQ(raster[0].state, sdc::RasterState::occupied);
    ASSERT_EQ(raster[2].state, sdc::RasterState::free);
    EXPECT_THAT(lines[3], testing::ContainsRegex("^ dBm +O +R +F$"));
    for (const std::size_t label : {lines[2].find("-1"), lines[2].find('0'), lines[2].find("+1")}) {
        EXPECT_NE(lines[3].substr(label, 2).find_first_of("ORF"), std::string::npos) << "below the channel's number";
    }
    EXPECT_THAT(lines, testing::Contains("R own channel   O occupied   F free"));
    EXPECT_THAT(textOf(result, {.isColored = true}), HasSubstr("\033[38;5;196mO\033[0m occupied"));
}

TEST(TextPlots, lettersThatChannelsShareTellTheWorst)
{
    sdc::ScanResult result = threeChannels(60);
    const auto lines = linesOf(textOf(result, {.width = 40}));
    EXPECT_THAT(lines, testing::Contains(testing::ContainsRegex("^ dBm +O+RF+$")));
    EXPECT_THAT(lines, testing::Contains("channels that share a letter have that"));
    EXPECT_THAT(linesOf(textOf(result, {.width = 200})), Not(testing::Contains(HasSubstr("share a letter"))));
}

TEST(TextPlots, lettersGiveWayWhereThereIsNoRoom)
{
    const auto lines = linesOf(textOf(threeChannels(), {.width = 40, .height = 15}));
    EXPECT_THAT(lines, Not(testing::Contains(HasSubstr("own channel"))));
    EXPECT_EQ(lines.size(), 15U);
}

TEST(TextPlots, scanOfOneChannelHasNoLetters)
{
    auto result = scanOf({-9000});
    result.channels[0].plan.rxFrequency_kHz = 100'000;
    EXPECT_THAT(textOf(surveyed(std::move(result))), Not(HasSubstr("own channel")));
}

TEST(TextPlots, titlesThatAreTooLongAreBroken)
{
    auto result = scanOf({-9000, -9000, -9000});
    result.scenario = "a link with a long name";
    const auto lines = linesOf(textOf(result, {.width = 40}));
    EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 4),
        ElementsAre("a link with a long name,", "  KLM6 18G, sub-band scan", "2026-01-02 03:04:05 UTC; configured",
            "  channel: cannot tell"));
}

TEST(TextPlots, withoutSamplesSaySo)
{
    EXPECT_THAT(textOf(scanOf({})), HasSubstr("no levels"));
}

TEST(TextPlots, lettersOfOtherLanguagesArriveWhole)
{
    auto result = scanOf({-9000});
    result.scenario = "Z\u00FCrich";
    EXPECT_THAT(textOf(result), testing::StartsWith("Z\u00FCrich, KLM6 18G"));
}
