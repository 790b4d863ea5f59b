#pragma once

#include "apps/sdc/result/Sweep.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <utility>

namespace sdc {

/// How far a run has come, over all its channels.
struct ProgressState {
    std::int64_t taken = 0;                        ///< samples
    std::int64_t planned = 0;                      ///< samples
    std::optional<Sample> last;                    ///< the sample just taken
    std::optional<std::uint32_t> channel;          ///< its radio channel, where there are several
    std::uint32_t sweep = 1;                       ///< the sweep in hand
    std::uint32_t sweeps = 1;                      ///< of so many; 0: until stopped
    std::optional<std::chrono::milliseconds> left; ///< wall time of the settle delays left; nothing: none to speak of
};

/// One line for a terminal, at most so many columns wide: what does not fit is left out, the bar first.
std::string progressLine(const ProgressState& state, int columns, bool isColored);

/// Shows how far a run has come: on a terminal one line that is written over, elsewhere a line for each tenth at most.
class Progress {
public:
    struct Style {
        bool isTerminal = false;
        bool isColored = false;
        std::function<int()> columns; ///< asked anew for each line: windows change
    };

    Progress(std::ostream& stream, Style style)
        : m_stream(stream)
        , m_style(std::move(style))
    {
    }

    /// Shows the progress if it has moved.
    void show(const ProgressState& state);

    /// Takes the line that is written over away, or lets it stand and begins a new one.
    void clear();
    void end();

private:
    bool hasMoved(const ProgressState& state) const;

    std::ostream& m_stream;
    Style m_style;
    std::string m_line;        ///< as it stands on the terminal; empty: there is none
    std::int64_t m_tenth = -1; ///< shown last, elsewhere
    std::int64_t m_taken = 0;  ///< shown last, elsewhere
};

} // namespace sdc
