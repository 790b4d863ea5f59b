#pragma once

#include "tests/support/CallLog.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Platform/Radio/IFrameFormat.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "Platform/Radio/ISystemPowerController.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tests {

/// A peer that notes its calls in a log, if there is one; the log's hook may throw, wait or change the answers.
class NotingPeer {
public:
    explicit NotingPeer(CallLog* log)
        : m_log(log)
    {
    }

protected:
    template <typename... Parts>
    void note(const Parts&... parts) const
    {
        if (m_log != nullptr) {
            m_log->add((std::string() + ... + parts));
        }
    }

private:
    CallLog* m_log;
};

struct FakeSystemPowerController : ISystemPowerController {};

struct FakeFrameFormat : IFrameFormat, NotingPeer {
    using NotingPeer::NotingPeer;

    std::uint32_t getChannelSpacing() override
    {
        note("IFrameFormat.getChannelSpacing");
        return channelSpacing_kHz;
    }

    std::uint32_t channelSpacing_kHz = 28000;
};

struct FakeFrequencyController : IFrequencyController, NotingPeer {
    using NotingPeer::NotingPeer;

    std::uint32_t getRxFrequency() override
    {
        note("IFrequencyController.getRxFrequency");
        return rxFrequency_kHz;
    }

    std::int32_t setRxFrequency(std::uint32_t frequency_kHz, bool flag) override
    {
        note("IFrequencyController.setRxFrequency ", std::to_string(frequency_kHz), flag ? " true" : " false");
        const std::int32_t result = onSetRxFrequency ? onSetRxFrequency(frequency_kHz) : 0;
        if (result < 32768) {
            receiver_kHz.store(frequency_kHz, std::memory_order_relaxed);
        }
        return result;
    }

    std::uint32_t rxFrequency_kHz = 18000000;
    std::atomic<std::uint32_t> receiver_kHz{18000000}; ///< where it was tuned to last
    std::function<std::int32_t(std::uint32_t frequency_kHz)> onSetRxFrequency;
};

struct FakeRssiHandler : IRssiHandler, NotingPeer {
    using NotingPeer::NotingPeer;

    std::int32_t readRssi(std::int32_t& rssi) override
    {
        note("IRssiHandler.readRssi");
        if (onReadRssi) {
            return onReadRssi(rssi);
        }
        rssi = answer;
        return 0;
    }

    std::int32_t answer = -4500;
    std::function<std::int32_t(std::int32_t& rssi)> onReadRssi;
};

struct FakeRadioCapability : IRadioCapability, NotingPeer {
    using NotingPeer::NotingPeer;

    RadioFrequencyParameters getFrequencyParameters() override
    {
        note("IRadioCapability.getFrequencyParameters");
        return parameters;
    }

    /// 18 GHz band, 17700000 to 19700000 kHz, raster of 250 kHz from 17000000 kHz; the words not to be read are set too.
    RadioFrequencyParameters parameters{18, {1, 2, 3}, 17700000, 19700000, 250, 7, 17000000, {9, 10}, 2800, 10800};
};

/// The radio and, through it, all properties providers that it has handed out: they answer from the radio's members.
struct FakeRadio : IRadio, NotingPeer {
    using NotingPeer::NotingPeer;

    std::unique_ptr<IRadioPropertiesProvider> createPropertiesProvider() override
    {
        note("IRadio.createPropertiesProvider");
        return std::make_unique<Provider>(*this);
    }

    SDCProperties properties{};
    std::string typeText = "KLM6";
    std::int32_t propertiesResult = 0;

private:
    struct Provider : IRadioPropertiesProvider {
        explicit Provider(FakeRadio& madeBy)
            : radio(madeBy)
        {
        }
        ~Provider() override { radio.note("provider.destroyed"); }

        std::int32_t getProperties(SDCProperties& record) override
        {
            radio.note("provider.getProperties");
            record = radio.properties;
            return radio.propertiesResult;
        }

        void getUnitInfo(UnitInfo& unitInfo) override
        {
            radio.note("provider.getUnitInfo with \"", unitInfo.typeText, "\"");
            unitInfo.typeText = radio.typeText;
        }

        FakeRadio& radio;
    };
};

/// One set of peers, as other modules would register it for a channel. Their channel scan has 14 samples from 17987000 kHz
/// up, 2000 kHz apart. Set answers while no scan runs, or from the log's hook. Without a log they need no memory, take no
/// lock and order nothing between threads.
class FakePeers {
public:
    explicit FakePeers(CallLog* log = nullptr);
    ~FakePeers();
    FakePeers(const FakePeers&) = delete;
    FakePeers& operator=(const FakePeers&) = delete;

    /// Registers all six for a channel, or all but one of them.
    void registerFor(std::uint32_t channel, const IInterface* butNot = nullptr);
    void unregister();

    /// All six, in the order in which a controller binds them.
    std::vector<IInterface*> all();

    FakeSystemPowerController systemPowerController;
    FakeFrameFormat frameFormat;
    FakeFrequencyController frequencyController;
    FakeRssiHandler rssiHandler;
    FakeRadioCapability radioCapability;
    FakeRadio radio;

private:
    std::vector<std::string> m_names;
};

/// The names of a channel's peers, in that order. Written out here rather than formed by the code under test.
std::vector<std::string> peerNames(std::uint32_t channel);

} // namespace tests
