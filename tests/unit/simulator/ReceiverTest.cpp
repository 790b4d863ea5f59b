#include "simulator/radio/Receiver.h"

#include "tests/unit/simulator/TestLink.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using host::VirtualClock;
using simulator::Link;
using simulator::Receiver;
using tests::plainLink;
using tests::quiet_kHz;

constexpr std::int32_t carrierLevel = -3500;
const double noise_dBm = simulator::thermalNoise_dBm(27500.0, 5.0);

std::int32_t hundredths(double level_dBm)
{
    return static_cast<std::int32_t>(std::lround(100.0 * level_dBm));
}

double between(double from_dBm, double to_dBm, double timeConstants)
{
    return to_dBm + (from_dBm - to_dBm) * std::exp(-timeConstants);
}

/// On plainLink the level goes from -35 dBm to the noise when the receiver leaves its channel; a time constant is 100 ms.
class ReceiverOnPlainLink : public testing::Test {
protected:
    VirtualClock clock;
    Receiver receiver{plainLink(), clock};
};

TEST_F(ReceiverOnPlainLink, startsTunedAndSettledAtTheConfiguredFrequency)
{
    EXPECT_EQ(receiver.frequency_kHz(), 19177500U);
    EXPECT_EQ(receiver.reading(), carrierLevel);
    clock.sleepMs(1000);
    EXPECT_EQ(receiver.reading(), carrierLevel);
}

TEST_F(ReceiverOnPlainLink, settlesExponentiallyFromTheOldLevelToTheNew)
{
    ASSERT_EQ(receiver.tune(quiet_kHz), 0);
    EXPECT_EQ(receiver.frequency_kHz(), quiet_kHz);
    EXPECT_EQ(receiver.reading(), carrierLevel);
    clock.sleepMs(100);
    EXPECT_EQ(receiver.reading(), hundredths(between(-35.0, noise_dBm, 1.0)));
    clock.sleepMs(400);
    EXPECT_EQ(receiver.reading(), hundredths(between(-35.0, noise_dBm, 5.0)));
    clock.sleepMs(1500);
    EXPECT_EQ(receiver.reading(), hundredths(noise_dBm));
}

TEST_F(ReceiverOnPlainLink, settlesTowardsAHigherLevelAsWell)
{
    receiver.tune(quiet_kHz);
    clock.sleepMs(5000);
    receiver.tune(19177500);
    EXPECT_EQ(receiver.reading(), hundredths(noise_dBm));
    clock.sleepMs(250);
    EXPECT_EQ(receiver.reading(), hundredths(between(noise_dBm, -35.0, 2.5)));
}

TEST_F(ReceiverOnPlainLink, tunedAgainTooEarlySettlesFromWhereTheLevelStood)
{
    receiver.tune(quiet_kHz);
    clock.sleepMs(100);
    const double stood_dBm = between(-35.0, noise_dBm, 1.0);
    receiver.tune(19177500);
    EXPECT_EQ(receiver.reading(), hundredths(stood_dBm));
    clock.sleepMs(200);
    EXPECT_EQ(receiver.reading(), hundredths(between(stood_dBm, -35.0, 2.0)));
}

TEST_F(ReceiverOnPlainLink, refusesFrequenciesOutsideItsRangeAndStaysWhereItIs)
{
    ASSERT_EQ(receiver.tune(quiet_kHz), 0);
    clock.sleepMs(5000);
    for (const std::uint32_t frequency_kHz : {0U, 18699999U, 19700001U, 4294967295U}) {
        EXPECT_EQ(receiver.tune(frequency_kHz), 32768) << frequency_kHz;
        EXPECT_EQ(receiver.frequency_kHz(), quiet_kHz);
        EXPECT_EQ(receiver.reading(), hundredths(noise_dBm));
    }
}

TEST_F(ReceiverOnPlainLink, tunesToTheVeryEdgesOfItsRange)
{
    EXPECT_EQ(receiver.tune(18700000), 0);
    EXPECT_EQ(receiver.frequency_kHz(), 18700000U);
    EXPECT_EQ(receiver.tune(19700000), 0);
    EXPECT_EQ(receiver.frequency_kHz(), 19700000U);
    EXPECT_EQ(receiver.frequency_kHz(), 19700000U);
}

TEST_F(ReceiverOnPlainLink, showsAThreadWhoseClockIsBehindTheMomentOfTheTuning)
{
    clock.sleepMs(3600000);
    receiver.tune(quiet_kHz);
    std::int32_t seen = 0;
    std::thread([&] { seen = receiver.reading(); }).join();
    EXPECT_EQ(seen, carrierLevel);
}

TEST_F(ReceiverOnPlainLink, isUsableFromSeveralThreads)
{
    constexpr int tuningsPerThread = 500;
    const auto tuneToAndFro = [this] {
        for (int i = 0; i < tuningsPerThread; ++i) {
            receiver.tune(i % 2 == 0 ? quiet_kHz : 19177500U);
            receiver.reading();
        }
    };
    std::thread one(tuneToAndFro);
    std::thread other(tuneToAndFro);
    for (int i = 0; i < tuningsPerThread; ++i) {
        const std::uint32_t frequency_kHz = receiver.frequency_kHz();
        EXPECT_TRUE(frequency_kHz == quiet_kHz || frequency_kHz == 19177500U) << frequency_kHz;
    }
    one.join();
    other.join();
}

