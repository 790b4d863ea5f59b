#pragma once

#include "simulator/terminal/SimulatedTerminal.h"

#include <cstdint>
#include <ostream>
#include <vector>

namespace sdc {

/// Shows how far a scan has come: on a terminal one line that is written over, elsewhere a line for each tenth.
class Progress {
public:
    Progress(std::ostream& stream, bool isTerminal)
        : m_stream(stream)
        , m_isTerminal(isTerminal)
    {
    }

    /// Shows the progress if it has moved.
    /// @param percent  what the controller reports
    /// @param samples  taken so far
    /// @param planned  number of samples of the whole scan
    void show(std::int32_t percent, const std::vector<SDCResult>& samples, std::int32_t planned);

    /// Ends the line that is written over.
    void end();

private:
    std::ostream& m_stream;
    bool m_isTerminal;
    std::int64_t m_shown = -1; ///< samples on a terminal, tenths elsewhere
};

} // namespace sdc
