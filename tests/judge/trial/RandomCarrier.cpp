#include "tests/judge/trial/RandomCarrier.h"

#include <algorithm>
#include <cmath>

namespace judge {

double hundredth(double value)
{
    return std::round(value * 100.0) / 100.0;
}

simulator::Carrier randomCarrier(Dice& dice, double centre_kHz, double level_dBm, double channelWidth_kHz)
{
    simulator::Carrier carrier = simulator::carrierInChannel(
        std::round(centre_kHz), hundredth(level_dBm), channelWidth_kHz, hundredth(dice.uniform(0.2, 0.35)), 0.98);
    carrier.symbolRate_kBd = std::max(std::round(carrier.symbolRate_kBd), 1.0);
    return carrier;
}

std::optional<simulator::Shoulders> randomShoulders(Dice& dice, double spacing_kHz, double probability)
{
    if (!dice.happens(probability)) {
        return std::nullopt;
    }
    const double adjacent_dB = hundredth(dice.uniform(25.0, 35.0));
    return simulator::Shoulders{spacing_kHz, adjacent_dB, hundredth(dice.uniform(45.0, 55.0))};
}

} // namespace judge
