#include "simulator/radio/Link.h"

#include "tests/unit/simulator/TestLink.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

namespace {

using simulator::Carrier;
using simulator::ContinuousWave;
using simulator::EdgeLeakage;
using simulator::Emitter;
using simulator::Fault;
using simulator::FaultAction;
using simulator::Link;
using simulator::NoiseBand;
using simulator::Notch;
using simulator::Operation;
using simulator::Rain;
using simulator::Recording;
using simulator::Schedule;
using simulator::Shoulders;
using simulator::whyImpossible;
using tests::plainLink;
using enum simulator::Operation;
using enum simulator::FaultAction;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

using Change = std::function<void(Link&)>;

struct Impossibility {
    Change spoil;
    std::string path;
    std::string text;
};

/// "path: text", or nothing.
std::string complaintOf(const Link& link)
{
    const auto complaint = whyImpossible(link);
    return complaint ? complaint->path + ": " + complaint->text : std::string();
}

std::string complaintAfter(const Change& change)
{
    Link link = plainLink();
    change(link);
    return complaintOf(link);
}

void expectComplaints(const std::vector<Impossibility>& rows)
{
    for (const Impossibility& row : rows) {
        EXPECT_EQ(complaintAfter(row.spoil), row.path + ": " + row.text);
    }
}

TEST(ImpossibleRadio, isToldWithThePlaceAndWhatWouldBeRight)
{
    expectComplaints({
        {[](Link& link) { link.channelSpacing_kHz = 0; }, "channel_spacing_kHz",
            "the channel spacing is 0 kHz; it must be 1 to 18700000 kHz"},
        {[](Link& link) { link.channelSpacing_kHz = 18700001; }, "channel_spacing_kHz",
            "the channel spacing is 18700001 kHz; it must be 1 to 18700000 kHz"},
        {[](Link& link) { link.frequencyParameters.minRxFrequency_kHz = 19700001; }, "receive_kHz.lowest",
            "the lowest receive frequency, 19700001 kHz, lies above the highest, 19700000 kHz; it must not"},
        {[](Link& link) { link.frequencyParameters.minRxFrequency_kHz = 4999; }, "receive_kHz.lowest",
            "the lowest receive frequency is 4999 kHz; it must be 5000 to 4294957295 kHz"},
        {[](Link& link) { link.frequencyParameters.maxRxFrequency_kHz = 4294957296; }, "receive_kHz.highest",
            "the highest receive frequency is 4294957296 kHz; it must be 5000 to 4294957295 kHz"},
        {[](Link& link) { link.rxFrequency_kHz = 18699999; }, "receive_kHz.configured",
            "the configured receive frequency is 18699999 kHz; it must be 18700000 to 19700000 kHz"},
        {[](Link& link) { link.rxFrequency_kHz = 19700001; }, "receive_kHz.configured",
            "the configured receive frequency is 19700001 kHz; it must be 18700000 to 19700000 kHz"},
        {[](Link& link) { link.frequencyParameters.frequencyStepSize_kHz = 0; }, "raster.step_kHz",
            "the raster step is 0 kHz; it must be 1 to 4294967295 kHz"},
        {[](Link& link) { link.frequencyParameters.stepLimitLow = 6801; }, "raster.lowest_step",
            "the lowest raster step, 6801, lies above the highest, 6800; it must not"},
        {[](Link& link) { link.frequencyParameters.stepLimitLow = 2799; }, "raster.lowest_step",
            "the frequency of the lowest raster step is 18699750 kHz; it must be 18700000 to 19700000 kHz"},
        {[](Link& link) { link.frequencyParameters.stepLimitHigh = 6801; }, "raster.highest_step",
            "the frequency of the highest raster step is 19700250 kHz; it must be 18700000 to 19700000 kHz"},
    });
}

TEST(ImpossibleReceiver, isToldWithThePlaceAndWhatWouldBeRight)
{
    expectComplaints({
        {[](Link& link) { link.filterWidth_kHz = 0.5; }, "receiver.filter_kHz",
            "the receive filter's width is 0.5 kHz; it must be 1 to 10000000 kHz"},
        {[](Link& link) { link.filterWidth_kHz = infinite; }, "receiver.filter_kHz",
            "the receive filter's width is inf kHz; it must be 1 to 10000000 kHz"},
        {[](Link& link) { link.noiseFigure_dB = -0.5; }, "receiver.noise_figure_dB",
            "the noise figure is -0.5 dB; it must be 0 to 50 dB"},
        {[](Link& link) { link.noiseFigure_dB = 50.5; }, "receiver.noise_figure_dB",
            "the noise figure is 50.5 dB; it must be 0 to 50 dB"},
        {[](Link& link) { link.settlingTime_ms = 0.0; }, "receiver.settling_ms",
            "the settling time is 0 ms; it must be 0.01 to 60000 ms"},
        {[](Link& link) { link.settlingTime_ms = notANumber; }, "receiver.settling_ms",
            "the settling time is nan ms; it must be 0.01 to 60000 ms"},
        {[](Link& link) { link.settlingTime_ms = 60001.0; }, "receiver.settling_ms",
            "the settling time is 60001 ms; it must be 0.01 to 60000 ms"},
        {[](Link& link) { link.jitter_dB = -0.1; }, "receiver.jitter_dB", "the jitter is -0.1 dB; it must be 0 to 20 dB"},
        {[](Link& link) { link.jitter_dB = 20.1; }, "receiver.jitter_dB", "the jitter is 20.1 dB; it must be 0 to 20 dB"},
        {[](Link& link) { link.ultimateRejection_dB = -1.0; }, "receiver.ultimate_rejection_dB",
            "the ultimate rejection is -1 dB; it must be 0 to 300 dB"},
        {[](Link& link) { link.ultimateRejection_dB = 301.0; }, "receiver.ultimate_rejection_dB",
            "the ultimate rejection is 301 dB; it must be 0 to 300 dB"},
        {[](Link& link) { link.saturation_dBm = -201.0; }, "receiver.saturation_dBm",
            "the saturation is -201 dBm; it must be -200 to 200 dBm"},
        {[](Link& link) { link.saturation_dBm = infinite; }, "receiver.saturation_dBm",
            "the saturation is inf dBm; it must be -200 to 200 dBm"},
    });
}

std::string complaintAbout(const Emitter& emitter)
{
    Link link = plainLink();
    link.emitters.push_back(emitter);
    const std::string complaint = complaintOf(link);
    const std::string path = "emitters[1]: the ";
    EXPECT_TRUE(complaint.empty() || complaint.starts_with(path)) << complaint;
    return complaint.empty() ? complaint : complaint.substr(path.size());
}

Carrier shouldered(double width_kHz, double adjacent_dB, double further_dB)
{
    return {19000000.0, -30.0, 20000.0, 0.25, Shoulders{width_kHz, adjacent_dB, further_dB}};
}

TEST(ImpossibleEmitters, areToldWithTheirPlace)
{
    const std::pair<Emitter, std::string> rows[] = {
        {Carrier{-1.0, -30.0, 20000.0, 0.25}, "carrier's centre is -1 kHz; it must be 0 to 4294967295 kHz"},
        {Carrier{19e6, 61.0, 20000.0, 0.25}, "carrier's level is 61 dBm; it must be -200 to 60 dBm"},
        {Carrier{19e6, -30.0, 0.0, 0.25}, "carrier's symbol rate is 0 kBd; it must be 1 to 10000000 kBd"},
        {Carrier{19e6, -30.0, 20000.0, 1.25}, "carrier's roll-off is 1.25; it must be 0 to 1"},
        {shouldered(0.5, 30.0, 50.0), "channel width of the carrier's shoulders is 0.5 kHz; it must be 1 to 10000000 kHz"},
        {shouldered(28000.0, 0.0, 50.0), "distance to the carrier's first shoulder is 0 dB; it must be 0.1 to 200 dB"},
        {shouldered(28000.0, 30.0, -1.0), "distance to the carrier's second shoulder is -1 dB; it must be 0.1 to 200 dB"},
        {ContinuousWave{notANumber, -60.0}, "continuous wave's frequency is nan kHz; it must be 0 to 4294967295 kHz"},
        {ContinuousWave{19e6, -201.0}, "continuous wave's level is -201 dBm; it must be -200 to 60 dBm"},
        {ContinuousWave{19e6, -60.0, -1.0, 1000.0}, "continuous wave's drift is -1 kHz; it must be 0 to 10000000 kHz"},
        {ContinuousWave{19e6, -60.0, 1.0, 0.0},
            "continuous wave's drift period is 0 ms; it must be 0.01 to 100000000000 ms"},
        {ContinuousWave{19e6, -60.0, 0.0, -1.0}, "continuous wave's drift period is -1 ms; it must be 0 to 100000000000 ms"},
        {NoiseBand{19e6, 18e6, 3.0},
            "noise band's lowest frequency, 19000000 kHz, lies above the highest, 18000000 kHz; it must not"},
        {NoiseBand{-1.0, 18e6, 3.0}, "noise band's lowest frequency is -1 kHz; it must be 0 to 4294967295 kHz"},
        {NoiseBand{18e6, infinite, 3.0}, "noise band's highest frequency is inf kHz; it must be 0 to 4294967295 kHz"},
        {NoiseBand{18e6, 19e6, 101.0}, "noise band's rise is 101 dB; it must be 0 to 100 dB"},
        {EdgeLeakage{-1.0, -60.0, 1.0}, "leakage's edge is -1 kHz; it must be 0 to 4294967295 kHz"},
        {EdgeLeakage{19e6, 61.0, 1.0}, "leakage's density is 61 dBm/MHz; it must be -200 to 60 dBm/MHz"},
        {EdgeLeakage{19e6, -60.0, 0.0}, "leakage's slope is 0 dB/MHz; it must be 0.0001 to 10000 dB/MHz"},
        {Recording{19e6, 1000.0, {}}, "recording is empty; it must have at least one bin"},
        {Recording{19e6, 1000.0, {-60.0, 61.0}}, "level of a recording's bin is 61 dBm; it must be -200 to 60 dBm"},
        {Recording{19e6, 1000.0, {-infinite}}, "level of a recording's bin is -inf dBm; it must be -200 to 60 dBm"},
        {Recording{-1.0, 1000.0, {-60.0}}, "recording's lowest frequency is -1 kHz; it must be 0 to 4294967295 kHz"},
        {Recording{19e6, 0.0, {-60.0}}, "recording's step is 0 kHz; it must be 0.001 to 10000000 kHz"},
    };
    for (const auto& [emitter, why] : rows) {
        EXPECT_EQ(complaintAbout(emitter), why);
    }
}

TEST(ImpossibleSchedules, areToldWithTheirEmittersPlace)
{
    const std::pair<Schedule, std::string> rows[] = {
        {{.from_ms = -1.0}, "schedule's beginning is -1 ms; it must be 0 to 100000000000 ms"},
        {{.from_ms = infinite}, "schedule's beginning is inf ms; it must be 0 to 100000000000 ms"},
        {{.duration_ms = 0.0}, "schedule's duration is 0 ms; it must be 0.001 to inf ms"},
        {{.duration_ms = notANumber}, "schedule's duration is nan ms; it must be 0.001 to inf ms"},
        {{.duration_ms = 100.0, .every_ms = 99.0},
            "time from turn to turn of the schedule is 99 ms; it must be 100 to 100000000000 ms"},
        {{.duration_ms = 100.0, .every_ms = -1.0},
            "time from turn to turn of the schedule is -1 ms; it must be 100 to 100000000000 ms"},
        {{.every_ms = 1000.0}, "schedule has turns without end; it must then be on once"},
    };
    for (const auto& [schedule, why] : rows) {
        EXPECT_EQ(complaintAbout(Emitter(ContinuousWave{19e6, -60.0}, schedule)), why);
    }
}

TEST(ImpossibleFading, isToldWithItsPlace)
{
    const Rain rain{0.0, 1.0, 10.0, 1000.0};
    const Notch notch{19e6, 19e6, 0.0, 1000.0, 10.0};
    expectComplaints({
        {[&](Link& link) {
             link.rain = {rain, {-1.0, 1.0, 10.0, 0.0}};
         },
            "fading.rain[1]", "the rain's beginning is -1 ms; it must be 0 to 100000000000 ms"},
        {[&](Link& link) {
             link.rain = {{0.0, 0.0, 10.0, 0.0}};
         },
            "fading.rain[0]", "the rain's rate is 0 dB/s; it must be 0.0001 to 1000 dB/s"},
        {[&](Link& link) {
             link.rain = {{0.0, 1.0, 201.0, 0.0}};
         },
            "fading.rain[0]", "the rain's depth is 201 dB; it must be 0 to 200 dB"},
        {[&](Link& link) {
             link.rain = {{0.0, 1.0, 10.0, infinite}};
         },
            "fading.rain[0]", "the time that the rain stays is inf ms; it must be 0 to 100000000000 ms"},
        {[&](Link& link) { link.notches = std::vector<Notch>(9, notch); }, "fading.notches",
            "the number of notches is 9; it must be 0 to 8"},
        {[&](Link& link) {
             link.notches = {notch, {-1.0, 19e6, 0.0, 1000.0, 10.0}};
         },
            "fading.notches[1]", "the notch's first centre is -1 kHz; it must be 0 to 4294967295 kHz"},
        {[&](Link& link) {
             link.notches = {{19e6, notANumber, 0.0, 1000.0, 10.0}};
         },
            "fading.notches[0]", "the notch's last centre is nan kHz; it must be 0 to 4294967295 kHz"},
        {[&](Link& link) {
             link.notches = {{19e6, 19e6, -1.0, 1000.0, 10.0}};
         },
            "fading.notches[0]", "the notch's speed is -1 kHz/s; it must be 0 to 10000000 kHz/s"},
        {[&](Link& link) {
             link.notches = {{19e6, 19e6, 0.0, 0.0, 10.0}};
         },
            "fading.notches[0]", "the notch's width is 0 kHz; it must be 0.001 to 10000000 kHz"},
        {[&](Link& link) {
             link.notches = {{19e6, 19e6, 0.0, 1000.0, -1.0}};
         },
            "fading.notches[0]", "the notch's depth is -1 dB; it must be 0 to 200 dB"},
    });
}

std::string complaintAboutFaults(const std::vector<Fault>& faults)
{
    Link link = plainLink();
    link.faults = faults;
    return complaintOf(link);
}

TEST(ImpossibleFaults, areToldWithTheirPlace)
{
    const Fault good{setRxFrequency, refuse};
    EXPECT_EQ(complaintAboutFaults({good, {getChannelSpacing, stick}}),
        "faults[1]: the action stick is none that getChannelSpacing knows; it must be one of: throw, answer");
    EXPECT_EQ(complaintAboutFaults({{getProperties, answer}}),
        "faults[0]: the action answer is none that getProperties knows; it must be one of: refuse, throw");
    EXPECT_EQ(complaintAboutFaults({{static_cast<Operation>(8), fail}}),
        "faults[0]: the operation is none of the radio's; it must be one of them");
    EXPECT_EQ(
        complaintAboutFaults({good, good, {readRssi, fail, 0}}), "faults[2]: the first call is 0; it must be at least 1");
    EXPECT_EQ(complaintAboutFaults({{readRssi, fail, 1, 0}}), "faults[0]: the number of calls is 0; it must be at least 1");
    EXPECT_EQ(complaintAboutFaults(std::vector<Fault>(1000, good)), "");
    EXPECT_EQ(
        complaintAboutFaults(std::vector<Fault>(1001, good)), "faults: the number of faults is 1001; it must be 0 to 1000");
}

TEST(AnswersOfFaults, mustBeNumbersThatTheirOperationsCanGive)
{
    const std::string signedRange = "; it must be -2147483648 to 2147483647";
    for (const Operation operation : {setRxFrequency, readRssi}) {
        EXPECT_EQ(complaintAboutFaults({{operation, answer, 1, 1, -2147483648}, {operation, answer, 1, 1, 2147483647}}), "");
        EXPECT_EQ(complaintAboutFaults({{operation, answer, 1, 1, -2147483649}}),
            "faults[0]: the answered value is -2147483649" + signedRange);
        EXPECT_EQ(complaintAboutFaults({{operation, answer, 1, 1, 2147483648}}),
            "faults[0]: the answered value is 2147483648" + signedRange);
    }
    for (const Operation operation : {getRxFrequency, getChannelSpacing}) {
        EXPECT_EQ(complaintAboutFaults({{operation, answer, 1, 1, -1}}),
            "faults[0]: the answered value is -1; it must be 0 to 4294967295");
        EXPECT_EQ(complaintAboutFaults({{operation, answer, 1, 1, 4294967296}}),
            "faults[0]: the answered value is 4294967296; it must be 0 to 4294967295");
        EXPECT_EQ(complaintAboutFaults({{operation, fail}}), "") << "its value is not used";
    }
}

TEST(AnswersOfFaults, mustLeaveALinkThatATerminalCanWorkWith)
{
    const Fault lowestFrequency{getRxFrequency, answer, 1, 1, 18700000};
    EXPECT_EQ(complaintAboutFaults({lowestFrequency}), "");
    EXPECT_EQ(complaintAboutFaults({{getRxFrequency, answer, 1, 1, 18699999}}),
        "faults[0]: with its answer the configured receive frequency is 18699999 kHz; it must be 18700000 to 19700000 kHz");
    EXPECT_EQ(complaintAboutFaults({lowestFrequency, {getChannelSpacing, answer}}),
        "faults[1]: with its answer the channel spacing is 0 kHz; it must be 1 to 18700000 kHz");
}

/// A channel of 1 MHz is narrower than a sweep's margins, which matters at the top of the range only.
TEST(AnswersOfFaults, mustGoTogether)
{
    const Fault top{getRxFrequency, answer, 1, 1, 19700000};
    const Fault narrow{getChannelSpacing, answer, 5, 1, 1000};
    EXPECT_EQ(complaintAboutFaults({top}), "");
    EXPECT_EQ(complaintAboutFaults({narrow}), "");
    const std::string text = "a sweep across the configured channel would end at 19700500 kHz; it must not end above "
                             "19700000 kHz, the highest receive frequency";
    EXPECT_EQ(complaintAboutFaults({top, narrow}), "faults[1]: with its answer and that of faults[0] " + text);
    EXPECT_EQ(
        complaintAboutFaults({narrow, {readRssi, refuse}, top}), "faults[2]: with its answer and that of faults[0] " + text);
    EXPECT_EQ(complaintAboutFaults({narrow, narrow}), "");
}

/// A radio of one band with a raster that just covers it.
Link linkOf(std::uint32_t band_GHz, std::uint32_t lowest_kHz, std::uint32_t highest_kHz, std::uint32_t raster_kHz = 1)
{
    Link link = plainLink();
    link.frequencyParameters = {
        band_GHz, {}, lowest_kHz, highest_kHz, raster_kHz, 0, lowest_kHz, {}, 0, (highest_kHz - lowest_kHz) / raster_kHz};
    link.rxFrequency_kHz = lowest_kHz + (highest_kHz - lowest_kHz) / 2;
    link.channelSpacing_kHz = 28000;
    return link;
}

TEST(SweepOfARaster, needsRoomBetweenItsMargins)
{
    const struct {
        std::uint32_t band_GHz, raster_kHz, span_kHz;
        std::uint8_t longHaul;
        std::string required_kHz; ///< empty: nothing to complain of
    } rows[] = {
        {18, 1, 2000, 0, ""},
        {18, 1, 1999, 0, "2000"},
        {42, 1, 2000, 0, ""},
        {43, 1, 10000, 0, ""},
        {43, 1, 9999, 0, "10000"},
        {18, 1, 9999, 1, "10000"}, // a long-haul radio
        {18, 1, 10000, 1, ""},
        {18, 300, 2100, 0, ""}, // margins of 900 and 1000 kHz
        {18, 300, 1800, 0, "1900"},
        {18, 1500, 1500, 0, ""}, // below the raster step the lower margin is none
        {18, 1500, 0, 0, "1000"},
        {80, 3000, 9000, 0, ""},
        {80, 3000, 6000, 0, "8000"},
    };
    for (const auto& [band_GHz, raster_kHz, span_kHz, longHaul, required_kHz] : rows) {
        Link link = linkOf(band_GHz, 18000000, 18050000, raster_kHz);
        link.frequencyParameters.stepLimitHigh = span_kHz / raster_kHz;
        link.properties.longHaul = longHaul;
        const std::string why = "raster.highest_step: the raster spans " + std::to_string(span_kHz)
            + " kHz; it must span at least " + required_kHz + " kHz, the margins that a sweep keeps to its ends";
        EXPECT_EQ(complaintOf(link), required_kHz.empty() ? "" : why);
    }
}

TEST(SweepOfARaster, takesAMillionSamplesAtMost)
{
    Link link = linkOf(18, 500000000, 2500002000); // 2000000000 kHz from margin to margin
    EXPECT_EQ(complaintOf(link),
        "raster.highest_step: a sweep of the raster would take 1000001 samples; it must take at most 1000000");
    link.frequencyParameters.stepLimitHigh -= 1;
    EXPECT_EQ(complaintOf(link), "");
}

TEST(SweepFromChannelToChannel, takesAMillionSamplesAtMost)
{
    Link link = linkOf(18, 18000000, 19000000);
    link.channelSpacing_kHz = 1;
    EXPECT_EQ(complaintOf(link),
        "channel_spacing_kHz: a sweep from channel to channel would take 1000001 samples; it must take at most 1000000");
    link.frequencyParameters.maxRxFrequency_kHz -= 1;
    link.frequencyParameters.stepLimitHigh -= 1;
    EXPECT_EQ(complaintOf(link), "");
    link = linkOf(18, 18000000, 20000000);
    link.channelSpacing_kHz = 2;
    EXPECT_EQ(complaintOf(link), "") << "999999 channels: those at the ends leave the range";
}

TEST(SweepAcrossAChannel, mustNotEndAboveTheRange)
{
    const struct {
        std::uint32_t band_GHz, spacing_kHz, belowTop_kHz;
        std::uint8_t longHaul;
        std::uint32_t endsAboveTop_kHz; ///< 0: it does not
    } rows[] = {
        {18, 2000, 0, 0, 0},
        {18, 1998, 0, 0, 1},
        {18, 1998, 1, 0, 0},
        {18, 7000, 0, 0, 0},
        {80, 10000, 0, 0, 0},
        {80, 9998, 0, 0, 1},
        {80, 9998, 0, 1, 1}, // before its first look at the properties
        {80, 7000, 11500, 0, 0},
        {80, 7000, 11499, 0, 1},
        {42, 7000, 0, 1, 0},
    };
    for (const auto& [band_GHz, spacing_kHz, belowTop_kHz, longHaul, endsAboveTop_kHz] : rows) {
        Link link = linkOf(band_GHz, 18000000, 18500000);
        link.rxFrequency_kHz = 18500000 - belowTop_kHz;
        link.channelSpacing_kHz = spacing_kHz;
        link.properties.longHaul = longHaul;
        const std::string why = "channel_spacing_kHz: a sweep across the configured channel would end at "
            + std::to_string(18500000 + endsAboveTop_kHz)
            + " kHz; it must not end above 18500000 kHz, the highest receive frequency";
        EXPECT_EQ(complaintOf(link), endsAboveTop_kHz == 0 ? "" : why) << band_GHz << ' ' << spacing_kHz;
    }
}

/// Coarsely it has no room below and begins 5 MHz above the bottom; finely it begins 1 MHz above the channel.
TEST(SweepAcrossAChannel, ofALongHaulRadioMustEndInTheRangeFinelyToo)
{
    Link link = linkOf(80, 18000000, 18005998, 5998);
    link.rxFrequency_kHz = 18004999;
    link.channelSpacing_kHz = 1;
    EXPECT_EQ(complaintOf(link), "");
    link.properties.longHaul = 1;
    EXPECT_EQ(complaintOf(link),
        "channel_spacing_kHz: a sweep across the configured channel would end at 18005999 kHz; it must not end above "
        "18005998 "
        "kHz, the highest receive frequency");
    link.rxFrequency_kHz -= 1;
    EXPECT_EQ(complaintOf(link), "");
}

/// In the upper bands a channel of 7 MHz at the bottom of the range begins half a margin, 2.5 MHz, above it; what comes
/// after is a step of 10 MHz, unless the channel lies less than that above the beginning.
TEST(SweepAcrossAChannel, atTheBottomOfANarrowRangeMustNotEndAboveItEither)
{
    const auto complaintWith = [](std::uint32_t span_kHz, std::uint32_t aboveBottom_kHz) {
        Link link = linkOf(80, 18000000, 18000000 + span_kHz);
        link.rxFrequency_kHz = 18000000 + aboveBottom_kHz;
        link.channelSpacing_kHz = 7000;
        return complaintOf(link);
    };
    EXPECT_EQ(complaintWith(12500, 0), "");
    EXPECT_EQ(complaintWith(12500, 2499), "");
    EXPECT_EQ(complaintWith(12499, 2499),
        "channel_spacing_kHz: a sweep across the configured channel would end at 18012500 kHz; it must not end above "
        "18012499 "
        "kHz, the highest receive frequency");
    EXPECT_EQ(complaintWith(12499, 2500), "");
    EXPECT_EQ(complaintWith(12499, 8499), "");
    EXPECT_NE(complaintWith(19999, 8500), "") << "room below: from 10 MHz above the bottom on, and a step more";
    EXPECT_EQ(complaintWith(20000, 8500), "");
}

TEST(PossibleLinks, mayStandAtTheVeryEdges)
{
    const Change rows[] = {
        [](Link&) {},
        [](Link& link) { link.rxFrequency_kHz = 18700000; },
        [](Link& link) { link.rxFrequency_kHz = 19700000; },
        [](Link& link) { link.filterWidth_kHz = 1.0; },
        [](Link& link) { link.filterWidth_kHz = 10000000.0; },
        [](Link& link) { link.noiseFigure_dB = 0.0; },
        [](Link& link) { link.noiseFigure_dB = 50.0; },
        [](Link& link) { link.settlingTime_ms = 0.01; },
        [](Link& link) { link.settlingTime_ms = 60000.0; },
        [](Link& link) { link.jitter_dB = 20.0; },
        [](Link& link) { link.ultimateRejection_dB = 0.0; },
        [](Link& link) { link.ultimateRejection_dB = 300.0; },
        [](Link& link) { link.saturation_dBm = -200.0; },
        [](Link& link) { link.saturation_dBm = 200.0; },
        [](Link& link) { link.unitTypeText = "none that is known"; },
        [](Link& link) { link.emitters.clear(); },
        [](Link& link) { link = linkOf(18, 28000, 128000); },
        [](Link& link) { link = linkOf(18, 4200000000, 4294939295); },
        [](Link& link) {
            link = linkOf(18, 4200000000, 4294957295);
            link.channelSpacing_kHz = 10000;
        },
        [](Link& link) {
            link = linkOf(80, 5000, 25000);
            link.channelSpacing_kHz = 5000;
        },
        [](Link& link) { link.frequencyParameters.stepLimitLow = link.frequencyParameters.stepLimitHigh - 8; },
    };
    for (const Change& change : rows) {
        EXPECT_EQ(complaintAfter(change), "");
    }
}

TEST(PossibleLinks, haveATopChannelThatMayLeaveTheBand)
{
    Link link = linkOf(15, 14440000, 14500000, 250);
    link.channelSpacing_kHz = 7000;
    for (const std::uint32_t configured_kHz : {14497500U, 14500000U, 14440000U, 14442500U}) {
        link.rxFrequency_kHz = configured_kHz;
        EXPECT_EQ(complaintOf(link), "");
    }
}

TEST(PossibleLinks, haveEmittersAtTheVeryEdges)
{
    const Emitter rows[] = {
        Carrier{0.0, -200.0, 1.0, 0.0},
        Carrier{4294967295.0, 60.0, 10000000.0, 1.0},
        shouldered(1.0, 0.1, 0.1),
        shouldered(10000000.0, 200.0, 200.0),
        ContinuousWave{0.0, 60.0},
        ContinuousWave{0.0, -200.0, 10000000.0, 0.01},
        NoiseBand{19e6, 19e6, 0.0},
        NoiseBand{0.0, 4294967295.0, 100.0},
        EdgeLeakage{0.0, -200.0, 0.0001},
        EdgeLeakage{4294967295.0, 60.0, 10000.0},
        Recording{0.0, 0.001, {notANumber, 60.0, -200.0}},
        Recording{4294967295.0, 10000000.0, {notANumber}},
        Emitter(ContinuousWave{19e6, -60.0}, {.from_ms = 1e11, .duration_ms = 0.001, .every_ms = 0.001}),
        Emitter(ContinuousWave{19e6, -60.0}, {.duration_ms = 1e11, .every_ms = 1e11}),
        Emitter(ContinuousWave{19e6, -60.0}, {.duration_ms = 1e12}),
    };
    for (const Emitter& emitter : rows) {
        EXPECT_EQ(complaintAbout(emitter), "");
    }
    EXPECT_EQ(complaintAfter([](Link& link) {
        link.rain = {{0.0, 0.0001, 0.0, 0.0}, {1e11, 1000.0, 200.0, 1e11}};
        link.notches = std::vector<Notch>(7, {0.0, 4294967295.0, 10000000.0, 10000000.0, 200.0});
        link.notches.push_back({4294967295.0, 0.0, 0.0, 0.001, 0.0});
    }),
        "");
}

} // namespace
