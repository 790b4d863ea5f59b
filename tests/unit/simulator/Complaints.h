#pragma once

#include "simulator/radio/Link.h"

#include "tests/unit/simulator/TestLink.h"

#include <functional>
#include <string>

namespace tests {

using Change = std::function<void(simulator::Link&)>;

/// "path: text", or nothing for a possible link.
inline std::string complaintOf(const simulator::Link& link)
{
    const auto complaint = whyImpossible(link);
    return complaint ? complaint->path + ": " + complaint->text : std::string();
}

inline std::string complaintAfter(const Change& change)
{
    simulator::Link link = plainLink();
    change(link);
    return complaintOf(link);
}

struct Impossibility {
    Change spoil;
    std::string path;
    std::string text;
};

/// A radio of one band with a raster that just covers it.
inline simulator::Link linkOf(
    std::uint32_t band_GHz, std::uint32_t lowest_kHz, std::uint32_t highest_kHz, std::uint32_t raster_kHz = 1)
{
    simulator::Link link = plainLink();
    link.frequencyParameters = {
        band_GHz, {}, lowest_kHz, highest_kHz, raster_kHz, 0, lowest_kHz, {}, 0, (highest_kHz - lowest_kHz) / raster_kHz};
    link.rxFrequency_kHz = lowest_kHz + (highest_kHz - lowest_kHz) / 2;
    link.channelSpacing_kHz = 28000;
    return link;
}

} // namespace tests
