#pragma once

#include "apps/sdc/ExitStatus.h"

#include <ostream>
#include <string>
#include <vector>

namespace sdc {

/// Lists the built-in scenarios: name, band, unit types, channels and description in columns.
/// @param isNamesOnly  a name a line and nothing else
ExitStatus listScenarios(bool isNamesOnly, std::ostream& output);

/// Shows a scenario file, a built-in one by its name, as it stands.
/// @throws UsageError when there is none
ExitStatus showScenario(const std::string& nameOrFile, std::ostream& output);

/// Says of each file "ok", or every finding.
/// @return EXIT_USAGE when there is a finding
ExitStatus checkScenarios(const std::vector<std::string>& namesOrFiles, std::ostream& output);

} // namespace sdc
