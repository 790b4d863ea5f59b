#pragma once

#include "apps/sdc/plot/Axes.h"
#include "apps/sdc/plot/Chart.h"
#include "apps/sdc/plot/Plot.h"

#include <cstddef>
#include <string>
#include <vector>

// The commands of gnuplot that draw what all pictures have.

namespace sdc {

/// A text without control characters as a string of gnuplot. What could end it, or be taken for a command or a variable, is
/// written as a number.
std::string inQuotes(const std::string& text);

/// What comes before plots that stand below one another, all of the same size.
/// @param lines  that stand below each plot beside what every plot has, at most
std::string programHead(const PlotOptions& options, std::size_t plots, std::size_t lines);

/// What comes behind them.
std::string programTail(std::size_t plots);

/// The room that one plot's traces have.
Room pictureRoom(const PlotOptions& options);

/// What is said below, in lines that fit.
std::vector<std::string> pictureNotes(const Chart& chart, const PlotOptions& options);

/// What the states of channels look like, for the end of the key: each behind a comma.
std::string stateKey(const Chart& chart);

/// Number of lines that stand below a plot beside what every plot has: what is said, and the names of several results.
std::size_t linesBelow(const Chart& chart, const PlotOptions& options);

/// What the pictures of one channel have in common: title, the axis of frequencies, the raster, channels of the radio,
/// marks, and what is said below.
std::string frameProgram(const Chart& chart, const PlotOptions& options);

} // namespace sdc
