#include "simulator/terminal/PlanPreview.h"

#include "simulator/terminal/SimulatedTerminal.h"

#include <stdexcept>

namespace simulator {

/// The plan is known when the sweep begins: its first tuning is refused, which ends it.
std::optional<ScanPlan> previewPlan(const TerminalChannel& channel, ESDCCommand start)
{
    TerminalChannel untunable = channel;
    untunable.link.faults = {{Operation::setRxFrequency, FaultAction::refuse, 1, Fault::all}};
    host::VirtualClock clock;
    SimulatedTerminal terminal(std::vector{untunable}, clock);
    terminal.controller(channel.number).getSpectrumDiagnosticsProperties();
    const ScanStart started = terminal.startScan(channel.number, start);
    if (started == ScanStart::busy || started == ScanStart::noWorker) {
        throw std::logic_error("internal error: a terminal that has just come up does not take a start");
    }
    return started == ScanStart::underWay ? terminal.plan(channel.number) : std::nullopt;
}

} // namespace simulator
