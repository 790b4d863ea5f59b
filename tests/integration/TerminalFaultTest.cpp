// A terminal whose radio misbehaves: what the controller makes of it, and what the terminal tells about it.

#include "host/HostObserver.h"
#include "simulator/Radios.h"
#include "terminal/Terminal.h"
#include "tests/support/PlannedScan.h"
#include "tests/unit/simulator/TestLink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>

namespace {

using simulator::Fault;
using simulator::FaultAction;
using simulator::Operation;
using simulator::TerminalChannel;
using terminal::ScanStart;
using terminal::Terminal;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr RadioChannel channel1{1};
constexpr RadioChannel channel2{2};

class FaultyTerminal : public testing::Test {
protected:
    Terminal& bringUp(const std::vector<Fault>& faults = {})
    {
        TerminalChannel faulty{channel1, tests::plainLink()};
        faulty.link.faults = faults;
        radios = std::make_unique<simulator::Radios>(std::vector{faulty, {channel2, tests::plainLink()}}, clock);
        terminal = std::make_unique<Terminal>(radios->channels(), clock);
        return *terminal;
    }

    simulator::Radio& radio() const { return (*radios)[channel1]; }

    ESDCStatus scan(RadioChannel channel = channel1)
    {
        EXPECT_EQ(terminal->startScan(channel, SDC_CMD_CHANNEL_SCAN_START), ScanStart::underWay);
        const ESDCStatus status = terminal->waitForEnd(channel);
        if (!terminal->workerFailure(channel)) {
            terminal->waitForIdle(channel);
        }
        return status;
    }

