#include "apps/sdc/compare/Comparison.h"
#include "apps/sdc/compare/ComparisonForm.h"
#include "apps/sdc/compare/ComparisonText.h"
#include "apps/sdc/result/ResultFile.h"
#include "support/FieldsJson.h"
#include "tests/support/SchemaValidator.h"

#include "TestResults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>

using namespace testing_results;
using nlohmann::json;
using sdc::ScanResult;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

using Levels = std::vector<std::int32_t>;

sdc::Comparison compared(const ScanResult& before, const ScanResult& after, std::optional<double> threshold_dB = 3.0,
    sdc::TraceKind trace = sdc::usualTrace)
{
    return sdc::compare({"a.json", before}, {"b.json", after}, {trace, threshold_dB});
}

sdc::ChannelComparison channelCompared(
    const ScanResult& before, const ScanResult& after, std::optional<double> threshold_dB = 3.0)
{
    return compared(before, after, threshold_dB).channels.at(0);
}

std::string textOf(const sdc::Comparison& comparison)
{
    return written([&](std::ostream& stream) { sdc::writeComparison(stream, comparison); });
}

json jsonOf(const sdc::Comparison& comparison)
{
    return json::parse(written([&](std::ostream& stream) { sdc::writeComparisonJson(stream, comparison); }));
}

std::string errorOf(const ScanResult& before, const ScanResult& after)
{
    try {
        static_cast<void>(compared(before, after));
        return "";
    } catch (const sdc::ResultError& error) {
        return error.what();
    }
}

/// One sweep of one channel from a frequency on, in other steps than usual.
ScanResult stepped(const Levels& levels, std::uint32_t lowest_kHz, std::uint32_t step_kHz)
{
    auto result = scanOf(levels);
    result.channels[0].sweeps[0].samples = samplesOf(levels, lowest_kHz, step_kHz);
    result.channels[0].plan.step_kHz = step_kHz;
    return surveyed(std::move(result));
}

Levels flat(std::size_t count, std::int32_t level = -9000)
{
    return Levels(count, level);
}

Levels with(Levels levels, std::size_t index, const Levels& others)
{
    std::copy(others.begin(), others.end(), levels.begin() + static_cast<std::ptrdiff_t>(index));
    return levels;
}

auto rangeOf(
    std::uint32_t lowest_kHz, std::uint32_t highest_kHz, std::uint32_t top_kHz, std::int32_t before, std::int32_t after)
{
    return AllOf(Field(&sdc::RangeChange::frequency_kHz, top_kHz), Field("before", &sdc::RangeChange::before, before),
        Field("after", &sdc::RangeChange::after, after),
        Field(&sdc::RangeChange::range,
            AllOf(Field(&sdc::FrequencyRange::lowest_kHz, lowest_kHz), Field(&sdc::FrequencyRange::highest_kHz, highest_kHz),
                Field(&sdc::FrequencyRange::frequencies, (highest_kHz - lowest_kHz) / 1000 + 1))));
}

auto peakAt(std::uint32_t frequency_kHz, std::int32_t before, std::int32_t after)
{
    return AllOf(Field(&sdc::PeakChange::frequency_kHz, frequency_kHz), Field("before", &sdc::PeakChange::before, before),
        Field("after", &sdc::PeakChange::after, after));
}

} // namespace

TEST(Comparisons, resultIsTheSameAsItself)
{
    const auto result = scanOf(with(flat(11), 5, {-3000}));
    for (const std::optional<double> threshold_dB : {std::optional<double>(0.0), std::optional<double>()}) {
        const auto comparison = compared(result, result, threshold_dB);
        const auto& channel = comparison.channels.at(0);
        EXPECT_FALSE(comparison.isDifferent());
        EXPECT_EQ(channel.compared, 11U);
        EXPECT_TRUE(channel.ranges.empty() && channel.newPeaks.empty() && channel.vanishedPeaks.empty()
            && channel.onlyBefore.empty() && channel.onlyAfter.empty());
    }
}

