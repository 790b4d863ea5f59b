#include "apps/sdc/results/PlotText.h"

#include <cstdlib>

namespace sdc {

std::string quoted(const std::string& text)
{
    std::string quoted = "\"";
    for (const char one : text) {
        if (std::string_view("\"'`\\@").find(one) == std::string_view::npos) {
            quoted += one;
        } else { // as an octal number
            const auto code = static_cast<unsigned char>(one);
            quoted += "\\" + std::to_string(code / 64) + std::to_string(code / 8 % 8) + std::to_string(code % 8);
        }
    }
    return quoted + "\"";
}

FrequencyAxis::FrequencyAxis(std::uint32_t highest_kHz)
    : m_decimals(highest_kHz < 10'000'000 ? 3 : 6)
{
}

int FrequencyAxis::decimalsFor(std::int64_t frequency_kHz) const
{
    int decimals = m_decimals;
    for (; decimals > 0 && frequency_kHz % 10 == 0; --decimals) {
        frequency_kHz /= 10;
    }
    return decimals;
}

std::string FrequencyAxis::text(std::int64_t frequency_kHz, int decimals) const
{
    const std::int64_t unit_kHz = m_decimals == 3 ? 1000 : 1'000'000;
    const std::int64_t magnitude = std::llabs(frequency_kHz);
    const std::string fraction =
        std::to_string(unit_kHz + magnitude % unit_kHz).substr(1, static_cast<std::size_t>(decimals));
    return (frequency_kHz < 0 ? "-" : "") + std::to_string(magnitude / unit_kHz) + (decimals == 0 ? "" : ".") + fraction;
}

} // namespace sdc
