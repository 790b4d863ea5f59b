#include "apps/sdc/formats/Formats.h"

#include "TestResults.h"

#include <gtest/gtest.h>

using namespace testing_results;
using sdc::Ending;

namespace {

std::string csvOf(const sdc::ScanResult& result)
{
    return written([&](std::ostream& stream) { sdc::writeCsv(stream, result); });
}

} // namespace

TEST(CsvOutput, oneSweepOfOneChannelHasTwoColumns)
{
    EXPECT_EQ(
        csvOf(scanOf({-9970, -4505, 5})), "frequency_kHz,level_dBm\r\n100000,-99.70\r\n101000,-45.05\r\n102000,0.05\r\n");
}

TEST(CsvOutput, scanWithoutSamplesIsTheHeader)
{
    EXPECT_EQ(csvOf(scanOf({})), "frequency_kHz,level_dBm\r\n");
}

TEST(CsvOutput, channelsAreNumberedAndSweepsCountFromOne)
{
    EXPECT_EQ(csvOf(resultOf({channelOf(7, {sweepOf({-9000})}), channelOf(2, {sweepOf({-8000})})})),
        "channel,sweep,frequency_kHz,level_dBm\r\n7,1,100000,-90.00\r\n2,1,100000,-80.00\r\n");
}

TEST(CsvOutput, severalSweepsHaveTheHoldsOfEachFrequency)
{
    const auto second = cutShort(sweepOf({0, 0}), 1, Ending::complete);
    EXPECT_EQ(csvOf(resultOf({channelOf(1, {sweepOf({-1000, -5000}), second})})),
        "channel,sweep,frequency_kHz,level_dBm,max_hold_dBm,min_hold_dBm,average_dBm\r\n"
        "1,1,100000,-10.00,0.00,-10.00,-2.60\r\n"
        "1,1,101000,-50.00,-50.00,-50.00,-50.00\r\n"
        "1,2,100000,0.00,0.00,-10.00,-2.60\r\n");
}

TEST(CsvOutput, holdsAreThoseOfTheirChannel)
{
    const std::string csv =
        csvOf(resultOf({channelOf(1, {sweepOf({-1000}), sweepOf({-1000})}), channelOf(2, {sweepOf({-2000})})}));
    EXPECT_NE(csv.find("\r\n2,1,100000,-20.00,-20.00,-20.00,-20.00\r\n"), std::string::npos) << csv;
}

TEST(CsvOutput, resultThatIsNotCompleteSaysSoInTheLastColumn)
{
    const struct {
        Ending ending;
        const char* text;
    } rows[]{{Ending::stopped, "stopped"}, {Ending::failed, "failed"}};
    for (const auto& row : rows) {
        EXPECT_EQ(csvOf(resultOf({channelOf(1, {cutShort(sweepOf({-9000, -8000}), 1, row.ending)})})),
            "frequency_kHz,level_dBm,ending\r\n100000,-90.00," + std::string(row.text) + "\r\n");
    }
}

TEST(CsvOutput, completeSweepsBesideOneThatIsNotSaySo)
{
    const auto stopped = cutShort(sweepOf({-9000}), 1, Ending::stopped);
    EXPECT_EQ(csvOf(resultOf({channelOf(1, {sweepOf({-9000})}), channelOf(2, {stopped})})),
        "channel,sweep,frequency_kHz,level_dBm,ending\r\n1,1,100000,-90.00,complete\r\n2,1,100000,-90.00,stopped\r\n");
    EXPECT_EQ(csvOf(resultOf({channelOf(1, {sweepOf({-9000}), stopped})})),
        "channel,sweep,frequency_kHz,level_dBm,max_hold_dBm,min_hold_dBm,average_dBm,ending\r\n"
        "1,1,100000,-90.00,-90.00,-90.00,-90.00,complete\r\n1,2,100000,-90.00,-90.00,-90.00,-90.00,stopped\r\n");
}
