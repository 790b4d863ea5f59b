#pragma once

#include "simulator/terminal/SimulatedTerminal.h"

#include <ostream>
#include <string>
#include <vector>

namespace sdc {

/// Samples as CSV (RFC 4180, lines end in CR LF): the header "frequency_kHz,level_dBm", then one line per sample.
void writeCsv(std::ostream& stream, const std::vector<SDCResult>& samples);

/// The same into a file, which appears only when it is whole. Throws std::runtime_error that names the file.
void writeCsvFile(const std::string& path, const std::vector<SDCResult>& samples);

} // namespace sdc
