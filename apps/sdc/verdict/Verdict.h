#pragma once

#include "apps/sdc/result/ScanResult.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sdc {

/// Whether something else than the far end transmits in the configured channel.
enum class Judgement : std::uint8_t { clear, suspected, disturbed, cannotTell };
inline constexpr std::array<std::string_view, 4> judgements{"clear", "suspected", "disturbed", "cannot tell"};

constexpr std::string_view toText(Judgement judgement)
{
    return judgements.at(static_cast<std::size_t>(judgement));
}

enum class InterferenceKind : std::uint8_t {
    carrier,  ///< a modulated one, a hump
    line,     ///< a single frequency: as wide as the receive filter
    burst,    ///< comes and goes, whatever its shape; also a line that moves too fast to be told
    sweep,    ///< a line that moves through the channel slowly
    wideband, ///< as high all over the channel
};
inline constexpr std::array<std::string_view, 5> interferenceKinds{"carrier", "line", "burst", "sweep", "wideband"};

constexpr std::string_view toText(InterferenceKind kind)
{
    return interferenceKinds.at(static_cast<std::size_t>(kind));
}

enum class InterferencePlace : std::uint8_t {
    coChannel, ///< its middle lies in the channel
    adjacent,  ///< it reaches in from beside the channel
};
inline constexpr std::array<std::string_view, 2> interferencePlaces{"co-channel", "adjacent"};

constexpr std::string_view toText(InterferencePlace place)
{
    return interferencePlaces.at(static_cast<std::size_t>(place));
}

/// What would make a verdict surer.
enum class Help : std::uint8_t { muteFarEnd, sayFarEnd, moreSweeps, channelScan, subBandScan, checkReceiver };
inline constexpr std::array<std::string_view, 6> helps{"mute the far end", "say whether the far end is muted: --far-end",
    "more sweeps: --repeat", "scan the channel", "scan the sub-band", "check the receiver"};

constexpr std::string_view toText(Help help)
{
    return helps.at(static_cast<std::size_t>(help));
}

/// What is said of the configured channel. Levels in hundredths of a dB.
struct Verdict {
    Judgement judgement = Judgement::cannotTell;
    std::optional<InterferenceKind> kind{};
    std::optional<InterferencePlace> place{};
    std::optional<std::int32_t> overFloor{};             ///< by so much the interferer raises what would be read without it
    std::optional<std::int32_t> carrierToInterference{}; ///< where the own carrier is on
    std::string rule;                                    ///< that decided, one sentence
    std::vector<Help> wouldHelp{};                       ///< what helps most first

    bool operator==(const Verdict&) const = default;
};

/// Judges by all sweeps. Takes no more time for many of them than for `Survey::mostRecent`.
Verdict judge(const ChannelResult& channel, FarEnd farEnd);

} // namespace sdc
