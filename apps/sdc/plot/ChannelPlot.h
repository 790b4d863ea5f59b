#pragma once

#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/plot/PlotFrame.h"
#include "apps/sdc/result/Analysis.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"

#include <cstdint>
#include <string>
#include <vector>

namespace sdc {

struct TraceStyle;

/// The plot of one channel: a frame and the traces in it.
class ChannelPlot {
public:
    /// @param options  with the size that is drawn
    ChannelPlot(const ScanResult& result, const ChannelResult& channel, const PlotOptions& options);

    /// The commands of gnuplot that draw it.
    std::string program() const;

private:
    const FrequencyAxis& axis() const { return m_frame.axis(); }
    bool isConnected() const;
    std::string data() const;
    std::string peaks() const;
    std::string labels() const;
    std::string label(const Peak& peak, const std::string& frequency, std::int64_t half_kHz) const;
    std::int32_t strongestBetween(std::int64_t lower_kHz, std::int64_t upper_kHz) const;
    std::string look(const TraceStyle& style, bool hasMarkers) const;
    std::string trace(const TraceStyle& style) const;
    std::string stems() const;
    std::string plot() const;

    PlotFrame m_frame;
    const ChannelResult& m_channel;
    Analysis m_analysis;
    std::vector<Hold> m_holds;
    bool m_hasHolds;
};

} // namespace sdc
