#pragma once

#include "apps/sdc/ExitStatus.h"
#include "apps/sdc/results/Plot.h"

#include <cstdint>
#include <optional>
#include <string>

namespace sdc {

/// What `sdc plot` was asked for.
struct PlotCommandOptions {
    std::string result;                  ///< file that `sdc scan --json` wrote; "-": standard input
    std::string output{"-"};             ///< "-": standard output
    std::optional<PlotFormat> format;    ///< otherwise as the output's name ends; text on standard output
    std::optional<std::uint32_t> width;  ///< pixels; columns for text
    std::optional<std::uint32_t> height; ///< pixels; rows for text
};

/// Draws a result.
/// @throws UsageError for an output whose name tells no format, ResultError, std::runtime_error when it cannot be drawn
ExitStatus plot(const PlotCommandOptions& options);

} // namespace sdc