TEST(Comparisons, onlyMoreThanTheThresholdIsAChange)
{
    EXPECT_FALSE(compared(scanOf({-9000, -8999}), scanOf({-8700, -9299})).isDifferent());
    EXPECT_TRUE(compared(scanOf({-9000, -8999}), scanOf({-8699, -8999})).isDifferent());
    EXPECT_TRUE(compared(scanOf({-9000, -8999}), scanOf({-9000, -9300})).isDifferent());
    EXPECT_TRUE(compared(scanOf({-9000}), scanOf({-8999}), 0.0).isDifferent());
    for (const double threshold_dB : {0.57, 1.1, 4.35}) { // no binary fractions
        const auto hundredths = static_cast<std::int32_t>(std::lround(threshold_dB * 100.0));
        EXPECT_FALSE(compared(scanOf({-8999}), scanOf({-8999 + hundredths}), threshold_dB).isDifferent()) << threshold_dB;
    }
}

TEST(Comparisons, noLevelsAreTooFarApart)
{
    constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    const auto extremes = neverSaturated(scanOf({-highest, highest, -highest}));
    const auto others = neverSaturated(scanOf({highest, -highest, highest}));
    EXPECT_FALSE(compared(extremes, extremes).isDifferent());
    const auto comparison = compared(extremes, others);
    EXPECT_EQ(comparison.channels.at(0).ranges.size(), 3U);
    EXPECT_THAT(textOf(comparison), HasSubstr("+42949672.94 dB"));
    EXPECT_EQ(jsonOf(comparison)["channels"][0]["ranges"][0]["change_dB"], 42949672.94);
    EXPECT_FALSE(compared(extremes, others, 1e300).isDifferent());
}

TEST(Comparisons, readingsThatAreNoLevelsAreNotCompared)
{
    const auto comparison = compared(scanOf(flat(8)), scanOf(with(flat(8), 3, {0, 999999})));
    EXPECT_FALSE(comparison.isDifferent());
    EXPECT_EQ(comparison.channels.at(0).compared, 6U);
    EXPECT_THAT(textOf(comparison), HasSubstr("\n  only before      103.000 to 104.000 MHz    2 samples\n"));
}

TEST(Comparisons, neighboursThatChangedTheSameWayAreOneRange)
{
    const auto channel =
        channelCompared(scanOf(flat(11)), scanOf(with(flat(11), 2, {-8800, -8000, -6000, -7000, -9400, -9600})));
    EXPECT_THAT(channel.ranges,
        ElementsAre(rangeOf(102000, 105000, 104000, -9000, -6000), rangeOf(106000, 107000, 107000, -9000, -9600)))
        << "those that changed by more than half the threshold belong to the changes beside them";
}

TEST(Comparisons, changesWithASampleBetweenThemAreTwoRanges)
{
    const auto channel = channelCompared(scanOf(flat(11)), scanOf(with(flat(11), 2, {-6000, -9000, -7000})));
    EXPECT_THAT(channel.ranges,
        ElementsAre(rangeOf(102000, 102000, 102000, -9000, -6000), rangeOf(104000, 104000, 104000, -9000, -7000)));
}

TEST(Comparisons, burstInOneSweepShowsInTheMaximumAlone)
{
    const std::vector<sdc::Sweep> quiet(100, sweepOf(flat(30)));
    auto disturbed = quiet;
    disturbed[40] = sweepOf(with(flat(30), 12, {-7600}));
    const auto before = resultOf({channelOf(1, quiet)});
    const auto after = resultOf({channelOf(1, disturbed)});
    EXPECT_FALSE(compared(before, after, {}, sdc::TraceKind::average).isDifferent());
    EXPECT_FALSE(compared(before, after, {}, sdc::TraceKind::min).isDifferent());
    EXPECT_THAT(channelCompared(before, after, {}).ranges, ElementsAre(rangeOf(112000, 112000, 112000, -9000, -7600)));
}

TEST(Comparisons, peaksComeAndGo)
{
    const auto channel = channelCompared(scanOf(with(flat(11), 3, {-3000})), scanOf(with(flat(11), 7, {-4000})));
    EXPECT_THAT(channel.newPeaks, ElementsAre(peakAt(107000, -9000, -4000)));
    EXPECT_THAT(channel.vanishedPeaks, ElementsAre(peakAt(103000, -3000, -9000)));
}

