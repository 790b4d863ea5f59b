#include "apps/sdc/result/Sanity.h"

#include "TestResults.h"

#include <gtest/gtest.h>

using namespace testing_results;
using sdc::Finding;
using sdc::Oddity;
using sdc::ReceiverData;
using sdc::SampleFlag;

namespace {

constexpr ReceiverData wide{28000.0, 5.0, 55.0, -20.0};  // its own noise reads -94.53 dBm
constexpr ReceiverData narrow{3500.0, 5.0, 55.0, -20.0}; // -103.56 dBm, which no reading shows

sdc::ReceiverCheck checkOf(const std::vector<std::vector<std::int32_t>>& sweeps, const ReceiverData& receiver)
{
    sdc::ReceiverCheck check;
    for (const auto& levels : sweeps) {
        check.add(sweepOf(levels), receiver);
    }
    return check;
}

std::vector<Finding> findingsOf(const std::vector<std::int32_t>& levels, const ReceiverData& receiver = wide)
{
    return checkOf({levels}, receiver).findings();
}

std::vector<std::string_view> flagTexts(std::int32_t level, std::int32_t before = -5000)
{
    const sdc::Sample sample{100000, level, {}};
    const sdc::Sample sampleBefore{99000, before, {}};
    std::vector<std::string_view> texts;
    for (const SampleFlag flag : flagsOf(sample, &sampleBefore, wide).listed()) {
        texts.push_back(toText(flag));
    }
    return texts;
}

} // namespace

TEST(SampleFlags, tellWhatIsOddAboutAReading)
{
    EXPECT_TRUE(flagTexts(-4512).empty());
    EXPECT_EQ(flagTexts(-9970), std::vector<std::string_view>{"at_floor"});
    EXPECT_TRUE(flagTexts(-9969).empty());
    EXPECT_EQ(flagTexts(-1999), std::vector<std::string_view>{"above_saturation"});
    EXPECT_TRUE(flagTexts(-2000).empty());
    EXPECT_EQ(flagTexts(0), std::vector<std::string_view>{"refused"});
    EXPECT_EQ(flagTexts(-4512, -4512), std::vector<std::string_view>{"repeated"});
}

TEST(SampleFlags, floorIsNoRepetitionAndZeroNoRefusalOfAReceiverThatReadsIt)
{
    EXPECT_EQ(flagTexts(-9970, -9970), std::vector<std::string_view>{"at_floor"});
    const sdc::Sample sample{100000, 0, {}};
    EXPECT_TRUE(flagsOf(sample, nullptr, {28000.0, 5.0, 55.0, 10.0}).areNone());
}

TEST(Sanity, receiverThatFluctuatesIsWell)
{
    EXPECT_TRUE(findingsOf({-9470, -9451, -9451, -9463, -4511, -9455}).empty());
    EXPECT_TRUE(findingsOf({}).empty());
    EXPECT_TRUE(checkOf({{-9470, -9451}}, wide).canTell());
}

TEST(Sanity, readingsThatAreAllEqualAreFound)
{
    EXPECT_EQ(findingsOf({-4512, -4512, -4512, -4512}), (std::vector<Finding>{{Oddity::allEqual, 4, 4, -4512}}));
    EXPECT_TRUE(findingsOf({-4512, -4512, -4512}).empty()) << "that comes about by chance";
    EXPECT_EQ(sdc::sentenceOf({Oddity::allEqual, 13, 13, -4512}),
        "all 13 readings are equal, -45.12 dBm: the receiver may be dead");
}

TEST(Sanity, readingsAreComparedFromOneSweepToTheNext)
{
    EXPECT_EQ(checkOf({{-4512, -4512}, {-4512, -4512}}, wide).findings().size(), 1U);
    EXPECT_FALSE(checkOf({{-4512}, {-4512}}, wide).canTell());
    EXPECT_TRUE(checkOf({{-4512}}, wide).canTell());
}

TEST(Sanity, floorIsNoSignWhereTheNoiseLiesBelowIt)
{
    const std::vector<std::int32_t> levels(100, -9970);
    EXPECT_TRUE(findingsOf(levels, narrow).empty());
    EXPECT_FALSE(checkOf({levels}, narrow).canTell()) << "a dead receiver would read the same";
    EXPECT_EQ(findingsOf(levels, wide), (std::vector<Finding>{{Oddity::tooLow, 100, 100, -9970}}));
}

TEST(Sanity, readingsFarBelowTheNoiseAreFound)
{
    EXPECT_EQ(findingsOf({-9450, -9970, -9970, -9455, -9970, -9970}), (std::vector<Finding>{{Oddity::tooLow, 4, 6, -9970}}));
    EXPECT_TRUE(findingsOf({-9450, -9970, -9970, -9455, -9970}).empty());
}

TEST(Sanity, sixEqualReadingsInARowAreFound)
{
    EXPECT_EQ(findingsOf({-9450, -8000, -8000, -8000, -8000, -8000, -8000, -9451}),
        (std::vector<Finding>{{Oddity::stuck, 6, 8, -8000}}));
    EXPECT_TRUE(findingsOf({-9450, -8000, -8000, -8000, -8000, -8000, -9451}).empty());
    EXPECT_FALSE(checkOf({{-9450, -8000, -8000, -8000, -8000, -8000, -8000}}, wide).canTell());
}

TEST(Sanity, refusedReadingsAndThoseAboveSaturationAreFound)
{
    EXPECT_EQ(findingsOf({0, -9450, -1950, 0}),
        (std::vector<Finding>{{Oddity::aboveSaturation, 1, 4, -2000}, {Oddity::refused, 2, 4, 0}}));
    EXPECT_EQ(
        sdc::sentenceOf({Oddity::refused, 2, 4, 0}), "2 of 4 readings were refused by the radio and stand as 0.00 dBm");
}
