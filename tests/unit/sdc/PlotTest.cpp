#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/plot/Chart.h"
#include "apps/sdc/plot/ChartProgram.h"
#include "apps/sdc/plot/FrameProgram.h"
#include "apps/sdc/plot/Looks.h"
#include "apps/sdc/result/Raster.h"
#include "support/Text.h"

#include "TestResults.h"
#include "apps/sdc/result/Sweep.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <set>
#include <stdexcept>
#include <utility>

using namespace testing_results;
using sdc::Ending;
using sdc::PlotFormat;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

std::string plotOf(const sdc::ScanResult& result, const sdc::PlotOptions& options = {})
{
    return written([&](std::ostream& stream) { sdc::writePlot(stream, result, options); });
}

/// Eleven samples 2 MHz apart in the 18 GHz band, with a peak in the configured channel.
sdc::ScanResult bandResult(std::uint32_t step_kHz = 2000)
{
    auto result = scanOf({-9000, -9000, -9000, -9000, -9000, -3000, -9000, -9000, -9000, -9000, -9000});
    sdc::ChannelResult& channel = result.channels[0];
    channel.plan.lowest_kHz = 19'167'500;
    channel.plan.step_kHz = step_kHz;
    channel.plan.highest_kHz = 19'167'500 + 10 * step_kHz;
    channel.plan.rxFrequency_kHz = 19'177'500;
    channel.plan.channelSpacing_kHz = 7000;
    for (std::uint32_t index = 0; index < 11; ++index) {
        channel.sweeps[0].samples[index].frequency_kHz = 19'167'500 + index * step_kHz;
    }
    return surveyed(std::move(result));
}

