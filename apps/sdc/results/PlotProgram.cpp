#include "apps/sdc/results/Analysis.h"
#include "apps/sdc/results/Format.h"
#include "apps/sdc/results/Gnuplot.h"
#include "apps/sdc/results/Holds.h"
#include "apps/sdc/results/Plot.h"
#include "apps/sdc/results/PlotFrame.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace sdc {

namespace {

/// One drawn quantity: dark enough on the white that the plots bring with them, and told apart by dashes and markers as
/// well.
struct Style {
    const char* title;
    int column; ///< of the data
    const char* color;
    int dash;
    int marker;   ///< as gnuplot numbers them
    int textLine; ///< as gnuplot numbers the characters of lines in text
};

constexpr Style levelStyle{"level", 2, "#0b4f9e", 1, 7, 1};
constexpr Style averageStyle{"average power", 2, "#0b4f9e", 1, 7, 1};
constexpr Style maxStyle{"max hold", 3, "#b3261e", 2, 8, 2};
constexpr Style minStyle{"min hold", 4, "#1b7f4b", 3, 10, 3};

constexpr const char* dataName = "$samples";
constexpr const char* peaksName = "$peaks";

PlotOptions drawable(PlotOptions options)
{
    const bool isText = options.format == PlotFormat::text;
    const auto size = [](int wanted, int usual, int least, int most) {
        return std::clamp(wanted == 0 ? usual : wanted, least, most);
    };
    options.width = isText ? size(options.width, 80, 40, 1000) : size(options.width, 1000, 300, 10000);
    options.height = isText ? size(options.height, 24, 15, 500) : size(options.height, 560, 200, 10000);
    return options;
}

std::string terminal(const PlotOptions& options, std::size_t plots)
{
    constexpr std::int64_t mostPixels = 30000; // what pictures can have
    const bool isText = options.format == PlotFormat::text;
    const std::int64_t height =
        isText ? options.height : std::min(mostPixels, options.height * static_cast<std::int64_t>(plots));
    const std::string size = " size " + std::to_string(options.width) + "," + std::to_string(height) + " noenhanced";
    switch (options.format) {
    case PlotFormat::svg: return "set terminal svg" + size + " font 'sans-serif,13' background '#ffffff'\n";
    case PlotFormat::png: return "set terminal pngcairo" + size + " font 'sans,10' background '#ffffff'\n";
    case PlotFormat::text: break;
    }
    return "set terminal dumb" + size + " nofeed " + (options.isColored ? "ansi" : "mono") + "\n";
}

constexpr const char* settings = R"(set encoding utf8
set samples 2
set border 15 linecolor rgb '#333333'
set tics nomirror out
set key below horizontal Left reverse height 0.4
)";

/// In a text the grid is dotted, or it would look like a trace.
const char* grid(PlotFormat format)
{
    return format == PlotFormat::text ? "set grid ytics linetype 0\n"
                                      : "set grid ytics linetype 1 linecolor rgb '#d8d8d8' linewidth 1\n";
}

/// One channel's plot.
class ChannelPlot {
public:
    ChannelPlot(const ScanResult& result, const ChannelResult& channel, const PlotOptions& options)
        : m_frame(result, channel, options)
        , m_channel(channel)
        , m_analysis(analyse(traceOf(channel), channel.plan))
        , m_holds(holds(channel.sweeps))
        , m_hasHolds(channel.sweeps.size() > 1)
    {
    }

    std::string program() const
    {
        const std::string forgotten = "unset label\nunset object\nunset arrow\n"; // of the channel before
        return forgotten + m_frame.program() + data() + peaks() + labels() + plot() + "\n";
    }

private:
    const FrequencyAxis& axis() const { return m_frame.axis(); }

    /// Samples further apart than the filter is wide say nothing of what lies between them.
    bool isConnected() const { return m_channel.plan.step_kHz != 0 && m_channel.plan.step_kHz <= m_channel.filterWidth_kHz; }

    std::string data() const
    {
        std::string text = std::string(dataName) + " << end\n";
        for (const Hold& hold : m_holds) {
            text += axis().text(hold.frequency_kHz) + " " + hundredths(hold.average) + " " + hundredths(hold.max) + " "
                + hundredths(hold.min) + "\n";
        }
        return text + "end\n";
    }

    std::string peaks() const
    {
        std::string text = std::string(peaksName) + " << end\n";
        for (const Peak& peak : m_analysis.peaks) {
            text += axis().text(peak.frequency_kHz) + " " + hundredths(peak.level) + "\n";
        }
        return text + "end\n";
    }

    /// The strongest peaks with their frequency and level, as long as labels do not meet.
    std::string labels() const
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

