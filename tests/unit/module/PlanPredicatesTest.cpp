// The five questions that the standard plans ask, each at its boundaries.

#include "tests/unit/module/PlanTable.h"

#include <gmock/gmock.h>

namespace {

using tests::PlanInputs;
using tests::Wide;

/// The end of a 32-bit word.
constexpr Wide last = 4294967295;

class Predicates : public tests::PlanTable {
protected:
    /// Asks, and sees to it that asking leaves an entry record and nothing else behind.
    void expect(bool (ControllerInspector::*ask)() const, const std::string& name, const PlanInputs& in, bool expected)
    {
        put(in, inspect());
        const Members before = members();
        log.clear();
        EXPECT_EQ((inspect().*ask)(), expected) << name << ": " << in;
        EXPECT_THAT(log.calls(), testing::ElementsAre("enter 6 " + name));
        EXPECT_EQ(members(), before);
    }

    void expectOdd(Wide spacing, bool expected)
    {
        expect(&ControllerInspector::isChannelSpcaingOdd, "isChannelSpcaingOdd", {.spacing = spacing}, expected);
    }

    void expectLongHaul(Wide flag, bool expected)
    {
        expect(&ControllerInspector::isLongHaul, "isLongHaul", {.longHaul = flag}, expected);
    }

    void expectLowerBand(Wide band, bool expected)
    {
        expect(&ControllerInspector::isLowerFrequencyBand, "isLowerFrequencyBand", {.band = band}, expected);
    }

    void expectValidMin(const PlanInputs& in, bool expected)
    {
        expect(&ControllerInspector::validMinFrequencyMargin, "validMinFrequencyMargin", in, expected);
    }

    void expectInRange(const PlanInputs& in, bool expected)
    {
        expect(&ControllerInspector::isHighestFreqInRange, "isHighestFreqInRange", in, expected);
    }
};

TEST_F(Predicates, channelSpacingIsOddAt7000Only)
{
    expectOdd(7000, true);
    for (const Wide spacing : {Wide{0}, Wide{1}, Wide{3500}, Wide{6999}, Wide{7001}, Wide{14000}, Wide{28000}, last}) {
        expectOdd(spacing, false);
    }
}

TEST_F(Predicates, longHaulIsTheFirstPropertyAndAnyValueButZero)
{
    EXPECT_FALSE(inspect().isLongHaul()) << "at first";
    inspect().m_properties() = SDCProperties{0, 1, 1, 1};
    EXPECT_FALSE(inspect().isLongHaul());
    expectLongHaul(0, false);
    for (const Wide flag : {1, 2, 127, 128, 255}) {
        expectLongHaul(flag, true);
    }
}

TEST_F(Predicates, lowerBandsEndAt42)
{
    for (const Wide band : {0, 1, 18, 41, 42}) {
        expectLowerBand(band, true);
    }
    for (const Wide band : {Wide{43}, Wide{44}, Wide{80}, Wide{2147483647}, Wide{2147483648}, last}) {
        expectLowerBand(band, false);
    }
}

TEST_F(Predicates, minimumMarginIsValidFromMarginAndHalfASpacingAboveTheBottom)
{
    expectValidMin({.rx = 17715000, .margin = 1000}, true);
    expectValidMin({.rx = 17715001, .margin = 1000}, true);
    expectValidMin({.rx = 17714999, .margin = 1000}, false);
    expectValidMin({.rx = 17714000, .margin = 0}, true);
    expectValidMin({.rx = 17713999, .margin = 0}, false);
    expectValidMin({.spacing = 28001, .rx = 17715000, .margin = 1000}, true); // half a spacing is rounded down
    expectValidMin({.spacing = 28002, .rx = 17715000, .margin = 1000}, false);
    expectValidMin({.spacing = 27999, .rx = 17714999, .margin = 1000}, true);
    expectValidMin({.spacing = 0, .rx = 17700000}, true);
    expectValidMin({.spacing = 1, .rx = 17700000}, true);
}

TEST_F(Predicates, minimumMarginComparesUnsignedAndWraps)
{
    expectValidMin({.rx = 7704, .min = 4294960000, .margin = 1000}, true);
    expectValidMin({.rx = 7703, .min = 4294960000, .margin = 1000}, false);
    expectValidMin({.spacing = 0, .rx = 2147483648, .min = 2147483647}, true);
    expectValidMin({.spacing = 0, .rx = 2147483647, .min = 2147483648}, false);
    expectValidMin({.spacing = 0, .rx = last, .min = 0, .margin = last}, true);
    expectValidMin({.spacing = last, .rx = 2147483646, .min = 0}, false);
    expectValidMin({.spacing = last, .rx = 2147483647, .min = 0}, true);
}

TEST_F(Predicates, nextStepIsInRangeUpToTheTopOfTheRange)
{
    const auto withTop = [](Wide max) { return PlanInputs{.max = max, .margin = 1000, .step = 2000, .highest = 18000000}; };
    expectInRange(withTop(18003000), true);
    expectInRange(withTop(18003001), true);
    expectInRange(withTop(18002999), false);
}

TEST_F(Predicates, nextStepIsInRangeUpToTheTopOfTheChannel)
{
    const auto withHighest = [](Wide highest) { return PlanInputs{.margin = 1000, .step = 2000, .highest = highest}; };
    expectInRange(withHighest(18011000), true);
    expectInRange(withHighest(18010999), true);
    expectInRange(withHighest(18011001), false);
    expectInRange({.spacing = 28001, .margin = 1000, .step = 2000, .highest = 18011001}, false); // rounded down
    expectInRange({.spacing = 28002, .margin = 1000, .step = 2000, .highest = 18011001}, true);
}

TEST_F(Predicates, nextStepMustBeBelowBothTops)
{
    expectInRange({.max = 18002000, .step = 2000, .highest = 18000000}, true);
    expectInRange({.max = 18001999, .step = 2000, .highest = 18000000}, false); // though the channel reaches farther
    expectInRange({.spacing = 3999, .step = 2000, .highest = 18000000}, false); // though the range reaches farther
    expectInRange({.spacing = 4000, .step = 2000, .highest = 18000000}, true);
}

TEST_F(Predicates, nextStepComparesUnsignedAndWraps)
{
    expectInRange({.step = 2000, .highest = last}, true);                                  // the next step
    expectInRange({.max = 999, .margin = 1000, .highest = 18000000}, true);                // the top of the range
    expectInRange({.max = 1000, .margin = 1000, .highest = 18000000}, false);              // and not so
    expectInRange({.spacing = 0, .margin = 1000, .highest = 17999000}, true);              // half a spacing less the margin
    expectInRange({.spacing = 0, .margin = 1000, .highest = 17999001}, false);             // is added to the channel
    expectInRange({.spacing = 0, .rx = 999, .margin = 1000, .highest = 18000000}, true);   // the top of the channel
    expectInRange({.spacing = 0, .rx = 1000, .margin = 1000, .highest = 18000000}, false); // and not so
    expectInRange({.rx = 4294960000, .max = last, .highest = 4294950000}, false);          // above the word's end
    expectInRange({.rx = 2147483648, .max = 2147483648, .highest = 2147483647}, true);     // across half of the word
    expectInRange({.rx = 2147483648, .max = 2147483647, .highest = 2147483648}, false);    // and not so
    expectInRange({.spacing = 0, .rx = 2147483647, .max = last, .highest = 2147483648}, false); // nor the channel
}

} // namespace
