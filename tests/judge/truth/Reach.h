#pragma once

#include "simulator/radio/Band.h"
#include "simulator/radio/Emitters.h"

#include <cstdint>

namespace judge {

/// How far the spectrum of an emitter comes into a channel, its mask's shoulders left out.
enum class Reach : std::uint8_t {
    none,    ///< it lies outside: only by mask, leak or a filter's edge is it heard there
    grazing, ///< by less than a tenth of itself, and of the channel: whether it lies there is a matter of taste
    inside,
};

/// A line reaches as far as it drifts, leakage over an edge until it has fallen by 60 dB. Whether the emitter is on at the
/// moment does not matter.
Reach reachInto(const simulator::Band& channel, const simulator::Emitter& emitter);

/// Whether an emitter that reaches into a channel does so from beside it: its middle lies outside, and it leaves a part of
/// the channel free. Of several carriers in a row, all.
bool comesFromBeside(const simulator::Band& channel, const simulator::Emitter& emitter);

/// The channel of a raster around a centre.
simulator::Band channelAround(double centre_kHz, double spacing_kHz);

} // namespace judge
