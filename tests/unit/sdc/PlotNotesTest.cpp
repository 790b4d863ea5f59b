#include "apps/sdc/plot/Chart.h"
#include "apps/sdc/plot/ChartNotes.h"
#include "apps/sdc/plot/Plot.h"

#include "TestResults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace testing_results;
using sdc::PlotOptions;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::string> notesOf(const sdc::ScanResult& result, const PlotOptions& options)
{
    return sdc::chartOf({{"", result, result.channels[0]}}, options).notes;
}

std::vector<std::string> notesOf(const sdc::ScanResult& a, const sdc::ScanResult& b, const PlotOptions& options = {})
{
    return sdc::chartOf({{"a.json", a, a.channels[0]}, {"b.json", b, b.channels[0]}}, options).notes;
}

} // namespace

TEST(PlotNotes, areNoneWhereNothingIsAsked)
{
    EXPECT_THAT(notesOf(scanOf({-9000, -3000, -9000}), PlotOptions()), IsEmpty());
    EXPECT_THAT(notesOf(scanOf({-9000, -3000, -9000}), scanOf({-9000, -9000, -9000})), IsEmpty());
}

TEST(PlotNotes, tellTheLevelsAtMarksAndTheirDifferences)
{
    EXPECT_THAT(notesOf(scanOf({-9000, -3000, -9000}), {.marks_kHz = {101'000, 101'600, 102'501, 104'000}}),
        ElementsAre("mark 1: 101.000 MHz, level -30.00 dBm", "mark 2: 101.600 MHz, level -90.00 dBm (at 102.000)",
            "mark 2 - mark 1: 0.600 MHz, level -60.00 dB", "mark 3: 102.501 MHz, outside the plot",
            "mark 3 - mark 1: 1.501 MHz", "mark 4: 104.000 MHz, outside the plot", "mark 4 - mark 1: 3.000 MHz"));
}

TEST(PlotNotes, tellARiseFromOneMarkToAnotherWithItsSign)
{
    EXPECT_THAT(notesOf(scanOf({-9000, -3000, -9000}), {.marks_kHz = {100'000, 101'000, 102'000}}),
        testing::IsSupersetOf({"mark 2 - mark 1: 1.000 MHz, level +60.00 dB", "mark 3 - mark 1: 2.000 MHz, level 0.00 dB"}));
}

TEST(PlotNotes, tellOfAMarkWhereNothingWasMeasured)
{
    auto cut = scanOf({-9000, -9000, -9000});
    cut.channels[0] = channelOf(1, {cutShort(sweepOf({-9000, -9000, -9000}), 1, sdc::Ending::stopped)});
    cut.channels[0].plan = planOf(3);
    EXPECT_THAT(notesOf(cut, {.marks_kHz = {100'500, 100'501}}),
        ElementsAre("mark 1: 100.500 MHz, level -90.00 dBm (at 100.000)", "mark 2: 100.501 MHz, level none",
            "mark 2 - mark 1: 0.001 MHz"));
}

TEST(PlotNotes, tellOfSeveralSweepsAllTraces)
{
    const auto result = resultOf({channelOf(1, {sweepOf({-1000, -5000}), sweepOf({-2000, -5000})})});
    EXPECT_THAT(notesOf(result, {.marks_kHz = {100'000}, .limit = -2000}),
        ElementsAre("mark 1: 100.000 MHz, max -10.00 dBm, average -12.60 dBm, min -20.00 dBm",
            "max above -20.00 dBm: 100.000 MHz (-10.00 dBm)"));
}

TEST(PlotNotes, tellWhatIsAboveTheLimit)
{
    EXPECT_THAT(notesOf(scanOf({-8500, -8499, -3000, -8500, -8400}), {.limit = -8500}),
        ElementsAre("above -85.00 dBm: 101.000 to 102.000 MHz (-30.00 dBm), 104.000 MHz (-84.00 dBm)"));
    EXPECT_THAT(notesOf(scanOf({-8500, -8500}), {.limit = -8500}), ElementsAre("above -85.00 dBm: nothing"));
    const std::vector<std::int32_t> comb{
        -3000, -9000, -3000, -9000, -3000, -9000, -3000, -9000, -3000, -9000, -3000, -9000, -3000};
    EXPECT_THAT(notesOf(scanOf(comb), {.limit = -8500})[0], testing::EndsWith(", 108.000 MHz (-30.00 dBm), and 2 more"));
}

TEST(PlotNotes, tellWhatIsNotDrawnBecauseItIsNoLevel)
{
    EXPECT_THAT(notesOf(scanOf({-8500, 0, 999999}), PlotOptions()),
        ElementsAre("2 of 3 readings are no levels, and not drawn: refused, or far above saturation"));
    EXPECT_THAT(notesOf(scanOf({0}), scanOf({-9000})),
        testing::Contains("a.json: 1 of 1 readings are no levels, and not drawn: refused, or far above saturation"));
}

TEST(PlotNotes, tellWhereTheTerminalTransmits)
{
    EXPECT_THAT(notesOf(scanOf({-9000, -9000, -9000}), {.duplex_kHz = -1000}),
        ElementsAre("receives (RX) at 102.000 MHz, transmits (TX) at 101.000 MHz"));
    EXPECT_THAT(notesOf(scanOf({-9000, -9000, -9000}), {.duplex_kHz = 252'040}),
        ElementsAre("receives (RX) at 102.000 MHz, transmits (TX) at 354.040 MHz, outside the plot"));
}

TEST(PlotNotes, tellInWhatResultsDiffer)
{
    auto other = scanOf({-9000, -9000});
    other.scenario = "another";
    other.channels[0].plan.step_kHz = 500;
    EXPECT_THAT(notesOf(scanOf({-9000, -9000, -9000}), other),
        ElementsAre("a.json: test-link, KLM6 18G, sub-band scan", "b.json: another, KLM6 18G, sub-band scan",
            "a.json: 100.000 to 102.000 MHz in steps of 1.000 MHz, receiving at 102.000 MHz, channels of 2.000 MHz",
            "b.json: 100.000 to 101.000 MHz in steps of 0.500 MHz, receiving at 102.000 MHz, channels of 2.000 MHz"));
}

TEST(PlotNotes, tellWhatIsAboveTheLimitOfTheTraceChosen)
{
    const auto result = resultOf({channelOf(1, {sweepOf({-1000, -5000}), sweepOf({-2000, -5000})})});
    EXPECT_THAT(notesOf(result, {.trace = sdc::TraceKind::average, .limit = -2000}),
        ElementsAre("average above -20.00 dBm: 100.000 MHz (-12.60 dBm)"));
}

TEST(PlotNotes, tellOfEachResultWhatIsAboveTheLimit)
{
    EXPECT_THAT(notesOf(scanOf({-9000, -3000}), scanOf({-9000, -9000}), {.limit = -5000}),
        ElementsAre("a.json above -50.00 dBm: 101.000 MHz (-30.00 dBm)", "b.json above -50.00 dBm: nothing"));
}
