#pragma once

#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/tty/Screen.h"

#include <cstddef>
#include <string>
#include <vector>

namespace sdc {

/// A file in which a result is written.
struct Output {
    const Format* format;
    std::string file; ///< "-": standard output
};

struct OutputOptions {
    std::vector<Output> outputs; ///< at most one to standard output; where none goes there, the first format does
    std::size_t rows = 0;        ///< most rows of the table, 0: one for each sample
    ColorMode color{};
    TraceKind trace = usualTrace; ///< of several sweeps, what stands for a frequency
};

/// Whether one of the outputs goes to standard output.
bool usesStandardOutput(const std::vector<Output>& outputs);

/// Finds out before a scan, which may take hours, what can be known of outputs that cannot be written after it.
/// @throws std::runtime_error that names the file, or the option, and the reason; UsageError where two outputs go into one
/// file
void checkOutputs(const std::vector<Output>& outputs);

/// Writes all outputs, those to files first; what cannot be written does not keep the others from it.
/// @return what could not be written, one line each. A reader that has had enough of standard output is no news, and adds an
/// empty line.
std::vector<std::string> writeOutputs(const ScanResult& result, const OutputOptions& options);

} // namespace sdc
