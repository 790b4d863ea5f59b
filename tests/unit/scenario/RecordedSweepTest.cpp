#include "simulator/scenario/RecordedSweep.h"

#include "simulator/scenario/Scenario.h"
#include "tests/support/Recordings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using simulator::Recording;
using tests::levelsOf;

Recording read(const std::string& text)
{
    return simulator::readRecordedSweep(text, "sweep.csv");
}

std::string errorsOf(const std::string& text)
{
    try {
        read(text);
        return {};
    } catch (const simulator::ScenarioError& error) {
        return error.what();
    }
}

/// Matches levels to a thousandth; not a number matches itself.
testing::Matcher<std::vector<double>> levels(const std::vector<double>& expected)
{
    std::vector<testing::Matcher<double>> each;
    for (const double level : expected) {
        each.push_back(testing::NanSensitiveDoubleNear(level, 0.001));
    }
    return testing::ElementsAreArray(each);
}

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

TEST(ClassicScanner, writesARowPerHopAndItsLastLevelTwice)
{
    // Ends are cut to whole Hz, the step to hundredths: 2.4 MHz in 7 bins of 342857.142857 Hz.
    const Recording recording =
        read("2024-05-14, 09:30:00, 88000000, 90399998, 342857.14, 16, -1.5, -2, -3, -4, -5, -6, -7, -7\n"
             "2024-05-14, 09:30:00, 90400000, 92799998, 342857.14, 16, -11, -12, -13, -14, -15, -16, -17, -17\n");
    EXPECT_THAT(levelsOf(recording), levels({-1.5, -2, -3, -4, -5, -6, -7, -11, -12, -13, -14, -15, -16, -17}));
    EXPECT_EQ(recording.lowest_kHz, 88000.0);
    EXPECT_NEAR(recording.bins->step_kHz(), 342.857, 0.001);
}

TEST(ClassicScanner, mayHaveEqualLevelsAtTheEndWithoutRepeatingOne)
{
    EXPECT_THAT(levelsOf(read("2024-05-14, 09:30:00, 1000, 4000, 1000, 1, -1, -7, -7\n")), levels({-1, -7, -7}));
    EXPECT_THAT(levelsOf(read("2024-05-14, 09:30:00, 1000, 3000, 1000, 1, -1, -7, -7\n")), levels({-1, -7}));
    EXPECT_THAT(levelsOf(read("2024-05-14, 09:30:00, 1000, 4000, 1000, 1, -7, -7, -7, -7\n")), levels({-7, -7, -7}));
    EXPECT_THAT(levelsOf(read("2024-05-14, 09:30:00, 1000, 2000, 1000, 1, nan, nan\n")), levels({unknown}));
    EXPECT_THAT(levelsOf(read("2024-05-14, 09:30:00, 1000, 2000, 1000, 1, -7\n")), levels({-7}));
}

TEST(ClassicScanner, mayCutTheStepToWholeHz)
{
    // 4096 bins of 585.9375 Hz, printed as 586: only the exact number of levels tells what was meant.
    std::string row = "2024-05-14, 09:30:00, 88000000, 90400000, 586, 1";
    for (int index = 0; index < 4096; ++index) {
        row += ", -50";
    }
    EXPECT_EQ(read(row).bins->count(), 4096U);
    EXPECT_EQ(read(row + ", -50").bins->count(), 4096U);
    EXPECT_DOUBLE_EQ(read(row).bins->step_kHz(), 0.5859375);
}

TEST(FastScanner, writesShortRowsInAnyOrder)
{
    const Recording recording =
        read("2024-05-14, 09:30:00.123456, 2400000000, 2402000000, 1000000.00, 20, -64.72, -63.36\n"
             "2024-05-14, 09:30:00.123456, 2404000000, 2406000000, 1000000.00, 20, -60.91, -61.74\n"
             "2024-05-14, 09:30:00.123456, 2402000000, 2404000000, 1000000.00, 20, -58.58, -69.22\n");
    EXPECT_THAT(levelsOf(recording), levels({-64.72, -63.36, -58.58, -69.22, -60.91, -61.74}));
    EXPECT_EQ(recording.lowest_kHz, 2400000.0);
    EXPECT_EQ(recording.bins->step_kHz(), 1000.0);
}

TEST(GenericScanner, writesFrequenciesWithFractionsAndTimesOfItsOwn)
{
    for (const char* const date :
        {"2024-05-14, 09:30:00", "2024-05-14T09:30:00.5Z, ", "14/05/2024, 9:30 am", "1715679000, ", "1715679000.25, 0"}) {
        const Recording recording =
            read(std::string(date) + ", 17700000000.0, 17700003515.625, 1171.875, 1e3, -5.5e1, -60.25, -inf\n");
        EXPECT_THAT(levelsOf(recording), levels({-55, -60.25, unknown}));
        EXPECT_EQ(recording.lowest_kHz, 17700000.0);
        EXPECT_DOUBLE_EQ(recording.bins->step_kHz(), 1.171875);
    }
}

