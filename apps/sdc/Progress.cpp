#include "apps/sdc/Progress.h"

#include "apps/sdc/Format.h"

#include <algorithm>
#include <string>

namespace sdc {

void Progress::show(std::int32_t percent, const std::vector<SDCResult>& samples, std::int32_t planned)
{
    const auto taken = static_cast<std::int64_t>(samples.size());
    const std::int64_t moved = m_isTerminal ? taken : 10 * taken / std::max(planned, 1);
    if (samples.empty() || moved == m_shown) {
        return;
    }
    m_shown = moved;
    m_stream << (m_isTerminal ? "\r\033[K" : "") + ("progress   " + right(std::to_string(percent), 3)) + " %  "
            + std::to_string(taken) + "/" + std::to_string(planned) + " samples  " + megahertz(samples.back().frequency_kHz)
            + " MHz " + right(hundredths(samples.back().rssi), 7) + " dBm" + (m_isTerminal ? "" : "\n")
             << std::flush;
}

void Progress::end()
{
    if (m_isTerminal && m_shown >= 0) {
        m_stream << std::endl;
    }
}

} // namespace sdc
