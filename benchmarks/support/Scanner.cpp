#include "benchmarks/support/Scanner.h"

#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

namespace bench {

Scanner::Scanner(std::uint32_t channel, std::uint32_t samples)
    : Scanner(channel, std::make_unique<support::PlainPeers>(channel, subBandOf(samples)))
{
}

Scanner::Scanner(std::uint32_t channel, std::unique_ptr<support::PlainPeers> peers)
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

} // namespace bench