TEST(Comparisons, peakThatWasNotThereInEachSweepComesAndGoes)
{
    const auto quiet = sweepOf(flat(11));
    const auto loud = sweepOf(with(flat(11), 7, {-4000}));
    const auto never = resultOf({channelOf(1, {quiet, quiet})});
    const auto sometimes = resultOf({channelOf(1, {quiet, loud})});
    const auto always = resultOf({channelOf(1, {loud, loud})});
    EXPECT_TRUE(channelCompared(never, sometimes).newPeaks.at(0).comesAndGoes);
    EXPECT_TRUE(channelCompared(sometimes, never).vanishedPeaks.at(0).comesAndGoes);
    EXPECT_FALSE(channelCompared(never, always).newPeaks.at(0).comesAndGoes);
    EXPECT_FALSE(channelCompared(always, never).vanishedPeaks.at(0).comesAndGoes);
    EXPECT_THAT(textOf(compared(never, sometimes)),
        HasSubstr("\n  comes and goes   107.000 MHz                 -90.00 ->  -40.00 dBm  +50.00 dB\n"));
}

TEST(Comparisons, peakThatComesAndGoesIsToldOfTheFrequenciesOfTheOtherScanToo)
{
    const auto quiet = sweepOf(flat(11));
    const auto fine = resultOf({channelOf(1, {quiet, sweepOf(with(flat(11), 6, {-4000, -4000, -4000}))})});
    const auto coarse = stepped(flat(5), 100500, 2000);
    const auto peaks = channelCompared(coarse, fine).newPeaks;
    ASSERT_EQ(peaks.size(), 1U);
    EXPECT_TRUE(peaks.at(0).comesAndGoes);
}

TEST(Comparisons, peakWhoseNeighbourRoseHasNotVanished)
{
    const auto before = scanOf({-9000, -9000, -7000, -9000, -9000, -9000, -9000});
    const auto after = scanOf({-9000, -9000, -7000, -7000, -4000, -9000, -9000});
    const auto channel = channelCompared(before, after);
    EXPECT_THAT(channel.vanishedPeaks, IsEmpty());
    EXPECT_THAT(channel.newPeaks, ElementsAre(peakAt(104000, -9000, -4000)));
}

TEST(Comparisons, peakBesideAnotherIsNew)
{
    // Half a channel is 1000 kHz.
    const auto before = scanOf({-9000, -9000, -3000, -9000, -9000, -9000, -9000});
    const auto after = scanOf({-9000, -9000, -3000, -7500, -6000, -9000, -9000});
    EXPECT_THAT(channelCompared(before, after).newPeaks, ElementsAre(peakAt(104000, -9000, -6000)));
    EXPECT_THAT(channelCompared(after, before).vanishedPeaks, ElementsAre(peakAt(104000, -6000, -9000)));
}

TEST(Comparisons, humpThatRisesIsNoNewPeakWhereverItsTopIs)
{
    const auto before = scanOf({-9000, -4900, -5100, -5100, -5150, -9000, -9000});
    const auto after = scanOf({-9000, -4100, -4200, -4150, -4050, -9000, -9000});
    const auto channel = channelCompared(before, after);
    EXPECT_TRUE(channel.newPeaks.empty() && channel.vanishedPeaks.empty());
    EXPECT_THAT(channel.ranges, ElementsAre(rangeOf(101000, 104000, 104000, -5150, -4050)));
}

TEST(Comparisons, channelOfTheRasterChangesByTheMeanOfItsLevels)
{
    // The receiver belongs to 102000 kHz, channels are 2000 kHz apart.
    const auto raster = channelCompared(scanOf(flat(7)), scanOf({-9000, -9000, -9000, -9000, -8700, -8698, -9000})).raster;
    ASSERT_EQ(raster.size(), 4U);
    EXPECT_EQ(raster[0], (sdc::RasterChange{{-9000, -9000}, -1, 100000, 2, false}));
    EXPECT_EQ(raster[1], (sdc::RasterChange{{-9000, -9000}, 0, 102000, 3, false}));
    EXPECT_EQ(raster[2], (sdc::RasterChange{{-9000, -8799}, 1, 104000, 3, false}));
    EXPECT_EQ(raster[3].offset, 2);
}

TEST(Comparisons, weakRiseOfAWholeChannelIsFoundWhereNoSampleTellsIt)
{
    auto before = channelOf(1, {sweepOf(flat(40))});
    auto after = channelOf(1, {sweepOf(flat(40, -8650))});
    before.plan.channelSpacing_kHz = after.plan.channelSpacing_kHz = 40000;
    const auto channel = channelCompared(resultOf({before}), resultOf({after}), {});
    EXPECT_THAT(channel.ranges, IsEmpty()) << "3.5 dB are no more than what single readings may differ by";
    EXPECT_TRUE(std::ranges::any_of(channel.raster, &sdc::RasterChange::isChanged));
    EXPECT_TRUE(channel.isChanged());
}

