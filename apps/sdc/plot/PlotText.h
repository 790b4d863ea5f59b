#pragma once

#include <cstdint>
#include <string>

namespace sdc {

/// A text without control characters as a string of gnuplot. What could end it, or be taken for a command or a variable, is
/// written as a number.
std::string inQuotes(const std::string& text);

/// Frequencies on an axis in MHz below 10 GHz and in GHz above.
class FrequencyAxis {
public:
    explicit FrequencyAxis(std::uint32_t highest_kHz);

    const char* unit() const { return m_decimals == 3 ? "MHz" : "GHz"; }

    /// Number of decimals that shows a frequency exactly.
    int decimalsFor(std::int64_t frequency_kHz) const;

    /// With so many decimals, or all of them.
    std::string text(std::int64_t frequency_kHz, int decimals) const;
    std::string text(std::int64_t frequency_kHz) const { return text(frequency_kHz, m_decimals); }

private:
    int m_decimals; ///< of a kHz
};

} // namespace sdc
