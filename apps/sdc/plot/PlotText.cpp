#include "apps/sdc/plot/PlotText.h"

#include <fmt/format.h>

#include <cstdlib>
#include <string_view>

namespace sdc {

std::string inQuotes(const std::string& text)
{
    constexpr std::string_view special = "\"'`\\@";
    std::string quoted = "\"";
    for (const char one : text) {
        quoted += special.find(one) == std::string_view::npos ? std::string(1, one)
                                                              : fmt::format("\\{:03o}", static_cast<unsigned char>(one));
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
    const std::string all =
        fmt::format("{}{}.{:0{}}", frequency_kHz < 0 ? "-" : "", magnitude / unit_kHz, magnitude % unit_kHz, m_decimals);
    return all.substr(0, all.size() - static_cast<std::size_t>(decimals == 0 ? m_decimals + 1 : m_decimals - decimals));
}

} // namespace sdc
