#include "terminal/ControllerConstruction.h"

#include "Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsController.h"

namespace terminal {

std::unique_ptr<ModuleInterface> constructController(RadioChannel channel)
{
    return std::make_unique<SpectrumDiagnosticsController>(channel);
}

} // namespace terminal
