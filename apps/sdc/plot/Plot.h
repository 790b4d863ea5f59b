#pragma once

#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace sdc {

enum class PlotFormat : std::uint8_t { svg, png, text };

/// A size of 0 is the usual one; what cannot be drawn becomes the nearest that can. Lines that are said below a plot add to
/// its height.
struct PlotOptions {
    PlotFormat format = PlotFormat::svg;
    int width = 0;  ///< pixels, 300 to 10000, usually 1000; columns of text, 40 to 1000, usually 80
    int height = 0; ///< of each channel's plot: pixels, 200 to 10000, usually 560; rows of text, 15 to 500, usually 24
    int terminalLines = 0;                    ///< of text without a height: of a terminal that shows it all, 0: none does
    bool isColored = false;                   ///< of text, by ANSI sequences; pictures always have colours
    TraceKind trace = usualTrace;             ///< of several sweeps: in front, with its peaks; of several results, each
    std::vector<std::uint32_t> marks_kHz{};   ///< places to mark, and to tell the level of
    std::optional<std::int32_t> limit{};      ///< hundredths of a dBm: a line, and to tell what is above it
    std::optional<std::int64_t> duplex_kHz{}; ///< from the receive to the transmit frequency of the terminal, below 0: down
};

/// A result, and the name by which a picture tells it from others.
struct Plotted {
    std::string name;
    const ScanResult& result;
};

inline constexpr std::size_t mostPlotted = 8;

/// The kind of picture that goes into a file, by the ending of its name; text for standard output ("-"). Nothing where the
/// name tells none.
std::optional<PlotFormat> plotFormat(const std::string& file);

/// What is said where it tells none; empty where it tells one.
std::string plotNameError(const std::string& file);

/// Why a picture cannot be written into a file, as far as that can be known before; empty: nothing is known against it.
std::string plotObstacle(const std::string& file);

/// The program that draws a result, for gnuplot 5.4: one plot per channel, below one another.
std::string plotProgram(const ScanResult& result, const PlotOptions& options);

/// Draws a result: one plot per channel, below one another. Pictures other than text need the program `gnuplot`, found by
/// PATH.
/// @throws std::runtime_error when it is not there or fails, in its own words
void writePlot(std::ostream& stream, const ScanResult& result, const PlotOptions& options);

/// Draws results over one another: one plot for each radio channel that any of them has; what they differ in is said below.
/// @param results  at least one, at most mostPlotted
/// @throws std::runtime_error as writePlot
void writeOverlay(std::ostream& stream, const std::vector<Plotted>& results, const PlotOptions& options);

/// Draws the sweeps of a result one below the other, with colours or signs for levels: one waterfall for each channel. Where
/// there are more sweeps than room, each row shows the strongest levels of several, which is said below.
/// @throws std::runtime_error as writePlot
void writeWaterfall(std::ostream& stream, const ScanResult& result, const PlotOptions& options);

} // namespace sdc