TEST(Rows, mayHaveBlanksTabsCarriageReturnsAndNoLastNewline)
{
    EXPECT_THAT(levelsOf(read(
                    "\n  2024-05-14,09:30:00,\t1000 ,3000,1000,1,-1 ,  -2\r\n\r\n2024-05-14,09:30:00,3000,4000,1000,1,-3")),
        levels({-1, -2, -3}));
}

TEST(Sweeps, areAveragedInPowerBinByBin)
{
    // 0 and 10 dBm: 1 and 10 mW, 5.5 mW on the average. What is not known does not count.
    const Recording recording = read("2024-05-14, 09:30:00, 1000, 4000, 1000, 1, 0, -20, nan\n"
                                     "2024-05-14, 09:30:01, 1000, 4000, 1000, 1, 10, nan, nan\n");
    EXPECT_THAT(levelsOf(recording), levels({10.0 * std::log10(5.5), -20, unknown}));
    EXPECT_THAT(
        levelsOf(read("2024-05-14, 09:30:00, 1000, 2000, 1000, 1, -50\n2024-05-14, 09:30:00, 2000, 3000, 1000, 1, -60\n"
                      "2024-05-14, 09:30:01, 1000, 2000, 1000, 1, -50\n2024-05-14, 09:30:01, 2000, 3000, 1000, 1, -60\n"
                      "2024-05-14, 09:30:02, 1000, 2000, 1000, 1, -50\n")), // the last sweep was cut off
        levels({-50, -60}));
}

TEST(Gaps, ofWholeBinsAreUnknown)
{
    const Recording recording = read("2024-05-14, 09:30:00, 1000, 3000, 1000, 1, -1, -2\n"
                                     "2024-05-14, 09:30:00, 6000, 7000, 1000, 1, -3\n");
    EXPECT_THAT(levelsOf(recording), levels({-1, -2, unknown, unknown, unknown, -3}));
    EXPECT_EQ(recording.bins->step_kHz(), 1.0);
}

TEST(Gaps, areNoneWhereAScannerHasCutOffHz)
{
    const std::string below = "2024-05-14, 09:30:00, 100000, 300000, 100000, 1, -1, -2\n";
    for (const char* const above : {"299998, 399998", "300000, 400000", "300002, 400002"}) {
        EXPECT_THAT(levelsOf(read(below + "2024-05-14, 09:30:00, " + above + ", 100000, 1, -3\n")), levels({-1, -2, -3}));
    }
}

TEST(SmallSteps, mayMissEachOtherByTheHzThatScannersCutOff)
{
    const auto two = [](const std::string& first, const std::string& second) {
        return "2024-05-14, 09:30:00, " + first + ", 1, -1\n2024-05-14, 09:30:00, " + second + ", 1, -2\n";
    };
    EXPECT_THAT(levelsOf(read(two("1000, 1100, 100", "1102, 1202, 100"))), levels({-1, -2}));
    EXPECT_THAT(levelsOf(read(two("1000, 1100, 100", "1098, 1198, 100"))), levels({-1, -2}));
    EXPECT_NE(errorsOf(two("1000, 1100, 100", "1104, 1204, 100")), "");
    EXPECT_NE(errorsOf(two("1000, 1004, 4", "1006, 1010, 4")), ""); // half a bin
}

TEST(SmallSteps, areNotLostInTheHzThatScannersCutOff)
{
    EXPECT_NE(errorsOf("2024-05-14, 09:30:00, 1000, 1010, 4.00, 1, -1, -2, -3\n"), "");
    EXPECT_EQ(errorsOf("2024-05-14, 09:30:00, 1000, 1011, 4.00, 1, -1, -2, -3\n"), "");
}

struct Row {
    std::string text;
    std::string why;
};

/// A good row of three bins, with one of its fields put in place of another.
std::string row(std::size_t field, const std::string& text)
{
    std::vector<std::string> fields{"2024-05-14", "09:30:00", "1000", "4000", "1000", "1", "-1", "-2", "-3"};
    fields.at(field) = text;
    std::string line;
    for (const std::string& one : fields) {
        line += one + ", ";
    }
    return line.substr(0, line.size() - 2) + "\n";
}

