#include "apps/sdc/Table.h"

#include "apps/sdc/Format.h"

#include <algorithm>
#include <string>

namespace sdc {

namespace {

// The bar begins at the floor of a reading, rounded, and has a character for every 2 dB.
constexpr std::int32_t barBegin_cdBm = -10000;
constexpr std::int32_t barEnd_cdBm = -2000;
constexpr std::int32_t barStep_cdBm = 200;

std::string bar(std::int32_t rssi)
{
    const std::int32_t shown = std::clamp(rssi, barBegin_cdBm, barEnd_cdBm) - barBegin_cdBm;
    return std::string(static_cast<std::size_t>((shown + barStep_cdBm / 2) / barStep_cdBm), '#');
}

bool isWeaker(const SDCResult& left, const SDCResult& right)
{
    return left.rssi < right.rssi;
}

} // namespace

void writeTable(std::ostream& stream, const std::vector<SDCResult>& samples, std::size_t mostRows)
{
    const std::size_t perRow = mostRows == 0 ? 1 : std::max<std::size_t>(1, (samples.size() + mostRows - 1) / mostRows);
    if (perRow > 1) {
        stream << "each row: the strongest of " << std::to_string(perRow) << " samples\n";
    }
    stream << "      MHz      dBm  -100      -80       -60       -40       -20\n";
    for (std::size_t first = 0; first < samples.size(); first += perRow) {
        const auto begin = samples.begin() + static_cast<std::ptrdiff_t>(first);
        const auto end = samples.begin() + static_cast<std::ptrdiff_t>(std::min(first + perRow, samples.size()));
        const SDCResult& strongest = *std::max_element(begin, end, isWeaker);
        stream << right(megahertz(strongest.frequency_kHz), 9) << right(hundredths(strongest.rssi), 9) << "  |"
               << bar(strongest.rssi) << '\n';
    }
}

} // namespace sdc
