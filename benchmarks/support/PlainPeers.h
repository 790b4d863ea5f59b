#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Platform/Host/DefaultSleepApi.h"
#include "Platform/Host/InterfaceBroker.h"
#include "Platform/Radio/IFrameFormat.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "Platform/Radio/ISystemPowerController.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace bench {

/// The peers of a channel, registered for as long as they live. They need no memory, take no lock and order nothing between
/// threads. Their channel scan has 14 samples from 17987000 kHz up, 2000 kHz apart; their sub-band scan has seven, unless
/// they are given other frequency parameters.
class PlainPeers : IFrameFormat, IFrequencyController, IRssiHandler, IRadioCapability, IRadio, ISystemPowerController {
public:
    static constexpr std::uint32_t configured_kHz = 18000000;
    static constexpr std::uint32_t lowest_kHz = 17987000;
    static constexpr std::uint32_t step_kHz = 2000;
    static constexpr std::int32_t samplesOfAChannelScan = 14;

    /// @param channel  not 0, for which some names are others
    explicit PlainPeers(std::uint32_t channel,
        RadioFrequencyParameters frequencyParameters = {18, {}, 17700000, 19700000, 250, 0, 17000000, {}, 2800, 2860})
        : m_suffix("_" + std::to_string(channel))
        , m_frequencyParameters(frequencyParameters)
    {
        for (const auto& [name, peer] : named()) {
            InterfaceBroker::getInstance().registerInterface(name + m_suffix, peer);
        }
    }
    ~PlainPeers() override
    {
        for (const auto& [name, peer] : named()) {
            InterfaceBroker::getInstance().unregisterInterface(name + m_suffix);
        }
    }
    PlainPeers(const PlainPeers&) = delete;
    PlainPeers& operator=(const PlainPeers&) = delete;

    std::uint32_t receiver_kHz() const { return m_receiver_kHz.load(std::memory_order_relaxed); }

private:
    class Provider : public IRadioPropertiesProvider {
    public:
        std::int32_t getProperties(SDCProperties& properties) override
        {
            properties = {};
            return 0;
        }
        void getUnitInfo(UnitInfo& unitInfo) override { unitInfo.typeText = "KLM6"; }
    };

    std::array<std::pair<const char*, IInterface*>, 6> named()
    {
        return {{{"ISystemPowerController", static_cast<ISystemPowerController*>(this)},
            {"IFrameFormat", static_cast<IFrameFormat*>(this)},
            {"IFrequencyController", static_cast<IFrequencyController*>(this)},
            {"IRssiHandler", static_cast<IRssiHandler*>(this)}, {"IRadioCapability", static_cast<IRadioCapability*>(this)},
            {"IRadio", static_cast<IRadio*>(this)}}};
    }

    std::uint32_t getChannelSpacing() override { return 28000; }
    std::uint32_t getRxFrequency() override { return configured_kHz; }
    std::int32_t setRxFrequency(std::uint32_t frequency_kHz, bool) override
    {
        m_receiver_kHz.store(frequency_kHz, std::memory_order_relaxed);
        return 0;
    }
    std::int32_t readRssi(std::int32_t& rssi) override
    {
        rssi = -4500;
        return 0;
    }
    RadioFrequencyParameters getFrequencyParameters() override { return m_frequencyParameters; }
    std::unique_ptr<IRadioPropertiesProvider> createPropertiesProvider() override { return std::make_unique<Provider>(); }

    std::string m_suffix;
    RadioFrequencyParameters m_frequencyParameters;
    std::atomic<std::uint32_t> m_receiver_kHz{configured_kHz};
};

} // namespace bench
