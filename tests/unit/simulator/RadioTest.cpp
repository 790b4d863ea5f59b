#include "simulator/radio/Radio.h"

#include "Platform/Radio/IFrameFormat.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "tests/unit/simulator/TestLink.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <stdexcept>

namespace {

using host::VirtualClock;
using simulator::Link;
using simulator::Radio;
using tests::plainLink;
using tests::quiet_kHz;

class RadioOfALink : public testing::Test {
protected:
    VirtualClock clock;
};

TEST_F(RadioOfALink, isNotMadeForAnImpossibleLink)
{
    Link link = plainLink();
    link.channelSpacing_kHz = 0;
    EXPECT_THROW(Radio(link, clock), std::invalid_argument);
}

TEST_F(RadioOfALink, tellsWhatTheLinkSays)
{
    Link link = plainLink();
    link.frequencyParameters.txBaseFrequency_kHz = 17000001;
    const Radio radio(link, clock);
    link.frequencyParameters = {}; // the radio has a copy
    const RadioFrequencyParameters told = radio.peers().radioCapability.getFrequencyParameters();
    Link expected = plainLink();
    expected.frequencyParameters.txBaseFrequency_kHz = 17000001;
    EXPECT_EQ(std::memcmp(&told, &expected.frequencyParameters, sizeof told), 0);
    EXPECT_EQ(radio.peers().frameFormat.getChannelSpacing(), 27500U);
    EXPECT_EQ(radio.peers().frequencyController.getRxFrequency(), 19177500U);
}

TEST_F(RadioOfALink, tunesAndReadsItsReceiver)
{
    const Radio radio(plainLink(), clock);
    auto& frequencyController = radio.peers().frequencyController;
    auto& rssiHandler = radio.peers().rssiHandler;
    std::int32_t rssi = 1;
    EXPECT_EQ(rssiHandler.readRssi(rssi), 0);
    EXPECT_EQ(rssi, -3500);

    EXPECT_EQ(frequencyController.setRxFrequency(quiet_kHz, true), 0);
    clock.sleepMs(5000);
    EXPECT_EQ(rssiHandler.readRssi(rssi), 0);
    EXPECT_EQ(rssi, -9461);
    EXPECT_EQ(radio.receiver().frequency_kHz(), quiet_kHz);
    EXPECT_EQ(frequencyController.getRxFrequency(), 19177500U) << "the configured frequency, wherever a sweep is";

    EXPECT_EQ(frequencyController.setRxFrequency(19700001, true), 32768);
    EXPECT_EQ(radio.receiver().frequency_kHz(), quiet_kHz);
    EXPECT_EQ(frequencyController.setRxFrequency(19177500, false), 0);
    EXPECT_EQ(radio.receiver().frequency_kHz(), 19177500U);
}

TEST_F(RadioOfALink, givesAPropertiesProviderThatFillsTheRecordsAndStandsAlone)
{
    Link link = plainLink();
    link.properties = {1, 2, 3, 4};
    link.unitTypeText = "4743 23G, a text longer than any short string is";
    std::unique_ptr<IRadioPropertiesProvider> provider;
    {
        const Radio radio(link, clock);
        IRadio& peer = radio.peers().radio;
        provider = peer.createPropertiesProvider();
        EXPECT_NE(peer.createPropertiesProvider(), nullptr) << "one for each that asks";
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
