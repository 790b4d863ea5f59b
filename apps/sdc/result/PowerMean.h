#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace sdc {

/// Averages levels as powers: 0 dBm and -10 dBm have the average -2.60 dBm, not -5.
class PowerMean {
public:
    /// @param level  in hundredths of a dBm
    void add(std::int32_t level)
    {
        // The sum is kept relative to the strongest level, so that no level, however odd, is too much for it.
        if (m_count == 0 || level > m_strongest) {
            m_sum *= m_count == 0 ? 0.0 : ratio(m_strongest, level);
            m_strongest = level;
        }
        m_sum += ratio(level, m_strongest);
        ++m_count;
    }

    std::size_t count() const { return m_count; }

    /// In hundredths of a dBm. count() must not be 0: there is no mean of nothing.
    std::int32_t strongest() const { return m_strongest; }
    std::int32_t mean() const
    {
        const double relative = 1000.0 * std::log10(m_sum / static_cast<double>(m_count));
        return static_cast<std::int32_t>(std::llround(m_strongest + relative));
    }

private:
    static double ratio(std::int32_t level, std::int32_t reference)
    {
        return std::pow(10.0, (static_cast<double>(level) - reference) / 1000.0);
    }

    std::int32_t m_strongest = 0;
    double m_sum = 0.0; ///< of the powers, each divided by that of the strongest level
    std::size_t m_count = 0;
};

} // namespace sdc
