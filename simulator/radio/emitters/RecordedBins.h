#pragma once

#include <cstddef>
#include <vector>

namespace simulator {

/// The powers in the bins of a recorded sweep, from the lower edge of its lowest bin on. Immutable, so all that show the
/// same recording share one.
class RecordedBins {
public:
    /// Bins without a gap between them.
    struct Stretch {
        double firstBin;               ///< its number, counted from the lowest bin of all
        std::vector<double> powers_mW; ///< of each bin; 0 where nothing is known
    };

    /// @param stretches  from the lowest to the highest, none empty
    /// @throws std::invalid_argument when there is no bin, or a bin has no width
    RecordedBins(double step_kHz, std::vector<Stretch> stretches);

    std::size_t count() const noexcept; ///< of the bins, without those of the gaps
    double step_kHz() const noexcept { return m_step_kHz; }
    double width_kHz() const noexcept; ///< of all, the gaps between the stretches included
    double total_mW() const noexcept;

    /// All power below a frequency, which is told as the distance from the lowest bin's lower edge.
    double powerBelow_mW(double offset_kHz) const noexcept;

private:
    double m_step_kHz;
    std::vector<Stretch> m_sums_mW; ///< power below each bin of a stretch, and that of all up to its end
};

} // namespace simulator
