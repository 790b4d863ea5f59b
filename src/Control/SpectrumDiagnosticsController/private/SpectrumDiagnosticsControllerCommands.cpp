// setCommand and the queries.
//
// Runs on the callers' threads (refreshProperties on the worker, too). May lock m_resultsGuard, for a copy-out. Must never
// lock m_mutex: the worker holds it for a whole sweep, and a stop or a query that waited for it would come too late.

#include "Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsController.h"

#include "Control/SpectrumDiagnosticsController/private/ScanConstants.h"
#include "Control/SpectrumDiagnosticsController/private/Trace.h"
#include "Platform/Radio/IFrameFormat.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"

#include <algorithm>

std::int32_t SpectrumDiagnosticsController::initialize()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER, "m_radioChannelId=" << m_radioChannelId);
    return SDC_RC_OK;
}

std::int32_t SpectrumDiagnosticsController::setCommand(ESDCCommand command, std::int32_t setRxWait_ms)
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER,
        "m_radioChannelId=" << m_radioChannelId << ", SDCStatus::toString(m_status)=" << SDCStatus::toString(m_status)
                            << ", SDCCommand::toString(command)=" << SDCCommand::toString(command)
                            << ", setRxWait_ms=" << setRxWait_ms);
    switch (command) {
    case SDC_CMD_CHANNEL_SCAN_START:
    case SDC_CMD_SUB_BAND_SCAN_START: return startScan(command, setRxWait_ms);
    case SDC_CMD_SCAN_STOP: return stopScan();
    default:
        SDC_TRACE(PLX_TRACE_LEVEL_ERROR, "Unknown command " << static_cast<std::int32_t>(command));
        return SDC_RC_UNKNOWN_COMMAND;
    }
}

std::int32_t SpectrumDiagnosticsController::startScan(ESDCCommand command, std::int32_t setRxWait_ms)
{
    if (getState() != STATE_IDLE) {
        SDC_TRACE(PLX_TRACE_LEVEL_INFO, "Scan already in progress " << static_cast<std::int32_t>(m_status.load()));
        return SDC_RC_OK;
    }
    m_command = command;
    m_status = SDC_STATUS_SCAN_NOT_STARTED;
    m_progress = 0;
    m_setRxWait_ms = static_cast<std::uint32_t>(setRxWait_ms);
    m_channelSpacing_kHz = m_frameFormat->getChannelSpacing();
    m_currentRxFrequency_kHz = m_frequencyController->getRxFrequency();
    setGeneralParams();
    chooseSettleDelays();
    const Plan plan = planFor(getOduType(), command);
    if (plan == nullptr) {
        SDC_TRACE(PLX_TRACE_LEVEL_ERROR, "Unsupported QRU");
        return SDC_RC_FAILED;
    }
    if ((this->*plan)() >= SDC_RC_FAILED) {
        SDC_TRACE(PLX_TRACE_LEVEL_ERROR, "Failed to prepare scan");
        return SDC_RC_FAILED;
    }
    m_status = command == SDC_CMD_CHANNEL_SCAN_START ? SDC_STATUS_CHANNEL_SCAN_ONGOING : SDC_STATUS_SUB_BAND_ONGOING;
    setState(STATE_SCAN);
    return SDC_RC_OK;
}

std::int32_t SpectrumDiagnosticsController::stopScan()
{
    if (getState() == STATE_IDLE) {
        SDC_TRACE(PLX_TRACE_LEVEL_INFO, "Scan is not running");
    } else {
        m_command = SDC_CMD_SCAN_STOP;
        setState(STATE_STOP);
    }
    m_progress = 0;
    m_status = SDC_STATUS_SCAN_NOT_STARTED;
    return SDC_RC_OK;
}

/// From the properties as they stand: the caller's delay, stored by the start, is overwritten on every path.
void SpectrumDiagnosticsController::chooseSettleDelays()
{
    if (m_properties.extendedRxWait != 0) {
        m_setRxWait_ms = extendedRxWait_ms;
        m_firstSetRxWait_ms = extendedRxWait_ms;
    } else {
        m_firstSetRxWait_ms = firstRxWait_ms;
        m_setRxWait_ms = m_properties.slowRxWait != 0 ? slowRxWait_ms : rxWait_ms;
    }
}

ESDCStatus SpectrumDiagnosticsController::getStatus()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER,
        "m_radioChannelId=" << m_radioChannelId << ", SDCStatus::toString(m_status)=" << SDCStatus::toString(m_status));
    return m_status;
}

std::int32_t SpectrumDiagnosticsController::getProgress()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER, "m_radioChannelId=" << m_radioChannelId << ", m_progress=" << m_progress);
    return m_progress;
}

std::int32_t SpectrumDiagnosticsController::getResult(std::int32_t* count, SDCResult* samples)
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER,
        "m_radioChannelId=" << m_radioChannelId << ", SDCStatus::toString(m_status)=" << SDCStatus::toString(m_status));
    if (count == nullptr || samples == nullptr) {
        SDC_TRACE(PLX_TRACE_LEVEL_ERROR, "Called with NULL pointer(s)");
        return SDC_RC_FAILED;
    }
    const AnnotatedLock guard(m_resultsGuard);
    *count = std::min(static_cast<std::int32_t>(m_results.size()), *count);
    std::copy_n(m_results.begin(), *count, samples); // copies nothing for a negative count
    return SDC_RC_OK;
}

SDCProperties SpectrumDiagnosticsController::getSpectrumDiagnosticsProperties()
{
    refreshProperties();
    return m_properties;
}

/// Without a provider, as before onModuleInit, the record stays as it is.
void SpectrumDiagnosticsController::refreshProperties()
{
    if (m_propertiesProvider != nullptr) {
        SDCProperties properties = m_properties;
        m_propertiesProvider->getProperties(properties);
        m_properties = properties;
    }
}
