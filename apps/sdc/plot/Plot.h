#pragma once

#include "apps/sdc/result/ScanResult.h"

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

namespace sdc {

enum class PlotFormat : std::uint8_t { svg, png, text };

/// A size of 0 is the usual one; what cannot be drawn becomes the nearest that can.
struct PlotOptions {
    PlotFormat format = PlotFormat::svg;
    int width = 0;  ///< pixels, 300 to 10000, usually 1000; columns of text, 40 to 1000, usually 80
    int height = 0; ///< of each channel's plot: pixels, 200 to 10000, usually 560; rows of text, 15 to 500, usually 24
    bool isColored = false; ///< of text, by ANSI sequences; pictures always have colours
};

/// The kind of picture that goes into a file, by the ending of its name; text for standard output ("-"). Nothing where the
/// name tells none.
std::optional<PlotFormat> plotFormat(const std::string& file);

/// What is said where it tells none; empty where it tells one.
std::string plotNameError(const std::string& file);

/// Why a picture cannot be written into a file, as far as that can be known before; empty: nothing is known against it.
std::string plotObstacle(const std::string& file);

/// The program that draws a result, for gnuplot 5.4: one plot per channel, below one another.
std::string plotProgram(const ScanResult& result, const PlotOptions& wanted);

/// Lets gnuplot draw a result. Needs the program `gnuplot`, found by PATH.
/// @throws std::runtime_error when it is not there or fails, in its own words
void writePlot(std::ostream& stream, const ScanResult& result, const PlotOptions& options);

} // namespace sdc
