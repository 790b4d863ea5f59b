#pragma once

#include "simulator/radio/Link.h"

namespace tests {

/// A link to work on: one carrier of -35 dBm on the configured channel, no jitter, and figures that differ from each other.
inline simulator::Link plainLink()
{
    simulator::Link link;
    link.unitTypeText = "KLM6 18G";
    link.frequencyParameters = {
        18, {17700000, 18700000, 1010000}, 18700000, 19700000, 250, 17000000, 18000000, {2801, 6801}, 2800, 6800};
    link.channelSpacing_kHz = 27500;
    link.rxFrequency_kHz = 19177500;
    link.filterWidth_kHz = 27500.0;
    link.noiseFigure_dB = 5.0;
    link.settlingTime_ms = 100.0;
    link.emitters = {simulator::Carrier{19177500.0, -35.0, 22000.0, 0.25}};
    return link;
}

/// Far from plainLink's carrier: nothing but noise.
constexpr std::uint32_t quiet_kHz = 19500000;

} // namespace tests
