#include "simulator/Radios.h"

#include "simulator/radio/Receiver.h"

#include "Platform/Host/RadioChannel.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace simulator {

Radios::Radios(const std::vector<TerminalChannel>& channels, host::Clock& clock)
{
    for (const TerminalChannel& channel : channels) {
        m_radios.push_back({channel.number, std::make_unique<Radio>(channel.link, clock)});
    }
}

std::vector<terminal::Channel> Radios::channels() const
{
    std::vector<terminal::Channel> all;
    for (const auto& [number, radio] : m_radios) {
        const Receiver& receiver = radio->receiver();
        all.push_back({number, radio->peers(), [&receiver] { return receiver.frequency_kHz(); }});
    }
    return all;
}

Radio& Radios::operator[](RadioChannel channel) const
{
    const auto found = std::ranges::find(m_radios, channel, &Served::number);
    if (found == m_radios.end()) {
        throw std::out_of_range("there is no radio of channel " + std::to_string(static_cast<std::uint32_t>(channel)));
    }
    return *found->radio;
}

TerminalChannel withoutFaults(TerminalChannel channel)
{
    channel.link.faults.clear();
    return channel;
}

} // namespace simulator
