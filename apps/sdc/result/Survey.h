#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/Occupancy.h"
#include "apps/sdc/result/PowerMean.h"
#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/Sanity.h"
#include "apps/sdc/result/Sweep.h"
#include "terminal/ScanPlan.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

namespace sdc {

/// What several sweeps found at one frequency. Levels in hundredths of a dBm.
struct Hold {
    std::uint32_t frequency_kHz = 0;
    std::int32_t max = 0;
    std::int32_t min = 0;
    std::int32_t average = 0; ///< of the powers, not of the levels in dB
    std::size_t readings = 0; ///< how many samples at this frequency there are

    bool operator==(const Hold&) const = default;
};

/// How the readings at one frequency lie around their mean, in hundredths of a dBm and of a dB.
struct Spread {
    std::uint32_t frequency_kHz = 0;
    double mean = 0.0; ///< of the levels in dBm, not of the powers
    std::int32_t max = 0;
    std::int32_t min = 0;
    std::size_t readings = 0;
};

/// Which of the levels at a frequency stands for it.
enum class TraceKind : std::uint8_t { max, average, min };
inline constexpr std::array<std::string_view, 3> traceKinds{"max", "average", "min"};

constexpr std::string_view toText(TraceKind kind)
{
    return traceKinds.at(static_cast<std::size_t>(kind));
}

/// What stands for a frequency unless the user says otherwise: interference that comes and goes shows in the maximum alone.
inline constexpr TraceKind usualTrace = TraceKind::max;

/// One of the levels.
std::int32_t levelOf(const Hold& hold, TraceKind kind);

/// What the sweeps of one channel found, in memory that does not grow with their number.
class Survey {
public:
    /// @param rule  by which the occupancy of channels is measured
    Survey() = default;
    explicit Survey(const OccupancyRule& rule)
        : m_occupancy(rule)
    {
    }

    /// @param plan  of the sweep
    void add(const Sweep& sweep, const terminal::ScanPlan& plan, const ReceiverData& receiver);

    std::size_t sweeps() const { return m_sweeps; } ///< number of those added
    std::size_t sweeps(Ending ending) const { return m_endings.at(static_cast<std::size_t>(ending)); }
    TimePoint start() const { return m_start; }         ///< of the first one
    std::uint64_t taken() const { return m_taken; }     ///< samples of all of them
    std::uint64_t missing() const { return m_missing; } ///< samples planned and not taken

    /// The holds of all frequencies at which any sweep read a level, ascending, each over the sweeps that did.
    std::vector<Hold> holds() const;

    /// The same frequencies.
    std::vector<Spread> spreads() const;

    /// The samples of the latest sweeps, at most `mostRecent` of them and no more than `mostSamples`, but of one at least.
    const std::deque<std::vector<Sample>>& recent() const { return m_recent; }
    static constexpr std::size_t mostRecent = 64;
    static constexpr std::size_t mostSamples = 100'000;

    const ChannelOccupancy& occupancy() const { return m_occupancy; }
    const ReceiverCheck& check() const { return m_check; }

    /// In hundredths of a dB, the median of what the readings at one frequency differ from one sweep to the next, without
    /// those near the lowest reading; nothing where these are more than a tenth.
    std::optional<double> medianStep() const;

    /// One level for each frequency, ascending.
    std::vector<SDCResult> trace(TraceKind kind) const;

private:
    struct Readings {
        std::int32_t max;
        std::int32_t min;
        std::int32_t last;
        std::int64_t sum;
        PowerMean mean;
    };

    void keep(const std::vector<Sample>& samples);

    /// A count for each difference of so many hundredths of a dB, the last one for all that are more.
    static constexpr std::size_t mostStep = 1000;

    std::size_t m_sweeps = 0;
    TimePoint m_start{};
    std::uint64_t m_taken = 0;
    std::uint64_t m_missing = 0;
    std::array<std::size_t, endings.size()> m_endings{}; ///< number of sweeps that ended so
    std::array<std::size_t, mostStep + 1> m_steps{};
    std::size_t m_pairs = 0;                      ///< of readings at one frequency in two sweeps
    std::map<std::uint32_t, Readings> m_readings; ///< by frequency
    std::deque<std::vector<Sample>> m_recent;
    std::size_t m_kept = 0; ///< samples of these
    ChannelOccupancy m_occupancy;
    ReceiverCheck m_check;
};

} // namespace sdc