TEST(WrongRows, areRefusedWithFileAndLine)
{
    const std::string good = row(0, "2024-05-14");
    ASSERT_EQ(errorsOf(good), "");
    const std::string number = "; must be a number from -400 to 200, or nan";
    const Row rows[] = {
        {row(0, "date"), "begins with \"date\"; must be a date or an epoch in seconds, without headers and comments"},
        {row(0, "# 2024"), "begins with \"# 2024\"; must be a date or an epoch in seconds, without headers and comments"},
        {row(0, ""), "begins with \"\"; must be a date or an epoch in seconds, without headers and comments"},
        {"2024-05-14, 09:30:00, 1000, 4000, 1000, 1\n",
            "has 6 fields; must have 7 or more: date, time, lowest Hz, highest Hz, step Hz, samples, levels"},
        {"2024-05-14\n", "has 1 fields; must have 7 or more: date, time, lowest Hz, highest Hz, step Hz, samples, levels"},
        {row(2, "low"), "the lowest frequency is \"low\"; must be a number of Hz, 0 or more"},
        {row(2, "-1"), "the lowest frequency is \"-1\"; must be a number of Hz, 0 or more"},
        {row(2, "nan"), "the lowest frequency is \"nan\"; must be a number of Hz, 0 or more"},
        {row(2, "1000x"), "the lowest frequency is \"1000x\"; must be a number of Hz, 0 or more"},
        {row(3, "1e14"), "the highest frequency is \"1e14\"; must be a number of Hz above 0"},
        {row(3, "1000"), "the highest frequency must lie above the lowest"},
        {row(3, "999"), "the highest frequency must lie above the lowest"},
        {row(4, "0"), "the step is \"0\"; must be a number of Hz above 0"},
        {row(4, "-1000"), "the step is \"-1000\"; must be a number of Hz above 0"},
        {row(4, "inf"), "the step is \"inf\"; must be a number of Hz above 0"},
        {row(5, "many"), "the number of samples is \"many\"; must be a number, 0 or more"},
        {row(5, "-1"), "the number of samples is \"-1\"; must be a number, 0 or more"},
        {row(6, "loud"), "level 1 is \"loud\"" + number},
        {row(8, ""), "level 3 is \"\"" + number},
        {row(8, "inf"), "level 3 is \"inf\"" + number},
        {row(8, "201"), "level 3 is \"201\"" + number},
        {row(8, "-401"), "level 3 is \"-401\"" + number},
        {row(8, std::string(50, 'x')), "level 3 is \"" + std::string(37, 'x') + "...\"" + number},
        {row(8, "\x1b[2J"), "level 3 is \"\\x1B[2J\"" + number},
        {row(3, "3000"), "has 3 levels; (highest - lowest) / step makes 2, and the last one may stand twice"},
        {row(3, "5000"), "has 3 levels; (highest - lowest) / step makes 4, and the last one may stand twice"},
        {row(3, "4300"), "has 3 levels; (highest - lowest) / step makes 3, and the last one may stand twice"},
        {"2024-05-14, 09:30:00, 1000, 3000, 1000, 1, -1, -2, -2, -2\n",
            "has 4 levels; (highest - lowest) / step makes 2, and the last one may stand twice"},
        {"2024-05-14, 09:30:00, 4000, 7000, 1500, 1, -1, -2\n", "has another step than the rows before"},
        {"2024-05-14, 09:30:00, 1000, 3000, 1000, 1, -1, -2\n",
            "has 2 levels; line 1 begins at the same frequency and has 3"},
        {"2024-05-14, 09:30:00, 3000, 5000, 1000, 1, -1, -2\n", "overlaps line 1; must begin where it ends"},
        {"2024-05-14, 09:30:00, 4500, 5500, 1000, 1, -1\n", "leaves a gap above line 1 that is no whole number of bins"},
    };
    for (const Row& one : rows) {
        const std::string why = errorsOf(good + one.text);
        EXPECT_EQ(why, "sweep.csv: line 2: " + one.why) << one.text;
    }
    EXPECT_EQ(errorsOf(""), "sweep.csv: has no rows; must have at least one");
    EXPECT_EQ(errorsOf("\n \n"), "sweep.csv: has no rows; must have at least one");
}

TEST(WrongRows, ofAnySortEndInAnError)
{
    for (const std::string& text : {std::string(100000, ','), std::string(1000, '\0'), std::string("\xFF\xFE,,,,,,"),
             std::string("1,1,1e308,1e308,1e-308,1,1"), std::string("9") + std::string(10000, '9')}) {
        EXPECT_NE(errorsOf(text), "");
    }
}

TEST(Gaps, takeNoRoom)
{
    const Recording recording = read("2024-05-14, 09:30:00, 0, 2, 1, 1, -30, -20\n"
                                     "2024-05-14, 09:30:00, 6000000000000, 6000000000001, 1, 1, -10\n");
    EXPECT_EQ(recording.bins->count(), 3U);
    EXPECT_NEAR(recording.bins->width_kHz(), 6000000000.001, 0.001);
    EXPECT_NEAR(recording.bins->powerBelow_mW(5e9), 0.011, 1e-9);
    EXPECT_NEAR(recording.bins->total_mW(), 0.111, 1e-9);
}

TEST(Size, isLimited)
{
    const auto read = [](const std::string& text, std::size_t mostBins) {
        return simulator::readRecordedSweep(text, "sweep.csv", mostBins).bins->count();
    };
    const auto why = [](const std::string& text) { return testing::ThrowsMessage<simulator::ScenarioError>(text); };
    const std::string three = row(0, "2024-05-14");
    EXPECT_EQ(read(three + three, 3), 3U) << "a second sweep";
    const std::string fourth = three + "2024-05-14, 09:30:00, 9000, 10000, 1000, 1, -1\n";
    EXPECT_THAT([&] { read(fourth, 3); },
        why("sweep.csv: line 2: makes more bins than the 4000000 that a scenario's recordings may have together"));
    EXPECT_THAT([&] { read(three, 1); },
        why("sweep.csv: line 1: makes more bins than the 4000000 that a scenario's recordings may have together"));
}

} // namespace
