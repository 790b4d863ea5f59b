#pragma once

#include "terminal/ScanPlan.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace sdc {

/// A moment, to the millisecond, in UTC.
using TimePoint = std::chrono::sys_time<std::chrono::milliseconds>;

enum class ScanKind : std::uint8_t { channel, subBand };

enum class Ending : std::uint8_t {
    complete, ///< all samples taken, the receiver back on its frequency
    stopped,  ///< by the user, the receiver back on its frequency
    failed,   ///< anything else; `reason` tells what
};

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
    terminal::ScanPlan plan;      ///< of the last sweep; plan.samples tells how many samples each sweep should have
    std::vector<Sweep> sweeps;
};

/// What one run of `sdc scan` found.
struct ScanResult {
    std::string scenario;
    std::string description;
    ScanKind kind{};
    std::vector<ChannelResult> channels; ///< in the order asked for; at least one
};

} // namespace sdc
