#include "apps/sdc/console/WaitProgress.h"

#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/tty/Screen.h"

#include <unistd.h>

#include <algorithm>
#include <cstdint>

namespace sdc {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

WaitProgress::WaitProgress(std::ostream& terminal, double speed)
    : m_progress(terminal,
        {.isTerminal = true,
            .isColored = usesColor(ColorMode::automatic, STDERR_FILENO),
            .columns = [] { return terminalWidth(STDERR_FILENO); }})
    , m_speed(speed)
{
}

void WaitProgress::show(const ScanPlan& plan, const std::vector<SDCResult>& samples)
{
    if (samples.size() != m_taken) {
        m_taken = samples.size();
        m_lastSeen = steady_clock::now();
    }
    ProgressState state;
    state.taken = static_cast<std::int64_t>(m_taken);
    state.planned = plan.samples;
    if (!samples.empty()) {
        state.last = Sample{.frequency_kHz = samples.back().frequency_kHz, .rssi = samples.back().rssi};
    }
    if (m_speed > 0.0) {
        const auto passed = std::chrono::duration_cast<milliseconds>(steady_clock::now() - m_lastSeen);
        const milliseconds left = wallTime(plan.settleTime() - plan.settleTime(state.taken), m_speed);
        state.left = std::max(milliseconds{}, left - passed);
    }
    m_progress.show(state);
}

} // namespace sdc
