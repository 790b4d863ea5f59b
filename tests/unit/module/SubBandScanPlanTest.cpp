// The plans of a sub-band scan, row by row.

#include "tests/unit/module/PlanTable.h"

namespace {

using tests::Wide;

class SubBandScan : public tests::PlanTable {};
class SubBandScan4743 : public tests::PlanTable {};
class SubBandScan4742 : public tests::PlanTable {};

// The standard sub-band scan.

TEST_F(SubBandScan, marginAndStepFollowFromLongHaulAndBand)
{
    expectRows(&ControllerInspector::prepSubBandScanStd,
        {
            {"lower band", {}, {2000, 1000, 17701000, 19699000, 1000}},
            {"lower band at its end", {.band = 42}, {2000, 1000, 17701000, 19699000, 1000}},
            {"upper band", {.band = 43}, {10000, 5000, 17705000, 19695000, 200}},
            {"lower band, long haul", {.longHaul = 1}, {10000, 5000, 17705000, 19695000, 200}},
            {"upper band, long haul", {.band = 80, .longHaul = 255}, {10000, 5000, 17705000, 19695000, 200}},
        });
}

TEST_F(SubBandScan, dependsOnTheRasterOnly)
{
    expectRows(&ControllerInspector::prepSubBandScanStd,
        {
            {"odd spacing", {.spacing = 7000}, {2000, 1000, 17701000, 19699000, 1000}},
            {"other spacing, channel and range", {1, 2, 4, 3}, {2000, 1000, 17701000, 19699000, 1000}},
        });
}

TEST_F(SubBandScan, lowerMarginIsRoundedDownToTheRasterAndTheUpperIsNot)
{
    expectRows(&ControllerInspector::prepSubBandScanStd,
        {
            {"three steps of 300 kHz", {.raster = 300}, {2000, 1000, 17840900, 20238900, 1200}},
            {"one step of the margin", {.raster = 1000, .low = 1, .high = 10}, {2000, 1000, 17002000, 17008000, 4}},
            {"1 kHz above the margin", {.raster = 1001, .low = 1, .high = 10}, {2000, 1000, 17001001, 17009001, 5}},
            {"1 kHz below it", {.raster = 999, .low = 1, .high = 10}, {2000, 1000, 17001998, 17007998, 4}},
            {"upper band, three steps", {.raster = 1400, .low = 1, .high = 20, .band = 43},
                {10000, 5000, 17005600, 17015600, 2}},
        });
}

TEST_F(SubBandScan, takesWholeStepsUpToTheTop)
{
    expectRows(&ControllerInspector::prepSubBandScanStd,
        {
            {"ends at the top", {}, {2000, 1000, 17701000, 19699000, 1000}},
            {"250 kHz short", {.high = 10799}, {2000, 1000, 17701000, 19697000, 999}},
            {"1750 kHz more", {.high = 10807}, {2000, 1000, 17701000, 19699000, 1000}},
            {"one step more", {.high = 10808}, {2000, 1000, 17701000, 19701000, 1001}},
            {"one sample", {.raster = 1000, .low = 1, .high = 3}, {2000, 1000, 17002000, 17002000, 1}},
            {"two samples", {.raster = 1000, .low = 1, .high = 5}, {2000, 1000, 17002000, 17004000, 2}},
        });
}

TEST_F(SubBandScan, withItsTopBelowItsBottomWrapsToVeryManySamples)
{
    expectRows(&ControllerInspector::prepSubBandScanStd,
        {
            {"1 MHz below", {.raster = 1000, .low = 1, .high = 2}, {2000, 1000, 17002000, 17000704, 2147484}},
            {"step limits swapped", {.low = 10800, .high = 2800}, {2000, 1000, 19701000, 17697704, 2146483}},
            {"upper band", {.raster = 1000, .low = 1, .high = 2, .band = 43}, {10000, 5000, 17006000, 16988704, 429496}},
        });
}

TEST_F(SubBandScan, arithmeticWraps)
{
    const Wide last = 4294967295;
    expectRows(&ControllerInspector::prepSubBandScanStd,
        {
            {"raster points above the word's end", {.base = 0, .raster = 1000000, .low = 4294, .high = 4295},
                {2000, 1000, 4294000000, 30704, 500}},
            {"step limits above the word's end", {.raster = 1000, .low = last, .high = 10},
                {2000, 1000, 17000000, 17008000, 5}},
            {"base at the word's end", {.base = last, .raster = 1000, .low = 0, .high = 10}, {2000, 1000, 999, 8999, 5}},
            {"top below 0", {.base = 0, .raster = 1, .low = 0, .high = 0}, {2000, 1000, 1000, 4294965000, 2147483}},
        });
}

// One sample per channel.

TEST_F(SubBandScan4743, coversEveryChannelThatFitsWhole)
{
    expectRows(&ControllerInspector::prepSubBandScan4743,
        {
            {"the worked example", {}, {28000, 0, 17720000, 19680000, 71}},
            {"the lowest channel just fits", {.min = 17706000}, {28000, 0, 17720000, 19680000, 71}},
            {"and lacks 1 kHz", {.min = 17706001}, {28000, 0, 17748000, 19680000, 70}},
            {"the highest channel just fits", {.max = 19694000}, {28000, 0, 17720000, 19680000, 71}},
            {"and lacks 1 kHz", {.max = 19693999}, {28000, 0, 17720000, 19652000, 70}},
            {"one neighbour below", {.min = 17958000, .max = 18014000}, {28000, 0, 17972000, 18000000, 2}},
            {"one neighbour above", {.min = 17986000, .max = 18042000}, {28000, 0, 18000000, 18028000, 2}},
            {"half a spacing is rounded down", {.spacing = 28001, .min = 17957999, .max = 18042001},
                {28001, 0, 17971999, 18028001, 3}},
            {"and lacks 1 kHz on both sides", {.spacing = 28001, .min = 17958000, .max = 18042000},
                {28001, 0, 18000000, 18000000, 1}},
            {"long haul, odd, upper band", {.spacing = 7000, .min = 17989500, .max = 18010499, .band = 80, .longHaul = 1},
                {7000, 0, 17993000, 18000000, 2}},
        });
}

TEST_F(SubBandScan4743, alwaysHasTheChannelItself)
{
    expectRows(&ControllerInspector::prepSubBandScan4743,
        {
            {"no neighbour fits", {.min = 17980000, .max = 18020000}, {28000, 0, 18000000, 18000000, 1}},
            {"nor does the channel itself", {.min = 17990000, .max = 18010000}, {28000, 0, 18000000, 18000000, 1}},
            {"an empty range", {.min = 4294950000, .max = 14000}, {28000, 0, 18000000, 18000000, 1}},
            {"the channel lies below the range", {.rx = 17710000}, {28000, 0, 17710000, 19670000, 71}},
            {"the channel lies above the range", {.rx = 20000000}, {28000, 0, 17732000, 20000000, 82}},
        });
}

TEST_F(SubBandScan4743, walksOnlyFromAChannelInsideTheRangeAndWraps)
{
    expectRows(&ControllerInspector::prepSubBandScan4743,
        {
            {"no walk below 0 from below the range", {.rx = 17000, .min = 10000}, {28000, 0, 17000, 19673000, 703}},
            {"no walk above the word's end from above the range", {.rx = 4294960000, .min = 4294950000, .max = 100000},
                {28000, 0, 4294960000, 4294960000, 1}},
            {"a walk below 0 from the lowest channel",
                {.spacing = 2000000000, .rx = 1000000000, .min = 0, .max = 1000000000},
                {2000000000, 0, 2179869184, 1000000000, 2}},
            {"a walk above the word's end from the highest channel",
                {.spacing = 2000000000, .rx = 3000000000, .min = 3000000000, .max = 4000000000},
                {2000000000, 0, 3000000000, 2115098112, 2}},
            {"a walk above the word's end", {.rx = 4294950000, .min = 4294930000, .max = 5000},
                {28000, 0, 4294950000, 4294930704, 153392}},
        });
}

TEST_F(SubBandScan4742, hasTheChannelAndAtMostItsNeighbours)
{
    expectRows(&ControllerInspector::prepSubBandScan4742,
        {
            {"both neighbours", {}, {28000, 0, 17972000, 18028000, 3}},
            {"the upper one", {.rx = 17720000}, {28000, 0, 17720000, 17748000, 2}},
            {"the lower one", {.rx = 19680000}, {28000, 0, 19652000, 19680000, 2}},
            {"none", {.min = 17990000, .max = 18010000}, {28000, 0, 18000000, 18000000, 1}},
            {"the lower one just fits", {.rx = 17742000}, {28000, 0, 17714000, 17770000, 3}},
            {"and lacks 1 kHz", {.rx = 17741999}, {28000, 0, 17741999, 17769999, 2}},
            {"the upper one just fits", {.rx = 19658000}, {28000, 0, 19630000, 19686000, 3}},
            {"and lacks 1 kHz", {.rx = 19658001}, {28000, 0, 19630001, 19658001, 2}},
            {"half a spacing is rounded down", {.spacing = 28001, .min = 17957999, .max = 18042001},
                {28001, 0, 17971999, 18028001, 3}},
            {"and lacks 1 kHz on both sides", {.spacing = 28001, .min = 17958000, .max = 18042000},
                {28001, 0, 18000000, 18000000, 1}},
            {"no spacing", {.spacing = 0}, {0, 0, 18000000, 18000000, 3}},
            {"long haul, odd, upper band", {.spacing = 7000, .band = 80, .longHaul = 1}, {7000, 0, 17993000, 18007000, 3}},
        });
}

TEST_F(SubBandScan4742, arithmeticWraps)
{
    expectRows(&ControllerInspector::prepSubBandScan4742,
        {
            {"lower neighbour below 0", {.rx = 1000}, {28000, 0, 4294940296, 29000, 3}},
            {"upper neighbour above the word's end", {.rx = 4294960000, .max = 34704}, {28000, 0, 4294932000, 20704, 3}},
            {"and lacks 1 kHz", {.rx = 4294960000, .max = 34703}, {28000, 0, 4294932000, 4294960000, 2}},
            {"bottom above the word's end", {.rx = 41999, .min = 4294967295}, {28000, 0, 13999, 69999, 3}},
            {"and lacks 1 kHz", {.rx = 41998, .min = 4294967295}, {28000, 0, 41998, 69998, 2}},
            {"top below 0", {.max = 13999}, {28000, 0, 17972000, 18028000, 3}},
        });
}

} // namespace
