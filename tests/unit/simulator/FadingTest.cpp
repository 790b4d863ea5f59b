#include "simulator/radio/Air.h"
#include "tests/support/Recordings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

namespace {

using simulator::Air;
using simulator::Carrier;
using simulator::ContinuousWave;
using simulator::EdgeLeakage;
using simulator::Emitter;
using simulator::Fading;
using simulator::NoiseBand;
using simulator::Notch;
using simulator::Rain;
using simulator::Reception;
using simulator::Recording;
using tests::recordingOf;

constexpr double centre_kHz = 13000000.0;
constexpr double filter_kHz = 28000.0;

double mW(double level_dBm)
{
    return std::pow(10.0, level_dBm / 10.0);
}

/// By how much fading lowers what a filter of 28 MHz shows of an emitter, the receiver's noise left out.
double faded_dB(const Emitter& emitter, const Fading& fading, double tuning_kHz, double time_ms, double rejection_dB = 200.0)
{
    const Reception reception{filter_kHz, 0.0, rejection_dB, 200.0};
    const double noise_mW = mW(simulator::thermalNoise_dBm(filter_kHz, 0.0));
    const double clear_mW = mW(Air({emitter}, reception).rssi_dBm(tuning_kHz, time_ms)) - noise_mW;
    return 10.0 * std::log10(clear_mW / (mW(Air({emitter}, reception, fading).rssi_dBm(tuning_kHz, time_ms)) - noise_mW));
}

Emitter overThePath(const simulator::Signal& signal)
{
    return Emitter(signal, {}, true);
}

const Emitter carrier = overThePath(Carrier{centre_kHz, 0.0, 22000.0, 0.25});

TEST(RainOnThePath, fallsStaysAndComesBackAtItsRate)
{
    const Fading fading({Rain{10000.0, 0.5, 12.0, 30000.0}}, {}); // 24 s down, 30 s at 12 dB, 24 s back
    const struct {
        double time_s, attenuation_dB;
    } rows[] = {{0, 0}, {10, 0}, {11, 0.5}, {22, 6}, {33, 11.5}, {34, 12}, {50, 12}, {64, 12}, {66, 11}, {76, 6}, {87, 0.5},
        {88, 0}, {89, 0}, {1000, 0}};
    for (const auto& [time_s, attenuation_dB] : rows) {
        EXPECT_NEAR(faded_dB(carrier, fading, centre_kHz, 1000.0 * time_s), attenuation_dB, 1e-5) << time_s;
    }
}

TEST(RainOnThePath, addsUpInDecibelsWhereShowersOverlap)
{
    const Fading fading({Rain{0.0, 1.0, 4.0, 60000.0}, Rain{10000.0, 1.0, 7.0, 5000.0}}, {});
    EXPECT_NEAR(faded_dB(carrier, fading, centre_kHz, 8000.0), 4.0, 1e-5);
    EXPECT_NEAR(faded_dB(carrier, fading, centre_kHz, 12000.0), 6.0, 1e-5);
    EXPECT_NEAR(faded_dB(carrier, fading, centre_kHz, 18000.0), 11.0, 1e-5);
}

TEST(RainOnThePath, lowersEveryKindOfEmitterThatComesOverIt)
{
    const Fading fading({Rain{0.0, 10.0, 10.0, 1e6}}, {});
    for (const simulator::Signal& signal :
        {simulator::Signal(Carrier{centre_kHz, 0.0, 22000.0, 0.25}), simulator::Signal(ContinuousWave{centre_kHz, 0.0}),
            simulator::Signal(NoiseBand{centre_kHz - 20000.0, centre_kHz + 20000.0, 100.0}),
            simulator::Signal(EdgeLeakage{centre_kHz, 0.0, 1.0}),
            simulator::Signal(recordingOf(centre_kHz - 5000.0, 1000.0, std::vector<double>(10, 0.0)))}) {
        EXPECT_NEAR(faded_dB(overThePath(signal), fading, centre_kHz, 5000.0), 10.0, 1e-5) << signal.index();
        EXPECT_EQ(faded_dB(Emitter(signal), fading, centre_kHz, 5000.0), 0.0) << signal.index() << " comes from elsewhere";
        EXPECT_NEAR(faded_dB(overThePath(signal), fading, centre_kHz + 1e6, 5000.0, 20.0), 10.0, 1e-5) << signal.index();
    }
}

Fading withNotches(const std::vector<Notch>& notches)
{
    return Fading({}, notches);
}

Notch standing(double offset_kHz, double width_kHz, double depth_dB)
{
    return {centre_kHz + offset_kHz, centre_kHz + offset_kHz, 0.0, width_kHz, depth_dB};
}

TEST(NotchInTheBand, lowersTheDensityWithinItsWidthOnly)
{
    const Emitter band = overThePath(NoiseBand{centre_kHz - 100000.0, centre_kHz + 100000.0, 90.0});
    const double kept = mW(-20.0);
    const struct {
        double offset_kHz, width_kHz;
        double share; ///< of the filter that the notch takes
    } rows[] = {{0, 7000, 0.25}, {3000, 7000, 0.25}, {0, 28000, 1}, {0, 50000, 1}, {14000, 7000, 0.125},
        {-14000, 7000, 0.125}, {17500, 7000, 0}, {-17500, 7000, 0}, {40000, 7000, 0}};
    for (const auto& [offset_kHz, width_kHz, share] : rows) {
        const Fading fading = withNotches({standing(offset_kHz, width_kHz, 20.0)});
        const double expected_dB = -10.0 * std::log10(1.0 - share * (1.0 - kept));
        EXPECT_NEAR(faded_dB(band, fading, centre_kHz, 0.0), expected_dB, 1e-4) << offset_kHz << ' ' << width_kHz;
    }
}

TEST(NotchInTheBand, takesPartsOutOfEveryKindOfSpectrum)
{
    const Fading lowerHalf = withNotches({standing(-50000.0, 100000.0, 10.0)});
    const double half_dB = -10.0 * std::log10(0.5 + 0.5 * 0.1);
    EXPECT_NEAR(faded_dB(carrier, lowerHalf, centre_kHz, 0.0), half_dB, 1e-5);
    EXPECT_NEAR(faded_dB(overThePath(EdgeLeakage{centre_kHz, 0.0, 1.0}), lowerHalf, centre_kHz, 0.0), half_dB, 1e-5);
    const Recording recording = recordingOf(centre_kHz - 5000.0, 1000.0, std::vector<double>(10, 0.0));
    EXPECT_NEAR(faded_dB(overThePath(recording), lowerHalf, centre_kHz, 0.0), half_dB, 1e-5);
    EXPECT_EQ(faded_dB(Emitter(recording), lowerHalf, centre_kHz, 0.0), 0.0);
}

TEST(NotchInTheBand, lowersALineThatLiesInItItsEndsIncluded)
{
    const Emitter line = overThePath(ContinuousWave{centre_kHz, 0.0});
    for (const double offset_kHz : {-1000.0, -500.0, 0.0, 1000.0}) {
        EXPECT_NEAR(faded_dB(line, withNotches({standing(offset_kHz, 2000.0, 15.0)}), centre_kHz, 0.0), 15.0, 1e-6);
    }
    for (const double offset_kHz : {-1000.5, 1000.5}) {
        EXPECT_EQ(faded_dB(line, withNotches({standing(offset_kHz, 2000.0, 15.0)}), centre_kHz, 0.0), 0.0);
    }
}

TEST(NotchInTheBand, lowersWhatLeaksInFromOutsideAsWell)
{
    constexpr double rejection_dB = 30.0;
    const double far_kHz = centre_kHz + 1000000.0;
    const Fading overAll = withNotches({standing(0.0, 60000.0, 10.0)});
    EXPECT_NEAR(faded_dB(carrier, overAll, far_kHz, 0.0, rejection_dB), 10.0, 1e-5);
    const Fading overHalf = withNotches({standing(30000.0, 60000.0, 10.0)});
    EXPECT_NEAR(faded_dB(carrier, overHalf, far_kHz, 0.0, rejection_dB), -10.0 * std::log10(0.55), 1e-5);
    EXPECT_NEAR(faded_dB(overThePath(ContinuousWave{centre_kHz, 0.0}), overAll, far_kHz, 0.0, rejection_dB), 10.0, 1e-5);
}

TEST(NotchInTheBand, addsToTheRain)
{
    const Fading fading({Rain{0.0, 10.0, 5.0, 1e6}}, {standing(0.0, 60000.0, 10.0)});
    EXPECT_NEAR(faded_dB(carrier, fading, centre_kHz, 5000.0), 15.0, 1e-4);
    EXPECT_NEAR(faded_dB(overThePath(ContinuousWave{centre_kHz, 0.0}), fading, centre_kHz, 5000.0), 15.0, 1e-4);
}

TEST(MovingNotch, goesFromBeginToEndAndBeginsAnew)
{
    const struct {
        double end_kHz, time_s, expectedCentre_kHz;
    } rows[] = {{3000, 0, 0}, {3000, 2, 500}, {3000, 11.9, 2975}, {3000, 12, 0}, {3000, 14, 500}, {3000, 1202, 500},
        {-3000, 0, 0}, {-3000, 2, -500}, {-3000, 12, 0}, {-3000, 13, -250}, {0, 7, 0}};
    for (const auto& [end_kHz, time_s, expectedCentre_kHz] : rows) {
        const Fading fading = withNotches({{centre_kHz, centre_kHz + end_kHz, 250.0, 20.0, 30.0}});
        for (const double inside_kHz : {-9.0, 9.0}) {
            const Emitter line = overThePath(ContinuousWave{centre_kHz + expectedCentre_kHz + inside_kHz, 0.0});
            EXPECT_NEAR(faded_dB(line, fading, centre_kHz, 1000.0 * time_s), 30.0, 1e-4) << end_kHz << ' ' << time_s;
        }
        for (const double outside_kHz : {-11.0, 11.0}) {
            const Emitter line = overThePath(ContinuousWave{centre_kHz + expectedCentre_kHz + outside_kHz, 0.0});
            EXPECT_EQ(faded_dB(line, fading, centre_kHz, 1000.0 * time_s), 0.0) << end_kHz << ' ' << time_s;
        }
    }
}

TEST(MovingNotch, withoutSpeedStaysWhereItBegins)
{
    const Fading fading = withNotches({{centre_kHz, centre_kHz + 5000.0, 0.0, 20.0, 30.0}});
    EXPECT_NEAR(faded_dB(overThePath(ContinuousWave{centre_kHz, 0.0}), fading, centre_kHz, 1e6), 30.0, 1e-4);
}

/// The power that arrives out of a flat density, summed up over slices of 10 kHz each.
double arrivingShare(const std::vector<Notch>& notches)
{
    constexpr int slices = 2800;
    double sum = 0.0;
    for (int slice = 0; slice < slices; ++slice) {
        const double frequency_kHz = centre_kHz - filter_kHz / 2.0 + (slice + 0.5) * filter_kHz / slices;
        double gain = 1.0;
        for (const Notch& notch : notches) {
            gain *= std::abs(frequency_kHz - notch.begin_kHz) <= notch.width_kHz / 2.0 ? mW(-notch.depth_dB) : 1.0;
        }
        sum += gain / slices;
    }
    return sum;
}

TEST(SeveralNotches, addUpInDecibelsWhereTheyOverlap)
{
    const std::vector<Notch> rows[] = {
        {standing(-7000, 4000, 10), standing(7000, 2000, 20)},
        {standing(-2000, 8000, 10), standing(2000, 8000, 6)},
        {standing(0, 8000, 10), standing(1000, 2000, 6)},
        {standing(0, 8000, 10), standing(0, 8000, 6)},
        {standing(-4000, 8000, 10), standing(4000, 8000, 6)},
        {standing(0, 20000, 3), standing(0, 10000, 3), standing(0, 5000, 3), standing(2000, 3000, 3),
            standing(-8000, 3000, 3), standing(-14000, 3000, 3), standing(13000, 6000, 3), standing(90000, 6000, 3)},
    };
    const Emitter band = overThePath(NoiseBand{centre_kHz - 100000.0, centre_kHz + 100000.0, 90.0});
    for (const std::vector<Notch>& notches : rows) {
        const double expected_dB = -10.0 * std::log10(arrivingShare(notches));
        EXPECT_NEAR(faded_dB(band, withNotches(notches), centre_kHz, 0.0), expected_dB, 1e-4) << notches[1].width_kHz;
    }
    const Fading both = withNotches({standing(0, 8000, 10), standing(1000, 2000, 6)});
    EXPECT_NEAR(faded_dB(overThePath(ContinuousWave{centre_kHz + 500.0, 0.0}), both, centre_kHz, 0.0), 16.0, 1e-6);
}

TEST(SeveralNotches, areEightAtMost)
{
    EXPECT_NO_THROW(withNotches(std::vector<Notch>(8, standing(0, 1000, 10))));
    EXPECT_THROW(withNotches(std::vector<Notch>(9, standing(0, 1000, 10))), std::length_error);
}

} // namespace
