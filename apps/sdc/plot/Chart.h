#pragma once

#include "apps/sdc/plot/Axes.h"
#include "apps/sdc/plot/Looks.h"
#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/result/Raster.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sdc {

/// Levels beyond these are no receiver's: what the axis shows does not depend on them.
inline constexpr std::int32_t lowestShown = -20000; // hundredths of a dBm
inline constexpr std::int32_t highestShown = 6000;

struct Point {
    std::int64_t frequency_kHz;
    std::int32_t level; ///< hundredths of a dBm

    bool operator==(const Point&) const = default;
};

/// One drawn quantity.
struct Trace {
    std::string title;
    std::string name; ///< of it among the others, short
    TraceKind kind;   ///< of several sweeps, which of their levels it shows
    Look look;
    std::vector<Point> points; ///< frequencies ascending
    std::int64_t step_kHz;     ///< from one to the next
    bool isConnected;          ///< the receive filter leaves nothing unseen between points
};

/// A channel in which the terminal receives or transmits.
struct Band {
    std::string name;
    Range range_kHz;
};

/// A channel of the raster and what is in it; only the part that is in the plot.
struct ChannelState {
    Range range_kHz;
    RasterState state;
};

/// A place that the user wants to see.
struct Mark {
    std::string label;
    std::int64_t frequency_kHz;
};

/// Stands above what is drawn highest near a peak.
struct PeakLabel {
    std::string frequency;
    Point peak;
    Point place; ///< middle and baseline
};

/// One of the results that are drawn, and the channel of it.
struct Member {
    std::string name;
    const ScanResult& result;
    const ChannelResult& channel;
};

/// What is drawn of one channel, whoever draws it.
struct Chart {
    std::string title;
    std::string subtitle;
    Range range_kHz;
    std::int64_t rx_kHz = 0;          ///< centre of the configured channel
    std::int64_t spacing_kHz = 0;     ///< of the channels of the raster; 0: there is none
    std::vector<ChannelState> states; ///< of the channels of the raster, ascending; none where there is but the own one
    std::vector<Band> bands;
    std::vector<Trace> traces; ///< the first one in front
    bool areHolds = false;     ///< of one channel: the trace chosen, then the other two
    std::vector<Point> peaks;  ///< of the first trace, strongest first
    std::vector<Mark> marks;
    std::optional<std::int32_t> limit; ///< hundredths of a dBm
    std::vector<std::string> notes;    ///< said below, a line each

    /// Whether the traces are those of several results.
    bool isOverlay() const { return traces.size() > 1 && !areHolds; }
};

/// The scale of a chart's levels, and what stands on it.
struct LevelScale {
    Range range_dBm;
    std::int64_t tick_dB = 10;

    /// A level as it can be shown: one beyond the scale becomes its end.
    std::int32_t shown(std::int32_t level) const;
};

/// A line that carries a point of a trace that is not connected.
struct Stem {
    std::int64_t frequency_kHz;
    std::int32_t foot; ///< hundredths of a dBm
    std::int32_t top;
};

/// The looks of those states that a chart has, the worst first.
std::vector<StateLook> statesIn(const Chart& chart);

Chart withoutStates(Chart chart);

/// @param members  at least one
Chart chartOf(const std::vector<Member>& members, const PlotOptions& options);

/// The lowest and the highest level that a chart has to show, hundredths of a dBm: always the lowest
/// reading and the limit.
Range levelsOf(const Chart& chart);

/// From the lower end of the scale to each level; of several sweeps from the weakest to the strongest. Several results, one
/// over the other, have none.
std::vector<Stem> stemsOf(const Chart& chart, const LevelScale& scale);

/// Of the strongest peaks, as long as labels do not meet.
/// @param lines  of a label
std::vector<PeakLabel> peakLabels(const Chart& chart, const LevelScale& scale, const Room& room, int lines);

} // namespace sdc
