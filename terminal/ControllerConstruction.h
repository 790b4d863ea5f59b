#pragma once

#include "Platform/Host/ModuleInterface.h"
#include "Platform/Host/RadioChannel.h"

#include <memory>

namespace terminal {

/// Constructs the spectrum diagnostics controller of a channel out of the module library, as a host does.
std::unique_ptr<ModuleInterface> constructController(RadioChannel channel);

} // namespace terminal
