#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/formats/LiveFormat.h"

#include "TestLines.h"
#include "TestResults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace testing_results;
using sdc::Ending;

namespace {

constexpr const char* header = "channel,sweep,time,frequency_kHz,level_dBm\n";

std::string csvOf(const sdc::ScanResult& result)
{
    const KeptLines lines = linesOf(sdc::makeCsv, result).front();
    EXPECT_EQ(lines.before, header);
    return lines.text;
}

} // namespace

TEST(CsvOutput, hasALineForEachSample)
{
    EXPECT_EQ(csvOf(scanOf({-9970, -4505, 5})),
        "1,1,2026-01-02T03:04:08.678Z,100000,-99.70\n"
        "1,1,2026-01-02T03:04:08.978Z,101000,-45.05\n"
        "1,1,2026-01-02T03:04:09.278Z,102000,0.05\n");
}

TEST(CsvOutput, channelsAreNumberedAndTheirSweepsCountFromOne)
{
    const auto later = aMoment + 1h;
    EXPECT_EQ(csvOf(resultOf({channelOf(7, {sweepOf({-9000}), sweepOf({-9100}, later)}), channelOf(2, {sweepOf({-8000})})})),
        "7,1,2026-01-02T03:04:08.678Z,100000,-90.00\n"
        "2,1,2026-01-02T03:04:08.678Z,100000,-80.00\n"
        "7,2,2026-01-02T04:04:08.678Z,100000,-91.00\n");
}

TEST(CsvOutput, hasTheSameColumnsWhateverTheEnding)
{
    EXPECT_EQ(csvOf(resultOf({channelOf(1, {cutShort(sweepOf({-9000, -8000}), 1, Ending::failed, "no more")})})),
        "1,1,2026-01-02T03:04:08.678Z,100000,-90.00\n");
    EXPECT_EQ(csvOf(scanOf({})), "");
}

TEST(HoldsOutput, hasALineForEachFrequencyOfEachChannel)
{
    const auto second = cutShort(sweepOf({-1000, -1000}), 1, Ending::complete);
    const std::string holds = written([&](std::ostream& stream) {
        sdc::writeHolds(
            stream, resultOf({channelOf(7, {sweepOf({-2000, -5000}), second}), channelOf(2, {sweepOf({-2000})})}));
    });
    EXPECT_EQ(holds,
        "channel,frequency_kHz,max_dBm,average_dBm,min_dBm,readings\n"
        "7,100000,-10.00,-12.60,-20.00,2\n"
        "7,101000,-50.00,-50.00,-50.00,1\n"
        "2,100000,-20.00,-20.00,-20.00,1\n");
}
