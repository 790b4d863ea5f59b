#pragma once

#include "simulator/scenario/Scenario.h"
#include "support/Fields.h"

namespace simulator {

/// The table of a scenario file.
const support::Record<Scenario>& scenarioRecord();

} // namespace simulator
