#include "apps/sdc/tty/Progress.h"

#include "apps/sdc/result/ScanResult.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

namespace sdc {

namespace {

constexpr const char* gap = "  ";

/// Columns of a text in which every character takes one.
int width(const std::string& text)
{
    return static_cast<int>(text.size());
}

std::int64_t partOf(const ProgressState& state, std::int64_t whole)
{
    return state.planned > 0 ? std::clamp<std::int64_t>(whole * state.taken / state.planned, 0, whole) : 0;
}

std::string counts(const ProgressState& state)
{
    const std::string planned = std::to_string(state.planned);
    return fmt::format("{:>{}}/{} samples", state.taken, planned.size(), planned);
}

std::string sweepText(const ProgressState& state)
{
    if (state.sweeps == 1) {
        return "";
    }
    return gap + ("sweep " + std::to_string(state.sweep)) + (state.sweeps > 0 ? "/" + std::to_string(state.sweeps) : "");
}

std::string sampleText(const ProgressState& state)
{
    if (!state.last) {
        return "";
    }
    const std::string channel = state.channel ? "channel " + std::to_string(*state.channel) + " at " : "";
    return gap + channel + megahertz(state.last->frequency_kHz) + " MHz "
        + fmt::format("{:>7} dBm", hundredths(state.last->rssi));
}

std::string leftText(const ProgressState& state)
{
    if (!state.left) {
        return "";
    }
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(*state.left);
    const bool isShort = seconds < std::chrono::minutes(1);
    return gap + (isShort ? std::to_string(seconds.count()) + " s" : support::duration(seconds)) + " left";
}

std::string bar(const ProgressState& state, int columns, bool isColored)
{
    const auto done = static_cast<std::size_t>(partOf(state, columns));
    const std::string begin = isColored ? "\033[36m" : "";
    const std::string end = isColored ? "\033[0m" : "";
    return begin + std::string(done, '#') + end + std::string(static_cast<std::size_t>(columns) - done, '.') + gap;
}

} // namespace

std::string progressLine(const ProgressState& state, int columns, bool isColored)
{
    constexpr int shortestBar = 8;
    constexpr int longestBar = 60;
    const std::string percent = fmt::format("{:>3} %  ", partOf(state, 100));
    std::string line = percent;
    bool isWhole = true;
    for (const std::string& part : {counts(state), sampleText(state), leftText(state), sweepText(state)}) {
        isWhole = isWhole && width(line + part) <= columns; // the most important come first
        line += isWhole ? part : "";
    }
    const int room = std::min(columns - width(line) - width(gap), longestBar);
    if (room >= shortestBar && isWhole) {
        return line.insert(percent.size(), bar(state, room, isColored));
    }
    return line.substr(0, static_cast<std::size_t>(std::max(columns, 0)));
}

/// A column is left free: a line that fills the last one would begin the next row on some terminals.
void Progress::show(const ProgressState& state)
{
    if (m_style.isTerminal) {
        const std::string line = progressLine(state, m_style.columns() - 1, m_style.isColored);
        if (line != m_line) {
            m_line = line;
            m_stream << "\r\033[K" + line << std::flush;
        }
        return;
    }
    if (hasMoved(state)) {
        m_tenth = partOf(state, 10);
        m_taken = state.taken;
        m_stream << fmt::format("progress   {:>3} %  ", partOf(state, 100)) + counts(state) + sampleText(state)
                + leftText(state) + sweepText(state) + "\n"
                 << std::flush;
    }
}

/// Where sweeps go on until stopped, a tenth of them means nothing: lines come ever more rarely.
bool Progress::hasMoved(const ProgressState& state) const
{
    const bool isEndless = state.sweeps == 0 && state.sweep > 1;
    return state.taken > 0 && (isEndless ? state.taken >= 2 * m_taken : partOf(state, 10) != m_tenth);
}

void Progress::clear()
{
    if (!m_line.empty()) {
        m_line.clear();
        m_stream << "\r\033[K" << std::flush;
    }
}

void Progress::end()
{
    if (!m_line.empty()) {
        m_line.clear();
        m_stream << std::endl;
    }
}

} // namespace sdc
