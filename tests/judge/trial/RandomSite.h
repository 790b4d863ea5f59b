#pragma once

#include "simulator/radio/Link.h"
#include "tests/judge/trial/ChannelPlans.h"
#include "tests/support/Dice.h"

#include <cstdint>

namespace judge {

using tests::Dice;

/// A radio in its place in a band: all of a link but what is on the air. The unit's own filter keeps from the receiver what
/// lies outside its receive range, so that emitters are made inside it.
struct Site {
    simulator::Link link;
    ChannelPlan plan;
    std::uint32_t first_kHz = 0; ///< centre of the lowest channel in the receive range
    std::uint32_t channels = 0;  ///< of the receive range
    std::uint32_t own = 0;       ///< the configured one, counted from the lowest

    std::uint32_t spacing_kHz() const { return link.channelSpacing_kHz; }
    double centre_kHz(double channel) const { return first_kHz + channel * spacing_kHz(); }
};

/// Figures of units and receivers that occur: noise figure 4 to 10 dB, jitter 0.3 to 1 dB, ultimate rejection 50 to 60 dB,
/// settling 30 to 200 ms, and filters of a channel's width, mostly.
Site randomSite(Dice& dice);

} // namespace judge