    host::VirtualClock clock;
    std::unique_ptr<simulator::Radios> radios;
    std::unique_ptr<Terminal> terminal;
};

TEST_F(FaultyTerminal, refusedTuningAbortsTheSweepThere)
{
    bringUp({{Operation::setRxFrequency, FaultAction::refuse, 3}});
    EXPECT_EQ(scan(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(terminal->samples(channel1).size(), 2U);
    EXPECT_EQ(terminal->rxFrequency_kHz(channel1), 19177500U);
    EXPECT_EQ(scan(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
}

TEST_F(FaultyTerminal, sweepWhoseFirstTuningIsRefusedCountsAsStartedOnce)
{
    bringUp({{Operation::setRxFrequency, FaultAction::refuse, 1}, {Operation::setRxFrequency, FaultAction::refuse, 3}});
    EXPECT_EQ(scan(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(terminal->samples(channel1).size(), 0U);
    EXPECT_EQ(scan(), SDC_STATUS_SCAN_NOT_STARTED); // the third call: the second sweep's first tuning
    EXPECT_EQ(terminal->samples(channel1).size(), 0U);
    EXPECT_EQ(scan(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
}

TEST_F(FaultyTerminal, refusedRestoreLeavesTheReceiverOnTheLastStep)
{
    bringUp({{Operation::setRxFrequency, FaultAction::refuse, 14}});
    EXPECT_EQ(scan(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    EXPECT_EQ(terminal->rxFrequency_kHz(channel1), 19188750U);
}

TEST_F(FaultyTerminal, stuckTuningIsSeenByNobodyButInTheSamples)
{
    bringUp({{Operation::setRxFrequency, FaultAction::stick, 1, Fault::all}});
    EXPECT_EQ(scan(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    for (const SDCResult& sample : terminal->samples(channel1)) {
        EXPECT_EQ(sample.rssi, -3500) << sample.frequency_kHz; // the carrier that it stands on
    }
}

TEST_F(FaultyTerminal, exceptionDuringASweepEndsTheWorkerAndIsTold)
{
    bringUp();
    EXPECT_FALSE(terminal->workerFailure(channel1));
    radio().inject({Operation::readRssi, FaultAction::fail, 2, 1, 0, "the cable is off"});
    EXPECT_EQ(scan(), SDC_STATUS_CHANNEL_SCAN_ONGOING); // for ever
    EXPECT_EQ(terminal->workerFailure(channel1), "Exception timerThread SpectDiagCtrl1: the cable is off");
    EXPECT_EQ(terminal->samples(channel1).size(), 1U);
    EXPECT_EQ(terminal->rxFrequency_kHz(channel1), 19166750U); // not put back
    EXPECT_EQ(terminal->startScan(channel1, SDC_CMD_CHANNEL_SCAN_START), ScanStart::noWorker);
    EXPECT_FALSE(terminal->stopScan(channel1));
    EXPECT_FALSE(terminal->workerFailure(channel2));
    EXPECT_EQ(scan(channel2), SDC_STATUS_CHANNEL_SCAN_FINISHED);
}

TEST_F(FaultyTerminal, exceptionBeforeTheFirstTuningEndsTheWorker)
{
    bringUp({{Operation::getProperties, FaultAction::fail, 1}});
    EXPECT_EQ(scan(), SDC_STATUS_CHANNEL_SCAN_ONGOING);
    EXPECT_THAT(terminal->workerFailure(channel1).value(), HasSubstr("getProperties"));
    EXPECT_EQ(terminal->rxFrequency_kHz(channel1), 19177500U);
}

TEST_F(FaultyTerminal, otherScansCanBeStoppedBesideAWorkerThatHasEnded)
{
    bringUp({{Operation::readRssi, FaultAction::fail, 1}});
    EXPECT_EQ(scan(), SDC_STATUS_CHANNEL_SCAN_ONGOING);
    clock.hold();
    ASSERT_EQ(terminal->startScan(channel2, SDC_CMD_SUB_BAND_SCAN_START), ScanStart::underWay);
    EXPECT_TRUE(terminal->stopScan(channel2));
    clock.release();
    terminal->waitForIdle(channel2);
    EXPECT_EQ(terminal->samples(channel2).size(), 1U);
}

TEST_F(FaultyTerminal, exceptionWhileAStartReadsTheRadioComesOutOfTheStart)
{
    bringUp({{Operation::getRxFrequency, FaultAction::fail, 1, 1, 0, "no answer"}});
    EXPECT_THAT([this] { terminal->startScan(channel1, SDC_CMD_CHANNEL_SCAN_START); },
        testing::ThrowsMessage<std::runtime_error>("no answer"));
    EXPECT_EQ(terminal->controller(channel1).getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(scan(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
}

TEST_F(FaultyTerminal, injectedFaultsCountFromTheInjection)
{
    bringUp();
    EXPECT_EQ(scan(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    radio().inject({Operation::setRxFrequency, FaultAction::refuse, 2});
    EXPECT_EQ(scan(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(terminal->samples(channel1).size(), 1U);
}

TEST_F(FaultyTerminal, faultThatCannotBeIsRefused)
{
    bringUp();
    EXPECT_THROW(radio().inject({Operation::getChannelSpacing, FaultAction::refuse, 1}), std::invalid_argument);
    EXPECT_THROW(radio().inject({Operation::getChannelSpacing, FaultAction::answer, 1, 1, 0}), std::invalid_argument);
}

TEST(PlanPreview, isThePlanOfTheScanThatFollowsWhateverTheFaults)
{
    TerminalChannel channel{channel1, tests::plainLink()};
    channel.link.properties.slowRxWait = 1;
    channel.link.faults = {{Operation::setRxFrequency, FaultAction::fail, 1, Fault::all}};
    const terminal::ScanPlan plan = tests::plannedScan(channel, SDC_CMD_SUB_BAND_SCAN_START).value();
    EXPECT_EQ(plan.lowest_kHz, 18701000U);
    EXPECT_EQ(plan.samples, 500);
    EXPECT_EQ(plan.setRxWait_ms, 2000U);
    EXPECT_EQ(plan.settleTime(), std::chrono::milliseconds(3000 + 499 * 2000));
    EXPECT_EQ(plan.settleTime(1), std::chrono::milliseconds(3000));
    EXPECT_EQ(plan.settleTime(0), std::chrono::milliseconds(0));
    EXPECT_EQ(tests::plannedScan(channel, SDC_CMD_CHANNEL_SCAN_START).value().samples, 13);
}

TEST(PlanPreview, takesNoReadingAndWaitsForNothing)
{
    host::RecordingTraceSink sink;
    host::trace::setLevel("ZRP.SDC", PLX_TRACE_LEVEL_DETAIL);
    const host::trace::SinkInForce inForce(sink);
    std::atomic<int> sleeps{0};
    host::setHostObserver([&sleeps](const std::string& event) { sleeps += event == "sleep.get" ? 1 : 0; });
    EXPECT_EQ(tests::plannedScan({channel1, tests::plainLink()}, SDC_CMD_SUB_BAND_SCAN_START).value().samples, 500);
    host::setHostObserver({});
    EXPECT_EQ(sleeps, 0);
    for (const host::TraceRecord& record : sink.records()) {
        EXPECT_THAT(record.text, Not(StartsWith("Read RSSI")));
    }
}

TEST(PlanPreview, isNothingForAUnitThatIsNotSupported)
{
    TerminalChannel channel{channel1, tests::plainLink()};
    channel.link.unitTypeText = "no such unit";
    EXPECT_FALSE(tests::plannedScan(channel, SDC_CMD_CHANNEL_SCAN_START));
}

TEST(ScanPlan, ofOneSampleWaitsFiveSecondsAndOneThatCannotBeginNone)
{
    const terminal::ScanPlan single{
        .lowest_kHz = 5, .highest_kHz = 5, .samples = 1, .setRxWait_ms = 1, .firstSetRxWait_ms = 2};
    EXPECT_EQ(single.settleTime(), std::chrono::seconds(5));
    EXPECT_EQ(single.settleTime(0), std::chrono::seconds(0));
    const terminal::ScanPlan empty{.lowest_kHz = 6, .highest_kHz = 5, .samples = 9, .firstSetRxWait_ms = 2};
    EXPECT_EQ(empty.settleTime(), std::chrono::seconds(0));
}

} // namespace