TEST(Comparisons, frequenciesOfOneResultAloneAreToldAndAreNoDifference)
{
    const auto comparison = compared(scanOf(flat(5)), stepped(flat(5), 103000, 1000));
    const auto& channel = comparison.channels.at(0);
    EXPECT_EQ(channel.compared, 2U);
    EXPECT_THAT(channel.onlyBefore, ElementsAre(sdc::FrequencyRange{100000, 102000, 3}));
    EXPECT_THAT(channel.onlyAfter, ElementsAre(sdc::FrequencyRange{105000, 107000, 3}));
    EXPECT_FALSE(comparison.isDifferent());
}

TEST(Comparisons, otherStepsAreComparedAtTheFrequenciesOfTheCoarser)
{
    // 100500, 110500, ... lie between the samples of the finer scan, which rises by 1 dB a MHz.
    Levels fine;
    for (std::int32_t sample = 0; sample < 31; ++sample) {
        fine.push_back(-9000 + 100 * sample);
    }
    const auto channel = channelCompared(scanOf(fine), stepped({-8950, -7950, -5950, -5950}, 100500, 10000));
    EXPECT_EQ(channel.compared, 3U);
    EXPECT_THAT(channel.ranges,
        ElementsAre(AllOf(Field(&sdc::RangeChange::frequency_kHz, 120500), Field("before", &sdc::RangeChange::before, -6950),
            Field("after", &sdc::RangeChange::after, -5950))));
    EXPECT_THAT(channel.onlyAfter, ElementsAre(sdc::FrequencyRange{130500, 130500, 1}));
}

TEST(Comparisons, nothingIsToldBetweenSamplesFurtherApartThanTheFilterIsWide)
{
    auto before = stepped(flat(4), 100000, 10000);
    auto after = stepped(flat(4), 105000, 10000);
    EXPECT_EQ(errorOf(before, after), "");
    before.channels[0].receiver.filterWidth_kHz = after.channels[0].receiver.filterWidth_kHz = 9999.0;
    EXPECT_THAT(errorOf(before, after), HasSubstr("no frequency in common"));
}

TEST(Comparisons, levelsOfOtherFiltersCannotBeCompared)
{
    auto before = resultOf({channelOf(1, {sweepOf(flat(5))}), channelOf(2, {sweepOf(flat(5))})});
    auto after = before;
    after.channels[1].receiver.filterWidth_kHz = 7000.0;
    const auto comparison = compared(before, after);
    EXPECT_TRUE(comparison.isDifferent());
    EXPECT_FALSE(comparison.channels.at(0).isChanged());
    EXPECT_TRUE(comparison.channels.at(1).isChanged());
    EXPECT_THAT(textOf(comparison),
        HasSubstr("channel 2: cannot be compared, the receive filters differ\n"
                  "  before: KLM6 18G, filter 27.500 MHz, on 102.000 MHz, steps of 1.000 MHz\n"
                  "  after:  KLM6 18G, filter 7.000 MHz, on 102.000 MHz, steps of 1.000 MHz\n"));
}

TEST(Comparisons, channelOfOneResultAloneIsADifference)
{
    const auto one = channelOf(1, {sweepOf({-9000})});
    const auto two = channelOf(2, {sweepOf({-9000})});
    const auto comparison = compared(resultOf({one, two}), resultOf({channelOf(3, {sweepOf({-9000})}), two}));
    EXPECT_THAT(comparison.onlyBefore, ElementsAre(1));
    EXPECT_THAT(comparison.onlyAfter, ElementsAre(3));
    EXPECT_TRUE(comparison.isDifferent());
    EXPECT_TRUE(compared(resultOf({one, two}), resultOf({two})).isDifferent());
    EXPECT_TRUE(compared(resultOf({two}), resultOf({one, two})).isDifferent());
    EXPECT_FALSE(compared(resultOf({two, one}), resultOf({one, two})).isDifferent()) << "in another order";
    EXPECT_THAT(textOf(comparison), testing::EndsWith("channel 1: only before\nchannel 3: only after\n"));
}

