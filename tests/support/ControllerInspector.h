#pragma once

#include "Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsController.h"

/// The one door through which tests see a controller's members and run its single steps.
class ControllerInspector {
public:
    explicit ControllerInspector(SpectrumDiagnosticsController& controller)
        : m_controller(controller)
    {
    }

    // clang-format off
    auto& m_radioChannelId() const { return m_controller.m_radioChannelId; }
    auto& m_systemPowerController() const { return m_controller.m_systemPowerController; }
    auto& m_frameFormat() const { return m_controller.m_frameFormat; }
    auto& m_frequencyController() const { return m_controller.m_frequencyController; }
    auto& m_rssiHandler() const { return m_controller.m_rssiHandler; }
    auto& m_radio() const { return m_controller.m_radio; }
    auto& m_radioCapability() const { return m_controller.m_radioCapability; }
    auto& m_propertiesProvider() const { return m_controller.m_propertiesProvider; }
    auto& m_mutex() const { return m_controller.m_mutex; }
    auto& m_condition() const { return m_controller.m_condition; }
    auto& m_state() const { return m_controller.m_state; }
    auto& m_thread() const { return m_controller.m_thread; }
    auto& m_threadName() const { return m_controller.m_threadName; }
    auto& m_status() const { return m_controller.m_status; }
    auto& m_command() const { return m_controller.m_command; }
    auto& m_channelSpacing_kHz() const { return m_controller.m_channelSpacing_kHz; }
    auto& m_currentRxFrequency_kHz() const { return m_controller.m_currentRxFrequency_kHz; }
    auto& m_minRxFrequency_kHz() const { return m_controller.m_minRxFrequency_kHz; }
    auto& m_maxRxFrequency_kHz() const { return m_controller.m_maxRxFrequency_kHz; }
    auto& m_rxBaseFrequency_kHz() const { return m_controller.m_rxBaseFrequency_kHz; }
    auto& m_frequencyBand_GHz() const { return m_controller.m_frequencyBand_GHz; }
    auto& m_frequencyStepSize_kHz() const { return m_controller.m_frequencyStepSize_kHz; }
    auto& m_stepLimitLow() const { return m_controller.m_stepLimitLow; }
    auto& m_stepLimitHigh() const { return m_controller.m_stepLimitHigh; }
    auto& m_scanStep_kHz() const { return m_controller.m_scanStep_kHz; }
    auto& m_frequencyMargin_kHz() const { return m_controller.m_frequencyMargin_kHz; }
    auto& m_scanLowestRxFrequency_kHz() const { return m_controller.m_scanLowestRxFrequency_kHz; }
    auto& m_scanHighestRxFrequency_kHz() const { return m_controller.m_scanHighestRxFrequency_kHz; }
    auto& m_results() const SDC_THREAD_SAFETY(no_thread_safety_analysis) { return m_controller.m_results; }
    auto& m_resultsGuard() const { return m_controller.m_resultsGuard; }
    auto& m_setRxWait_ms() const { return m_controller.m_setRxWait_ms; }
    auto& m_firstSetRxWait_ms() const { return m_controller.m_firstSetRxWait_ms; }
    auto& m_progress() const { return m_controller.m_progress; }
    auto& m_nrOfSamplesDone() const { return m_controller.m_nrOfSamplesDone; }
    auto& m_totalNrOfSamples() const { return m_controller.m_totalNrOfSamples; }
    auto& m_properties() const { return m_controller.m_properties; }

    void setState(SpectrumDiagnosticsController::State state) const { m_controller.setState(state); }
    auto getState() const { return m_controller.getState(); }
    auto setGeneralParams() const { return m_controller.setGeneralParams(); }
    auto getOduType() const { return m_controller.getOduType(); }
    auto planFor(OduType type, ESDCCommand command) const { return m_controller.planFor(type, command); }
    auto prepChannelScanStd() const { return m_controller.prepChannelScanStd(); }
    auto prepSubBandScanStd() const { return m_controller.prepSubBandScanStd(); }
    auto prepChannelScan4742_4743() const { return m_controller.prepChannelScan4742_4743(); }
    auto prepSubBandScan4743() const { return m_controller.prepSubBandScan4743(); }
    auto prepSubBandScan4742() const { return m_controller.prepSubBandScan4742(); }
    auto isChannelSpcaingOdd() const { return m_controller.isChannelSpcaingOdd(); }
    auto isLongHaul() const { return m_controller.isLongHaul(); }
    auto isLowerFrequencyBand() const { return m_controller.isLowerFrequencyBand(); }
    auto validMinFrequencyMargin() const { return m_controller.validMinFrequencyMargin(); }
    auto isHighestFreqInRange() const { return m_controller.isHighestFreqInRange(); }
    auto scanThread() const { return m_controller.scanThread(); }
    auto runScan() const { return m_controller.runScan(); }
    auto storeSample(std::uint32_t frequency_kHz, std::int32_t rssi) const { return m_controller.storeSample(frequency_kHz, rssi); }
    auto exitThread() const { return m_controller.exitThread(); }
    // clang-format on

private:
    SpectrumDiagnosticsController& m_controller;
};
