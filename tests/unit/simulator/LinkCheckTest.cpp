#include "tests/unit/simulator/Complaints.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using simulator::Fault;
using simulator::Link;
using simulator::Operation;
using tests::Change;
using tests::complaintAfter;
using tests::complaintOf;
using tests::Impossibility;
using tests::linkOf;
using tests::plainLink;
using enum simulator::Operation;
using enum simulator::FaultAction;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

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

} // namespace
