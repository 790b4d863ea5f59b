#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>

namespace sdc {

namespace {

/// Which columns a result needs besides frequency and level.
struct Columns {
    bool hasNumbers; ///< channel and sweep
    bool hasHolds;
    bool hasEnding;
};

Columns columnsFor(const ScanResult& result)
{
    const auto repeats = [](const ChannelResult& channel) { return channel.sweeps.size() > 1; };
    const auto isPartial = [](const ChannelResult& channel) {
        return std::any_of(channel.sweeps.begin(), channel.sweeps.end(),
            [](const Sweep& sweep) { return sweep.ending != Ending::complete; });
    };
    const auto any = [&result](auto has) { return std::any_of(result.channels.begin(), result.channels.end(), has); };
    return {result.channels.size() > 1 || any(repeats), any(repeats), any(isPartial)};
}

std::string header(const Columns& columns)
{
    return std::string(columns.hasNumbers ? "channel,sweep," : "") + "frequency_kHz,level_dBm"
        + (columns.hasHolds ? ",max_hold_dBm,min_hold_dBm,average_dBm" : "") + (columns.hasEnding ? ",ending" : "") + "\r\n";
}

/// The hold columns of each frequency.
std::map<std::uint32_t, std::string> holdColumns(const ChannelResult& channel)
{
    std::map<std::uint32_t, std::string> columns;
    for (const Hold& hold : channel.survey.holds()) {
        columns[hold.frequency_kHz] =
            fmt::format(",{},{},{}", hundredths(hold.max), hundredths(hold.min), hundredths(hold.average));
    }
    return columns;
}

void writeChannel(std::ostream& stream, const ChannelResult& channel, const Columns& columns)
{
    const auto holdsAt = columns.hasHolds ? holdColumns(channel) : std::map<std::uint32_t, std::string>();
    std::size_t number = 0;
    for (const Sweep& sweep : channel.sweeps) {
        ++number;
        const std::string before = columns.hasNumbers ? fmt::format("{},{},", channel.channel, number) : "";
        const std::string after = columns.hasEnding ? fmt::format(",{}\r\n", toText(sweep.ending)) : "\r\n";
        for (const Sample& sample : sweep.samples) {
            stream << before << std::to_string(sample.frequency_kHz) << ',' << hundredths(sample.rssi)
                   << (columns.hasHolds ? holdsAt.at(sample.frequency_kHz) : "") << after;
        }
    }
}

} // namespace

void writeCsv(std::ostream& stream, const ScanResult& result, const WriteOptions&)
{
    const Columns columns = columnsFor(result);
    stream << header(columns);
    for (const ChannelResult& channel : result.channels) {
        writeChannel(stream, channel, columns);
    }
}

} // namespace sdc
