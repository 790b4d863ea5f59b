#pragma once

#include "tests/support/ControllerFixture.h"

#include <functional>
#include <stdexcept>
#include <vector>

namespace support {

/// An operation of the controller that can be run on the test's thread, from a state of its own.
struct Operation {
    const char* name;
    std::function<void()> run;
    bool maySeeTraceThrow = true; ///< false where an exception of the trace would end the process
};

/// A controller that has its peers, its provider and its name, but no worker, and the list of all that can be done with it:
/// for rules that hold for every operation.
class OperationsFixture : public ControllerFixture {
protected:
    OperationsFixture()
    {
        construct(7);
        const ControllerInspector is = inspect();
        is.m_systemPowerController() = &peers.systemPowerController;
        is.m_frameFormat() = &peers.frameFormat;
        is.m_frequencyController() = &peers.frequencyController;
        is.m_rssiHandler() = &peers.rssiHandler;
        is.m_radioCapability() = &peers.radioCapability;
        is.m_radio() = &peers.radio;
        is.m_propertiesProvider() = peers.radio.createPropertiesProvider();
        is.m_threadName() = "W";
        is.m_scanHighestRxFrequency_kHz() = 0;
        is.m_stepLimitHigh() = 0;
    }

    ~OperationsFixture() override
    {
        onHostEvent = nullptr;
        traceIntoLog.onWrite = nullptr;
    }

    /// Puts controller and peers into the same state, whatever ran before.
    void reset()
    {
        peers.radio.typeText = "KLM6";
        peers.frequencyController.onSetRxFrequency = nullptr;
        inspect().setState(SpectrumDiagnosticsController::STATE_IDLE);
        inspect().m_status() = SDC_STATUS_SCAN_NOT_STARTED;
        inspect().m_progress() = 0;
        inspect().setGeneralParams();
        inspect().m_channelSpacing_kHz() = 28000;
        inspect().m_currentRxFrequency_kHz() = 18000000;
        inspect().m_setRxWait_ms() = 300;
        inspect().m_firstSetRxWait_ms() = 3000;
        inspect().prepChannelScanStd();
        trace.clear();
        log.clear();
    }

    /// All operations. Run each after a reset.
    std::vector<Operation> operations()
    {
        std::vector<Operation> all = frameOperations();
        for (const std::vector<Operation>& more : {commandOperations(), planningOperations(), executionOperations()}) {
            all.insert(all.end(), more.begin(), more.end());
        }
        return all;
    }

    std::vector<Operation> frameOperations()
    {
        return {{"construction and destruction", [] { const SpectrumDiagnosticsController other(RadioChannel{9}); }, false},
            {"onModuleInit without peers", [] { SpectrumDiagnosticsController(RadioChannel{9}).onModuleInit(); }, false},
            {"initialize", [this] { controller->initialize(); }}, {"onPhaseStop", [this] { controller->onPhaseStop(); }},
            {"exitThread", [this] { inspect().exitThread(); }}};
    }

    std::vector<Operation> commandOperations()
    {
        return {{"channel scan start", [this] { controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 1000000); }},
            {"sub-band scan start", [this] { controller->setCommand(SDC_CMD_SUB_BAND_SCAN_START, 1000000); }},
            {"start of an unsupported unit",
                [this] {
                    peers.radio.typeText = "none";
                    controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0);
                }},
            {"refused start",
                [this] {
                    inspect().setState(SpectrumDiagnosticsController::STATE_SCAN);
                    controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0);
                }},
            {"stop while idle", [this] { controller->setCommand(SDC_CMD_SCAN_STOP, 0); }},
            {"stop",
                [this] {
                    inspect().setState(SpectrumDiagnosticsController::STATE_SCAN);
                    controller->setCommand(SDC_CMD_SCAN_STOP, 0);
                }},
            {"unknown command", [this] { controller->setCommand(static_cast<ESDCCommand>(1000000), 0); }},
            {"getStatus", [this] { controller->getStatus(); }}, {"getProgress", [this] { controller->getProgress(); }},
            {"getResult without a count", [this] { controller->getResult(nullptr, nullptr); }},
            {"getResult",
                [this] {
                    std::int32_t count = 0;
                    SDCResult sample{};
                    controller->getResult(&count, &sample);
                }},
            {"properties query", [this] { controller->getSpectrumDiagnosticsProperties(); }}};
    }

    std::vector<Operation> planningOperations()
    {
        return {{"setGeneralParams", [this] { inspect().setGeneralParams(); }},
            {"getOduType", [this] { inspect().getOduType(); }},
            {"prepChannelScanStd", [this] { inspect().prepChannelScanStd(); }},
            {"prepSubBandScanStd", [this] { inspect().prepSubBandScanStd(); }},
            {"prepChannelScan4742_4743", [this] { inspect().prepChannelScan4742_4743(); }},
            {"prepSubBandScan4743", [this] { inspect().prepSubBandScan4743(); }},
            {"prepSubBandScan4742", [this] { inspect().prepSubBandScan4742(); }},
            {"isChannelSpcaingOdd", [this] { inspect().isChannelSpcaingOdd(); }},
            {"isLongHaul", [this] { inspect().isLongHaul(); }},
            {"isLowerFrequencyBand", [this] { inspect().isLowerFrequencyBand(); }},
            {"validMinFrequencyMargin", [this] { inspect().validMinFrequencyMargin(); }},
            {"isHighestFreqInRange", [this] { inspect().isHighestFreqInRange(); }}};
    }

    std::vector<Operation> executionOperations()
    {
        return {{"sweep", [this] { runScan(); }},
            {"sweep of one sample",
                [this] {
                    inspect().prepChannelScan4742_4743();
                    runScan();
                }},
            {"sweep that fails to tune and to restore",
                [this] {
                    peers.frequencyController.onSetRxFrequency = [](std::uint32_t) { return SDC_RC_FAILED; };
                    runScan();
                }},
            {"worker that is told to end",
                [this] {
                    inspect().setState(SpectrumDiagnosticsController::STATE_EXIT);
                    inspect().scanThread();
                },
                false},
            {"worker that ends by a standard exception", [this] { runWorkerWith([] { throw std::runtime_error("x"); }); },
                false},
            {"worker that ends by another exception", [this] { runWorkerWith([] { throw 42; }); }, false}};
    }

    void runScan()
    {
        inspect().setState(SpectrumDiagnosticsController::STATE_SCAN);
        inspect().runScan();
    }

    void runWorkerWith(const std::function<void()>& throwing)
    {
        peers.frequencyController.onSetRxFrequency = [throwing](std::uint32_t) {
            throwing();
            return 0;
        };
        inspect().setState(SpectrumDiagnosticsController::STATE_SCAN);
        inspect().scanThread();
    }
};

} // namespace support
