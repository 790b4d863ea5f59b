#include "apps/sdc/plot/Axes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

namespace sdc {

int decimalsFor(std::int64_t frequency_kHz)
{
    int decimals = decimalsOfMegahertz;
    for (; decimals > 0 && frequency_kHz % 10 == 0; --decimals) {
        frequency_kHz /= 10;
    }
    return decimals;
}

std::string inMegahertz(std::int64_t frequency_kHz, int decimals)
{
    const std::int64_t magnitude = std::llabs(frequency_kHz);
    const std::string all =
        fmt::format("{}{}.{:0{}}", frequency_kHz < 0 ? "-" : "", magnitude / 1000, magnitude % 1000, decimalsOfMegahertz);
    const int cut = decimals == 0 ? decimalsOfMegahertz + 1 : decimalsOfMegahertz - decimals;
    return all.substr(0, all.size() - static_cast<std::size_t>(cut));
}

std::int64_t niceStep(double least)
{
    for (std::int64_t power = 1;; power *= 10) {
        for (const std::int64_t factor : {1, 2, 5}) {
            if (static_cast<double>(factor * power) >= least) {
                return factor * power;
            }
        }
    }
}

std::int64_t roundedUp(std::int64_t value, std::int64_t step)
{
    const std::int64_t towardsZero = value / step * step;
    return towardsZero < value ? towardsZero + step : towardsZero;
}

std::vector<Tick> frequencyTicks(const Range& range_kHz, const Room& room)
{
    constexpr double charactersOfATick = 11.0; // with the distance of its neighbours
    const double most = std::clamp(room.width / room.characterWidth / charactersOfATick, 2.0, 12.0);
    const std::int64_t step_kHz = niceStep(static_cast<double>(range_kHz.span()) / most);
    std::vector<Tick> ticks;
    for (std::int64_t place = roundedUp(range_kHz.lowest, step_kHz); place <= range_kHz.highest; place += step_kHz) {
        ticks.push_back({place, inMegahertz(place, decimalsFor(step_kHz))});
    }
    return ticks;
}

std::vector<Tick> channelTicks(
    const Range& range_kHz, std::int64_t configured_kHz, std::int64_t spacing_kHz, const Room& room)
{
    constexpr std::int64_t mostTicks = 1000;
    constexpr double charactersOfATick = 6.0;
    constexpr double leastCharacters = 0.5; // from one tick to the next
    if (spacing_kHz == 0 || range_kHz.span() / spacing_kHz > mostTicks) {
        return {};
    }
    const double room_kHz = static_cast<double>(range_kHz.span()) * charactersOfATick * room.characterWidth / room.width;
    const std::int64_t labelled = niceStep(room_kHz / static_cast<double>(spacing_kHz));
    const bool areAllSeen = room_kHz * leastCharacters <= static_cast<double>(spacing_kHz) * charactersOfATick;
    std::vector<Tick> ticks;
    const std::int64_t first = roundedUp(range_kHz.lowest - configured_kHz, spacing_kHz) / spacing_kHz;
    for (std::int64_t offset = first; configured_kHz + offset * spacing_kHz <= range_kHz.highest; ++offset) {
        const bool isLabelled = offset % labelled == 0;
        if (isLabelled || areAllSeen) {
            ticks.push_back({configured_kHz + offset * spacing_kHz,
                isLabelled ? fmt::format("{}{}", offset > 0 ? "+" : "", offset) : ""});
        }
    }
    return ticks;
}

} // namespace sdc
