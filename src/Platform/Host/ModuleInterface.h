#pragma once

#include <cstdint>
#include <string>

class ModuleInterface;

/// Order of a module among those that the host activates in one phase.
enum ECallbackPriority : std::uint32_t {
    CALLBACK_PRIORITY_FIRST = 0,
    CALLBACK_PRIORITY_NORMAL = 1,
    CALLBACK_PRIORITY_LAST = 2,
};

/// A module's entry in the host's module manager: entered on construction, taken out on destruction. Defined by the host.
/// The constructor only keeps the reference: the module is not yet built when it runs.
class CModuleManagerRegistrator {
public:
    explicit CModuleManagerRegistrator(ModuleInterface& module);
    ~CModuleManagerRegistrator();

    CModuleManagerRegistrator(const CModuleManagerRegistrator&) = delete;
    CModuleManagerRegistrator& operator=(const CModuleManagerRegistrator&) = delete;

private:
    ModuleInterface& m_module;
};

/// Base of every module that the host loads.
///
/// The host constructs a module, calls its phase callbacks one after the other, each on the host's thread, and deletes it.
/// A callback returns 0 for success and 32768 or more for failure. Those that a module does not override return 0 and do
/// nothing. The constructor and the callbacks are defined by the host.
class ModuleInterface {
public:
    /// @param moduleId      identifier of the module, unique in the host
    /// @param moduleName    name of the module, unique in the host
    /// @param radioChannel  channel that the module serves
    /// @param options       the host's own; 0 where a module has none
    /// @param values        the host's own list, kept by reference: it must outlive the module
    /// @param nrOfValues    number of entries in @p values
    ModuleInterface(std::uint32_t moduleId, const std::string& moduleName, std::uint32_t radioChannel, std::uint32_t options,
        const std::uint32_t* values, std::uint32_t nrOfValues);

    ModuleInterface(const ModuleInterface&) = delete;
    ModuleInterface& operator=(const ModuleInterface&) = delete;

    virtual ~ModuleInterface() = default;

    virtual unsigned int onPhaseActivation(unsigned int phase, ECallbackPriority priority);
    virtual unsigned int onModuleRegisterStorageObjects();
    virtual unsigned int onModuleInit();
    virtual unsigned int onPhaseModuleStorageObjectsRetrieved();
    virtual unsigned int onPhasePostFrameformatLoad();
    virtual unsigned int onPhaseEndFrameformatLoad();
    virtual unsigned int onPhaseRestartTickScheduler();
    virtual unsigned int onModuleRegisterImTi();
    virtual unsigned int onWarmRestartWaitForHw();
    virtual unsigned int onWarmRestartInit();
    virtual unsigned int onWarmRestartWaitForSetInitCompleteRequest();
    virtual unsigned int onPhaseStart();
    virtual unsigned int onPhaseStop();
    virtual unsigned int onPhaseFrameformatLoad();
    virtual unsigned int onPhasePreFrameformatLoad();
    virtual unsigned int onPhaseSuppressErrors();
    virtual unsigned int onPhaseSetRadioChannelNearEndFinished();
    virtual unsigned int onPhasePreRadioRestartCold();
    virtual unsigned int onPhasePreRadioRestartWarm();
    virtual unsigned int onPhasePostRadioRestartCold();
    virtual unsigned int onPhasePostRadioRestartWarm();
    virtual unsigned int onPhaseDisableAlarmThread();
    virtual unsigned int onPhasePreDspRecovery();
    virtual unsigned int onPhaseDspRecoveryReloadFw();
    virtual unsigned int onPhaseDspRecoveryReloadFf();
    virtual unsigned int onPhaseDspRecoveryReconfig();
    virtual unsigned int onPhasePostDspRecovery();
    virtual unsigned int onPhaseEnableAlarmThread();

    std::uint32_t moduleId() const { return m_moduleId; }
    const std::string& moduleName() const { return m_moduleName; }
    std::uint32_t radioChannel() const { return m_radioChannel; }
    std::uint32_t options() const { return m_options; }
    const std::uint32_t* values() const { return m_values; }
    std::uint32_t nrOfValues() const { return m_nrOfValues; }

private:
    CModuleManagerRegistrator m_registrator; // declared first, so that it is the last member to be destroyed
    std::uint32_t m_moduleId;
    std::string m_moduleName;
    std::uint32_t m_radioChannel;
    std::uint32_t m_options;
    const std::uint32_t* m_values;
    std::uint32_t m_nrOfValues;
};
