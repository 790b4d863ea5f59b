#include "apps/sdc/plot/PlotFrame.h"

#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "support/Text.h"
#include "support/Time.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <string_view>

namespace sdc {

namespace {

constexpr const char* channelColor = "#dce8f7";
constexpr const char* borderColor = "#5b7fa8";

/// The least of 1, 2 and 5 times a power of ten that is not below a value.
std::int64_t niceStep(double least)
{
    for (std::int64_t power = 1;; power *= 10) {
        for (const std::int64_t factor : {1, 2, 5}) {
            if (static_cast<double>(factor * power) >= least) {
                return factor * power;
            }
        }
    }
}

std::int64_t roundedUp(std::int64_t value, std::int64_t step)
{
    const std::int64_t below = value / step * step;
    return below < value ? below + step : below;
}

std::string titleOfSweeps(const ChannelResult& channel)
{
    const Sweep& first = channel.sweeps.front();
    const std::size_t count = channel.sweeps.size();
    return fmt::format("{} {} UTC{}", support::dateText(first.start), support::clockText(first.start),
        count > 1 ? fmt::format(", {} sweeps", count) : "");
}

/// " PARTIAL 5/13" of all sweeps together, or why the result is not complete although no sample is missing.
std::string incompleteness(const ChannelResult& channel)
{
    std::int64_t taken = 0;
    std::int64_t planned = 0;
    bool isPartialAnywhere = false;
    Ending worst = Ending::complete;
    for (const Sweep& sweep : channel.sweeps) {
        taken += std::ssize(sweep.samples);
        planned += channel.plan.samples;
        isPartialAnywhere = isPartialAnywhere || isPartial(sweep, channel.plan);
        worst = std::max(worst, sweep.ending);
    }
    return (isPartialAnywhere ? fmt::format(", PARTIAL {}/{}", taken, planned) : "")
        + (worst == Ending::complete ? "" : fmt::format(", {}", toText(worst)));
}

} // namespace

std::string inQuotes(const std::string& text)
{
    constexpr std::string_view special = "\"'`\\@";
    std::string quoted = "\"";
    for (const char one : text) {
        quoted += special.find(one) == std::string_view::npos ? std::string(1, one)
                                                              : fmt::format("\\{:03o}", static_cast<unsigned char>(one));
    }
    return quoted + "\"";
}

FrequencyAxis::FrequencyAxis(std::uint32_t highest_kHz)
    : m_decimals(highest_kHz < 10'000'000 ? 3 : 6)
{
}

int FrequencyAxis::decimalsFor(std::int64_t frequency_kHz) const
{
    int decimals = m_decimals;
    for (; decimals > 0 && frequency_kHz % 10 == 0; --decimals) {
        frequency_kHz /= 10;
    }
    return decimals;
}

std::string FrequencyAxis::text(std::int64_t frequency_kHz, int decimals) const
{
    const std::int64_t unit_kHz = m_decimals == 3 ? 1000 : 1'000'000;
    const std::int64_t magnitude = std::llabs(frequency_kHz);
    const std::string all =
        fmt::format("{}{}.{:0{}}", frequency_kHz < 0 ? "-" : "", magnitude / unit_kHz, magnitude % unit_kHz, m_decimals);
    return all.substr(0, all.size() - static_cast<std::size_t>(decimals == 0 ? m_decimals + 1 : m_decimals - decimals));
}

PlotFrame::PlotFrame(const ScanResult& result, const ChannelResult& channel, const PlotOptions& options)
    : m_result(result)
    , m_channel(channel)
    , m_isText(options.format == PlotFormat::text)
    , m_plotWidth(m_isText ? options.width - 12 : options.width - 110)
    , m_plotHeight(m_isText ? options.height - 8 : options.height - 170)
    , m_characterWidth(m_isText ? 1.0 : 7.5)
    , m_lineHeight(m_isText ? 1.0 : 16.0)
    , m_axis(std::max({channel.plan.highest_kHz, channel.plan.lowest_kHz, channel.plan.rxFrequency_kHz}))
{
    findRange();
    findLevels();
}

/// All that was planned and all that was taken, and half a step, or at least something, at each end. Without a plan, the
/// place where the receiver belongs.
void PlotFrame::findRange()
{
    const ScanPlan& plan = m_channel.plan;
    const bool isPlanned = plan.samples > 0 && plan.lowest_kHz <= plan.highest_kHz;
    m_lowest_kHz = isPlanned ? plan.lowest_kHz : plan.rxFrequency_kHz;
    m_highest_kHz = isPlanned ? plan.highest_kHz : plan.rxFrequency_kHz;
    for (const Sweep& sweep : m_channel.sweeps) {
        if (!sweep.samples.empty()) {
            m_lowest_kHz = std::min<std::int64_t>(m_lowest_kHz, sweep.samples.front().frequency_kHz);
            m_highest_kHz = std::max<std::int64_t>(m_highest_kHz, sweep.samples.back().frequency_kHz);
        }
    }
    constexpr std::int64_t usualMargin_kHz = 1000;
    const bool isOnePlace = m_lowest_kHz == m_highest_kHz;
    const std::int64_t wanted_kHz = isOnePlace ? plan.channelSpacing_kHz : plan.step_kHz / 2;
    const std::int64_t margin_kHz = wanted_kHz == 0 ? usualMargin_kHz : wanted_kHz;
    m_lowest_kHz -= margin_kHz;
    m_highest_kHz += margin_kHz;
}

/// Always with the lowest reading, and with room for labels above; what no receiver reads is left outside.
void PlotFrame::findLevels()
{
    constexpr double lowestShown_dBm = -200.0;
    constexpr double highestShown_dBm = 60.0;
    double lowest_dBm = -100.0;
    double highest_dBm = -60.0;
    for (const Sweep& sweep : m_channel.sweeps) {
        for (const Sample& sample : sweep.samples) {
            lowest_dBm = std::min(lowest_dBm, sample.rssi / 100.0);
            highest_dBm = std::max(highest_dBm, sample.rssi / 100.0);
        }
    }
    m_lowest_dBm = static_cast<std::int32_t>(std::floor(std::max(lowest_dBm, lowestShown_dBm) / 5.0 - 1.0)) * 5;
    const double labels = (peakLabelLines() + 1.0) * m_lineHeight / m_plotHeight; // share of the height
    const double shown_dB = std::min(highest_dBm, highestShown_dBm) - m_lowest_dBm;
    m_highest_dBm = m_lowest_dBm + static_cast<std::int32_t>(std::ceil(shown_dB / (1.0 - labels) / 5.0)) * 5;
}

std::int64_t PlotFrame::textWidth_kHz(std::size_t characters) const
{
    const double share = static_cast<double>(characters) * m_characterWidth / m_plotWidth;
    return std::llround(static_cast<double>(m_highest_kHz - m_lowest_kHz) * share);
}

double PlotFrame::lineHeight_dB() const
{
    return (m_highest_dBm - m_lowest_dBm) * m_lineHeight / m_plotHeight;
}

std::string PlotFrame::range() const
{
    return fmt::format("[{}:{}]", m_axis.text(m_lowest_kHz), m_axis.text(m_highest_kHz));
}

std::string PlotFrame::program() const
{
    return fmt::format("set xrange {}\nset yrange [{}:{}]\n{}{}{}{}", range(), m_lowest_dBm, m_highest_dBm, title(), ticks(),
        rasterTicks(), configuredChannel());
}

std::string PlotFrame::title() const
{
    const std::string number = m_result.channels.size() > 1 ? fmt::format(", channel {}", m_channel.channel) : "";
    const std::string what = fmt::format(", {} scan{}", toText(m_result.kind), number);
    const std::string how = titleOfSweeps(m_channel) + incompleteness(m_channel);
    const auto most = static_cast<std::size_t>(m_plotWidth / m_characterWidth);
    const std::size_t left = most > what.size() + 10 ? most - what.size() : 10;
    const std::string who =
        support::shown(m_result.scenario, left / 2) + ", " + support::shown(m_channel.unitTypeText, left / 2);
    return fmt::format("set title {}.\"\\n\".{}{}\n", inQuotes(who + what), inQuotes(how), m_isText ? "" : " offset 0,0.7");
}

std::string PlotFrame::ticks() const
{
    // A tick for every 10 characters and their neighbours' distance, as many digits as tell one step from the next.
    const double span_kHz = static_cast<double>(m_highest_kHz - m_lowest_kHz);
    const double most = std::clamp(m_plotWidth / m_characterWidth / 11.0, 2.0, 12.0);
    const std::int64_t step_kHz = niceStep(span_kHz / most);
    const std::int64_t sampleStep_kHz = m_channel.plan.step_kHz == 0 ? step_kHz : m_channel.plan.step_kHz;
    const int decimals = std::max(m_axis.decimalsFor(step_kHz), m_axis.decimalsFor(sampleStep_kHz));
    std::string list;
    for (std::int64_t tick = roundedUp(m_lowest_kHz, step_kHz); tick <= m_highest_kHz; tick += step_kHz) {
        list += fmt::format("{}\"{}\" {}", list.empty() ? "" : ", ", m_axis.text(tick, decimals), m_axis.text(tick));
    }
    return fmt::format("set xlabel 'frequency, {}'\nset xtics ({})\nset ylabel 'level, dBm'\nset ytics {}\n", m_axis.unit(),
        list, m_lowest_dBm + 10 * m_plotHeight / m_lineHeight < m_highest_dBm ? 20 : 10);
}

/// On the upper axis: a tick for each channel centre, labelled with its distance from the configured channel where there is
/// room.
std::string PlotFrame::rasterTicks() const
{
    constexpr std::int64_t mostTicks = 1000;
    const std::int64_t spacing_kHz = m_channel.plan.channelSpacing_kHz;
    const std::int64_t configured_kHz = m_channel.plan.rxFrequency_kHz;
    if (spacing_kHz == 0 || (m_highest_kHz - m_lowest_kHz) / spacing_kHz > mostTicks) {
        return "unset x2tics\n";
    }
    const double room = static_cast<double>(textWidth_kHz(6)) / static_cast<double>(spacing_kHz);
    const std::int64_t labelled = niceStep(room);
    std::string list;
    const auto first = (m_lowest_kHz - configured_kHz) / spacing_kHz - 1;
    for (std::int64_t offset = first; configured_kHz + offset * spacing_kHz <= m_highest_kHz; ++offset) {
        const std::int64_t centre_kHz = configured_kHz + offset * spacing_kHz;
        const bool isLabelled = offset % labelled == 0;
        if (centre_kHz >= m_lowest_kHz && (isLabelled || !m_isText)) {
            const std::string label = isLabelled ? fmt::format("{}{}", offset > 0 ? "+" : "", offset) : "";
            list += fmt::format("{}\"{}\" {}", list.empty() ? "" : ", ", label, m_axis.text(centre_kHz));
        }
    }
    return list.empty()
        ? "unset x2tics\n"
        : fmt::format(
            "set x2range {}\nset x2tics ({})\nset x2label 'channel raster, 0: the configured channel'\n", range(), list);
}

std::string PlotFrame::edge(std::int64_t frequency_kHz) const
{
    if (frequency_kHz <= m_lowest_kHz || frequency_kHz >= m_highest_kHz) {
        return "";
    }
    return fmt::format(
        "set arrow from first {0}, graph 0 to first {0}, graph 1 nohead back dashtype 3 linecolor rgb '{1}'\n",
        m_axis.text(frequency_kHz), borderColor);
}

std::string PlotFrame::configuredChannel() const
{
    const std::int64_t half_kHz = m_channel.plan.channelSpacing_kHz / 2;
    const std::int64_t lower_kHz = std::max(m_channel.plan.rxFrequency_kHz - half_kHz, m_lowest_kHz);
    const std::int64_t upper_kHz = std::min(m_channel.plan.rxFrequency_kHz + half_kHz, m_highest_kHz);
    if (half_kHz == 0 || lower_kHz >= upper_kHz) {
        return "";
    }
    const std::string area = fmt::format("set object 1 rectangle from first {}, graph 0 to first {}, graph 1 behind "
                                         "fillcolor rgb '{}' fillstyle solid noborder\n",
        m_axis.text(lower_kHz), m_axis.text(upper_kHz), channelColor);
    return (m_isText ? "" : area) + edge(lower_kHz) + edge(upper_kHz);
}

} // namespace sdc
