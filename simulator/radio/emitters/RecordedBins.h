#pragma once

#include <cstddef>
#include <vector>

namespace simulator {

/// The powers of a recorded sweep, one for each bin. Immutable, so all that show the same recording share one.
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

    /// The power recorded at a place, counted in bins: 0 is the lowest. Between two of them it runs straight in dB; half a
    /// bin beyond what is known it ends.
    /// @return 0 where nothing is known
    double powerAt_mW(double place) const noexcept;

private:
    static constexpr std::size_t blockSize = 64;

    struct Summed : Stretch {
        std::vector<double> sums_mW; ///< power below each block of so many bins, and that of all up to the stretch's end
    };

    const Summed* stretchAt(double place) const noexcept;
    double powerOfBin_mW(double bin) const noexcept;

    double m_step_kHz;
    std::vector<Summed> m_stretches;
};

} // namespace simulator