/// What the message of a failed plot is.
std::string failureOf(const sdc::ScanResult& result)
{
    try {
        static_cast<void>(plotOf(result));
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

} // namespace

TEST(PlotPrograms, whatCouldEndAStringOrBeACommandIsANumber)
{
    EXPECT_EQ(sdc::inQuotes("it's `a` \"b\" \\n @c $d; {e} %f"), R"("it\047s \140a\140 \042b\042 \134n \100c $d; {e} %f")");
    EXPECT_EQ(sdc::inQuotes(""), R"("")");
}

TEST(PlotPrograms, axesAreNamedAndTicked)
{
    const std::string program = sdc::plotProgram(bandResult(), {});
    EXPECT_THAT(program, HasSubstr("set xrange [19166.500:19188.500]\n")) << "half a step beside the samples";
    EXPECT_THAT(program, HasSubstr("set xlabel 'frequency, MHz'\n"));
    EXPECT_THAT(
        program, HasSubstr(R"(set xtics ("19170" 19170.000, "19175" 19175.000, "19180" 19180.000, "19185" 19185.000))"));
    EXPECT_THAT(program, HasSubstr("set ylabel 'level, dBm'\nset ytics 10\n"));
    EXPECT_THAT(program, HasSubstr("set grid ytics "));
    EXPECT_THAT(program, HasSubstr("set yrange [-105:"));
}

TEST(PlotPrograms, rasterTicksCountFromTheConfiguredChannel)
{
    EXPECT_THAT(sdc::plotProgram(bandResult(), {}),
        HasSubstr("set x2range [19166.500:19188.500]\nset x2tics scale 0 offset 0,0.5 (\"-1\" 19170.500, \"0\" 19177.500, "
                  "\"+1\" 19184.500)\n"));
}

TEST(PlotPrograms, rasterTicksWithoutRoomForLabelsHaveNone)
{
    std::vector<std::int32_t> levels(200, -9000);
    const std::string program = sdc::plotProgram(scanOf(levels), {});
    EXPECT_THAT(program, HasSubstr(R"("0" 102.000, "" 104.000, "" 106.000, "" 108.000, "" 110.000, "" 112.000, )"));
}

TEST(PlotPrograms, configuredChannelIsShadedAndHasEdges)
{
    const std::string program = sdc::plotProgram(bandResult(), {});
    EXPECT_THAT(program, HasSubstr("set object rectangle from first 19174.000, graph 0 to first 19181.000, graph 1 behind"));
    EXPECT_THAT(program, HasSubstr("set arrow from first 19174.000, graph 0 to first 19174.000, graph 1 nohead"));
    EXPECT_THAT(program, HasSubstr("set arrow from first 19181.000, graph 0 to first 19181.000, graph 1 nohead"));
    auto wide = bandResult();
    wide.channels[0].plan.channelSpacing_kHz = 40'000;
    const std::string clipped = sdc::plotProgram(wide, {});
    EXPECT_THAT(clipped, HasSubstr("rectangle from first 19166.500, graph 0 to first 19188.500, graph 1 behind"));
    EXPECT_THAT(clipped, Not(HasSubstr("\nset arrow")));
}

TEST(PlotPrograms, lowestReadingIsDrawnAndNamedSo)
{
    const std::string program = sdc::plotProgram(bandResult(), {});
    EXPECT_THAT(program, HasSubstr("-99.70 with lines"));
    EXPECT_THAT(program, HasSubstr("title 'lowest reading -99.70 dBm'"));
    EXPECT_THAT(program, Not(HasSubstr("floor")));
}

TEST(PlotPrograms, strongestPeaksAreMarkedAndLabelled)
{
    const std::string program = sdc::plotProgram(bandResult(), {});
    EXPECT_THAT(program, HasSubstr("$peaks << end\n19177.500 -30.00\nend\n"));
    EXPECT_THAT(program, HasSubstr(R"(set label "19177.5"."\n"."-30.00" at first 19177.500, first -21.51 center)"));
    EXPECT_THAT(program, HasSubstr("$peaks using 1:2 with points"));
    EXPECT_THAT(sdc::plotProgram(scanOf({-9000, -9000}), {}), Not(HasSubstr("$peaks using")));
}

TEST(PlotPrograms, labelsStandAboveTheStrongestLevelNearThem)
{
    // Average -32.60, strongest -30: the label stands where that of a single sweep with -30 does.
    const auto result = resultOf({channelOf(1, {sweepOf({-9000, -3000, -9000}), sweepOf({-9000, -4000, -9000})})});
    const auto single = scanOf({-9000, -3000, -9000});
    const std::string place = R"( at first 101.000, first -)";
    const auto label = [&](const sdc::ScanResult& one) {
        const std::string program = sdc::plotProgram(one, {});
        return program.substr(program.find(place), place.size() + 5);
    };
    EXPECT_EQ(label(result), label(single));
    EXPECT_THAT(label(single), HasSubstr("-21.51"));
}

TEST(PlotPrograms, labelsThatWouldMeetAreLeftOut)
{
    const std::string program =
        sdc::plotProgram(scanOf({-9000, -3000, -9000, -2900, -9000, -9000, -9000, -9000, -9000, -9000, -9000, -9000, -9000,
                             -9000, -9000, -3100, -9000, -9000, -9000, -9000}),
            {.width = 300});
    EXPECT_THAT(program, HasSubstr(R"(set label "103")"));
    EXPECT_THAT(program, Not(HasSubstr(R"(set label "101")")));
    EXPECT_THAT(program, HasSubstr(R"(set label "115")"));
}

TEST(PlotPrograms, samplesFurtherApartThanTheFilterIsWideAreNotConnected)
{
    auto result = bandResult();
    result.channels[0].receiver.filterWidth_kHz = 2000.0;
    EXPECT_THAT(sdc::plotProgram(result, {}), HasSubstr("$trace0 using 1:2 with linespoints"));
    EXPECT_THAT(sdc::plotProgram(result, {}), Not(HasSubstr("with vectors")));
    result.channels[0].receiver.filterWidth_kHz = 1999.9;
    EXPECT_THAT(sdc::plotProgram(result, {}), HasSubstr("$trace0 using 1:2 with points"));
    EXPECT_THAT(sdc::plotProgram(result, {}), HasSubstr("$stems using 1:2:(0):3 with vectors nohead"));
}

TEST(PlotPrograms, manySamplesHaveNoMarkers)
{
    EXPECT_THAT(
        sdc::plotProgram(scanOf(std::vector<std::int32_t>(150, -9000)), {}), HasSubstr("using 1:2 with linespoints "));
    EXPECT_THAT(sdc::plotProgram(scanOf(std::vector<std::int32_t>(151, -9000)), {}), HasSubstr("using 1:2 with lines "));
}

TEST(PlotPrograms, titleSaysWhatWasScannedAndWhen)
{
    EXPECT_THAT(sdc::plotProgram(bandResult(), {}),
        HasSubstr(
            R"x(set title "test-link, KLM6 18G, sub-band scan"."\n"."2026-01-02 03:04:05 UTC; configured channel: disturbed)x"));
    auto result = resultOf({channelOf(4, {sweepOf({-9000}), sweepOf({-9000})}), channelOf(5, {sweepOf({-9000})})});
    result.kind = sdc::ScanKind::channel;
    EXPECT_THAT(sdc::plotProgram(result, {}),
        HasSubstr(
            R"("test-link, KLM6 18G, channel scan, channel 4"."\n"."2026-01-02 03:04:05 UTC, 2 sweeps; configured channel: cannot tell" offset)"));
}

TEST(PlotPrograms, titleSaysWhatIsMissing)
{
    auto result = scanOf({-9000, -8000, -7000});
    sdc::Sweep& sweep = result.channels[0].sweeps[0];
    sweep = cutShort(sweep, 2, Ending::stopped);
    result = surveyed(std::move(result));
    EXPECT_THAT(sdc::plotProgram(result, {}), HasSubstr("UTC, PARTIAL 2/3, stopped; "));
    result.channels[0].add(sweepOf({-9000, -8000, -7000}));
    EXPECT_THAT(sdc::plotProgram(result, {}), HasSubstr("UTC, 2 sweeps, PARTIAL 5/6, stopped; "));
    auto failed = scanOf({-9000});
    failed.channels[0].sweeps[0].ending = Ending::failed;
    failed = surveyed(std::move(failed));
    EXPECT_THAT(sdc::plotProgram(failed, {}), HasSubstr("UTC, failed; "));
}

TEST(PlotPrograms, severalSweepsDrawTheirHolds)
{
    const std::string program =
        sdc::plotProgram(resultOf({channelOf(1, {sweepOf({-1000, -5000}), sweepOf({-2000, -5000})})}), {});
    EXPECT_THAT(program, HasSubstr("$trace0 << end\n100.000 -10.00\n101.000 -50.00\nend\n"));
    EXPECT_THAT(program, HasSubstr("$trace1 << end\n100.000 -12.60\n101.000 -50.00\nend\n"));
    EXPECT_THAT(program, HasSubstr("$trace2 << end\n100.000 -20.00\n101.000 -50.00\nend\n"));
    EXPECT_THAT(program,
        HasSubstr("$trace0 using 1:2 with linespoints linecolor rgb '#b3261e' linewidth 1.5 dashtype 2 pointtype 8"));
    EXPECT_THAT(program,
        HasSubstr("$trace1 using 1:2 with linespoints linecolor rgb '#0b4f9e' linewidth 1.5 dashtype 1 pointtype 7"));
    EXPECT_THAT(program,
        HasSubstr("$trace2 using 1:2 with linespoints linecolor rgb '#1b7f4b' linewidth 1.5 dashtype 3 pointtype 10"));
    for (const char* const title : {"title \"max hold\"", "title \"average power\"", "title \"min hold\""}) {
        EXPECT_THAT(program, HasSubstr(title));
    }
}

TEST(PlotPrograms, keyHasTheTracesInTheirOrderAndTheFirstIsDrawnLast)
{
    const std::string program =
        sdc::plotProgram(resultOf({channelOf(1, {sweepOf({-1000, -5000}), sweepOf({-2000, -5000})})}), {});
    EXPECT_THAT(program,
        testing::ContainsRegex("trace2 using.*\n.*trace1 using.*\n.*trace0 using.*\n.*keyentry.*max hold.*\n.*keyentry.*"
                               "average power.*\n.*keyentry.*min hold"));
}

TEST(PlotPrograms, resultsOverOneAnotherAreToldApartWithoutColour)
{
    std::set<std::pair<int, int>> looks;
    for (const sdc::Look& look : sdc::overlayLooks) {
        looks.emplace(look.dash, look.marker);
    }
    EXPECT_EQ(looks.size(), sdc::mostPlotted);
    const auto result = scanOf(std::vector<std::int32_t>(200, -9000));
    const sdc::ChannelResult& channel = result.channels[0];
    const std::string program = sdc::chartProgram(
        sdc::chartOf({{"a", result, channel}, {"b", result, channel}}, {}), {.width = 1000, .height = 560});
    EXPECT_THAT(program, HasSubstr("pointtype 7 pointsize 0.5 pointinterval 8 notitle"))
        << "also where there are many points";
    EXPECT_THAT(program, HasSubstr("pointtype 4 pointsize 0.5 pointinterval 8 title \"b, "));
}

TEST(PlotPrograms, channelsStandBelowOneAnother)
{
    const auto result = resultOf({channelOf(1, {sweepOf({-9000})}), channelOf(2, {sweepOf({-9000})})});
    EXPECT_THAT(sdc::plotProgram(result, {}), HasSubstr("size 1000,1120 noenhanced"));
    EXPECT_THAT(sdc::plotProgram(result, {}), HasSubstr("set multiplot layout 2,1\n"));
    EXPECT_THAT(sdc::plotProgram(bandResult(), {}), Not(HasSubstr("multiplot")));
}

TEST(PlotPrograms, sizesThatCannotBeDrawnBecomeTheNearestThatCan)
{
    const struct {
        sdc::PlotOptions options;
        const char* size;
    } rows[]{{{}, "svg size 1000,560 "}, {{.width = 299, .height = 199}, " size 300,200 "},
        {{.width = 10001, .height = 10001}, " size 10000,10000 "}, {{.width = 640, .height = 480}, " size 640,480 "},
        {{.format = PlotFormat::png}, "pngcairo size 1000,560 "}};
    for (const auto& row : rows) {
        EXPECT_THAT(sdc::plotProgram(bandResult(), row.options), HasSubstr(row.size));
    }
}

TEST(PlotPrograms, whatIsSaidBelowAddsToTheHeight)
{
    const std::string program = sdc::plotProgram(bandResult(), {.marks_kHz = {19'177'500}});
    EXPECT_THAT(program, HasSubstr("size 1000,576 "));
    EXPECT_THAT(program, HasSubstr("set xlabel 'frequency, MHz'.\"\\n\".\"mark 1: 19177.500 MHz, level -30.00 dBm\"\n"));
    EXPECT_THAT(sdc::plotProgram(bandResult(), {.width = 300, .marks_kHz = {19'177'000}}), HasSubstr("size 300,592 "))
        << "in lines that fit";
}

TEST(PlotPrograms, marksAreLinesWithTheirNumber)
{
    const std::string program = sdc::plotProgram(bandResult(), {.marks_kHz = {19'170'000, 1, 19'180'000}});
    EXPECT_THAT(program, HasSubstr("set arrow from first 19170.000, graph 0 to first 19170.000, graph 1 nohead front"));
    EXPECT_THAT(program, HasSubstr("set label '1' at first 19170.000, graph 0.96 "));
    EXPECT_THAT(program, HasSubstr("set label '3' at first 19180.000, graph 0.96 "));
    EXPECT_THAT(program, Not(HasSubstr("set label '2'"))) << "outside the plot";
}

TEST(PlotPrograms, limitIsALineAndInThePicture)
{
    EXPECT_THAT(sdc::plotProgram(bandResult(), {.limit = -8500}), HasSubstr("\n    -85.00 with lines linecolor rgb"));
    EXPECT_THAT(sdc::plotProgram(bandResult(), {.limit = -14000}), HasSubstr("set yrange [-145:"));
    EXPECT_THAT(sdc::plotProgram(bandResult(), {}), Not(HasSubstr("title 'limit")));
}

TEST(PlotPrograms, limitMayBeTheLowestReading)
{
    EXPECT_THAT(plotOf(bandResult(), {.limit = sdc::lowestReading}), StartsWith("<?xml"));
}

TEST(PlotPrograms, stripAboveTheFrameTellsWhatIsInEachChannel)
{
    const auto result = resultOf({channelOf(1, {sweepOf({-9000, -9000, -9000, -9000, -9000})})});
    sdc::Chart chart = sdc::chartOf({{"", result, result.channels[0]}}, {});
    chart.states = {{{99'500, 101'000}, sdc::RasterState::free}, {{101'000, 102'000}, sdc::RasterState::occupied},
        {{102'000, 103'000}, sdc::RasterState::occupied}, {{103'000, 104'500}, sdc::RasterState::intermittent}};
    const std::string program = sdc::chartProgram(chart, {.width = 1000, .height = 560});
    EXPECT_THAT(program, HasSubstr("rectangle from first 99.500, graph 1 to first 101.000, graph 1.0231 noclip"));
    EXPECT_THAT(program, HasSubstr("rectangle from first 101.000, graph 1 to first 103.000, graph 1.0231 noclip"))
        << "neighbours with the same state are one";
    EXPECT_THAT(program,
        HasSubstr("keyentry with boxes fillcolor rgb '#8f1d16' fillstyle solid 1.0 border rgb '#333333' title "
                  "'occupied channel', "));
    EXPECT_THAT(program, HasSubstr("fillstyle empty border rgb '#333333' title 'free'\n"));
    EXPECT_THAT(program, Not(HasSubstr("title 'unknown")));
}

TEST(PlotPrograms, statesAreToldApartWithoutColour)
{
    std::set<std::string> fills;
    std::set<char> letters;
    for (const sdc::StateLook& look : sdc::stateLooks) {
        const std::string fill = look.fill;
        const bool isSolid = fill.find("solid") != std::string::npos; // one is dark, the other is not, see below
        fills.insert(isSolid ? fill : fill.substr(fill.find("fillstyle")));
        letters.insert(look.sign);
    }
    EXPECT_EQ(fills.size(), sdc::rasterStates.size());
    EXPECT_EQ(letters.size(), sdc::rasterStates.size());
}

TEST(PlotPrograms, transmitChannelIsShadedWhereItIsInThePicture)
{
    const std::string program = sdc::plotProgram(bandResult(), {.duplex_kHz = 7000});
    EXPECT_THAT(program, HasSubstr("set object rectangle from first 19181.000, graph 0 to first 19188.000, graph 1 behind"));
    EXPECT_THAT(program, HasSubstr("set label 'TX' at first 19184.500, "));
    EXPECT_THAT(program, HasSubstr("set label 'RX' at first 19177.500, "));
    EXPECT_THAT(sdc::plotProgram(bandResult(), {.duplex_kHz = 1'010'000}), Not(HasSubstr("'TX'")));
}

TEST(PlotPrograms, edgesOfChannelsAreDrawnWhereTheyCanBeTold)
{
    constexpr const char* look = "graph 1 nohead back linecolor rgb '#e6e6e6'";
    const std::string program = sdc::plotProgram(bandResult(), {});
    for (const char* const edge : {"19167.000", "19174.000", "19181.000", "19188.000"}) {
        EXPECT_THAT(program, HasSubstr(std::string("to first ") + edge + ", " + look)) << edge;
    }
    EXPECT_THAT(sdc::plotProgram(scanOf(std::vector<std::int32_t>(300, -9000)), {}), Not(HasSubstr(look)));
}

TEST(PlotPrograms, levelsThatNoReceiverReadsStandAtTheEndsOfTheScale)
{
    const std::string program =
        sdc::plotProgram(neverSaturated(scanOf({-9000, 2147483647, -9000, -2147483647 - 1, 6000, -20000})), {});
    EXPECT_THAT(program, HasSubstr("set yrange [-205:100]\n"));
    EXPECT_THAT(program, HasSubstr("$above << end\n101.000 100.00\nend\n"));
    EXPECT_THAT(program, HasSubstr("$below << end\n103.000 -205.00\nend\n"));
    EXPECT_THAT(program, HasSubstr("101.000 100.00\n102.000 -90.00\n103.000 -205.00\n104.000 60.00\n"));
    EXPECT_THAT(program, HasSubstr("\"^ above the plot, the strongest level: 21474836.47 dBm at 101.000 MHz\""));
    EXPECT_THAT(program, HasSubstr("\"v below the plot, the weakest level: -21474836.48 dBm at 103.000 MHz\""));
    EXPECT_THAT(program, HasSubstr("$peaks << end\n104.000 60.00\nend\n"));
}

TEST(Plots, svgIsTheSameEachTimeAndHasAWhiteGround)
{
    const std::string svg = plotOf(bandResult());
    EXPECT_THAT(svg, StartsWith("<?xml"));
    EXPECT_THAT(svg, HasSubstr("</svg>"));
    EXPECT_THAT(svg, HasSubstr("fill=\"#ffffff\""));
    EXPECT_THAT(svg, HasSubstr("test-link, KLM6 18G, sub-band scan"));
    EXPECT_EQ(plotOf(bandResult()), svg);
}

TEST(Plots, pngIsAPng)
{
    EXPECT_THAT(plotOf(bandResult(), {.format = PlotFormat::png}), StartsWith("\x89PNG\r\n"));
}

TEST(Plots, everyResultCanBeDrawn)
{
    auto onePlace = scanOf({-4400});
    onePlace.channels[0].plan.step_kHz = 0;
    auto odd = scanOf({2147483647, -2147483647 - 1, -9000, 2147483647});
    odd.channels[0].plan.highest_kHz = 4'294'967'295;
    odd.channels[0].plan.channelSpacing_kHz = 1;
    sdc::ScanResult noPlan = scanOf({});
    noPlan.channels[0].plan = {};
    auto high = scanOf({-9000, -9000});
    high.channels[0].plan.lowest_kHz = 4'294'967'294;
    high.channels[0].plan.highest_kHz = 4'294'967'295;
    high.channels[0].plan.rxFrequency_kHz = 4'294'967'295;
    high.channels[0].sweeps[0].samples = samplesOf({-9000, -9000}, 4'294'967'294, 1);
    const auto several =
        resultOf({channelOf(1, {sweepOf({-9000, -3000, -9000}), sweepOf({-9000})}), channelOf(2, {sweepOf({})})});
    for (const sdc::ScanResult& result : {onePlace, odd, noPlan, high, several, bandResult(30'000)}) {
        for (const PlotFormat format : {PlotFormat::svg, PlotFormat::text}) {
            EXPECT_GT(plotOf(result, {.format = format}).size(), 500U);
        }
    }
}

TEST(Plots, textsOfAScenarioAreNoCommands)
{
    const std::string trap = "/tmp/sdc-plot-trap-" + std::to_string(getpid());
    const std::vector<std::string> texts{"'; system('touch " + trap + "'); '", "`touch " + trap + "`",
        "\"; system(\"touch " + trap + "\")", "x\nsystem('touch " + trap + "')\n", "\\", "@x $y {/Bold z}"};
    for (const std::string& text : texts) {
        auto result = bandResult();
        result.scenario = text;
        result.channels[0].unitTypeText = text;
        EXPECT_THAT(sdc::plotProgram(result, {}), Not(HasSubstr("\nsystem")));
        EXPECT_EQ(failureOf(result), "") << text;
        const std::vector<sdc::Plotted> named{{support::shown(text), result}, {"other", result}};
        EXPECT_THAT(written([&](std::ostream& stream) { sdc::writeOverlay(stream, named, {}); }), StartsWith("<?xml"))
            << text;
        EXPECT_NE(access(trap.c_str(), F_OK), 0) << text;
    }
    auto result = bandResult();
    result.scenario = "<a & 'b'> {/Bold c}";
    EXPECT_THAT(plotOf(result), HasSubstr("&lt;a &amp; 'b'> {/Bold c}, "));
}

TEST(Plots, settingsOfTheUserChangeNothing)
{
    const std::string svg = plotOf(bandResult());
    setenv("GNUTERM", "dumb", 1);
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    EXPECT_EQ(plotOf(bandResult()), svg);
    unsetenv("GNUTERM");
    unsetenv("LC_ALL");
}
