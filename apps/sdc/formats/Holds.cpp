#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"

#include <fmt/format.h>

#include <ostream>

namespace sdc {

void writeHolds(std::ostream& stream, const ScanResult& result, const WriteOptions&)
{
    stream << "channel,frequency_kHz,max_dBm,average_dBm,min_dBm,readings\n";
    for (const ChannelResult& channel : result.channels) {
        for (const Hold& hold : channel.survey.holds()) {
            stream << fmt::format("{},{},{},{},{},{}\n", channel.channel, hold.frequency_kHz, hundredths(hold.max),
                hundredths(hold.average), hundredths(hold.min), hold.readings);
        }
    }
}

} // namespace sdc
