#include "apps/sdc/plot/ChannelPlot.h"

#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/result/ScanResult.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace sdc {

/// One drawn quantity: dark enough on the white that the plots bring with them, and told apart by dashes and markers as
/// well.
struct TraceStyle {
    const char* title;
    int column; ///< of the data
    const char* color;
    int dash;
    int marker;   ///< as gnuplot numbers them
    int textLine; ///< as gnuplot numbers the characters of lines in text
};

namespace {

constexpr TraceStyle levelStyle{"level", 2, "#0b4f9e", 1, 7, 1};
constexpr TraceStyle averageStyle{"average power", 2, "#0b4f9e", 1, 7, 1};
constexpr TraceStyle maxStyle{"max hold", 3, "#b3261e", 2, 8, 2};
constexpr TraceStyle minStyle{"min hold", 4, "#1b7f4b", 3, 10, 3};

constexpr const char* forgotten = "unset label\nunset object\nunset arrow\n"; // of the channel before

} // namespace

ChannelPlot::ChannelPlot(const ScanResult& result, const ChannelResult& channel, const PlotOptions& options)
    : m_frame(result, channel, options)
    , m_channel(channel)
    , m_analysis(analyse(traceOf(channel, TraceKind::average), channel.plan))
    , m_holds(channel.survey.holds())
    , m_hasHolds(channel.sweeps.size() > 1)
{
}

std::string ChannelPlot::program() const
{
    return forgotten + m_frame.program() + data() + peaks() + labels() + plot() + "\n";
}

/// Samples further apart than the filter is wide say nothing of what lies between them.
bool ChannelPlot::isConnected() const
{
    return m_channel.plan.step_kHz != 0 && m_channel.plan.step_kHz <= m_channel.receiver.filterWidth_kHz;
}

std::string ChannelPlot::data() const
{
    std::string text = "$samples << end\n";
    for (const Hold& hold : m_holds) {
        text += fmt::format("{} {} {} {}\n", axis().text(hold.frequency_kHz), hundredths(hold.average), hundredths(hold.max),
            hundredths(hold.min));
    }
    return text + "end\n";
}

std::string ChannelPlot::peaks() const
{
    std::string text = "$peaks << end\n";
    for (const Peak& peak : m_analysis.peaks) {
        text += fmt::format("{} {}\n", axis().text(peak.frequency_kHz), hundredths(peak.level));
    }
    return text + "end\n";
}

/// The strongest peaks with their frequency and level, as long as labels do not meet.
std::string ChannelPlot::labels() const
{
    std::string text = m_holds.empty() ? "set label 'no samples' at graph 0.5, graph 0.5 center\n" : "";
    std::vector<const Peak*> labelled;
    for (const Peak& peak : m_analysis.peaks) {
        const std::string frequency = axis().text(peak.frequency_kHz, axis().decimalsFor(peak.frequency_kHz));
        const std::int64_t distance_kHz = m_frame.textWidth_kHz(frequency.size() + 1);
        const bool isFree = std::ranges::none_of(labelled, [&](const Peak* other) {
            return std::llabs(std::int64_t{other->frequency_kHz} - peak.frequency_kHz) < distance_kHz;
        });
        if (isFree) {
            labelled.push_back(&peak);
            text += label(peak, frequency, distance_kHz / 2);
        }
    }
    return text;
}

std::string ChannelPlot::label(const Peak& peak, const std::string& frequency, std::int64_t half_kHz) const
{
    const std::int64_t centre_kHz = std::clamp<std::int64_t>(peak.frequency_kHz, m_frame.lowest_kHz() + half_kHz,
        std::max(m_frame.lowest_kHz() + half_kHz, m_frame.highest_kHz() - half_kHz));
    const auto height = std::llround(m_frame.lineHeight_dB() * 100.0 * (m_frame.peakLabelLines() + 0.3));
    const std::int32_t top = strongestBetween(centre_kHz - half_kHz, centre_kHz + half_kHz);
    const std::string level = m_frame.isText() ? "" : ".\"\\n\"." + inQuotes(hundredths(peak.level));
    return fmt::format("set label {}{} at first {}, first {} center front\n", inQuotes(frequency), level,
        axis().text(centre_kHz), hundredths(top + height));
}

/// What is drawn highest in a part of the plot, so that labels stand above it.
std::int32_t ChannelPlot::strongestBetween(std::int64_t lower_kHz, std::int64_t upper_kHz) const
{
    std::int32_t strongest = std::numeric_limits<std::int32_t>::min();
    for (const Hold& hold : m_holds) {
        const bool isBetween = hold.frequency_kHz >= lower_kHz && hold.frequency_kHz <= upper_kHz;
        strongest = isBetween ? std::max(strongest, hold.max) : strongest;
    }
    return strongest;
}

std::string ChannelPlot::look(const TraceStyle& style, bool hasMarkers) const
{
    if (m_frame.isText()) {
        return fmt::format(" linetype {}", style.textLine);
    }
    const std::string markers = hasMarkers ? fmt::format(" pointtype {} pointsize 0.5", style.marker) : "";
    return fmt::format(" linecolor rgb '{}' linewidth 1.5 dashtype {}{}", style.color, style.dash, markers);
}

std::string ChannelPlot::trace(const TraceStyle& style) const
{
    constexpr std::size_t mostMarkers = 150; // more of them run into each other
    const bool hasMarkers = !m_frame.isText() && m_holds.size() <= mostMarkers;
    std::string with = std::string(hasMarkers ? "linespoints" : "lines") + look(style, hasMarkers);
    if (!isConnected()) {
        with = "points" + (m_frame.isText() ? fmt::format(" pointtype {}", style.textLine) : look(style, true));
    }
    return fmt::format("$samples using 1:{} with {} title '{}', \\\n    ", style.column, with, style.title);
}

/// From the lower end of the plot to each level; of several sweeps from the weakest to the strongest.
std::string ChannelPlot::stems() const
{
    const std::string foot = m_hasHolds ? "$4" : std::to_string(m_frame.lowest_dBm());
    return fmt::format("$samples using 1:({0}):(0):($3-({0})) with vectors nohead{1} notitle, \\\n    ", foot,
        m_frame.isText() ? " linetype 1" : " linecolor rgb '#7a8ca3' linewidth 1");
}

std::string ChannelPlot::plot() const
{
    std::string items;
    if (!m_holds.empty()) {
        items += isConnected() ? "" : stems();
        items += m_hasHolds ? trace(maxStyle) + trace(averageStyle) + trace(minStyle) : trace(levelStyle);
    }
    if (!m_analysis.peaks.empty() && !m_frame.isText()) {
        items += "$peaks using 1:2 with points pointtype 11 pointsize 1.2 linecolor rgb '#8a3ffc' title 'peaks', \\\n    ";
    }
    return fmt::format("plot {}-99.70 with lines {} title 'floor -99.70 dBm'\n", items,
        m_frame.isText() ? "linetype 7" : "linecolor rgb '#555555' dashtype 4");
}

} // namespace sdc