    std::string label(const Peak& peak, const std::string& frequency, std::int64_t half_kHz) const
    {
        const std::int64_t centre_kHz = std::clamp<std::int64_t>(peak.frequency_kHz, m_frame.lowest_kHz() + half_kHz,
            std::max(m_frame.lowest_kHz() + half_kHz, m_frame.highest_kHz() - half_kHz));
        const auto height = std::llround(m_frame.lineHeight_dB() * 100.0 * (m_frame.peakLabelLines() + 0.3));
        const std::int32_t top = strongestBetween(centre_kHz - half_kHz, centre_kHz + half_kHz);
        const std::string level = m_frame.isText() ? "" : ".\"\\n\"." + quoted(hundredths(peak.level));
        return "set label " + quoted(frequency) + level + " at first " + axis().text(centre_kHz) + ", first "
            + hundredths(top + height) + " center front\n";
    }

    /// What is drawn highest in a part of the plot, so that labels stand above it.
    std::int32_t strongestBetween(std::int64_t lower_kHz, std::int64_t upper_kHz) const
    {
        std::int32_t strongest = std::numeric_limits<std::int32_t>::min();
        for (const Hold& hold : m_holds) {
            const bool isBetween = hold.frequency_kHz >= lower_kHz && hold.frequency_kHz <= upper_kHz;
            strongest = isBetween ? std::max(strongest, hold.max) : strongest;
        }
        return strongest;
    }

    std::string look(const Style& style, bool hasMarkers) const
    {
        if (m_frame.isText()) {
            return " linetype " + std::to_string(style.textLine);
        }
        const std::string markers = " pointtype " + std::to_string(style.marker) + " pointsize 0.5";
        return " linecolor rgb '" + std::string(style.color) + "' linewidth 1.5 dashtype " + std::to_string(style.dash)
            + (hasMarkers ? markers : "");
    }

    std::string trace(const Style& style) const
    {
        constexpr std::size_t mostMarkers = 150; // more of them run into each other
        const bool hasMarkers = !m_frame.isText() && m_holds.size() <= mostMarkers;
        const std::string columns = std::string(dataName) + " using 1:" + std::to_string(style.column);
        const std::string title = " title '" + std::string(style.title) + "'";
        if (isConnected()) {
            return columns + " with " + (hasMarkers ? "linespoints" : "lines") + look(style, hasMarkers) + title;
        }
        return columns + " with points"
            + (m_frame.isText() ? " pointtype " + std::to_string(style.textLine) : look(style, true)) + title;
    }

    /// From the lower end of the plot to each level; of several sweeps from the weakest to the strongest.
    std::string stems() const
    {
        const std::string foot = m_hasHolds ? "$4" : std::to_string(m_frame.lowest_dBm());
        return std::string(dataName) + " using 1:(" + foot + "):(0):($3-(" + foot + ")) with vectors nohead"
            + (m_frame.isText() ? " linetype 1" : " linecolor rgb '#7a8ca3' linewidth 1") + " notitle";
    }

    std::string plot() const
    {
        std::string items;
        if (!m_holds.empty()) {
            items += isConnected() ? "" : stems() + ", \\\n    ";
            items += m_hasHolds ? trace(maxStyle) + ", \\\n    " + trace(averageStyle) + ", \\\n    " + trace(minStyle)
                                : trace(levelStyle);
            items += ", \\\n    ";
        }
        if (!m_analysis.peaks.empty() && !m_frame.isText()) {
            items += std::string(peaksName)
                + " using 1:2 with points pointtype 11 pointsize 1.2 linecolor rgb '#8a3ffc' title 'peaks', \\\n    ";
        }
        return "plot " + items + "-99.70 with lines "
            + (m_frame.isText() ? "linetype 7" : "linecolor rgb '#555555' dashtype 4") + " title 'floor -99.70 dBm'\n";
    }

    PlotFrame m_frame;
    const ChannelResult& m_channel;
    Analysis m_analysis;
    std::vector<Hold> m_holds;
    bool m_hasHolds;
};

/// Without page feeds, blanks at the ends of lines, and empty lines at the begin.
std::string trimmed(std::string text)
{
    std::ranges::replace(text, '\f', ' ');
    std::string trimmed;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::size_t last = text.find_last_not_of(' ', end - 1);
        const bool isEmpty = end == begin || last == std::string::npos || last < begin;
        if (!isEmpty || !trimmed.empty()) {
            trimmed += (isEmpty ? "" : text.substr(begin, last + 1 - begin)) + "\n";
        }
        begin = end + 1;
    }
    return trimmed;
}

} // namespace

std::string plotProgram(const ScanResult& result, const PlotOptions& wanted)
{
    const PlotOptions options = drawable(wanted);
    const std::size_t plots = result.channels.size();
    const bool isOnePicture = options.format != PlotFormat::text && plots > 1;
    std::string program = terminal(options, plots) + settings + grid(options.format);
    program += isOnePicture ? "set multiplot layout " + std::to_string(plots) + ",1\n" : "";
    for (const ChannelResult& channel : result.channels) {
        program += ChannelPlot(result, channel, options).program();
    }
    return program + (isOnePicture ? "unset multiplot\n" : "");
}

void writePlot(std::ostream& stream, const ScanResult& result, const PlotOptions& options)
{
    const std::string picture = runGnuplot(plotProgram(result, options));
    stream << (options.format == PlotFormat::text ? trimmed(picture) : picture);
}

} // namespace sdc
