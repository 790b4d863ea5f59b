#include "host/ModuleManager.h"

#include "host/HostObserver.h"

#include "Platform/Host/ResultCode.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

struct Phase {
    const char* name;
    unsigned int (ModuleInterface::*callback)();
};

constexpr Phase startPhases[] = {
    {"onModuleRegisterStorageObjects", &ModuleInterface::onModuleRegisterStorageObjects},
    {"onModuleInit", &ModuleInterface::onModuleInit},
    {"onPhaseModuleStorageObjectsRetrieved", &ModuleInterface::onPhaseModuleStorageObjectsRetrieved},
    {"onModuleRegisterImTi", &ModuleInterface::onModuleRegisterImTi},
    {"onPhasePreFrameformatLoad", &ModuleInterface::onPhasePreFrameformatLoad},
    {"onPhaseFrameformatLoad", &ModuleInterface::onPhaseFrameformatLoad},
    {"onPhasePostFrameformatLoad", &ModuleInterface::onPhasePostFrameformatLoad},
    {"onPhaseEndFrameformatLoad", &ModuleInterface::onPhaseEndFrameformatLoad},
    {"onPhaseStart", &ModuleInterface::onPhaseStart},
};

constexpr Phase stopPhase = {"onPhaseStop", &ModuleInterface::onPhaseStop};

/// Returns whether the module may go on.
bool runPhase(ModuleInterface& module, const Phase& phase, std::vector<PhaseFailure>& failures)
{
    const unsigned int result = (module.*phase.callback)();
    const bool hasFailed = std::cmp_greater_equal(result, PLX_RC_FAILED);
    if (hasFailed) {
        failures.push_back({module.moduleName(), phase.name, result});
    }
    return !hasFailed;
}

} // namespace

ModuleManager& ModuleManager::instance()
{
    static ModuleManager manager;
    return manager;
}

std::vector<PhaseFailure> ModuleManager::start()
{
    std::vector<PhaseFailure> failures;
    std::vector<ModuleInterface*> running = m_modules;
    for (const Phase& phase : startPhases) {
        std::erase_if(running, [&](ModuleInterface* module) { return !runPhase(*module, phase, failures); });
    }
    return failures;
}

std::vector<PhaseFailure> ModuleManager::stop()
{
    std::vector<PhaseFailure> failures;
    std::for_each(m_modules.rbegin(), m_modules.rend(),
        [&failures](ModuleInterface* module) { runPhase(*module, stopPhase, failures); });
    return failures;
}

} // namespace host

CModuleManagerRegistrator::CModuleManagerRegistrator(ModuleInterface& module)
    : m_module(module)
{
    host::tellHostObserver("module.register");
    host::ModuleManager::instance().m_modules.push_back(&m_module);
}

CModuleManagerRegistrator::~CModuleManagerRegistrator()
{
    host::tellHostObserver("module.unregister");
    std::erase(host::ModuleManager::instance().m_modules, &m_module);
}
