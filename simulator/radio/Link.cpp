#include "simulator/radio/Link.h"

#include <algorithm>

namespace simulator {

namespace {

/// Upper half of ITU-R F.595 with 27.5 MHz spacing: f'n = f0 + 10 + 27.5 n in MHz, f0 = 18700, n = 1 to 35.
constexpr std::uint32_t f595UpperChannel_kHz(std::uint32_t n)
{
    return 18700000 + 10000 + 27500 * n;
}

/// Receives the upper half, transmits the lower one, 1010 MHz below.
RadioFrequencyParameters f595UpperHalf()
{
    RadioFrequencyParameters parameters{};
    parameters.frequencyBand_GHz = 18;
    parameters.transmitAndDuplex[0] = 17700000; // lowest, highest transmit frequency; duplex distance
    parameters.transmitAndDuplex[1] = 18700000;
    parameters.transmitAndDuplex[2] = 1010000;
    parameters.minRxFrequency_kHz = 18700000;
    parameters.maxRxFrequency_kHz = 19700000;
    parameters.frequencyStepSize_kHz = 250;
    parameters.txBaseFrequency_kHz = 17000000;
    parameters.rxBaseFrequency_kHz = 18000000;
    parameters.txStepLimits[0] = 2800;
    parameters.txStepLimits[1] = 6800;
    parameters.stepLimitLow = 2800;  // 18700 MHz
    parameters.stepLimitHigh = 6800; // 19700 MHz
    return parameters;
}

/// The channel plan is the recommendation's. All levels, the roll-off and what the receiver is like are typical values of
/// such links, not those of a certain radio. The settling time is a short one: the shortest settle delay of a scan, 300 ms,
/// is ten times as long, so that what is left of the previous level is below the resolution of a reading.
Link f595Link()
{
    constexpr double spacing_kHz = 27500.0;
    constexpr double rollOff = 0.25;
    constexpr double occupied = 0.98;
    const auto neighbour = [](std::uint32_t n, double level_dBm) {
        return carrierInChannel(f595UpperChannel_kHz(n), level_dBm, spacing_kHz, rollOff, occupied);
    };
    Link link;
    link.name = "18-f595";
    link.description = "18 GHz, 27.5 MHz raster, on channel 17; neighbours on 15 and 20, a weak spur at 19441 MHz";
    link.source = "channel plan ITU-R F.595, upper half; typical: levels, carriers, raster step, filter, noise figure, "
                  "settling, jitter";
    link.unitTypeText = "KLM6 18G";
    link.frequencyParameters = f595UpperHalf();
    link.channelSpacing_kHz = 27500;
    link.rxFrequency_kHz = f595UpperChannel_kHz(17);
    link.filterWidth_kHz = spacing_kHz; // the channel's own filter
    link.noiseFigure_dB = 5.0;
    link.settlingTime_ms = 30.0;
    link.jitter_dB = 0.5;
    link.seed = 595;
    link.emitters = {neighbour(17, -35.0), neighbour(15, -41.0), neighbour(20, -45.0), ContinuousWave{19441000.0, -84.0}};
    return link;
}

} // namespace

const std::vector<Link>& links()
{
    static const std::vector<Link> builtIn{f595Link()};
    return builtIn;
}

const Link* findLink(std::string_view name)
{
    const auto link = std::find_if(links().begin(), links().end(), [name](const Link& one) { return one.name == name; });
    return link == links().end() ? nullptr : &*link;
}

} // namespace simulator
