#pragma once

#include "tests/support/ControllerFixture.h"

#include <map>
#include <string>
#include <vector>

namespace support {

/// A controller that has its peers but no worker: everything happens on the test's thread, and a state stays as it is set.
/// The log is empty and every member holds a value of its own, so that whatever a call writes shows.
class WorkerlessFixture : public ControllerFixture {
protected:
    /// All members that commands, planning and sweeps write, by name.
    using Members = std::map<std::string, std::int64_t>;

    WorkerlessFixture()
    {
        construct();
        bindPeers();
        fillMembers();
        log.clear();
    }

    /// As onModuleInit leaves it, but for the worker.
    void bindPeers()
    {
        inspect().m_systemPowerController() = &peers.systemPowerController;
        inspect().m_frameFormat() = &peers.frameFormat;
        inspect().m_frequencyController() = &peers.frequencyController;
        inspect().m_rssiHandler() = &peers.rssiHandler;
        inspect().m_radioCapability() = &peers.radioCapability;
        inspect().m_radio() = &peers.radio;
        inspect().m_propertiesProvider() = peers.radio.createPropertiesProvider();
    }

    /// Idle, finished, two samples; the command is none at all, and only the properties' last byte is set.
    void fillMembers()
    {
        const ControllerInspector in = inspect();
        in.m_state() = SpectrumDiagnosticsController::STATE_IDLE;
        in.m_status() = SDC_STATUS_CHANNEL_SCAN_FINISHED;
        in.m_command() = ESDCCommand{77};
        in.m_progress() = 93;
        in.m_properties() = SDCProperties{0, 0, 0, 4};
        in.m_results() = {{17000001, -101}, {17000002, -102}};
        in.m_nrOfSamplesDone() = 201;
        in.m_totalNrOfSamples() = 202;
        std::uint32_t value = 301;
        for (std::uint32_t* const member : {&in.m_channelSpacing_kHz(), &in.m_currentRxFrequency_kHz(),
                 &in.m_minRxFrequency_kHz(), &in.m_maxRxFrequency_kHz(), &in.m_rxBaseFrequency_kHz(),
                 &in.m_frequencyBand_GHz(), &in.m_frequencyStepSize_kHz(), &in.m_stepLimitLow(), &in.m_stepLimitHigh(),
                 &in.m_scanStep_kHz(), &in.m_frequencyMargin_kHz(), &in.m_scanLowestRxFrequency_kHz(),
                 &in.m_scanHighestRxFrequency_kHz(), &in.m_setRxWait_ms(), &in.m_firstSetRxWait_ms()}) {
            *member = value++;
        }
    }

    Members members() const
    {
        const ControllerInspector in = inspect();
        const SDCProperties properties = in.m_properties();
        Members all{
            {"m_state", in.m_state()},
            {"m_status", in.m_status()},
            {"m_command", in.m_command()},
            {"m_progress", in.m_progress()},
            {"m_channelSpacing_kHz", in.m_channelSpacing_kHz()},
            {"m_currentRxFrequency_kHz", in.m_currentRxFrequency_kHz()},
            {"m_minRxFrequency_kHz", in.m_minRxFrequency_kHz()},
            {"m_maxRxFrequency_kHz", in.m_maxRxFrequency_kHz()},
            {"m_rxBaseFrequency_kHz", in.m_rxBaseFrequency_kHz()},
            {"m_frequencyBand_GHz", in.m_frequencyBand_GHz()},
            {"m_frequencyStepSize_kHz", in.m_frequencyStepSize_kHz()},
            {"m_stepLimitLow", in.m_stepLimitLow()},
            {"m_stepLimitHigh", in.m_stepLimitHigh()},
            {"m_scanStep_kHz", in.m_scanStep_kHz()},
            {"m_frequencyMargin_kHz", in.m_frequencyMargin_kHz()},
            {"m_scanLowestRxFrequency_kHz", in.m_scanLowestRxFrequency_kHz()},
            {"m_scanHighestRxFrequency_kHz", in.m_scanHighestRxFrequency_kHz()},
            {"m_setRxWait_ms", in.m_setRxWait_ms()},
            {"m_firstSetRxWait_ms", in.m_firstSetRxWait_ms()},
            {"m_nrOfSamplesDone", in.m_nrOfSamplesDone()},
            {"m_totalNrOfSamples", in.m_totalNrOfSamples()},
            {"m_properties.longHaul", properties.longHaul},
            {"m_properties.extendedRxWait", properties.extendedRxWait},
            {"m_properties.slowRxWait", properties.slowRxWait},
            {"m_properties.spareFlag", properties.spareFlag},
        };
        for (const SDCResult& sample : in.m_results()) {
            all["m_results " + std::to_string(sample.frequency_kHz)] = sample.rssi;
        }
        return all;
    }
};

} // namespace support
