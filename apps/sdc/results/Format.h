#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>

namespace sdc {

/// A number of hundredths with its two decimals, whatever the locale: -4512 is "-45.12".
inline std::string hundredths(std::int64_t value)
{
    const std::int64_t magnitude = std::llabs(value);
    const std::string fraction = std::to_string(100 + magnitude % 100).substr(1);
    return (value < 0 ? "-" : "") + std::to_string(magnitude / 100) + "." + fraction;
}

/// A frequency in MHz with its three decimals, whatever the locale: 19177500 kHz is "19177.500".
inline std::string megahertz(std::uint32_t frequency_kHz)
{
    const std::string fraction = std::to_string(1000 + frequency_kHz % 1000).substr(1);
    return std::to_string(frequency_kHz / 1000) + "." + fraction;
}

/// Text set left in a column.
inline std::string left(const std::string& text, std::size_t width)
{
    return text.size() < width ? text + std::string(width - text.size(), ' ') : text;
}

/// Text set right in a column.
inline std::string right(const std::string& text, std::size_t width)
{
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

} // namespace sdc