TEST(ReceiverUnderAChangingSky, settlesTowardsTheLevelAsItIsNow)
{
    Link link = plainLink();
    link.settlingTime_ms = 1000.0;
    link.emitters.emplace_back(simulator::Carrier{quiet_kHz, -40.0, 22000.0, 0.25}, simulator::Schedule{}, true);
    link.rain = {{0.0, 1.0, 20.0, 1e9}}; // 1 dB less with each second
    VirtualClock clock;
    Receiver receiver(link, clock);
    clock.sleepMs(3000);
    ASSERT_EQ(receiver.tune(quiet_kHz), 0);
    EXPECT_EQ(receiver.reading(), carrierLevel);
    for (const double timeConstants : {1.0, 2.0, 5.0}) {
        clock.sleepMs(timeConstants == 5.0 ? 3000 : 1000);
        const double level_dBm = -43.0 - timeConstants;
        EXPECT_NEAR(receiver.reading(), 100.0 * (level_dBm + 8.0 * std::exp(-timeConstants)), 1.0) << timeConstants;
    }
    clock.sleepMs(1000000);
    EXPECT_EQ(receiver.reading(), -6000);
    ASSERT_EQ(receiver.tune(19177500), 0);
    clock.sleepMs(1000);
    EXPECT_NEAR(receiver.reading(), 100.0 * between(-60.0, -35.0, 1.0), 1.0);
}

TEST(ReceiverUnderAChangingSky, showsAnEmitterAtOnceThatComesOnWhereItIsTuned)
{
    Link link = plainLink();
    link.emitters.emplace_back(simulator::ContinuousWave{19177500.0, -10.0}, simulator::Schedule{500.0, 1000.0});
    VirtualClock clock;
    Receiver receiver(link, clock);
    EXPECT_EQ(receiver.reading(), -3500);
    clock.sleepMs(500);
    EXPECT_EQ(receiver.reading(), -999);
    clock.sleepMs(1000);
    EXPECT_EQ(receiver.reading(), -3500);
}

TEST(ReceiverOfALink, hasItsRejectionItsSaturationAndItsNotches)
{
    Link link = plainLink();
    VirtualClock clock;
    link.saturation_dBm = -35.0;
    EXPECT_EQ(Receiver(link, clock).reading(), -3801);

    link.saturation_dBm = 60.0;
    link.ultimateRejection_dB = 40.0;
    link.rxFrequency_kHz = quiet_kHz;
    EXPECT_EQ(Receiver(link, clock).reading(), -7500 + 5); // and the noise

    link.rxFrequency_kHz = 19177500;
    link.emitters = {simulator::Emitter(simulator::Carrier{19177500.0, -35.0, 22000.0, 0.25}, {}, true)};
    link.notches = {{19177500.0, 19177500.0, 0.0, 40000.0, 20.0}};
    EXPECT_EQ(Receiver(link, clock).reading(), -5500);
}

/// Readings of a receiver that goes round three frequencies with a settle delay each.
std::vector<std::int32_t> tour(std::uint64_t seed, std::uint32_t settleDelay_ms)
{
    Link link = plainLink();
    link.settlingTime_ms = 10.0;
    link.jitter_dB = 0.5;
    link.seed = seed;
    VirtualClock clock;
    Receiver receiver(link, clock);
    std::vector<std::int32_t> readings;
    for (std::uint32_t i = 0; i < 60; ++i) {
        receiver.tune(19177500U + i % 3 * 20000U);
        clock.sleepMs(settleDelay_ms);
        readings.push_back(receiver.reading());
    }
    return readings;
}

TEST(ReceiverJitter, givesTheSameReadingsForASeedAndOthersForAnother)
{
    EXPECT_EQ(tour(1, 300), tour(1, 300));
    EXPECT_NE(tour(1, 300), tour(2, 300));
}

TEST(ReceiverJitter, doesNotDependOnHowLongASettleDelayIsOnceItIsLong)
{
    EXPECT_EQ(tour(1, 300), tour(1, 60000));
    EXPECT_NE(tour(1, 300), tour(1, 5));
}

// Worked out apart from this program: 64-bit Mersenne twister, Box and Muller's first deviate of each pair of numbers.
TEST(ReceiverJitter, isTheSameWithEveryLibrary)
{
    Link link = plainLink();
    link.jitter_dB = 0.5;
    link.seed = 2024;
    VirtualClock clock;
    Receiver receiver(link, clock);
    for (const std::int32_t expected : {-3486, -3541, -3399, -3517, -3583, -3543}) {
        EXPECT_EQ(receiver.reading(), expected);
    }
}

TEST(ReceiverJitter, hasTheStandardDeviationOfTheLink)
{
    Link link = plainLink();
    link.jitter_dB = 0.8;
    VirtualClock clock;
    Receiver receiver(link, clock);
    constexpr int count = 20000;
    double sum = 0.0;
    double sumOfSquares = 0.0;
    for (int i = 0; i < count; ++i) {
        const double deviation = receiver.reading() - carrierLevel;
        sum += deviation;
        sumOfSquares += deviation * deviation;
    }
    EXPECT_NEAR(sum / count, 0.0, 2.0);
    EXPECT_NEAR(std::sqrt(sumOfSquares / count), 80.0, 2.0);
}

TEST(ReceiverOfAnImpossibleLink, isNotMade)
{
    Link link = plainLink();
    link.filterWidth_kHz = 0.0;
    VirtualClock clock;
    try {
        const Receiver receiver(link, clock);
        FAIL() << "made";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(),
            "receiver.filter_kHz: is 0 kHz; must be a number from 1 to 10000000 kHz (width of the receive filter)");
    }
}

} // namespace