TEST(Comparisons, resultsWithNothingInCommonCannotBeCompared)
{
    const std::string cannot = "the results cannot be compared: ";
    EXPECT_EQ(errorOf(scanOf(flat(2)), stepped(flat(2), 200000, 1000)), cannot + "channel 1: no frequency in common");
    EXPECT_EQ(errorOf(scanOf({}), scanOf(flat(2))), cannot + "channel 1: the scan before has no levels");
    EXPECT_EQ(errorOf(scanOf(flat(2)), scanOf({0, 0})), cannot + "channel 1: the scan after has no levels") << "refused";
    EXPECT_EQ(errorOf(scanOf(flat(2)), resultOf({channelOf(2, {sweepOf(flat(2))})})),
        cannot + "they have no radio channel in common");
    EXPECT_EQ(errorOf(scanOf(flat(2)), stepped(flat(2), 101000, 1000)), "");
}

TEST(Comparisons, textTellsWhatWasComparedAndWhatChanged)
{
    auto cut = channelOf(1, {sweepOf(with(flat(12), 3, {-3000})), sweepOf(with(flat(12), 3, {-3000}))});
    cut.sweeps[1] = cutShort(cut.sweeps[1], 4, sdc::Ending::failed, "tuning failed");
    auto before = surveyed(resultOf({cut}));
    auto after = stepped(with(flat(12), 7, {-8990, -4000, -5000}), 99000, 1000);
    after.farEnd = sdc::FarEnd::unknown;
    EXPECT_EQ(textOf(compared(before, after, 5.5)),
        "different\n"
        "\n"
        "before  a.json\n"
        "        test-link, sub-band scan, far end muted\n"
        "        2026-01-02 03:04:05 to 03:04:12 UTC\n"
        "after   b.json\n"
        "        test-link, sub-band scan, far end unknown\n"
        "        2026-01-02 03:04:05 to 03:04:12 UTC\n"
        "trace   max\n"
        "\n"
        "channel 1: different, 11 frequencies compared\n"
        "  before 2 sweeps, 1 of them PARTIAL or failed; after 1 sweep\n"
        "  no change is -5.50 to +5.50 dB; readings scatter by 0.95 dB\n"
        "  only before      111.000 MHz               1 sample\n"
        "  only after       99.000 MHz                1 sample\n"
        "  new peak         107.000 MHz                 -90.00 ->  -40.00 dBm  +50.00 dB\n"
        "  vanished peak    103.000 MHz                 -30.00 ->  -90.00 dBm  -60.00 dB\n"
        "  raster +0 to +1  102.000 to 104.000 MHz      -70.00 ->  -90.00 dBm  -20.00 dB\n"
        "  raster +2 to +3  106.000 to 108.000 MHz      -90.00 ->  -60.00 dBm  +30.00 dB\n"
        "  levels           103.000 MHz                 -30.00 ->  -90.00 dBm  -60.00 dB\n"
        "  levels           107.000 to 108.000 MHz      -90.00 ->  -40.00 dBm  +50.00 dB\n");
    EXPECT_THAT(textOf(compared(before, before)), testing::StartsWith("same\n\nbefore  a.json\n"));
}

TEST(Comparisons, columnsOfTheTextNeverMeet)
{
    const auto before = stepped(with(flat(12), 1, {-2147483647, -2147483647}), 4294900000, 1000);
    const std::string text = textOf(compared(before, stepped(with(flat(8), 7, {-3000}), 4294900000, 1000)));
    EXPECT_THAT(text, HasSubstr("\n  only before      4294908.000 to 4294911.000 MHz  4 samples\n"));
    EXPECT_THAT(text,
        HasSubstr(
            "\n  levels                       4294901.000 to 4294902.000 MHz  -21474836.47 ->  -90.00 dBm  +21474746.47 dB\n"
            "  levels                       4294907.000 MHz                       -90.00 ->  -30.00 dBm  +60.00 dB\n"));
}

TEST(Comparisons, textCountsAndFitsATerminal)
{
    const auto cut = [](std::size_t sweeps) {
        return resultOf({channelOf(1, std::vector(sweeps, cutShort(sweepOf({-9000, -9000}), 1, sdc::Ending::stopped)))});
    };
    EXPECT_THAT(textOf(compared(cut(1), cut(1))),
        HasSubstr("channel 1: same, 1 frequency compared\n"
                  "  before 1 sweep, PARTIAL or failed; after 1 sweep, PARTIAL or failed\n"));
    EXPECT_THAT(textOf(compared(cut(10), cut(10))),
        HasSubstr("\n  before 10 sweeps, 10 of them PARTIAL or failed; after 10 sweeps, 10 of them\n"
                  "    PARTIAL or failed\n"));
}

