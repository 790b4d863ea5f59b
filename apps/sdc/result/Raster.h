#pragma once

#include "apps/sdc/result/ScanResult.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace sdc {

/// What a scan tells of a channel of the raster.
enum class RasterState : std::uint8_t {
    own,          ///< the configured one, whatever is in it
    occupied,     ///< somebody transmits there
    intermittent, ///< somebody does now and then
    free,         ///< nobody did
    unknown,      ///< the samples do not tell
};
inline constexpr std::array<std::string_view, 5> rasterStates{"own", "occupied", "intermittent", "free", "unknown"};

constexpr std::string_view toText(RasterState state)
{
    return rasterStates.at(static_cast<std::size_t>(state));
}

/// A place of the channel raster: the configured receive frequency and a number of channel spacings. Levels in hundredths of
/// a dBm, of the samples that stand for the channel; absent where there is none.
struct RasterChannel {
    std::int64_t offset = 0; ///< channels above the configured one; negative: below
    std::uint32_t centre_kHz = 0;
    RasterState state = RasterState::unknown;
    std::optional<std::int32_t> max{};
    std::optional<std::int32_t> average{}; ///< of the powers
    std::optional<std::int32_t> threshold{};
    std::size_t sweeps = 0;                    ///< that saw it
    std::optional<std::int32_t> occupancy{};   ///< frequency channel occupancy, hundredths of a percent
    std::optional<std::size_t> sweepsNeeded{}; ///< until the occupancy is as accurate as asked for

    bool operator==(const RasterChannel&) const = default;
};

/// All channels of the raster from that of the lowest sample to that of the highest, ascending. None without a channel
/// spacing, and but the configured one in a scan of it.
///
/// - A channel is in use when a sample that stands for it exceeds the threshold: the one pre-set, or `thresholdMargin` over
///   the receiver's noise and all that leaks into the filter of what the scan shows elsewhere. It is not when a slow
///   receiver may still show the sample before, or where no sample lies within a quarter of a spacing of its centre: then it
///   is unknown.
/// - It is free when no sample that stands for it is higher than noise and leak, and the filter took in nearly all of the
///   channel, and as much as it takes in at its centre, without hearing more than these.
/// - All else is unknown; and all of it when there is but one reading over and over, which a dead receiver shows, too.
std::vector<RasterChannel> rasterOf(const ChannelResult& channel);

/// The free ones, the best first: by their maximum, then their average, then the distance from the configured channel.
std::vector<RasterChannel> freeChannels(const std::vector<RasterChannel>& raster);

} // namespace sdc
