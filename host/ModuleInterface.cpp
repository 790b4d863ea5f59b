// What a module inherits of the host: callbacks that do nothing and report success.

#include "Platform/Host/ModuleInterface.h"

ModuleInterface::ModuleInterface(std::uint32_t moduleId, const std::string& moduleName, std::uint32_t radioChannel,
    std::uint32_t options, const std::uint32_t* values, std::uint32_t nrOfValues)
    : m_registrator(*this)
    , m_moduleId(moduleId)
    , m_moduleName(moduleName)
    , m_radioChannel(radioChannel)
    , m_options(options)
    , m_values(values)
    , m_nrOfValues(nrOfValues)
{
}

// clang-format off
unsigned int ModuleInterface::onPhaseActivation(unsigned int, ECallbackPriority) { return 0; }
unsigned int ModuleInterface::onModuleRegisterStorageObjects() { return 0; }
unsigned int ModuleInterface::onModuleInit() { return 0; }
unsigned int ModuleInterface::onPhaseModuleStorageObjectsRetrieved() { return 0; }
unsigned int ModuleInterface::onPhasePostFrameformatLoad() { return 0; }
unsigned int ModuleInterface::onPhaseEndFrameformatLoad() { return 0; }
unsigned int ModuleInterface::onPhaseRestartTickScheduler() { return 0; }
unsigned int ModuleInterface::onModuleRegisterImTi() { return 0; }
unsigned int ModuleInterface::onWarmRestartWaitForHw() { return 0; }
unsigned int ModuleInterface::onWarmRestartInit() { return 0; }
unsigned int ModuleInterface::onWarmRestartWaitForSetInitCompleteRequest() { return 0; }
unsigned int ModuleInterface::onPhaseStart() { return 0; }
unsigned int ModuleInterface::onPhaseStop() { return 0; }
unsigned int ModuleInterface::onPhaseFrameformatLoad() { return 0; }
unsigned int ModuleInterface::onPhasePreFrameformatLoad() { return 0; }
unsigned int ModuleInterface::onPhaseSuppressErrors() { return 0; }
unsigned int ModuleInterface::onPhaseSetRadioChannelNearEndFinished() { return 0; }
unsigned int ModuleInterface::onPhasePreRadioRestartCold() { return 0; }
unsigned int ModuleInterface::onPhasePreRadioRestartWarm() { return 0; }
unsigned int ModuleInterface::onPhasePostRadioRestartCold() { return 0; }
unsigned int ModuleInterface::onPhasePostRadioRestartWarm() { return 0; }
unsigned int ModuleInterface::onPhaseDisableAlarmThread() { return 0; }
unsigned int ModuleInterface::onPhasePreDspRecovery() { return 0; }
unsigned int ModuleInterface::onPhaseDspRecoveryReloadFw() { return 0; }
unsigned int ModuleInterface::onPhaseDspRecoveryReloadFf() { return 0; }
unsigned int ModuleInterface::onPhaseDspRecoveryReconfig() { return 0; }
unsigned int ModuleInterface::onPhasePostDspRecovery() { return 0; }
unsigned int ModuleInterface::onPhaseEnableAlarmThread() { return 0; }
// clang-format on
