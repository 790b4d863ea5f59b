#include "terminal/PlanPreview.h"

#include "host/Clock.h"
#include "terminal/Terminal.h"

#include "Platform/Radio/IFrequencyController.h"

#include <cstdint>
#include <stdexcept>

namespace terminal {

namespace {

/// Tells what the radio tells, and tunes nothing.
class UntunableFrequencyController : public IFrequencyController {
public:
    explicit UntunableFrequencyController(IFrequencyController& radio)
        : m_radio(radio)
    {
    }

    std::uint32_t getRxFrequency() override { return m_radio.getRxFrequency(); }
    std::int32_t setRxFrequency(std::uint32_t, bool) override { return SDC_RC_FAILED; }

private:
    IFrequencyController& m_radio;
};

} // namespace

/// The plan is known when the sweep begins: its first tuning is refused, which ends it.
std::optional<ScanPlan> previewPlan(const Channel& channel, ESDCCommand start)
{
    const Peers& peers = channel.peers;
    UntunableFrequencyController untunable(peers.frequencyController);
    const Channel still{channel.number,
        {peers.systemPowerController, peers.frameFormat, untunable, peers.rssiHandler, peers.radioCapability, peers.radio},
        channel.tunedTo_kHz};
    host::VirtualClock clock;
    Terminal terminal({still}, clock);
    terminal.controller(channel.number).getSpectrumDiagnosticsProperties();
    const ScanStart started = terminal.startScan(channel.number, start);
    if (started == ScanStart::busy || started == ScanStart::noWorker) {
        throw std::logic_error("internal error: a terminal that has just come up does not take a start");
    }
    return started == ScanStart::underWay ? terminal.plan(channel.number) : std::nullopt;
}

} // namespace terminal
