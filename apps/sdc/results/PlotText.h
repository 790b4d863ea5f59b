#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sdc {

/// A text that comes from outside, as a plot can show it: UTF-8 that is none and control characters become question marks;
/// of more than @p most characters the first, and three dots.
std::string plottable(std::string_view text, std::size_t most);

/// A text, plottable already, as a string of gnuplot. What could end it, or be taken for a command or a variable, is written
/// as a number.
std::string quoted(const std::string& text);

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
