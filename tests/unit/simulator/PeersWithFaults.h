#pragma once

#include "simulator/radio/Radio.h"

#include "Platform/Radio/IFrameFormat.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "tests/unit/simulator/TestLink.h"

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tests {

using simulator::Fault;
using simulator::FaultAction;
using simulator::Operation;

/// The peers of plainLink with faults, and short ways to call them.
class PeersWithFaults {
public:
    explicit PeersWithFaults(const std::vector<Fault>& faults = {})
        : radio(linkWith(faults), clock)
    {
    }

    static simulator::Link linkWith(const std::vector<Fault>& faults)
    {
        simulator::Link link = plainLink();
        link.properties = {1, 2, 3, 4};
        link.faults = faults;
        return link;
    }

    std::int32_t tune(std::uint32_t frequency_kHz) { return peers.frequencyController.setRxFrequency(frequency_kHz, true); }
    std::uint32_t configured() { return peers.frequencyController.getRxFrequency(); }
    std::uint32_t spacing() { return peers.frameFormat.getChannelSpacing(); }
    std::unique_ptr<IRadioPropertiesProvider> provider() { return peers.radio.createPropertiesProvider(); }

    /// The result and what is in the variable then, which held 77.
    std::pair<std::int32_t, std::int32_t> read()
    {
        std::int32_t rssi = 77;
        const std::int32_t result = peers.rssiHandler.readRssi(rssi);
        return {result, rssi};
    }

    void call(Operation operation)
    {
        SDCProperties properties{};
        UnitInfo unitInfo;
        using enum Operation;
        switch (operation) {
        case setRxFrequency: tune(quiet_kHz); break;
        case readRssi: read(); break;
        case getRxFrequency: configured(); break;
        case getChannelSpacing: spacing(); break;
        case getFrequencyParameters: peers.radioCapability.getFrequencyParameters(); break;
        case createPropertiesProvider: provider(); break;
        case getProperties: held->getProperties(properties); break;
        case getUnitInfo: held->getUnitInfo(unitInfo); break;
        }
    }

    /// What the operation throws; empty when it does not.
    std::string thrownBy(Operation operation)
    {
        try {
            call(operation);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }

    host::VirtualClock clock;
    simulator::Radio radio;
    const terminal::Peers peers = radio.peers();
    std::unique_ptr<IRadioPropertiesProvider> held = peers.radio.createPropertiesProvider();
};

} // namespace tests
