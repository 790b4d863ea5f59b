#pragma once

#include "Platform/Host/RadioChannel.h"
#include "host/Clock.h"
#include "simulator/radio/Radio.h"
#include "simulator/scenario/Scenario.h"
#include "terminal/Peers.h"

#include <memory>
#include <vector>

namespace simulator {

/// The simulated radios of a terminal, one for each of its channels. Must outlive the terminal that is brought up with them.
class Radios {
public:
    /// @throws std::invalid_argument for a link that cannot work
    /// @param clock  the terminal's, too
    Radios(const std::vector<TerminalChannel>& channels, host::Clock& clock);
    Radios(const Scenario& scenario, host::Clock& clock)
        : Radios(scenario.channels, clock)
    {
    }

    /// What a terminal is brought up with.
    std::vector<terminal::Channel> channels() const;

    /// The radio of a channel: there its calls are made to go wrong.
    /// @throws std::out_of_range for an unknown channel
    Radio& operator[](RadioChannel channel) const;

private:
    struct Served {
        RadioChannel number{};
        std::unique_ptr<Radio> radio;
    };

    std::vector<Served> m_radios;
};

/// The same channel with a radio whose calls all go well.
TerminalChannel withoutFaults(TerminalChannel channel);

} // namespace simulator
