#pragma once

#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/result/ScanResult.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace sdc {

/// A text without control characters as a string of gnuplot. What could end it, or be taken for a command or a variable, is
/// written as a number.
std::string inQuotes(const std::string& text);

/// Frequencies on an axis in MHz below 10 GHz and in GHz above.
class FrequencyAxis {
public:
    explicit FrequencyAxis(std::uint32_t highest_kHz);

    const char* unit() const { return m_decimals == 3 ? "MHz" : "GHz"; }

    /// Number of decimals that shows a frequency exactly.
    int decimalsFor(std::int64_t frequency_kHz) const;

    /// With so many decimals, or all of them.
    std::string text(std::int64_t frequency_kHz, int decimals) const;
    std::string text(std::int64_t frequency_kHz) const { return text(frequency_kHz, m_decimals); }

private:
    int m_decimals; ///< of a kHz
};

/// What surrounds the traces of one channel's plot: ranges, ticks, grid, the configured channel, the title.
class PlotFrame {
public:
    /// @param options  with the size that is drawn
    PlotFrame(const ScanResult& result, const ChannelResult& channel, const PlotOptions& options);

    /// The commands that draw it.
    std::string program() const;

    const FrequencyAxis& axis() const { return m_axis; }
    bool isText() const { return m_isText; }
    std::int64_t lowest_kHz() const { return m_lowest_kHz; }
    std::int64_t highest_kHz() const { return m_highest_kHz; }
    std::int32_t lowest_dBm() const { return m_lowest_dBm; }

    /// Lines of the label of a peak, for which there is room above the strongest level.
    int peakLabelLines() const { return m_isText ? 1 : 2; }
    /// The width on the frequency axis of a text of so many characters.
    std::int64_t textWidth_kHz(std::size_t characters) const;
    /// The height of a line of text, in dB.
    double lineHeight_dB() const;

private:
    std::string range() const;
    void findRange();
    void findLevels();
    std::string title() const;
    std::string ticks() const;
    std::string rasterTicks() const;
    std::string configuredChannel() const;
    std::string edge(std::int64_t frequency_kHz) const;

    const ScanResult& m_result;
    const ChannelResult& m_channel;
    bool m_isText;
    double m_plotWidth;      ///< pixels or columns between the axes
    double m_plotHeight;     ///< pixels or rows
    double m_characterWidth; ///< pixels or columns
    double m_lineHeight;     ///< pixels or rows
    std::int64_t m_lowest_kHz = 0;
    std::int64_t m_highest_kHz = 0;
    std::int32_t m_lowest_dBm = 0;
    std::int32_t m_highest_dBm = 0;
    FrequencyAxis m_axis;
};

} // namespace sdc
