#include "simulator/terminal/PlanPreview.h"

#include "simulator/terminal/SimulatedTerminal.h"

namespace simulator {

std::optional<ScanPlan> previewPlan(const TerminalChannel& channel, ESDCCommand start)
{
    TerminalChannel flawless = channel;
    flawless.link.faults.clear();
    VirtualClock clock;
    clock.hold(); // the sweep need not be made: its plan is known when it begins
    SimulatedTerminal terminal(std::vector{flawless}, clock);
    terminal.controller(channel.number).getSpectrumDiagnosticsProperties();
    const ScanStart started = terminal.startScan(channel.number, start);
    return started == ScanStart::underWay ? terminal.plan(channel.number) : std::nullopt;
}

} // namespace simulator
