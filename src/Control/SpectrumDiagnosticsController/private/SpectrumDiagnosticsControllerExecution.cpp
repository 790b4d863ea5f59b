// scanThread and runScan.
//
// Runs on the controller's worker thread, with m_mutex held from the loop's start to its end but for the wait in it. May
// lock m_resultsGuard, for an append or a clear. Must never lock m_mutex again, and never call a peer or the host while it
// holds m_resultsGuard.

#include "Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsController.h"

#include "Control/SpectrumDiagnosticsController/private/ScanConstants.h"
#include "Control/SpectrumDiagnosticsController/private/Trace.h"
#include "Platform/Host/DefaultSleepApi.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRssiHandler.h"

#include <algorithm>
#include <exception>

namespace {

/// 100 * part / whole, truncated; the product wraps at 32 bits, and the division is done where it cannot overflow.
std::int32_t percentage(std::int32_t part, std::int32_t whole)
{
    const auto hundredfold = static_cast<std::int32_t>(100U * static_cast<std::uint32_t>(part));
    return static_cast<std::int32_t>(std::int64_t{hundredfold} / whole);
}

ESDCStatus finished(ESDCStatus status)
{
    switch (status) {
    case SDC_STATUS_CHANNEL_SCAN_ONGOING: return SDC_STATUS_CHANNEL_SCAN_FINISHED;
    case SDC_STATUS_SUB_BAND_ONGOING: return SDC_STATUS_SUB_BAND_SCAN_FINISHED;
    default: return SDC_STATUS_SCAN_NOT_STARTED;
    }
}

} // namespace

void SpectrumDiagnosticsController::scanThread()
{
    try {
        SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER, "m_threadName=" << m_threadName);
        std::unique_lock<std::mutex> lock(m_mutex);
        do {
            if (getState() == STATE_IDLE) {
                SDC_TRACE(PLX_TRACE_LEVEL_INFO, "Thread " << m_threadName << " waiting for none idle state");
                m_condition.wait(lock, [this] { return getState() != STATE_IDLE; });
            }
            if (getState() == STATE_SCAN) {
                runScan();
            }
        } while (getState() != STATE_EXIT);
    } catch (const std::exception& exception) {
        SDC_TRACE(PLX_TRACE_LEVEL_ERROR, "Exception timerThread " << m_threadName << ": " << exception.what());
    } catch (...) {
        SDC_TRACE(PLX_TRACE_LEVEL_ERROR, "Unknown exception in timerThread " << m_threadName);
    }
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "Thread exited with m_status " << SDCStatus::toString(m_status));
}

/// One sweep, from the state STATE_SCAN to the state STATE_IDLE. An exception leaves the receiver where it is.
void SpectrumDiagnosticsController::runScan()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER, "m_threadName=" << m_threadName);
    refreshProperties();
    traceScanParameters();
    clearSamples();
    sweep();
    restoreRxFrequency();
    concludeStatus();
    setState(STATE_IDLE);
}

void SpectrumDiagnosticsController::traceScanParameters() const
{
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "             m_radioChannelId = " << m_radioChannelId);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "     m_currentRxFrequency_kHz = " << m_currentRxFrequency_kHz);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "         m_channelSpacing_kHz = " << m_channelSpacing_kHz);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "  m_scanLowestRxFrequency_kHz = " << m_scanLowestRxFrequency_kHz);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, " m_scanHighestRxFrequency_kHz = " << m_scanHighestRxFrequency_kHz);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "           m_totalNrOfSamples = " << m_totalNrOfSamples);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "               m_scanStep_kHz = " << m_scanStep_kHz);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "               m_setRxWait_ms = " << m_setRxWait_ms);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "          m_firstSetRxWait_ms = " << m_firstSetRxWait_ms);
}

void SpectrumDiagnosticsController::clearSamples()
{
    const AnnotatedLock guard(m_resultsGuard);
    m_results.clear();
    m_nrOfSamplesDone = 0;
}

/// A stop takes effect at the loop's first test: the step in hand always finishes and keeps its sample.
void SpectrumDiagnosticsController::sweep()
{
    std::uint32_t frequency_kHz = m_scanLowestRxFrequency_kHz;
    bool firstReading = true;
    while (getState() == STATE_SCAN && frequency_kHz <= m_scanHighestRxFrequency_kHz
        && m_nrOfSamplesDone != m_totalNrOfSamples) {
        SDC_TRACE(PLX_TRACE_LEVEL_DETAIL, "Set RX frequency kHz " << frequency_kHz);
        if (m_frequencyController->setRxFrequency(frequency_kHz, true) >= SDC_RC_FAILED) {
            SDC_TRACE(PLX_TRACE_LEVEL_ERROR, "Failed to set RX frequency " << frequency_kHz);
            setState(STATE_STOP);
            return;
        }
        settle(firstReading);
        storeSample(frequency_kHz, readClampedRssi());
        frequency_kHz += m_scanStep_kHz;
    }
}

/// Waits for the receiver. The host may exchange its sleep service, so it is fetched anew for every delay.
void SpectrumDiagnosticsController::settle(bool& firstReading) const
{
    if (m_totalNrOfSamples == 1) {
        SDC_TRACE(PLX_TRACE_LEVEL_DETAIL,
            "Single RSSI measurement at configured frequency after delay of (ms): " << SINGLE_MEASUREMENT_DELAY_MS);
        Util::DefaultSleepApi::get().sleepMs(SINGLE_MEASUREMENT_DELAY_MS);
    } else if (firstReading) {
        SDC_TRACE(PLX_TRACE_LEVEL_DETAIL, "Reading the first RSSI value after delay of (ms): " << m_firstSetRxWait_ms);
        firstReading = false;
        Util::DefaultSleepApi::get().sleepMs(m_firstSetRxWait_ms);
    } else {
        Util::DefaultSleepApi::get().sleepMs(m_setRxWait_ms);
    }
}

std::int32_t SpectrumDiagnosticsController::readClampedRssi() const
{
    std::int32_t rssi = 0;
    m_rssiHandler->readRssi(rssi);
    rssi = std::max(rssi, RSSI_FLOOR);
    SDC_TRACE(PLX_TRACE_LEVEL_DETAIL, "Read RSSI " << rssi);
    return rssi;
}

/// Appends a sample and moves the progress, which counts the samples before this one.
void SpectrumDiagnosticsController::storeSample(std::uint32_t frequency_kHz, std::int32_t rssi)
{
    {
        const AnnotatedLock guard(m_resultsGuard);
        m_results.push_back({frequency_kHz, rssi});
    }
    const std::int32_t samplesBefore = m_nrOfSamplesDone;
    m_nrOfSamplesDone = static_cast<std::int32_t>(static_cast<std::uint32_t>(samplesBefore) + 1);
    // Whoever sees the progress move sees the sweep that moved it; no more than that needs an order.
    m_progress.store(percentage(samplesBefore, m_totalNrOfSamples), std::memory_order_release);
}

void SpectrumDiagnosticsController::restoreRxFrequency() const
{
    if (m_frequencyController->setRxFrequency(m_currentRxFrequency_kHz, true) >= SDC_RC_FAILED) {
        SDC_TRACE(PLX_TRACE_LEVEL_ERROR, "Failed to restore RX frequency " << m_currentRxFrequency_kHz);
    }
}

/// A stop and a tuning failure both show as STATE_STOP; every other ending counts as finished.
void SpectrumDiagnosticsController::concludeStatus()
{
    m_status = getState() == STATE_STOP ? SDC_STATUS_SCAN_NOT_STARTED : finished(m_status);
}