TEST(Comparisons, ofManyChangesTheLargestAreShown)
{
    Levels levels = flat(41);
    for (std::size_t index = 1; index < levels.size(); index += 2) {
        levels[index] += 1000 + 10 * static_cast<std::int32_t>(index);
    }
    const std::string text = textOf(compared(scanOf(flat(41)), scanOf(levels)));
    EXPECT_THAT(text,
        AllOf(HasSubstr("  levels            and 15 smaller ones; --json tells all\n"), HasSubstr("+13.90 dB\n"),
            HasSubstr("+13.10 dB\n"), Not(HasSubstr("+12.90 dB\n"))));
    EXPECT_LE(std::ranges::count(text, '\n'), 50);
}

TEST(Comparisons, manyChannelsThatAreTheSameAreCounted)
{
    std::vector<sdc::ChannelResult> channels;
    for (std::uint32_t number = 0; number < 256; ++number) {
        channels.push_back(channelOf(number, {sweepOf(flat(3))}));
    }
    const auto before = resultOf(channels);
    channels[200] = channelOf(200, {sweepOf(flat(3, -7000))});
    const std::string text = textOf(compared(before, resultOf(channels)));
    EXPECT_THAT(text,
        AllOf(HasSubstr("\nchannel 200: different"), HasSubstr("\n255 channels: same\n"), Not(HasSubstr("channel 199"))));
    EXPECT_LE(std::ranges::count(text, '\n'), 25);
}

TEST(Comparisons, foreignNamesAreShownSoThatNoTerminalObeysThem)
{
    auto result = scanOf(flat(3));
    result.scenario = "\033[2J";
    const sdc::Comparison comparison = sdc::compare({"a\033[2J\n", result}, {std::string(5000, 'b'), result}, {});
    EXPECT_THAT(textOf(comparison), AllOf(Not(HasSubstr("\033")), HasSubstr("a\\x1B[2J\\x0A\n"), HasSubstr("bbb...\n")));
    EXPECT_EQ(jsonOf(comparison)["before"]["file"], "a\033[2J\n");
}

TEST(Comparisons, jsonTellsAllAsItsSchemaSays)
{
    const auto before = resultOf({channelOf(1, {sweepOf(with(flat(12), 3, {-3000}))}), channelOf(2, {sweepOf(flat(3))})});
    const auto after = resultOf({channelOf(1, {sweepOf(with(flat(11), 7, {-4000}))}), channelOf(3, {sweepOf(flat(3))})});
    const tests::SchemaValidator schema(json::parse(support::schemaText(sdc::comparisonRecord())));
    for (const std::optional<double> threshold_dB : {std::optional<double>(3.0), std::optional<double>()}) {
        const json text = jsonOf(compared(before, after, threshold_dB));
        EXPECT_TRUE(schema.accepts(text));
        EXPECT_EQ(text["is_different"], true);
        EXPECT_EQ(text["trace"], "max");
        EXPECT_EQ(text.contains("threshold_dB"), threshold_dB.has_value());
        EXPECT_EQ(text["before"]["file"], "a.json");
        EXPECT_EQ(text["channels_only_before"], json({2}));
        EXPECT_EQ(text["channels_only_after"], json({3}));
        const json channel = text["channels"][0];
        EXPECT_EQ(channel["new_peaks"],
            json::parse(
                R"([{"frequency_kHz": 107000, "before_dBm": -90.0, "after_dBm": -40.0, "change_dB": 50.0,
                "comes_and_goes": false}])"));
        EXPECT_EQ(channel["ranges"][0],
            json::parse(R"({"lowest_kHz": 103000, "highest_kHz": 103000, "frequencies": 1, "frequency_kHz": 103000,
                "before_dBm": -30.0, "after_dBm": -90.0, "change_dB": -60.0})"));
        EXPECT_EQ(
            channel["only_before"], json::parse(R"([{"lowest_kHz": 111000, "highest_kHz": 111000, "frequencies": 1}])"));
        EXPECT_EQ(channel["compared"], 11);
        EXPECT_FALSE(channel.contains("obstacle"));
    }
    EXPECT_FALSE(schema.accepts(json::object()));
}
