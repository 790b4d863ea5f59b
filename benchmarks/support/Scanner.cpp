#include "benchmarks/support/Scanner.h"

#include "Platform/Host/InterfaceBroker.h"

#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace bench {

namespace {

/// A peer of a channel, as a module finds it.
template <typename Peer>
Peer& peer(const std::string& name, std::uint32_t channel)
{
    return dynamic_cast<Peer&>(*InterfaceBroker::getInstance().interfaces().at(name + "_" + std::to_string(channel)));
}

} // namespace

Scanner::Scanner(std::uint32_t channel, std::uint32_t samples)
    : Scanner(channel, std::make_unique<PlainPeers>(channel, subBandOf(samples)))
{
}

Scanner::Scanner(std::uint32_t channel, std::unique_ptr<PlainPeers> peers)
    : m_peers(std::move(peers))
    , m_controller(std::make_unique<SpectrumDiagnosticsController>(RadioChannel{channel}))
{
    if (m_controller->onModuleInit() != 0) {
        throw std::runtime_error("a benchmark's controller cannot be initialised");
    }
    start();
    waitForEnd();
}

void Scanner::start()
{
    waitForEnd();
    m_controller->setCommand(SDC_CMD_SUB_BAND_SCAN_START, 0);
}

void Scanner::waitForEnd()
{
    const ControllerInspector inspector(*m_controller);
    while (true) {
        {
            const std::lock_guard<std::mutex> workerWaits(inspector.m_mutex());
            if (inspector.getState() == SpectrumDiagnosticsController::STATE_IDLE) {
                return;
            }
            inspector.m_condition().notify_all(); // to a worker that had not yet begun, the start may have been lost
        }
        std::this_thread::yield();
    }
}

PlainSweep::PlainSweep(std::uint32_t channel, std::uint32_t nrOfSamples)
    : m_nrOfSamples(nrOfSamples)
    , m_peers(channel)
    , m_frequencyController(peer<IFrequencyController>("IFrequencyController", channel))
    , m_rssiHandler(peer<IRssiHandler>("IRssiHandler", channel))
{
    run();
}

} // namespace bench
