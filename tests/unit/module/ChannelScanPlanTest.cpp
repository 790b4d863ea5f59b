// The plans of a channel scan, row by row; and of all plans, when they ask what and when they write.

#include "tests/unit/module/PlanTable.h"

#include <gmock/gmock.h>

namespace {

using tests::Calls;
using tests::PlanInputs;
using tests::Wide;

class ChannelScan : public tests::PlanTable {};

TEST_F(ChannelScan, planOfTheWorkedExamples)
{
    expectRows(&ControllerInspector::prepChannelScanStd,
        {
            {"28 MHz, 18 GHz", {}, {2000, 1000, 17987000, 18013000, 14}},
            {"7 MHz, 18 GHz", {.spacing = 7000}, {1000, 1000, 17997500, 18003500, 7}},
            {"28 MHz, 80 GHz", {.band = 80}, {10000, 5000, 17991000, 18001000, 2}},
            {"28 MHz near the bottom", {.rx = 17710000}, {2000, 1000, 17701000, 17723000, 12}},
        });
}

TEST_F(ChannelScan, marginAndStepFollowFromLongHaulOrLowerBandAndSpacing)
{
    expectRows(&ControllerInspector::prepChannelScanStd,
        {
            {"lower band", {.band = 42}, {2000, 1000, 17987000, 18013000, 14}},
            {"upper band", {.band = 43}, {10000, 5000, 17991000, 18001000, 2}},
            {"lower band, long haul", {.band = 42, .longHaul = 1}, {2000, 1000, 17987000, 18013000, 14}},
            {"upper band, long haul", {.band = 43, .longHaul = 255}, {2000, 1000, 17987000, 18013000, 14}},
            {"lower band, odd", {.spacing = 7000, .band = 42}, {1000, 1000, 17997500, 18003500, 7}},
            {"upper band, odd", {.spacing = 7000, .band = 43}, {10000, 5000, 18001500, 18011500, 2}},
            {"lower, long haul, odd", {.spacing = 7000, .band = 42, .longHaul = 2}, {1000, 1000, 17997500, 18003500, 7}},
            {"upper, long haul, odd", {.spacing = 7000, .band = 43, .longHaul = 128}, {1000, 1000, 17997500, 18003500, 7}},
        });
}

TEST_F(ChannelScan, startsAtTheBottomOfTheRangeWhenTheChannelHasNoRoomBelow)
{
    expectRows(&ControllerInspector::prepChannelScanStd,
        {
            {"just room", {.rx = 17715000}, {2000, 1000, 17702000, 17728000, 14}},
            {"1 kHz short", {.rx = 17714999}, {2000, 1000, 17701000, 17727000, 14}},
            {"upper band, just room", {.rx = 17719000, .band = 43}, {10000, 5000, 17710000, 17720000, 2}},
            {"upper band, 1 kHz short", {.rx = 17718999, .band = 43}, {10000, 5000, 17705000, 17725000, 3}},
            {"odd, just room", {.spacing = 7000, .rx = 17704500}, {1000, 1000, 17702000, 17708000, 7}},
            {"odd, 1 kHz short: half the margin", {.spacing = 7000, .rx = 17704499}, {1000, 1000, 17700500, 17707500, 8}},
            {"odd, upper band, just room", {.spacing = 7000, .rx = 17708500, .band = 43},
                {10000, 5000, 17710000, 17720000, 2}},
            {"odd, upper band, short", {.spacing = 7000, .rx = 17708499, .band = 43}, {10000, 5000, 17702500, 17702500, 1}},
            {"below the range", {.rx = 17690000}, {2000, 1000, 17701000, 17703000, 2}},
        });
}

TEST_F(ChannelScan, endsWhereRangeOrChannelEnd)
{
    expectRows(&ControllerInspector::prepChannelScanStd,
        {
            {"a step ends at the top of the range", {.max = 18006000}, {2000, 1000, 17987000, 18005000, 10}},
            {"a step ends 1 kHz above it", {.max = 18005999}, {2000, 1000, 17987000, 18003000, 9}},
            {"no step fits into the range", {.max = 17989999}, {2000, 1000, 17987000, 17987000, 1}},
            {"a step ends at the top of the channel", {.spacing = 28000}, {2000, 1000, 17987000, 18013000, 14}},
            {"a step ends 2 kHz above it", {.spacing = 27998}, {2000, 1000, 17987001, 18011001, 13}},
            {"half a spacing is rounded down", {.spacing = 28001}, {2000, 1000, 17987000, 18013000, 14}},
            {"1 kHz less in half a spacing", {.spacing = 27999}, {2000, 1000, 17987001, 18011001, 13}},
            {"a channel of two margins and a step", {.spacing = 4000}, {2000, 1000, 17999000, 18001000, 2}},
            {"a narrower one", {.spacing = 3998}, {2000, 1000, 17999001, 17999001, 1}},
            {"a channel within its margins", {.spacing = 1000}, {2000, 1000, 18000500, 18000500, 1}},
            {"no spacing", {.spacing = 0}, {2000, 1000, 18001000, 18001000, 1}},
        });
}

TEST_F(ChannelScan, takesOneMoreSampleForTheOddSpacingUnlessItEndsWithinAStepBelowTheChannel)
{
    const Wide min = 17700000; // with the channel near it the scan starts at min + 500, and the top of the range stops it
    expectRows(&ControllerInspector::prepChannelScanStd,
        {
            {"one step below", {.spacing = 7000, .rx = min + 3500, .max = min + 3500},
                {1000, 1000, min + 500, min + 2500, 3}},
            {"1 kHz more", {.spacing = 7000, .rx = min + 3501, .max = min + 3500}, {1000, 1000, min + 500, min + 3500, 4}},
            {"at the channel", {.spacing = 7000, .rx = min + 3500, .max = min + 4500},
                {1000, 1000, min + 500, min + 3500, 4}},
            {"1 kHz above", {.spacing = 7000, .rx = min + 3499, .max = min + 4500}, {1000, 1000, min + 500, min + 4500, 5}},
            {"well below", {.spacing = 7000, .max = 17999000}, {1000, 1000, 17997500, 17998500, 2}},
            {"half a step below", {.spacing = 7000, .max = 18000500}, {1000, 1000, 17997500, 17999500, 3}},
            {"half a step above", {.spacing = 7000, .max = 18001500}, {1000, 1000, 17997500, 18001500, 5}},
            {"another spacing", {.spacing = 7002, .max = 17999000}, {2000, 1000, 17997499, 17997499, 1}},
            {"and another", {.spacing = 6998}, {2000, 1000, 17997501, 18001501, 3}},
        });
}

TEST_F(ChannelScan, ofTheOddSpacingHasSevenSamplesAndEndsHalfASpacingAboveTheChannel)
{
    expectRows(&ControllerInspector::prepChannelScanStd,
        {
            {"near the bottom", {.spacing = 7000, .rx = 17704500}, {1000, 1000, 17702000, 17708000, 7}},
            {"well inside", {.spacing = 7000}, {1000, 1000, 17997500, 18003500, 7}},
            {"near the top", {.spacing = 7000, .rx = 19690000}, {1000, 1000, 19687500, 19693500, 7}},
        });
}

TEST_F(ChannelScan, arithmeticWraps)
{
    expectRows(&ControllerInspector::prepChannelScanStd,
        {
            {"the bottom of the range above the word's end", {.rx = 7704, .min = 4294960000},
                {2000, 1000, 4294962000, 4294962000, 1}},
            {"the same, 1 kHz short", {.rx = 7703, .min = 4294960000}, {2000, 1000, 4294961000, 4294961000, 1}},
            {"the top of the range below 0", {.max = 999}, {2000, 1000, 17987000, 18013000, 14}},
            {"the top of the channel above the word's end", {.rx = 4294960000, .max = 4294967295},
                {2000, 1000, 4294947000, 4294947000, 1}},
            {"beyond half of the word", {.rx = 2147483648, .max = 4294967295}, {2000, 1000, 2147470648, 2147496648, 14}},
            {"the channel's bottom below 0", {.rx = 12000, .min = 4294960000}, {2000, 1000, 4294966296, 25000, 14}},
        });
}

TEST_F(ChannelScan, of4742And4743IsOneMeasurementAtTheChannel)
{
    expectRows(&ControllerInspector::prepChannelScan4742_4743,
        {
            {"inside the range", {}, {0, 0, 18000000, 18000000, 1}},
            {"outside of it", {.rx = 1}, {0, 0, 1, 1, 1}},
            {"with all else 0", {0, 4294967295, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 4294967295, 4294967295, 1}},
            {"long haul, odd, upper band", {.spacing = 7000, .band = 80, .longHaul = 1}, {0, 0, 18000000, 18000000, 1}},
        });
}

class PlanSteps : public tests::PlanTable {};

TEST_F(PlanSteps, haveStoredWhatTheirQuestionsReadBeforeTheyAskAndNothingBeforeTheirEntry)
{
    using Inspector = ControllerInspector;
    const struct {
        RunPlan run;
        PlanInputs in;
        Calls expected; ///< each entry, with margin, step, lowest and highest frequency at that moment
    } rows[] = {
        {&Inspector::prepChannelScanStd, {.spacing = 5000},
            {"prepChannelScanStd 77 77 77 77", "isLongHaul 77 77 77 77", "isLowerFrequencyBand 77 77 77 77",
                "isChannelSpcaingOdd 1000 77 77 77", "validMinFrequencyMargin 1000 2000 77 77",
                "isHighestFreqInRange 1000 2000 17998500 17998500", "isHighestFreqInRange 1000 2000 17998500 18000500",
                "isChannelSpcaingOdd 1000 2000 17998500 18000500"}},
        {&Inspector::prepChannelScanStd, {.spacing = 2000, .longHaul = 1},
            {"prepChannelScanStd 77 77 77 77", "isLongHaul 77 77 77 77", "isChannelSpcaingOdd 1000 77 77 77",
                "validMinFrequencyMargin 1000 2000 77 77", "isHighestFreqInRange 1000 2000 18000000 18000000",
                "isChannelSpcaingOdd 1000 2000 18000000 18000000"}},
        {&Inspector::prepChannelScanStd, {.spacing = 7000, .rx = 17708499, .band = 43},
            {"prepChannelScanStd 77 77 77 77", "isLongHaul 77 77 77 77", "isLowerFrequencyBand 77 77 77 77",
                "validMinFrequencyMargin 5000 10000 77 77", "isChannelSpcaingOdd 5000 10000 77 77",
                "isHighestFreqInRange 5000 10000 17702500 17702500", "isChannelSpcaingOdd 5000 10000 17702500 17702500"}},
        {&Inspector::prepSubBandScanStd, {},
            {"prepSubBandScanStd 77 77 77 77", "isLongHaul 77 77 77 77", "isLowerFrequencyBand 77 77 77 77"}},
        {&Inspector::prepSubBandScanStd, {.longHaul = 1}, {"prepSubBandScanStd 77 77 77 77", "isLongHaul 77 77 77 77"}},
        {&Inspector::prepChannelScan4742_4743, {}, {"prepChannelScan4742_4743 77 77 77 77"}},
        {&Inspector::prepSubBandScan4743, {}, {"prepSubBandScan4743 77 77 77 77"}},
        {&Inspector::prepSubBandScan4742, {}, {"prepSubBandScan4742 77 77 77 77"}},
    };
    for (const auto& row : rows) {
        Calls seen;
        put(row.in, inspect());
        tests::spoilOutputs(77, inspect());
        log.onAdd([&](const std::string& call) {
            const tests::Plan now = tests::planOf(inspect());
            seen.push_back(call.substr(call.rfind(' ') + 1) + " " + std::to_string(now.margin) + " "
                + std::to_string(now.step) + " " + std::to_string(now.lowest) + " " + std::to_string(now.highest));
        });
        (inspect().*row.run)();
        EXPECT_EQ(seen, row.expected);
    }
}

} // namespace
