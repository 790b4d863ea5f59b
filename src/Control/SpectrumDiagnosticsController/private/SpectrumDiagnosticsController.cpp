// Module frame: construction, registration, peer binding, life cycle.
//
// Runs on the host's thread; setState and getState on any thread. May lock m_mutex, and only around one change of state:
// while a sweep runs that waits for its end. Must never call a peer's operation but createPropertiesProvider.

#include "Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsController.h"

#include "Control/SpectrumDiagnosticsController/private/Trace.h"
#include "Platform/Host/IInterface.h"
#include "Platform/Host/InterfaceBroker.h"
#include "Platform/Host/thread_utilities.h"
#include "Platform/Radio/IFrameFormat.h" // IWYU pragma: keep (a cast needs it)
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "Platform/Radio/ISystemPowerController.h" // IWYU pragma: keep (a cast needs it)

#include <exception>
#include <map>

namespace {

constexpr std::uint32_t moduleIdBase = 126000;
constexpr std::uint32_t moduleValues[] = {11, 16}; // the host's meaning

std::string ownInterfaceName(RadioChannel radioChannel)
{
    return IInterface::interfaceName("ISpectrumDiagnosticsController", radioChannel);
}

/// Looks a peer up. Leaves null in @p peer, traces and returns false when the name is not there or holds something else.
template <typename Peer>
bool bindPeer(Peer*& peer, const std::string& name, const char* failureText)
{
    const std::map<std::string, IInterface*>& interfaces = InterfaceBroker::getInstance().interfaces();
    const auto entry = interfaces.find(name);
    peer = entry == interfaces.end() ? nullptr : dynamic_cast<Peer*>(entry->second);
    if (peer == nullptr) {
        SDC_TRACE(PLX_TRACE_LEVEL_ERROR, failureText << name);
    }
    return peer != nullptr;
}

} // namespace

SpectrumDiagnosticsController::SpectrumDiagnosticsController(RadioChannel radioChannel)
    : ModuleInterface(moduleIdBase + static_cast<std::uint32_t>(radioChannel), ownInterfaceName(radioChannel),
        static_cast<std::uint32_t>(radioChannel), 0, moduleValues, 2)
    , m_radioChannelId(static_cast<std::uint32_t>(radioChannel))
    , m_systemPowerController(nullptr)
    , m_frameFormat(nullptr)
    , m_frequencyController(nullptr)
    , m_rssiHandler(nullptr)
    , m_radio(nullptr)
    , m_radioCapability(nullptr)
    , m_state(STATE_IDLE)
    , m_status(SDC_STATUS_SCAN_NOT_STARTED)
    , m_command(SDC_CMD_SCAN_STOP)
    , m_channelSpacing_kHz(0)
    , m_currentRxFrequency_kHz(0)
    , m_minRxFrequency_kHz(0)
    , m_maxRxFrequency_kHz(0)
    , m_rxBaseFrequency_kHz(0)
    , m_frequencyBand_GHz(0)
    , m_frequencyStepSize_kHz(0)
    , m_stepLimitLow(0)
    , m_scanStep_kHz(0)
    , m_frequencyMargin_kHz(0)
    , m_scanLowestRxFrequency_kHz(0)
    , m_setRxWait_ms(0)
    , m_firstSetRxWait_ms(0)
    , m_progress(0)
    , m_nrOfSamplesDone(0)
    , m_totalNrOfSamples(0)
    , m_properties{}
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER, "m_radioChannelId=" << m_radioChannelId);
    InterfaceBroker::getInstance().registerInterface(ownInterfaceName(RadioChannel{m_radioChannelId}), this);
}

SpectrumDiagnosticsController::~SpectrumDiagnosticsController()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    if (m_thread.joinable()) {
        exitThread();
        m_thread.join();
    }
    InterfaceBroker::getInstance().unregisterInterface(ownInterfaceName(RadioChannel{m_radioChannelId}));
}

unsigned int SpectrumDiagnosticsController::onModuleInit()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER, "m_radioChannelId=" << m_radioChannelId);
    if (!bindPeers()) {
        return SDC_RC_FAILED;
    }
    m_propertiesProvider = m_radio->createPropertiesProvider();
    startWorker();
    return SDC_RC_OK;
}

/// Binds in this order up to the first peer that is missing. The three spellings of the failure text are the system's own.
bool SpectrumDiagnosticsController::bindPeers()
{
    const RadioChannel channel{m_radioChannelId};
    return bindPeer(m_systemPowerController, IInterface::interfaceName("ISystemPowerController", channel),
               "Could not find interface")
        && bindPeer(m_frameFormat, IInterface::interfaceName("IFrameFormat", channel), "Could not find interface ")
        && bindPeer(m_frequencyController, IFrequencyController::interfaceName(m_radioChannelId), "Could not find interface")
        && bindPeer(m_rssiHandler, IRssiHandler::interfaceName(m_radioChannelId), "Could not find interface")
        && bindPeer(m_radioCapability, IRadioCapability::interfaceName(channel), "Could not find interface")
        && bindPeer(m_radio, IRadio::interfaceName(m_radioChannelId), " Could not find interface");
}

/// A worker that cannot be started is reported in the trace only: the module counts as initialised all the same.
void SpectrumDiagnosticsController::startWorker()
{
    try {
        m_threadName = "SpectDiagCtrl" + std::to_string(static_cast<std::int32_t>(m_radioChannelId));
        m_thread = std::thread(&SpectrumDiagnosticsController::scanThread, this);
        os_extension::thread_utilities::setName(m_thread, m_threadName);
        SDC_TRACE(PLX_TRACE_LEVEL_INFO, "Thread " << m_threadName << " successfully created.");
    } catch (const std::exception& exception) {
        SDC_TRACE(PLX_TRACE_LEVEL_ERROR, "Thread " << m_threadName << " caught exception [" << exception.what() << "].");
    } catch (...) {
        SDC_TRACE(PLX_TRACE_LEVEL_ERROR, "Unknown exception when trying to create the thread " << m_threadName);
    }
}

unsigned int SpectrumDiagnosticsController::onPhaseStop()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    const std::lock_guard<std::mutex> lock(m_mutex);
    setState(STATE_IDLE);
    return SDC_RC_OK;
}

/// Asks the worker to end. Gets the lock only while the worker waits, has not begun or has ended.
void SpectrumDiagnosticsController::exitThread()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER, "m_threadName=" << m_threadName);
    const std::lock_guard<std::mutex> lock(m_mutex);
    setState(STATE_EXIT);
}

/// Takes no lock: commands must reach a worker that holds m_mutex for a whole sweep.
void SpectrumDiagnosticsController::setState(State state)
{
    m_state = state;
    m_condition.notify_all();
}

SpectrumDiagnosticsController::State SpectrumDiagnosticsController::getState() const
{
    return m_state;
}
