#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/PowerMean.h"
#include "apps/sdc/result/Sweep.h"

#include <array>
#include <cstddef>
#include <cstdint>
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
    void add(const Sweep& sweep);

    std::size_t sweeps() const { return m_sweeps; } ///< number of those added
    std::size_t sweeps(Ending ending) const { return m_endings.at(static_cast<std::size_t>(ending)); }

    /// The holds of all frequencies that any sweep reached, ascending, each over the sweeps that reached it.
    std::vector<Hold> holds() const;

    /// In hundredths of a dB, the median of what the readings at one frequency differ from one sweep to the next, without
    /// those at the floor of readings; nothing before there are some.
    std::optional<double> medianStep() const;

    /// One level for each frequency, ascending.
    std::vector<SDCResult> trace(TraceKind kind) const;

private:
    struct Readings {
        std::int32_t max;
        std::int32_t min;
        std::int32_t last;
        PowerMean mean;
    };

    /// A count for each difference of so many hundredths of a dB, the last one for all that are more.
    static constexpr std::size_t mostStep = 1000;

    std::size_t m_sweeps = 0;
    std::array<std::size_t, endings.size()> m_endings{}; ///< number of sweeps that ended so
    std::array<std::size_t, mostStep + 1> m_steps{};
    std::map<std::uint32_t, Readings> m_readings; ///< by frequency
};

} // namespace sdc
