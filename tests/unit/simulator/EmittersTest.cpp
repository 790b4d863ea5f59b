#include "simulator/radio/Air.h"
#include "tests/support/Recordings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <stdexcept>

namespace {

using simulator::Air;
using simulator::Carrier;
using simulator::ContinuousWave;
using simulator::Drift;
using simulator::EdgeLeakage;
using simulator::Emitter;
using simulator::isOn;
using simulator::NoiseBand;
using simulator::Reception;
using simulator::RecordedBins;
using simulator::Recording;
using simulator::Schedule;
using simulator::Shoulders;
using simulator::thermalNoise_dBm;
using tests::recordingOf;

constexpr double centre_kHz = 19000000.0;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

double mW(double level_dBm)
{
    return std::pow(10.0, level_dBm / 10.0);
}

/// What the emitters alone bring, without the receiver's noise and far from its limit.
double emitted_mW(const std::vector<Emitter>& emitters, double tuning_kHz, Reception reception, double time_ms = 0.0)
{
    reception.saturation_dBm = 200.0;
    return mW(Air(emitters, reception).rssi_dBm(tuning_kHz, time_ms))
        - mW(thermalNoise_dBm(reception.filterWidth_kHz, reception.noiseFigure_dB));
}

double emitted_dBm(const std::vector<Emitter>& emitters, double tuning_kHz, Reception reception, double time_ms = 0.0)
{
    return 10.0 * std::log10(emitted_mW(emitters, tuning_kHz, reception, time_ms));
}

constexpr double channel_kHz = 28000.0;
const Carrier shouldered{centre_kHz, -20.0, 20000.0, 0.25, Shoulders{channel_kHz, 30.0, 50.0}};

TEST(ShouldersOfACarrier, haveTheirPowerBelowTheCarriersInEachOfTheTwoNeighbourChannels)
{
    for (const double side : {-1.0, 1.0}) {
        EXPECT_NEAR(emitted_dBm({shouldered}, centre_kHz + side * channel_kHz, {channel_kHz, 0.0}), -50.0, 1e-4) << side;
        EXPECT_NEAR(emitted_dBm({shouldered}, centre_kHz + side * 2 * channel_kHz, {channel_kHz, 0.0}), -70.0, 1e-3) << side;
        EXPECT_NEAR(emitted_mW({shouldered}, centre_kHz + side * 3 * channel_kHz, {channel_kHz, 0.0}), 0.0, 1e-14) << side;
    }
}

TEST(ShouldersOfACarrier, lieFlatFromHalfAChannelOnAndAddNothingWithin)
{
    constexpr double tenth_kHz = channel_kHz / 10.0;
    for (const double side : {-1.0, 1.0}) {
        for (const double channels : {0.551, 1.0, 1.449}) {
            EXPECT_NEAR(emitted_dBm({shouldered}, centre_kHz + side * channels * channel_kHz, {tenth_kHz, 0.0}), -60.0, 1e-3)
                << side << ' ' << channels;
        }
        const double firstEdge_kHz = centre_kHz + side * 0.5 * channel_kHz;
        EXPECT_NEAR(emitted_dBm({shouldered}, firstEdge_kHz, {tenth_kHz, 0.0}), -63.0103, 1e-3) << side;
        const double secondEdge_kHz = centre_kHz + side * 1.5 * channel_kHz;
        EXPECT_NEAR(emitted_mW({shouldered}, secondEdge_kHz, {tenth_kHz, 0.0}), (mW(-60.0) + mW(-80.0)) / 2.0, 1e-12);
        EXPECT_NEAR(emitted_dBm({shouldered}, centre_kHz + side * 2.449 * channel_kHz, {tenth_kHz, 0.0}), -80.0, 1e-2);
    }
    EXPECT_NEAR(emitted_mW({shouldered}, centre_kHz, {channel_kHz, 0.0}), mW(-20.0), 1e-12);
    EXPECT_NEAR(emitted_mW({shouldered}, centre_kHz, {5 * channel_kHz, 0.0}), mW(-20.0) * 1.00202, 1e-9) << "all of it";
}

TEST(RowOfCarriers, standsAboveItsFirst)
{
    Carrier row = shouldered;
    row.row = simulator::Row{3, 5 * channel_kHz};
    const std::vector<Emitter> each{shouldered, Carrier{centre_kHz + 5 * channel_kHz, -20.0, 20000.0, 0.25, row.shoulders},
        Carrier{centre_kHz + 10 * channel_kHz, -20.0, 20000.0, 0.25, row.shoulders}};
    for (double offset_kHz = -4 * channel_kHz; offset_kHz < 14 * channel_kHz; offset_kHz += 3500.0) {
        for (const Reception& reception : {Reception{7000.0, 0.0}, Reception{7 * channel_kHz, 0.0, 30.0}}) {
            EXPECT_NEAR(emitted_mW({row}, centre_kHz + offset_kHz, reception),
                emitted_mW(each, centre_kHz + offset_kHz, reception), 1e-15)
                << offset_kHz;
        }
    }
}

TEST(UltimateRejection, leavesAPedestalEverywhereOfWhatIsOutsideTheFilter)
{
    const Reception reception{7000.0, 5.0, 55.0};
    for (const Emitter& emitter : {Emitter(Carrier{centre_kHz, -30.0, 20000.0, 0.25}),
             Emitter(ContinuousWave{centre_kHz, -30.0}), Emitter(recordingOf(centre_kHz, 1000.0, {-33.0103, -33.0103}))}) {
        for (const double offset_kHz : {-10000000.0, -50000.0, 50000.0, 10000000.0}) {
            EXPECT_NEAR(emitted_dBm({emitter}, centre_kHz + offset_kHz, reception), -85.0, 1e-3);
        }
    }
}

TEST(UltimateRejection, countsOnlyThePartThatIsOutside)
{
    const Emitter emitter(Carrier{centre_kHz, -30.0, 20000.0, 0.25});
    EXPECT_NEAR(emitted_mW({emitter}, centre_kHz, {10000.0, 0.0, 10.0}), mW(-30.0) * (0.5 + 0.5 * 0.1), 1e-10);
    EXPECT_NEAR(emitted_mW({emitter}, centre_kHz, {10000.0, 0.0, 0.0}), mW(-30.0), 1e-10);
    EXPECT_NEAR(emitted_mW({emitter}, centre_kHz, {40000.0, 0.0, 10.0}), mW(-30.0), 1e-10);
    EXPECT_NEAR(
        emitted_mW({shouldered}, centre_kHz + 3 * channel_kHz, {channel_kHz, 0.0, 20.0}), mW(-40.0) * 1.00202, 1e-11);
}

TEST(UltimateRejection, doesNotRaiseTheNoise)
{
    EXPECT_NEAR(Air({}, {7000.0, 5.0, 0.0}).rssi_dBm(centre_kHz, 0.0), thermalNoise_dBm(7000.0, 5.0), 1e-9);
}

TEST(Saturation, levelsReadingsOffWhereTheReceiversLimitIs)
{
    const auto shown_dBm = [](double level_dBm) {
        const Air air({ContinuousWave{centre_kHz, level_dBm}}, {1.0, 0.0, 60.0, -20.0});
        return air.rssi_dBm(centre_kHz, 0.0);
    };
    for (const double level_dBm : {-60.0, -30.0, -25.0, -20.0, -10.0, 20.0}) {
        EXPECT_NEAR(shown_dBm(level_dBm), -10.0 * std::log10(mW(-level_dBm) + mW(20.0)), 1e-4) << level_dBm;
    }
    EXPECT_NEAR(shown_dBm(-20.0), -23.0103, 1e-4);
    EXPECT_NEAR(shown_dBm(-40.0), -40.0432, 1e-4);
    EXPECT_NEAR(shown_dBm(60.0), -20.0, 1e-4);
}

TEST(Saturation, isOfTheSum)
{
    const std::vector<Emitter> three{ContinuousWave{centre_kHz, -24.7712}, ContinuousWave{centre_kHz + 1.0, -24.7712},
        ContinuousWave{centre_kHz + 2.0, -24.7712}};
    EXPECT_NEAR(Air(three, {7000.0, 5.0, 60.0, -20.0}).rssi_dBm(centre_kHz, 0.0), -23.0103, 1e-4);
}

TEST(DriftingWave, swingsAsASineAroundItsFrequencyUpwardsFirst)
{
    const std::vector<Emitter> drifting{ContinuousWave{centre_kHz, -60.0, Drift{500.0, 8000.0}}};
    const struct {
        double time_ms;
        double offset_kHz;
    } rows[] = {{0, 0}, {1000, 353.553}, {2000, 500}, {3000, 353.553}, {4000, 0}, {5000, -353.553}, {6000, -500}, {8000, 0},
        {10000, 500}, {8000.0 / 12.0, 250}};
    for (const auto& [time_ms, offset_kHz] : rows) {
        constexpr Reception narrow{2.0, 0.0};
        EXPECT_NEAR(emitted_dBm(drifting, centre_kHz + offset_kHz, narrow, time_ms), -60.0, 1e-6) << time_ms;
        EXPECT_LT(emitted_mW(drifting, centre_kHz + offset_kHz + 3.0, narrow, time_ms), 1e-12) << time_ms;
        EXPECT_LT(emitted_mW(drifting, centre_kHz + offset_kHz - 3.0, narrow, time_ms), 1e-12) << time_ms;
    }
}

TEST(WaveWithoutDrift, needsNoPeriod)
{
    EXPECT_NEAR(emitted_dBm({ContinuousWave{centre_kHz, -60.0}}, centre_kHz, {2.0, 0.0}, 12345.0), -60.0, 1e-6);
    EXPECT_NEAR(emitted_dBm({ContinuousWave{centre_kHz, -60.0, Drift{0.0, 4.0}}}, centre_kHz, {2.0, 0.0}, 1.0), -60.0, 1e-6);
}

TEST(NoiseOverABand, raisesTheReceiversOwnNoiseBehindAFilterWithin)
{
    for (const double rise_dB : {0.0, 3.0, 20.0}) {
        for (const double noiseFigure_dB : {0.0, 5.0}) {
            const Air air({NoiseBand{centre_kHz, centre_kHz + 100000.0, rise_dB}}, {14000.0, noiseFigure_dB});
            const double noise_dBm = thermalNoise_dBm(14000.0, noiseFigure_dB);
            for (const double offset_kHz : {7000.0, 50000.0, 93000.0}) {
                EXPECT_NEAR(air.rssi_dBm(centre_kHz + offset_kHz, 0.0), noise_dBm + rise_dB, 1e-9);
            }
            const double halfWithin_dBm = noise_dBm + 10.0 * std::log10((1.0 + mW(rise_dB)) / 2.0);
            for (const double offset_kHz : {0.0, 100000.0}) {
                EXPECT_NEAR(air.rssi_dBm(centre_kHz + offset_kHz, 0.0), halfWithin_dBm, 1e-9) << rise_dB;
            }
            EXPECT_NEAR(air.rssi_dBm(centre_kHz - 7000.0, 0.0), noise_dBm, 1e-9);
            EXPECT_NEAR(air.rssi_dBm(centre_kHz + 107000.0, 0.0), noise_dBm, 1e-9);
        }
    }
}

/// The integral of the density from one distance to a farther one on the same side, distances in MHz.
double leaked_mW(const EdgeLeakage& leakage, double from_MHz, double to_MHz)
{
    const double decayPerMHz = leakage.slope_dBPerMHz * std::numbers::ln10 / 10.0;
    const double atEdge_mWPerMHz = mW(leakage.density_dBmPerMHz);
    return atEdge_mWPerMHz / decayPerMHz * (std::exp(-decayPerMHz * from_MHz) - std::exp(-decayPerMHz * to_MHz));
}

TEST(LeakageOverAnEdge, fallsOffExponentiallyOnBothSides)
{
    const EdgeLeakage leakage{centre_kHz, -40.0, 2.5};
    constexpr Reception reception{4000.0, 0.0};
    for (const double side : {-1.0, 1.0}) {
        for (const double distance_MHz : {2.0, 3.5, 10.0}) {
            EXPECT_NEAR(emitted_mW({leakage}, centre_kHz + side * 1000.0 * distance_MHz, reception)
                    / leaked_mW(leakage, distance_MHz - 2.0, distance_MHz + 2.0),
                1.0, 1e-6)
                << side << ' ' << distance_MHz;
        }
        EXPECT_NEAR(emitted_mW({leakage}, centre_kHz + side * 500.0, reception),
            leaked_mW(leakage, 0.0, 1.5) + leaked_mW(leakage, 0.0, 2.5), 1e-12);
    }
    EXPECT_NEAR(emitted_dBm({leakage}, centre_kHz, {1.0, 0.0}), -70.0, 0.01) << "a thousandth of a MHz at the edge";
    EXPECT_NEAR(emitted_dBm({leakage}, centre_kHz + 10000.0, {1.0, 0.0}), -95.0, 0.01);
}

TEST(LeakageOverAnEdge, hasTheTotalOfBothSides)
{
    const EdgeLeakage leakage{centre_kHz, -40.0, 2.5};
    const double total_mW = 2.0 * mW(-40.0) / (0.25 * std::numbers::ln10);
    EXPECT_NEAR(emitted_mW({leakage}, centre_kHz, {10000000.0, 0.0}), total_mW, 1e-11);
    EXPECT_NEAR(emitted_mW({leakage}, centre_kHz + 1000000.0, {7000.0, 0.0, 30.0}), total_mW / 1000.0, 1e-12);
}

/// Levels of 1, 2, none, 4 and 8 times -60 dBm.
Recording fiveBins()
{
    const double doubled_dB = 10.0 * std::log10(2.0);
    return recordingOf(
        centre_kHz, 1000.0, {-60.0, -60.0 + doubled_dB, notANumber, -60.0 + 2 * doubled_dB, -60.0 + 3 * doubled_dB});
}

TEST(RecordedAir, hasEachBinsPowerEvenlySpreadOverTheBin)
{
    const struct {
        double from_kHz, to_kHz;
        double times; ///< of -60 dBm
    } rows[] = {{0, 1000, 1}, {1000, 2000, 2}, {2000, 3000, 0}, {3000, 4000, 4}, {4000, 5000, 8}, {0, 5000, 15},
        {-5000, 10000, 15}, {500, 1500, 1.5}, {250, 500, 0.25}, {1500, 3250, 2}, {4900, 5100, 0.8}, {-100, 100, 0.1},
        {3000, 3001, 0.004}, {-2000, 0, 0}, {5000, 7000, 0}, {-9000, -7000, 0}, {7000, 9000, 0}};
    for (const auto& [from_kHz, to_kHz, times] : rows) {
        const double power_mW = emitted_mW({fiveBins()}, centre_kHz + (from_kHz + to_kHz) / 2.0, {to_kHz - from_kHz, 0.0});
        EXPECT_NEAR(power_mW / mW(-60.0), times, 1e-6) << from_kHz << " to " << to_kHz;
    }
}

TEST(RecordedAir, ofAMillionBinsKeepsItsWeakOnesApart)
{
    std::vector<double> levels_dBm(1000000, -110.0);
    levels_dBm.front() = -20.0;
    const Recording recording = recordingOf(centre_kHz, 1.0, levels_dBm);
    EXPECT_NEAR(emitted_dBm({recording}, centre_kHz + 900000.0, {1000.0, 0.0}) - -80.0, 0.0, 1e-3);
}

/// Bins 0, 1 and 4 of 1 MHz, with 1, 2 and 4 times -60 dBm.
TEST(RecordedAir, hasNothingInItsGaps)
{
    const auto bins = std::make_shared<RecordedBins>(
        1000.0, std::vector<RecordedBins::Stretch>{{0.0, {mW(-60.0), 2 * mW(-60.0)}}, {4.0, {4 * mW(-60.0)}}});
    const struct {
        double from_kHz, to_kHz;
        double times; ///< of -60 dBm
    } rows[] = {{0, 5000, 7}, {-500, 500, 0.5}, {1500, 2500, 1}, {2000, 4000, 0}, {2500, 3000, 0}, {3500, 4500, 2},
        {4500, 9000, 2}, {5000, 6000, 0}};
    for (const auto& [from_kHz, to_kHz, times] : rows) {
        const double power_mW =
            emitted_mW({Recording{centre_kHz, bins}}, centre_kHz + (from_kHz + to_kHz) / 2.0, {to_kHz - from_kHz, 0.0});
        EXPECT_NEAR(power_mW / mW(-60.0), times, 1e-6) << from_kHz << " to " << to_kHz;
    }
}

/// Readings of a filter of 4 MHz, in steps of 1 MHz: of a line of -50 dBm above the noise of its receiver.
Recording readings(const std::vector<double>& levels_dBm)
{
    Recording recording = recordingOf(centre_kHz, 1000.0, levels_dBm);
    recording.bandwidth_kHz = 4000.0;
    return recording;
}

const Reception sameFilter{4000.0, 5.0, 60.0, -20.0};

double read_dBm(const std::vector<Emitter>& emitters, double tuning_kHz, const Reception& reception, double time_ms = 0.0)
{
    return Air(emitters, reception).rssi_dBm(tuning_kHz, time_ms);
}

TEST(RecordedReadings, areReadAgainByTheSameFilterWhateverTheyAre)
{
    const std::vector<double> levels_dBm{-103.0, -99.7, -104.9, -35.0, -21.0, -19.0, 3.0, -140.0};
    for (std::size_t index = 0; index < levels_dBm.size(); ++index) {
        EXPECT_NEAR(read_dBm({readings(levels_dBm)}, centre_kHz + 1000.0 * static_cast<double>(index), sameFilter),
            levels_dBm[index], 1e-6)
            << index;
    }
}

TEST(RecordedReadings, runStraightInDecibelsBetweenFrequenciesAndEndHalfAStepBeyond)
{
    const double noise_dBm = thermalNoise_dBm(4000.0, 5.0);
    const Recording recording = readings({-60.0, -70.0, notANumber, -50.0});
    const std::pair<double, double> rows[] = {{-501, noise_dBm}, {-499, -60}, {250, -62.5}, {900, -69}, {1499, -70},
        {1501, noise_dBm}, {2499, noise_dBm}, {2501, -50}, {3499, -50}, {3501, noise_dBm}, {1e6, noise_dBm}};
    for (const auto& [offset_kHz, level_dBm] : rows) {
        EXPECT_NEAR(read_dBm({recording}, centre_kHz + offset_kHz, sameFilter), level_dBm, 1e-3) << offset_kHz;
    }
}

TEST(RecordedReadings, holdTheNoiseOfTheirReceiverInThePlaceOfTheOthers)
{
    const Recording quiet = readings({-110.0, -110.0, -110.0});
    const double tuning_kHz = centre_kHz + 1000.0;
    EXPECT_NEAR(read_dBm({quiet}, tuning_kHz, sameFilter), -110.0, 1e-6);
    EXPECT_NEAR(read_dBm({quiet, ContinuousWave{tuning_kHz, -110.0}}, tuning_kHz, sameFilter), -106.99, 0.01);
    EXPECT_GT(read_dBm({quiet, quiet, quiet}, tuning_kHz, sameFilter), -500.0) << "a number, whatever is taken off";
}

/// A line of -50 dBm is in the filter from 2 MHz below it to 2 MHz above it.
TEST(RecordedReadings, areSeenByAWiderFilterAsThoseOfSeveralSideBySide)
{
    std::vector<double> levels_dBm(41, -100.0);
    std::fill(levels_dBm.begin() + 18, levels_dBm.begin() + 23, -50.0);
    const Recording recording = readings(levels_dBm);
    const double middle_kHz = centre_kHz + 20000.0;
    const Reception twice{8000.0, 5.0, 60.0, 60.0};
    for (const auto& [offset_kHz, level_dBm] :
        {std::pair(1000.0, -50.0), {3000.0, -50.0}, {-3000.0, -50.0}, {7000.0, -96.99}}) {
        EXPECT_NEAR(read_dBm({recording}, middle_kHz + offset_kHz, twice), level_dBm, 0.01) << offset_kHz;
    }
    const Recording flat = readings(std::vector<double>(41, -90.0));
    for (const double width_kHz : {4000.0, 4100.0, 6000.0, 8000.0, 11000.0, 20000.0, 2000.0, 400.0}) {
        EXPECT_NEAR(
            read_dBm({flat}, middle_kHz, {width_kHz, 5.0, 60.0, 60.0}), -90.0 + 10.0 * std::log10(width_kHz / 4000.0), 0.001)
            << width_kHz;
    }
}

TEST(RecordedReadings, haveASchedule)
{
    const Emitter recorded(readings({-50.0}), Schedule{100.0, {}, {}});
    EXPECT_NEAR(read_dBm({recorded}, centre_kHz, sameFilter, 99.0), thermalNoise_dBm(4000.0, 5.0), 1e-4);
    EXPECT_NEAR(read_dBm({recorded}, centre_kHz, sameFilter, 100.0), -50.0, 1e-6);
}

TEST(RecordedReadings, fadeDownToTheNoise)
{
    const Emitter recorded(readings({-50.0}), {}, true);
    const auto faded_dBm = [&](double depth_dB) {
        const simulator::Fading fading({simulator::Rain{0.0, 1000.0, depth_dB, 1e6}}, {});
        return Air({recorded}, sameFilter, fading).rssi_dBm(centre_kHz, 10000.0);
    };
    EXPECT_NEAR(faded_dBm(10.0), -60.0, 0.001);
    EXPECT_NEAR(faded_dBm(200.0), thermalNoise_dBm(4000.0, 5.0), 0.001);
}

TEST(RecordedBins, areAtLeastOneAndHaveAWidth)
{
    using Stretches = std::vector<RecordedBins::Stretch>;
    EXPECT_THROW(RecordedBins(1.0, {}), std::invalid_argument);
    EXPECT_THROW(RecordedBins(1.0, Stretches{{0.0, {}}}), std::invalid_argument);
    EXPECT_THROW(RecordedBins(0.0, Stretches{{0.0, {1.0}}}), std::invalid_argument);
}

TEST(Emitters, areOnWhenTheirSchedulesSaySo)
{
    const struct {
        Schedule schedule;
        std::vector<double> on, off;
    } rows[] = {
        {{}, {0, 1, 1e9}, {}},
        {{.from_ms = 100}, {100, 101, 1e9}, {0, 99, 99.999}},
        {{.from_ms = 100, .duration_ms = 50}, {100, 149, 149.999}, {0, 99.999, 150, 151, 1e9}},
        {{.from_ms = 100, .duration_ms = 50, .every_ms = 200}, {100, 149.999, 300, 349, 500, 2000100, 2000149},
            {0, 50, 99, 150, 299.999, 350, 499, 2000099, 2000150}},
        {{.from_ms = 100, .duration_ms = 50, .every_ms = 50}, {100, 149, 150, 151, 1e6}, {0, 99.999}},
    };
    for (const auto& [schedule, on, off] : rows) {
        for (const double time_ms : on) {
            EXPECT_TRUE(isOn(schedule, time_ms)) << schedule.from_ms << ": " << time_ms;
        }
        for (const double time_ms : off) {
            EXPECT_FALSE(isOn(schedule, time_ms)) << schedule.from_ms << ": " << time_ms;
        }
    }
}

TEST(Emitters, comeAndGoEachByItsOwnSchedule)
{
    const std::vector<Emitter> emitters{Emitter(ContinuousWave{centre_kHz, -60.0}, {.from_ms = 10, .duration_ms = 10}),
        Emitter(ContinuousWave{centre_kHz, -40.0}, {.from_ms = 15})};
    constexpr Reception reception{7000.0, 0.0, 20.0};
    EXPECT_EQ(emitted_mW(emitters, centre_kHz, reception, 9.0), 0.0);
    EXPECT_NEAR(emitted_mW(emitters, centre_kHz, reception, 12.0), mW(-60.0), 1e-12);
    EXPECT_NEAR(emitted_mW(emitters, centre_kHz, reception, 15.0), mW(-60.0) + mW(-40.0), 1e-11);
    EXPECT_NEAR(emitted_mW(emitters, centre_kHz, reception, 20.0), mW(-40.0), 1e-11);
    EXPECT_NEAR(emitted_mW(emitters, centre_kHz + 9000.0, reception, 9.0), 0.0, 1e-15) << "nor does it leak in then";
}

} // namespace
