#pragma once

#include "Platform/Host/ModuleInterface.h"

namespace tests {

/// All phase callbacks without parameters that the controller does not override.
inline constexpr unsigned int (ModuleInterface::*inheritedCallbacks[])() = {&ModuleInterface::onModuleRegisterStorageObjects,
    &ModuleInterface::onPhaseModuleStorageObjectsRetrieved, &ModuleInterface::onPhasePostFrameformatLoad,
    &ModuleInterface::onPhaseEndFrameformatLoad, &ModuleInterface::onPhaseRestartTickScheduler,
    &ModuleInterface::onModuleRegisterImTi, &ModuleInterface::onWarmRestartWaitForHw, &ModuleInterface::onWarmRestartInit,
    &ModuleInterface::onWarmRestartWaitForSetInitCompleteRequest, &ModuleInterface::onPhaseStart,
    &ModuleInterface::onPhaseFrameformatLoad, &ModuleInterface::onPhasePreFrameformatLoad,
    &ModuleInterface::onPhaseSuppressErrors, &ModuleInterface::onPhaseSetRadioChannelNearEndFinished,
    &ModuleInterface::onPhasePreRadioRestartCold, &ModuleInterface::onPhasePreRadioRestartWarm,
    &ModuleInterface::onPhasePostRadioRestartCold, &ModuleInterface::onPhasePostRadioRestartWarm,
    &ModuleInterface::onPhaseDisableAlarmThread, &ModuleInterface::onPhasePreDspRecovery,
    &ModuleInterface::onPhaseDspRecoveryReloadFw, &ModuleInterface::onPhaseDspRecoveryReloadFf,
    &ModuleInterface::onPhaseDspRecoveryReconfig, &ModuleInterface::onPhasePostDspRecovery,
    &ModuleInterface::onPhaseEnableAlarmThread};

} // namespace tests
