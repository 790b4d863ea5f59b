#include "simulator/radio/RadioPeers.h"

#include "Platform/Host/InterfaceBroker.h"
#include "Platform/Radio/IFrameFormat.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "Platform/Radio/ISystemPowerController.h"
#include "tests/unit/simulator/TestLink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <stdexcept>

namespace {

using host::VirtualClock;
using simulator::Link;
using simulator::RadioPeers;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using testing::Pair;
using tests::plainLink;
using tests::quiet_kHz;

const std::map<std::string, IInterface*>& published()
{
    return InterfaceBroker::getInstance().interfaces();
}

template <typename Interface>
Interface& find(const std::string& name)
{
    return dynamic_cast<Interface&>(*published().at(name));
}

class RadioPeersOfALink : public testing::Test {
protected:
    void TearDown() override { EXPECT_THAT(published(), IsEmpty()); }

    VirtualClock clock;
};

TEST_F(RadioPeersOfALink, arePublishedUnderTheBareNamesOnlyWhereChannel0HasThem)
{
    const RadioPeers peers(plainLink(), RadioChannel{0}, clock);
    EXPECT_THAT(published(),
        ElementsAre(Key("IFrameFormat_0"), Key("IFrequencyController"), Key("IRadio"), Key("IRadioCapability_0"),
            Key("IRssiHandler"), Key("ISystemPowerController_0")));
    EXPECT_NO_THROW(find<ISystemPowerController>("ISystemPowerController_0"));
    EXPECT_NO_THROW(find<IFrameFormat>("IFrameFormat_0"));
    EXPECT_NO_THROW(find<IFrequencyController>("IFrequencyController"));
    EXPECT_NO_THROW(find<IRssiHandler>("IRssiHandler"));
    EXPECT_NO_THROW(find<IRadioCapability>("IRadioCapability_0"));
    EXPECT_NO_THROW(find<IRadio>("IRadio"));
}

TEST_F(RadioPeersOfALink, ofTwoChannelsLiveSideBySideUntilTheyAreDestroyed)
{
    const RadioPeers first(plainLink(), RadioChannel{0}, clock);
    {
        const RadioPeers peers(plainLink(), RadioChannel{7}, clock);
        EXPECT_EQ(published().size(), 12U);
        for (const char* name : {"IFrameFormat_7", "IFrequencyController_7", "IRadio_7", "IRadioCapability_7",
                 "IRssiHandler_7", "ISystemPowerController_7"}) {
            EXPECT_EQ(published().count(name), 1U) << name;
        }
    }
    EXPECT_EQ(published().size(), 6U);
}

TEST_F(RadioPeersOfALink, areNotMadeWhenANameIsTakenAndLeaveNothingBehind)
{
    ISystemPowerController other;
    for (const std::string name : {"ISystemPowerController_7", "IFrameFormat_7", "IFrequencyController_7", "IRssiHandler_7",
             "IRadioCapability_7", "IRadio_7"}) {
        ASSERT_EQ(InterfaceBroker::getInstance().registerInterface(name, &other), 0);
        try {
            const RadioPeers peers(plainLink(), RadioChannel{7}, clock);
            ADD_FAILURE() << "made although taken: " << name;
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), "cannot register the interface " + name + ": the name is taken");
        }
        EXPECT_THAT(published(), ElementsAre(Pair(name, &other)));
        InterfaceBroker::getInstance().unregisterInterface(name);
    }
}

TEST_F(RadioPeersOfALink, areNotMadeForAnImpossibleLink)
{
    Link link = plainLink();
    link.channelSpacing_kHz = 0;
    EXPECT_THROW(RadioPeers(link, RadioChannel{7}, clock), std::invalid_argument);
}

TEST_F(RadioPeersOfALink, tellWhatTheLinkSays)
{
    Link link = plainLink();
    link.frequencyParameters.txBaseFrequency_kHz = 17000001;
    const RadioPeers peers(link, RadioChannel{7}, clock);
    link.frequencyParameters = {}; // the peers have a copy
    const RadioFrequencyParameters told = find<IRadioCapability>("IRadioCapability_7").getFrequencyParameters();
    Link expected = plainLink();
    expected.frequencyParameters.txBaseFrequency_kHz = 17000001;
    EXPECT_EQ(std::memcmp(&told, &expected.frequencyParameters, sizeof told), 0);
    EXPECT_EQ(find<IFrameFormat>("IFrameFormat_7").getChannelSpacing(), 27500U);
    EXPECT_EQ(find<IFrequencyController>("IFrequencyController_7").getRxFrequency(), 19177500U);
}

TEST_F(RadioPeersOfALink, tuneAndReadTheReceiver)
{
    const RadioPeers peers(plainLink(), RadioChannel{7}, clock);
    auto& frequencyController = find<IFrequencyController>("IFrequencyController_7");
    auto& rssiHandler = find<IRssiHandler>("IRssiHandler_7");
    std::int32_t rssi = 1;
    EXPECT_EQ(rssiHandler.readRssi(rssi), 0);
    EXPECT_EQ(rssi, -3500);

    EXPECT_EQ(frequencyController.setRxFrequency(quiet_kHz, true), 0);
    clock.sleepMs(5000);
    EXPECT_EQ(rssiHandler.readRssi(rssi), 0);
    EXPECT_EQ(rssi, -9461);
    EXPECT_EQ(peers.receiver().frequency_kHz(), quiet_kHz);
    EXPECT_EQ(frequencyController.getRxFrequency(), 19177500U) << "the configured frequency, wherever a sweep is";

    EXPECT_EQ(frequencyController.setRxFrequency(19700001, true), 32768);
    EXPECT_EQ(peers.receiver().frequency_kHz(), quiet_kHz);
    EXPECT_EQ(frequencyController.setRxFrequency(19177500, false), 0);
    EXPECT_EQ(peers.receiver().frequency_kHz(), 19177500U);
}

TEST_F(RadioPeersOfALink, giveAPropertiesProviderThatFillsTheRecordsAndStandsAlone)
{
    Link link = plainLink();
    link.properties = {1, 2, 3, 4};
    link.unitTypeText = "4743 23G, a text longer than any short string is";
    std::unique_ptr<IRadioPropertiesProvider> provider;
    {
        const RadioPeers peers(link, RadioChannel{7}, clock);
        auto& radio = find<IRadio>("IRadio_7");
        provider = radio.createPropertiesProvider();
        EXPECT_NE(radio.createPropertiesProvider(), nullptr) << "one for each that asks";
    }
    link.unitTypeText.clear();
    SDCProperties properties{9, 9, 9, 9};
    EXPECT_EQ(provider->getProperties(properties), 0);
    EXPECT_EQ(properties.longHaul, 1);
    EXPECT_EQ(properties.extendedRxWait, 2);
    EXPECT_EQ(properties.slowRxWait, 3);
    EXPECT_EQ(properties.spareFlag, 4);
    UnitInfo unitInfo{"what was there before"};
    provider->getUnitInfo(unitInfo);
    EXPECT_EQ(unitInfo.typeText, "4743 23G, a text longer than any short string is");
}

} // namespace
