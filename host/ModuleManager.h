#pragma once

#include "Platform/Host/ModuleInterface.h"

#include <string>
#include <vector>

namespace host {

/// A phase callback that a module answered with a failure.
struct PhaseFailure {
    std::string module;  ///< name of the module
    std::string phase;   ///< name of the callback
    unsigned int result; ///< 32768 or more
};

/// The host's list of modules, in the order of their construction, and the driver of their phase callbacks.
///
/// Modules enter and leave it by themselves. All operations belong to the host's thread.
class ModuleManager {
public:
    static ModuleManager& instance();

    ModuleManager(const ModuleManager&) = delete;
    ModuleManager& operator=(const ModuleManager&) = delete;

    const std::vector<ModuleInterface*>& modules() const { return m_modules; }

    /// Brings all modules up: each start-up phase for every module before the next phase. A module that answers with a
    /// failure is left out of the phases that follow. Returns the failures.
    std::vector<PhaseFailure> start();

    /// Calls onPhaseStop of all modules, the last one first. Returns the failures.
    std::vector<PhaseFailure> stop();

private:
    friend class ::CModuleManagerRegistrator;

    ModuleManager() = default;

    std::vector<ModuleInterface*> m_modules;
};

} // namespace host
