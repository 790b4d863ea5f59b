#pragma once

#include "simulator/radio/Link.h"
#include "simulator/terminal/ScanPlan.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace soak {

/// How a sweep ends.
enum class Ending {
    finished, ///< range or number of samples ran out
    aborted,  ///< a tuning was refused
    stopped,  ///< by command
    died,     ///< a peer threw: there is no worker any more
};

/// Calls of a radio that have been made.
using Calls = std::array<std::uint64_t, simulator::numberOfOperations>;

/// What a sweep must leave behind.
struct ExpectedSweep {
    Ending ending = Ending::finished;
    std::vector<std::optional<std::int32_t>> readings; ///< of each sample; nothing where the air decides
    std::uint32_t receiver_kHz = 0;
    Calls calls{};
    std::uint64_t faultsMet = 0;
};

/// What one channel's radio and controller must do: knows the faults, and counts the calls that they depend on. Use while no
/// scan runs.
class ChannelModel {
public:
    explicit ChannelModel(const simulator::Link& link);

    /// A fault that was injected just now.
    void add(const simulator::Fault& fault);

    /// Takes one call of getProperties. Whether it throws.
    bool propertiesThrow();

    /// The sweep of a plan; stopped once it has that many samples, if not ended by itself before.
    ExpectedSweep sweep(const simulator::ScanPlan& plan, std::optional<std::size_t> stoppedAfter) const;

    /// Takes the calls of a sweep that came about.
    void keep(const ExpectedSweep& sweep);

    std::uint32_t receiver_kHz() const { return m_receiver_kHz; }
    std::uint64_t faultsMet() const { return m_faultsMet; }

private:
    struct Counted {
        simulator::Fault fault;
        std::uint64_t callsBefore;
    };
    class Walk;

    const simulator::Fault* decide(simulator::Operation operation, std::uint64_t call) const;
    bool isInRange(std::uint32_t frequency_kHz) const;

    std::uint32_t m_lowest_kHz;
    std::uint32_t m_highest_kHz;
    std::uint32_t m_receiver_kHz;
    std::vector<Counted> m_faults;
    Calls m_calls{};
    std::uint64_t m_faultsMet = 0;
};

} // namespace soak
