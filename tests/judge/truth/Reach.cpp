#include "tests/judge/truth/Reach.h"

#include <algorithm>
#include <variant>
#include <vector>

#include "simulator/radio/emitters/Carrier.h"
#include "simulator/radio/emitters/ContinuousWave.h"
#include "simulator/radio/emitters/EdgeLeakage.h"
#include "simulator/radio/emitters/NoiseBand.h"
#include "simulator/radio/emitters/Recording.h"

namespace judge {

namespace {

using simulator::Band;

constexpr double kHz_per_MHz = 1000.0;
constexpr double fallOfAnEdge_dB = 60.0;
constexpr double grazingShare = 0.1;

Band around(double centre_kHz, double half_kHz)
{
    return {centre_kHz - half_kHz, centre_kHz + half_kHz};
}

// The bands that an emitter fills.

std::vector<Band> filledBy(const simulator::Carrier& carrier)
{
    std::vector<Band> bands;
    const simulator::Row row = carrier.row.value_or(simulator::Row{1, 0.0});
    for (std::uint32_t index = 0; index < row.count; ++index) {
        bands.push_back(
            around(carrier.centre_kHz + index * row.spacing_kHz, (1.0 + carrier.rollOff) * carrier.symbolRate_kBd / 2.0));
    }
    return bands;
}

std::vector<Band> filledBy(const simulator::ContinuousWave& wave)
{
    return {around(wave.frequency_kHz, wave.drift ? wave.drift->reach_kHz : 0.0)};
}

std::vector<Band> filledBy(const simulator::NoiseBand& band)
{
    return {{band.lowest_kHz, band.highest_kHz}};
}

std::vector<Band> filledBy(const simulator::EdgeLeakage& edge)
{
    return {around(edge.edge_kHz, fallOfAnEdge_dB / edge.slope_dBPerMHz * kHz_per_MHz)};
}

std::vector<Band> filledBy(const simulator::Recording& recording)
{
    return {simulator::BinnedSpectrum(recording).extent()};
}

Reach reachOf(const Band& filled, const Band& channel)
{
    if (filled.low_kHz == filled.high_kHz) {
        return channel.contains(filled.low_kHz) ? Reach::inside : Reach::none;
    }
    const double narrower_kHz = std::min(filled.high_kHz - filled.low_kHz, channel.high_kHz - channel.low_kHz);
    const double share = filled.overlap_kHz(channel) / narrower_kHz;
    return share <= 0.0 ? Reach::none : share < grazingShare ? Reach::grazing : Reach::inside;
}

} // namespace

Reach reachInto(const Band& channel, const simulator::Emitter& emitter)
{
    const auto farthest = [&](const auto& signal) {
        Reach reach = Reach::none;
        for (const Band& filled : filledBy(signal)) {
            reach = std::max(reach, reachOf(filled, channel));
        }
        return reach;
    };
    return std::visit(farthest, emitter.signal);
}

bool comesFromBeside(const Band& channel, const simulator::Emitter& emitter)
{
    const auto isBeside = [&](const Band& filled) {
        const bool leavesSome = filled.low_kHz > channel.low_kHz || filled.high_kHz < channel.high_kHz;
        return leavesSome && !channel.contains((filled.low_kHz + filled.high_kHz) / 2.0);
    };
    const auto areBeside = [&](const auto& signal) { return std::ranges::all_of(filledBy(signal), isBeside); };
    return std::visit(areBeside, emitter.signal);
}

Band channelAround(double centre_kHz, double spacing_kHz)
{
    return around(centre_kHz, spacing_kHz / 2.0);
}

} // namespace judge
