// A terminal takes radios of any kind: here fakes of the six peers.

#include "terminal/PlanPreview.h"
#include "terminal/PublishedPeers.h"
#include "terminal/Terminal.h"
#include "tests/support/FakePeers.h"

#include "Platform/Host/InterfaceBroker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <stdexcept>

namespace {

using terminal::PublishedPeers;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using testing::Pair;

const std::map<std::string, IInterface*>& published()
{
    return InterfaceBroker::getInstance().interfaces();
}

class AnyRadio : public testing::Test {
protected:
    AnyRadio()
    {
        fakes.frequencyController.onSetRxFrequency = [this](std::uint32_t frequency_kHz) {
            tuned_kHz = frequency_kHz;
            return 0;
        };
    }
    void TearDown() override { EXPECT_THAT(published(), IsEmpty()); }

    terminal::Channel channel(std::uint32_t number)
    {
        return {RadioChannel{number},
            {fakes.systemPowerController, fakes.frameFormat, fakes.frequencyController, fakes.rssiHandler,
                fakes.radioCapability, fakes.radio},
            [this] { return tuned_kHz.load(); }};
    }

    tests::CallLog log;
    tests::FakePeers fakes{&log};
    std::atomic<std::uint32_t> tuned_kHz{1};
};

TEST_F(AnyRadio, isPublishedUnderTheBareNamesOnlyWhereChannel0HasThem)
{
    const PublishedPeers peers(channel(0));
    EXPECT_THAT(published(),
        ElementsAre(Pair("IFrameFormat_0", &fakes.frameFormat), Key("IFrequencyController"), Pair("IRadio", &fakes.radio),
            Pair("IRadioCapability_0", &fakes.radioCapability), Pair("IRssiHandler", &fakes.rssiHandler),
            Pair("ISystemPowerController_0", &fakes.systemPowerController)));
}

TEST_F(AnyRadio, isPublishedBesideThoseOfOtherChannelsUntilItEnds)
{
    const PublishedPeers first(channel(0));
    {
        const PublishedPeers peers(channel(7));
        EXPECT_EQ(published().size(), 12U);
        for (const char* name : {"IFrameFormat_7", "IFrequencyController_7", "IRadio_7", "IRadioCapability_7",
                 "IRssiHandler_7", "ISystemPowerController_7"}) {
            EXPECT_EQ(published().count(name), 1U) << name;
        }
    }
    EXPECT_EQ(published().size(), 6U);
}

TEST_F(AnyRadio, isNotPublishedWhenANameIsTakenAndLeavesNothingBehind)
{
    for (const std::string name : {"ISystemPowerController_7", "IFrameFormat_7", "IFrequencyController_7", "IRssiHandler_7",
             "IRadioCapability_7", "IRadio_7"}) {
        ASSERT_EQ(InterfaceBroker::getInstance().registerInterface(name, &fakes.radio), 0);
        EXPECT_THAT([this] { const PublishedPeers peers(channel(7)); },
            testing::ThrowsMessage<std::runtime_error>("cannot register the interface " + name + ": the name is taken"));
        EXPECT_THAT(published(), ElementsAre(Key(name)));
        InterfaceBroker::getInstance().unregisterInterface(name);
    }
}

TEST_F(AnyRadio, isAskedThroughAFrequencyControllerThatCountsTheCallsAlsoThoseThatThrow)
{
    const PublishedPeers peers(channel(7));
    auto& published7 = dynamic_cast<IFrequencyController&>(*published().at("IFrequencyController_7"));
    EXPECT_EQ(published7.getRxFrequency(), 18000000U);
    EXPECT_EQ(published7.setRxFrequency(18002000, true), 0);
    EXPECT_EQ(published7.setRxFrequency(18004000, false), 0);
    EXPECT_THAT(log.calls(),
        ElementsAre("IFrequencyController.getRxFrequency", "IFrequencyController.setRxFrequency 18002000 true",
            "IFrequencyController.setRxFrequency 18004000 false"));
    log.onAdd([](const std::string&) { throw 1; });
    EXPECT_THROW(published7.getRxFrequency(), int);
    EXPECT_THROW(published7.setRxFrequency(1, true), int);
    EXPECT_EQ(peers.getRxFrequencyCalls(), 2U);
    EXPECT_EQ(peers.setRxFrequencyCalls(), 3U);
}

TEST_F(AnyRadio, isScannedWithItsOwnAnswersAndTellsWhereItsReceiverStands)
{
    host::VirtualClock clock;
    terminal::Terminal terminal({channel(7)}, clock);
    EXPECT_EQ(terminal.rxFrequency_kHz(RadioChannel{7}), 1U);
    ASSERT_EQ(terminal.startScan(RadioChannel{7}, SDC_CMD_CHANNEL_SCAN_START), terminal::ScanStart::underWay);
    EXPECT_EQ(terminal.waitForEnd(RadioChannel{7}), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    terminal.waitForIdle(RadioChannel{7});
    EXPECT_THAT(terminal.samples(RadioChannel{7}),
        testing::AllOf(testing::SizeIs(14), testing::Each(testing::Field(&SDCResult::rssi, -4500))));
    EXPECT_EQ(terminal.rxFrequency_kHz(RadioChannel{7}), 18000000U);
}

TEST_F(AnyRadio, isNotTunedForAPlan)
{
    EXPECT_EQ(terminal::previewPlan(channel(7), SDC_CMD_CHANNEL_SCAN_START).value().samples, 14);
    EXPECT_THAT(log.callsStartingWith("IFrequencyController.set"), IsEmpty());
    EXPECT_EQ(tuned_kHz, 1U);
}

} // namespace
