#pragma once

/// The spectrum diagnostics controller of one radio channel. Hosts construct it; everybody else uses
/// ISpectrumDiagnosticsController.

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Control/SpectrumDiagnosticsController/private/AnnotatedMutex.h"
#include "Control/SpectrumDiagnosticsController/private/AtomicProperties.h"
#include "Platform/Host/ModuleInterface.h"
#include "Platform/Host/RadioChannel.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class IFrameFormat;
class IFrequencyController;
class IRadio;
class IRadioCapability;
class IRadioPropertiesProvider;
class IRssiHandler;
class ISystemPowerController;

/// Outdoor unit types, as far as planning tells them apart. Recognised by the unit's type text.
enum OduType : std::uint32_t {
    ODU_TYPE_QRU7_K = 0,
    ODU_TYPE_4741 = 1,
    ODU_TYPE_4742 = 2,
    ODU_TYPE_4743 = 3,
    ODU_TYPE_KLM = 4,
    ODU_TYPE_KLM5 = 5,
    ODU_TYPE_KLM6 = 6,
    ODU_TYPE_KLM6_P = 7,
    ODU_TYPE_SDC = 8,
    ODU_TYPE_UNKNOWN = 9,
};

/// The one class of the module.
///
/// The host constructs it, calls onModuleInit once, later onPhaseStop, and deletes it through either base, never from the
/// worker thread. Three kinds of threads meet in it: the host's (construction, callbacks, destruction), the callers' of
/// ISpectrumDiagnosticsController, and the one worker that runs the sweeps. The functions stand in one source for each of
/// them; the members stand below under who may touch them.
class __attribute__((visibility("default"))) SpectrumDiagnosticsController : public ModuleInterface,
                                                                             public ISpectrumDiagnosticsController {
public:
    /// What the worker is to do. Every change wakes it.
    enum State : std::uint32_t {
        STATE_EXIT = 0, ///< leave the loop and end
        STATE_IDLE = 1, ///< no sweep; sleep on m_condition
        STATE_SCAN = 2, ///< a sweep is requested or running
        STATE_STOP = 3, ///< abandon the running sweep
    };

    // Module frame (SpectrumDiagnosticsController.cpp): the host's thread.

    /// Registers the module with the host and publishes the interface. Looks up no peer and starts no thread.
    explicit SpectrumDiagnosticsController(RadioChannel radioChannel);

    /// Waits for a running sweep, ends and joins the worker, and takes the interface out of the broker.
    ~SpectrumDiagnosticsController() override;

    SpectrumDiagnosticsController(const SpectrumDiagnosticsController&) = delete;
    SpectrumDiagnosticsController& operator=(const SpectrumDiagnosticsController&) = delete;

    /// Binds the six peers, takes over the radio's properties provider and starts the worker.
    /// Returns 0 also when the worker could not be started (traced at level 1), 32768 when a peer is missing.
    /// Called once. A second call makes up for a worker that could not be started; where one was, it ends the process.
    unsigned int onModuleInit() override;

    /// Forces the idle state; waits for a running sweep first. Returns 0.
    unsigned int onPhaseStop() override;

    // Commands and queries (SpectrumDiagnosticsControllerCommands.cpp): the callers' threads.

    std::int32_t setCommand(ESDCCommand command, std::int32_t setRxWait_ms) override;
    std::int32_t getResult(std::int32_t* count, SDCResult* samples) override;
    ESDCStatus getStatus() override;
    std::int32_t getProgress() override;
    SDCProperties getSpectrumDiagnosticsProperties() override;

    /// Traces its call and returns 0; starts nothing.
    std::int32_t initialize();

private:
    friend class ControllerInspector; // tests look at members and run single steps through this one class

    // Module frame.
    bool bindPeers();
    void startWorker();
    void exitThread();

    // Worker state: any thread, no lock of their own.
    void setState(State state);
    State getState() const;

    // Commands.
    std::int32_t startScan(ESDCCommand command, std::int32_t setRxWait_ms);
    std::int32_t stopScan();
    void chooseSettleDelays();
    void refreshProperties();

    // Planning (SpectrumDiagnosticsControllerPlanning.cpp): the thread that starts a scan.
    std::int32_t setGeneralParams();
    OduType getOduType() const;
    using Plan = std::int32_t (SpectrumDiagnosticsController::*)();
    static Plan planFor(OduType type, ESDCCommand command);
    std::int32_t prepChannelScanStd();
    std::int32_t prepSubBandScanStd();
    std::int32_t prepChannelScan4742_4743();
    std::int32_t prepSubBandScan4743();
    std::int32_t prepSubBandScan4742();
    bool isChannelSpcaingOdd() const;
    bool isLongHaul() const;
    bool isLowerFrequencyBand() const;
    bool validMinFrequencyMargin() const;
    bool isHighestFreqInRange() const;

    // Execution (SpectrumDiagnosticsControllerExecution.cpp): the worker thread, with m_mutex held.
    void scanThread();
    void runScan();
    void traceScanParameters() const;
    void clearSamples();
    void sweep();
    void settle(bool& firstReading) const;
    std::int32_t readClampedRssi() const;
    void storeSample(std::uint32_t frequency_kHz, std::int32_t rssi);
    void restoreRxFrequency() const;
    void concludeStatus();

    // Set once, at construction or in onModuleInit, before the worker exists; only read afterwards.
    std::uint32_t m_radioChannelId;
    ISystemPowerController* m_systemPowerController;
    IFrameFormat* m_frameFormat;
    IFrequencyController* m_frequencyController;
    IRssiHandler* m_rssiHandler;
    IRadio* m_radio;
    IRadioCapability* m_radioCapability;
    std::unique_ptr<IRadioPropertiesProvider> m_propertiesProvider;

    // The worker and its waking. The worker holds m_mutex for its whole life but for its wait on m_condition; onPhaseStop
    // and exitThread take it around one change of state; nobody else takes it.
    std::mutex m_mutex;
    std::condition_variable m_condition;
    std::atomic<State> m_state; // shared, atomic: storing STATE_SCAN hands the plan to the worker, STATE_IDLE hands it back
    std::thread m_thread;       // host's thread only
    std::string m_threadName;   // set once, before the worker exists

    // Shared, atomic.
    std::atomic<ESDCStatus> m_status;
    std::atomic<ESDCCommand> m_command;

    // The plan: written by a start while the state is STATE_IDLE, read by the worker while it is not.
    std::uint32_t m_channelSpacing_kHz;
    std::uint32_t m_currentRxFrequency_kHz;
    std::uint32_t m_minRxFrequency_kHz;
    std::uint32_t m_maxRxFrequency_kHz;
    std::uint32_t m_rxBaseFrequency_kHz;
    std::uint32_t m_frequencyBand_GHz;
    std::uint32_t m_frequencyStepSize_kHz;
    std::uint32_t m_stepLimitLow;
    std::uint32_t m_stepLimitHigh; // unset until the first start
    std::uint32_t m_scanStep_kHz;
    std::uint32_t m_frequencyMargin_kHz;
    std::uint32_t m_scanLowestRxFrequency_kHz;
    std::uint32_t m_scanHighestRxFrequency_kHz; // unset until the first plan

    // Shared; under m_resultsGuard, which is held for an append, a clear or a copy-out and never while a peer or the host is
    // called.
    std::vector<SDCResult> m_results SDC_GUARDED_BY(m_resultsGuard);
    AnnotatedMutex m_resultsGuard;

    // The plan, continued.
    std::uint32_t m_setRxWait_ms;
    std::uint32_t m_firstSetRxWait_ms;

    // Shared, atomic.
    std::atomic<std::int32_t> m_progress;

    // Worker's own.
    std::int32_t m_nrOfSamplesDone;

    // The plan, continued.
    std::int32_t m_totalNrOfSamples;

    // Shared, atomic: four bytes.
    AtomicProperties m_properties;
};
