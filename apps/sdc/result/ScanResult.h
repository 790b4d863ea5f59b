#pragma once

#include "support/Time.h"
#include "terminal/ScanPlan.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sdc {

using support::TimePoint;
using terminal::ScanPlan;

enum class ScanKind : std::uint8_t { channel, subBand };
inline constexpr std::array<std::string_view, 2> scanKinds{"channel", "sub-band"};

enum class Ending : std::uint8_t {
    complete, ///< all samples taken, the receiver back on its frequency
    stopped,  ///< by the user, the receiver back on its frequency
    failed,   ///< anything else; `reason` tells what
};
inline constexpr std::array<std::string_view, 3> endings{"complete", "stopped", "failed"};

constexpr std::string_view toText(ScanKind kind)
{
    return scanKinds.at(static_cast<std::size_t>(kind));
}

constexpr std::string_view toText(Ending ending)
{
    return endings.at(static_cast<std::size_t>(ending));
}

/// One sweep of one channel.
struct Sweep {
    TimePoint start; ///< on the clock of the simulated terminal
    TimePoint end;
    Ending ending{};
    std::string reason;     ///< of a failure, one line; empty otherwise
    std::string statusText; ///< the controller's status at the end, in its own words
    std::uint32_t rxBefore_kHz = 0;
    std::uint32_t rxAfter_kHz = 0;
    std::vector<SDCResult> samples; ///< rssi in hundredths of a dBm
};

/// All sweeps of one channel, in the order made; at least one.
struct ChannelResult {
    std::uint32_t channel = 0; ///< radio channel number
    std::string unitTypeText;
    double filterWidth_kHz = 0.0; ///< of the receiver
    ScanPlan plan;                ///< of the last sweep; plan.samples tells how many samples each sweep should have
    std::vector<Sweep> sweeps;
};

/// What one run of `sdc scan` found.
struct ScanResult {
    std::string scenario;
    std::string description;
    ScanKind kind{};
    std::vector<ChannelResult> channels; ///< in the order asked for; at least one
};

/// Whether samples are missing.
bool isPartial(const Sweep& sweep, const ScanPlan& plan);

// What is said of results, the same way everywhere and whatever the locale.

/// A number of hundredths with its two decimals: -4512 is "-45.12".
std::string hundredths(std::int64_t value);

/// A frequency in MHz with its three decimals: 19177500 kHz is "19177.500".
std::string megahertz(std::uint32_t frequency_kHz);

/// Of a sweep that is not complete, for people: "PARTIAL 5/13, failed: tuning failed". Empty of one that is.
std::string stateOf(const Sweep& sweep, const ScanPlan& plan);

} // namespace sdc
