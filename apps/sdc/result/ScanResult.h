#pragma once

#include "apps/sdc/result/History.h"
#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"
#include "terminal/ScanPlan.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sdc {

using terminal::ScanPlan;

enum class ScanKind : std::uint8_t { channel, subBand };
inline constexpr std::array<std::string_view, 2> scanKinds{"channel", "sub-band"};

constexpr std::string_view toText(ScanKind kind)
{
    return scanKinds.at(static_cast<std::size_t>(kind));
}

/// Whether the far end of a link transmits while it is scanned. Nobody but the user can know.
enum class FarEnd : std::uint8_t { unknown, on, muted };
inline constexpr std::array<std::string_view, 3> farEnds{"unknown", "on", "muted"};

constexpr std::string_view toText(FarEnd farEnd)
{
    return farEnds.at(static_cast<std::size_t>(farEnd));
}

/// What is kept of sweeps beside what the survey knows.
enum class Keep : std::uint8_t {
    last,    ///< the last one
    history, ///< the last one, and a history of all
    all,
};

/// What the sweeps of one channel found; at least one.
struct ChannelResult {
    std::uint32_t channel = 0; ///< radio channel number
    std::string unitTypeText;
    ReceiverData receiver;
    ScanPlan plan;             ///< of the last sweep; plan.samples tells how many samples each sweep should have
    std::vector<Sweep> sweeps; ///< in the order made: all of them, or the last alone where nobody asks for the others
    Survey survey;             ///< of all sweeps
    History history{};         ///< of all sweeps, where that is what is kept of them

    /// One sweep more.
    void add(Sweep sweep, Keep keep = Keep::all);
};

/// How a result was made, so that it can be made again.
struct Provenance {
    std::string programVersion;
    bool isSimulated = true;
    std::string scenarioDigest;         ///< SHA-256 of the scenario's file, in hexadecimal digits
    std::uint32_t seed = 0;             ///< of all that is random in the scenario
    double speed = 0.0;                 ///< of time: 1 is real, 0 no wall time at all
    std::vector<std::string> arguments; ///< of the program
};

/// What one run of `sdc scan` found.
struct ScanResult {
    std::string scenario;
    std::string description;
    ScanKind kind{};
    FarEnd farEnd = FarEnd::unknown;
    Provenance provenance{};
    std::vector<ChannelResult> channels; ///< in the order asked for; at least one
};

/// Whether samples are missing.
bool isPartial(const Sweep& sweep, const ScanPlan& plan);

/// The one trace that stands for a channel: the levels of its sweep or, of several sweeps, one for each frequency.
std::vector<SDCResult> traceOf(const ChannelResult& channel, TraceKind kind);

/// What a scan resolves: the wider of step and receive filter, in kHz.
double resolutionOf(const ChannelResult& channel);

// What is said of results, the same way everywhere and whatever the locale.

/// A number of hundredths with its two decimals: -4512 is "-45.12".
std::string hundredths(std::int64_t value);

/// A frequency in MHz with its three decimals: 19177500 kHz is "19177.500".
std::string megahertz(std::uint32_t frequency_kHz);

/// Of a sweep that is not complete, for people: "PARTIAL 5/13, failed: tuning failed". Empty of one that is.
std::string stateOf(const Sweep& sweep, const ScanPlan& plan);

} // namespace sdc
