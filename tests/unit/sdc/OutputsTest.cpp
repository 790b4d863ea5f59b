// What the outputs of a scan keep of it.

#include "apps/sdc/formats/Outputs.h"
#include "apps/sdc/result/ResultFile.h"

#include "FolderFixture.h"
#include "TestResults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

using namespace testing_results;
using testing::ElementsAre;

namespace {

class OutputsOfAScan : public FolderFixture {
protected:
    sdc::Outputs outputsTo(const std::vector<std::string>& formats)
    {
        sdc::OutputOptions options;
        for (const sdc::Format& format : sdc::formats) {
            if (std::ranges::find(formats, format.name) != formats.end()) {
                options.outputs.push_back({&format, in(format.name)});
            }
        }
        sdc::Outputs outputs(options, {1}, [this](const std::string& text) { told.push_back(text); });
        outputs.open(result);
        return outputs;
    }

    bool isThere(const std::string& file) const { return std::filesystem::exists(in(file)); }

    sdc::ScanResult result = scanOf({-9000, -9100});
    std::vector<std::string> told;
};

sdc::Sweep longSweep(std::size_t samples)
{
    sdc::Sweep sweep;
    sweep.samples.resize(samples);
    return sweep;
}

} // namespace

TEST_F(OutputsOfAScan, thatNeedSamplesAreWrittenWhenTheyHaveAsManyAsAResultTakes)
{
    sdc::Outputs outputs = outputsTo({"json", "holds"});
    outputs.onSweepEnd(0, longSweep(sdc::mostSamplesInResult - 2 * sdc::samplesPerSweep - 1));
    outputs.onSweepEnd(0, longSweep(0));
    outputs.onSweepBegin(0, {});
    EXPECT_EQ(outputs.keep(), sdc::Keep::all);
    EXPECT_FALSE(isThere("json"));
    outputs.onSweepEnd(0, longSweep(1));
    EXPECT_FALSE(isThere("json")) << "no other sweep may come";
    outputs.onSweepBegin(0, {});
    EXPECT_EQ(outputs.keep(), sdc::Keep::last);
    EXPECT_TRUE(outputs.isAnyWanted());
    EXPECT_EQ(sdc::readResult(in("json")).channels.size(), 1U);
    std::filesystem::remove(in("json"));
    outputs.onSweepBegin(0, {});
    outputs.onEnd(sdc::Ending::complete);
    EXPECT_FALSE(isThere("json")) << "once";
    EXPECT_TRUE(isThere("holds"));
    EXPECT_FALSE(outputs.areAllWritten());
    EXPECT_THAT(told,
        ElementsAre(in("json") + " ends with sweep 1: it is as large as a result may be; --jsonl and --csv have no limit"));
}

TEST_F(OutputsOfAScan, thatNeedSamplesLeaveTheirHistoryToAWaterfallWhenTheyAreFull)
{
    sdc::Outputs outputs = outputsTo({"json", "waterfall"});
    outputs.onSweepEnd(0, longSweep(sdc::mostSamplesInResult));
    EXPECT_EQ(outputs.keep(), sdc::Keep::all);
    outputs.onSweepBegin(0, {});
    EXPECT_EQ(outputs.keep(), sdc::Keep::history);
}

TEST_F(OutputsOfAScan, thatNeedSamplesAloneWantNoMoreWhenTheyAreFull)
{
    sdc::Outputs outputs = outputsTo({"json"});
    outputs.onSweepEnd(0, longSweep(sdc::mostSamplesInResult));
    outputs.onSweepBegin(0, {});
    EXPECT_FALSE(outputs.isAnyWanted());
}

TEST_F(OutputsOfAScan, thatNeedNoSamplesAreNeverFull)
{
    sdc::Outputs outputs = outputsTo({"csv", "holds"});
    outputs.onSweepEnd(0, longSweep(sdc::mostSamplesInResult));
    outputs.onSweepBegin(0, {});
    EXPECT_TRUE(outputs.isAnyWanted());
    EXPECT_FALSE(isThere("holds"));
    outputs.onEnd(sdc::Ending::complete);
    EXPECT_TRUE(outputs.areAllWritten());
}
